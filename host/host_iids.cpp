// The identifiers are filled by static initialisation, before any entry point runs.
#include "host/agent_interfaces.h"
#include "host/plugin_interfaces.h"
#include "host/project_interfaces.h"
#include "host/service_interfaces.h"

namespace Steinberg {

DEF_CLASS_IID (IHostServices)
DEF_CLASS_IID (IHostProductInfo)
DEF_CLASS_IID (IActionHandlerRegistry)
DEF_CLASS_IID (IModuleUnloadSink)
DEF_CLASS_IID (IIdleHandlerRegistry)
DEF_CLASS_IID (IProjectManager)

DEF_CLASS_IID (IActionHandler)
DEF_CLASS_IID (IIdleHandler)
DEF_CLASS_IID (IProjectNotification)
DEF_CLASS_IID (IProjectNotification2)
DEF_CLASS_IID (IProjectNotification3)
DEF_CLASS_IID (IProjectStorageNotification)
DEF_CLASS_IID (IProjectEditHook)

DEF_CLASS_IID (IProjectNode)
DEF_CLASS_IID (ITrackNode)
DEF_CLASS_IID (IInsertSlot)
DEF_CLASS_IID (IPluginHolder)
DEF_CLASS_IID (IMidiPart)
DEF_CLASS_IID (INoteEvent)
DEF_CLASS_IID (INoteText)
DEF_CLASS_IID (IEditAnchor)

DEF_CLASS_IID (ISvsPlugin)
DEF_CLASS_IID (ISvsTitleSink)
DEF_CLASS_IID (ISvsSequenceSink)

} // namespace Steinberg
