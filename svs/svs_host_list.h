// The agent's SVS host objects, with the host product's three strings.
#pragma once

#include "svs/svs_host.h"

#include <memory>
#include <string>
#include <vector>

namespace Zelmor {

// The list alone owns its hosts: they are deleted outright, whatever reference
// counts the plug-ins still hold on them.
struct SVSHostDeleter
{
    void operator() (SVSHostImpl* host) const { delete host; }
};

using SVSHostPtr = std::unique_ptr<SVSHostImpl, SVSHostDeleter>;

struct SVSHostList
{
    SVSHostList () = default;
    SVSHostList (const SVSHostList&) = delete;
    SVSHostList& operator= (const SVSHostList&) = delete;
    // Hosts go from last to first.
    ~SVSHostList ();

    std::vector<SVSHostPtr> hosts;
    std::string productName;
    std::string productVersion;
    std::string productVendor;
};

/** The first host that serves `plugin`, by pointer, or null. */
SVSHostImpl* findHost (SVSHostList& list, Steinberg::ISvsPlugin* plugin);

} // namespace Zelmor
