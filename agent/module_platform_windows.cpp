#include "agent/module_platform.h"

#ifndef NOMINMAX
 #define NOMINMAX
#endif
#include <windows.h>

#include <string>

namespace Kt {

// The handle is the module's own HMODULE (InitDll finds it); without one, the module
// asks the loader which module holds this code.
bool copyLoaderModulePath (void* handle, char* buffer, std::size_t size)
{
    if (!buffer || size == 0)
        return false;
    HMODULE module = static_cast<HMODULE> (handle);
    if (!module
        && !GetModuleHandleExW (GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                reinterpret_cast<LPCWSTR> (&copyLoaderModulePath), &module))
        return false;
    // Long paths reach 32767 units; the loader answers with the whole path or says it was cut.
    std::wstring wide (32768, L'\0');
    const DWORD length = GetModuleFileNameW (module, wide.data (), static_cast<DWORD> (wide.size ()));
    if (length == 0 || length >= wide.size ())
        return false;
    const int bytes = WideCharToMultiByte (CP_UTF8, 0, wide.data (), static_cast<int> (length), nullptr, 0,
                                           nullptr, nullptr);
    if (bytes <= 0)
        return false;
    std::string path (static_cast<std::size_t> (bytes), '\0');
    WideCharToMultiByte (CP_UTF8, 0, wide.data (), static_cast<int> (length), path.data (), bytes, nullptr, nullptr);
    return copyTruncated (bundleOf (path, "\\/"), buffer, size);
}

} // namespace Kt
