// The module's process-wide bookkeeping behind bundleEntry and bundleExit.
#pragma once

#include <cstdint>
#include <vector>

namespace Kt {

struct ModuleState
{
    int32_t moduleRefCount = 0;          ///< up for each accepted entry, down for each exit
    std::vector<void*> moduleBundleRefs; ///< every handle retained, duplicates included, in order
    void* moduleHandle = nullptr;        ///< the first handle; kept for the life of the process
    char modulePath[2048] = {};          ///< written once, from the first handle
};

ModuleState& moduleState ();

} // namespace Kt

extern "C" {
bool bundleEntry (void* bundle);
bool bundleExit ();
}
