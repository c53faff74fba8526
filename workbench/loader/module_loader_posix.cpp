#include "workbench/loader/module_loader.h"

#include <dlfcn.h>
#include <sys/stat.h>

namespace Sim {

std::string LoadedModule::resolveSharedObject (const std::string& path)
{
    struct stat info {};
    if (stat (path.c_str (), &info) != 0 || !S_ISDIR (info.st_mode))
        return path;
    return moduleInBundle (path, "x86_64-linux", ".so");
}

LoadedModule::LoadedModule (const std::string& path) : soPath (resolveSharedObject (path))
{
    handle = dlopen (soPath.c_str (), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
    {
        const char* message = dlerror ();
        error_ = "cannot load module " + soPath + ": " + (message ? message : "unknown error");
        return;
    }
    entryPoint = dlsym (handle, "ModuleEntry");
    exit = reinterpret_cast<bool (*) ()> (dlsym (handle, "ModuleExit"));
    factory = reinterpret_cast<Steinberg::IPluginFactory* (*) ()> (dlsym (handle, "GetPluginFactory"));
    if (!entryPoint || !exit || !factory)
        error_ = "module " + soPath + " lacks ModuleEntry, ModuleExit or GetPluginFactory";
}

bool LoadedModule::bundleEntry ()
{
    return entryPoint && reinterpret_cast<bool (*) (void*)> (entryPoint) (handle);
}

bool LoadedModule::bundleExit () { return exit && exit (); }

void* LoadedModule::symbol (const char* name) const { return handle ? dlsym (handle, name) : nullptr; }

void LoadedModule::unload ()
{
    if (handle)
        dlclose (handle);
    handle = nullptr;
    entryPoint = nullptr;
    exit = nullptr;
    factory = nullptr;
}

} // namespace Sim
