#include "svs/svs_host_list.h"

namespace Zelmor {

SVSHostList::~SVSHostList ()
{
    // std::vector gives no order for destroying its elements; ours is fixed.
    while (!hosts.empty ())
        hosts.pop_back ();
}

SVSHostImpl* findHost (SVSHostList& list, Steinberg::ISvsPlugin* plugin)
{
    for (auto& host : list.hosts)
        if (host->getPlugin () == plugin)
            return host.get ();
    return nullptr;
}

} // namespace Zelmor
