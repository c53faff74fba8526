// The agent's SVS host objects by the plug-in they serve, for one pass: a
// project with many synthesisers finds each one's host without searching the
// whole list for every plug-in.
#pragma once

#include "svs/svs_host_list.h"

#include <unordered_map>

namespace Zelmor {

class HostIndex
{
public:
    explicit HostIndex (SVSHostList& list)
    {
        for (auto& host : list.hosts)
            add (*host);
    }

    /** As a search of the list from its start would give: the first host that serves `plugin`, or null. */
    SVSHostImpl* find (Steinberg::ISvsPlugin* plugin) const
    {
        const auto found = byPlugin.find (plugin);
        return found == byPlugin.end () ? nullptr : found->second;
    }

    /** For a host appended to the list: an earlier host of the same plug-in keeps its place. */
    void add (SVSHostImpl& host) { byPlugin.emplace (host.getPlugin (), &host); }

private:
    std::unordered_map<Steinberg::ISvsPlugin*, SVSHostImpl*> byPlugin;
};

} // namespace Zelmor
