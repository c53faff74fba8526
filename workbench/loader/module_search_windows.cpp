#include "workbench/loader/module_search.h"

#ifndef NOMINMAX
 #define NOMINMAX
#endif
#include <windows.h>

#include <cstdlib>
#include <filesystem>

namespace Sim {

std::string programFolder ()
{
    std::wstring name (MAX_PATH, L'\0');
    for (;;)
    {
        const DWORD length = GetModuleFileNameW (nullptr, name.data (), static_cast<DWORD> (name.size ()));
        if (length == 0)
            return {};
        if (length < name.size ())
        {
            name.resize (length);
            return std::filesystem::path (name).parent_path ().u8string ();
        }
        name.resize (name.size () * 2);  // cut short: a longer path than the buffer
    }
}

std::vector<std::string> standardVst3Folders ()
{
    const wchar_t* common = _wgetenv (L"COMMONPROGRAMFILES");
    if (!common || !*common)
        return {};
    return {(std::filesystem::path (common) / L"VST3").u8string ()};
}

} // namespace Sim
