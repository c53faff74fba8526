#include "workbench/loader/module_loader.h"

#ifndef NOMINMAX
 #define NOMINMAX
#endif
#include <windows.h>

namespace Sim {
namespace {

std::wstring wide (const std::string& text)
{
    const int units = MultiByteToWideChar (CP_UTF8, 0, text.data (), static_cast<int> (text.size ()), nullptr, 0);
    std::wstring out (static_cast<std::size_t> (units > 0 ? units : 0), L'\0');
    if (units > 0)
        MultiByteToWideChar (CP_UTF8, 0, text.data (), static_cast<int> (text.size ()), out.data (), units);
    return out;
}

std::string lastErrorText ()
{
    const DWORD code = GetLastError ();
    char* message = nullptr;
    FormatMessageA (FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                    nullptr, code, 0, reinterpret_cast<LPSTR> (&message), 0, nullptr);
    std::string text = message ? message : "error " + std::to_string (code);
    LocalFree (message);
    while (!text.empty () && (text.back () == '\n' || text.back () == '\r' || text.back () == ' '))
        text.pop_back ();
    return text;
}

} // namespace

std::string LoadedModule::resolveSharedObject (const std::string& path)
{
    const DWORD attributes = GetFileAttributesW (wide (path).c_str ());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        return path;
    return moduleInBundle (path, "x86_64-win", ".vst3");
}

LoadedModule::LoadedModule (const std::string& path) : soPath (resolveSharedObject (path))
{
    handle = LoadLibraryW (wide (soPath).c_str ());
    if (!handle)
    {
        error_ = "cannot load module " + soPath + ": " + lastErrorText ();
        return;
    }
    const auto module = static_cast<HMODULE> (handle);
    entryPoint = reinterpret_cast<void*> (GetProcAddress (module, "InitDll"));
    exit = reinterpret_cast<bool (*) ()> (reinterpret_cast<void*> (GetProcAddress (module, "ExitDll")));
    factory = reinterpret_cast<Steinberg::IPluginFactory* (*) ()> (
        reinterpret_cast<void*> (GetProcAddress (module, "GetPluginFactory")));
    if (!entryPoint || !exit || !factory)
        error_ = "module " + soPath + " lacks InitDll, ExitDll or GetPluginFactory";
}

bool LoadedModule::bundleEntry () { return entryPoint && reinterpret_cast<bool (*) ()> (entryPoint) (); }

bool LoadedModule::bundleExit () { return exit && exit (); }

void* LoadedModule::symbol (const char* name) const
{
    return handle ? reinterpret_cast<void*> (GetProcAddress (static_cast<HMODULE> (handle), name)) : nullptr;
}

void LoadedModule::unload ()
{
    if (handle)
        FreeLibrary (static_cast<HMODULE> (handle));
    handle = nullptr;
    entryPoint = nullptr;
    exit = nullptr;
    factory = nullptr;
}

} // namespace Sim
