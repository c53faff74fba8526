// The module's Windows face. The loader hands the module its instance in DllMain,
// and the toolkit registers its window classes under it. A Windows host calls
// InitDll and ExitDll around the factory where others call bundleEntry and
// bundleExit; they carry no handle, so the module finds its own.
#include "agent/module_entry.h"

#include <juce_core/juce_core.h>

#include "pluginterfaces/base/fplatform.h"

#ifndef NOMINMAX
 #define NOMINMAX
#endif
#include <windows.h>

namespace {

HMODULE ownModule ()
{
    HMODULE module = nullptr;
    // Not counted: the host's LoadLibrary is what keeps the module in the process.
    GetModuleHandleExW (GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                        reinterpret_cast<LPCWSTR> (&ownModule), &module);
    return module;
}

} // namespace

extern "C" {

BOOL WINAPI DllMain (HINSTANCE instance, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH)
        juce::Process::setCurrentModuleInstanceHandle (instance);
    return TRUE;
}

SMTG_EXPORT_SYMBOL bool InitDll () { return bundleEntry (ownModule ()); }

SMTG_EXPORT_SYMBOL bool ExitDll () { return bundleExit (); }

} // extern "C"
