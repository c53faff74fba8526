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

// A Windows host knows the entry points as InitDll and ExitDll (dll_main.cpp); there
// these two stay inside the module.
#if SMTG_OS_WINDOWS
 #define CANTORELA_BUNDLE_ENTRY
#else
 #define CANTORELA_BUNDLE_ENTRY SMTG_EXPORT_SYMBOL
#endif

extern "C" {

CANTORELA_BUNDLE_ENTRY bool bundleEntry (void* bundle)
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

CANTORELA_BUNDLE_ENTRY bool bundleExit ()
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

#if !SMTG_OS_WINDOWS
// The names a Linux host looks for.
SMTG_EXPORT_SYMBOL bool ModuleEntry (void* sharedLibraryHandle) __attribute__ ((alias ("bundleEntry")));
SMTG_EXPORT_SYMBOL bool ModuleExit () __attribute__ ((alias ("bundleExit")));
#endif

} // extern "C"
