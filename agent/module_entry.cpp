#include "agent/module_entry.h"

#include "agent/module_platform.h"
#include "pluginterfaces/base/fplatform.h"

namespace Kt {

ModuleState& moduleState ()
{
    static ModuleState state;
    return state;
}

} // namespace Kt

extern "C" {

SMTG_EXPORT_SYMBOL bool bundleEntry (void* bundle)
{
    if (!bundle)
        return true;
    auto& state = Kt::moduleState ();
    const auto& platform = Kt::modulePlatform ();
    ++state.moduleRefCount;
    platform.retain (bundle);
    state.moduleBundleRefs.push_back (bundle);
    if (state.moduleHandle)
        return true;
    state.moduleHandle = bundle;
    platform.copyPath (bundle, state.modulePath, sizeof (state.modulePath));
    return true;
}

SMTG_EXPORT_SYMBOL bool bundleExit ()
{
    auto& state = Kt::moduleState ();
    const int32_t old = state.moduleRefCount--;
    if (old != 1)
        return old >= 1;
    // Nobody says which entry an exit belongs to, so every handle waits for the last one.
    const auto& platform = Kt::modulePlatform ();
    for (void* bundle : state.moduleBundleRefs)
        platform.release (bundle);
    state.moduleBundleRefs.clear ();
    return true;
}

// The names a Linux host looks for.
SMTG_EXPORT_SYMBOL bool ModuleEntry (void* sharedLibraryHandle) __attribute__ ((alias ("bundleEntry")));
SMTG_EXPORT_SYMBOL bool ModuleExit () __attribute__ ((alias ("bundleExit")));

} // extern "C"
