#include "svs/svs_interfaces.h"

namespace SVS {

DEF_CLASS_IID (INoteList)
DEF_CLASS_IID (IHost)
DEF_CLASS_IID (IHostContextProvider)
DEF_CLASS_IID (IHostProductInformationProvider)
DEF_CLASS_IID (IMessageEndpoint)
DEF_CLASS_IID (ISequenceStorage)

} // namespace SVS
