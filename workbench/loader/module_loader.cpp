#include "workbench/loader/module_loader.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <cstring>

namespace Sim {

std::string LoadedModule::resolveSharedObject (const std::string& path)
{
    struct stat info {};
    if (stat (path.c_str (), &info) != 0 || !S_ISDIR (info.st_mode))
        return path;
    std::string bundle = path;
    while (bundle.size () > 1 && bundle.back () == '/')
        bundle.pop_back ();
    const auto slash = bundle.rfind ('/');
    std::string name = bundle.substr (slash == std::string::npos ? 0 : slash + 1);
    const std::string suffix = ".vst3";
    if (name.size () > suffix.size () && name.compare (name.size () - suffix.size (), suffix.size (), suffix) == 0)
        name.resize (name.size () - suffix.size ());
    return bundle + "/Contents/x86_64-linux/" + name + ".so";
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
    entry = reinterpret_cast<bool (*) (void*)> (dlsym (handle, "ModuleEntry"));
    exit = reinterpret_cast<bool (*) ()> (dlsym (handle, "ModuleExit"));
    factory = reinterpret_cast<Steinberg::IPluginFactory* (*) ()> (dlsym (handle, "GetPluginFactory"));
    if (!entry || !exit || !factory)
        error_ = "module " + soPath + " lacks ModuleEntry, ModuleExit or GetPluginFactory";
}

LoadedModule::~LoadedModule () { unload (); }

bool LoadedModule::bundleEntry () { return entry && entry (handle); }

bool LoadedModule::bundleExit () { return exit && exit (); }

Steinberg::IPluginFactory* LoadedModule::getPluginFactory () { return factory ? factory () : nullptr; }

void* LoadedModule::symbol (const char* name) const { return handle ? dlsym (handle, name) : nullptr; }

Steinberg::IPluginBase* LoadedModule::createService (Steinberg::IPluginFactory* pluginFactory)
{
    if (!pluginFactory)
        return nullptr;
    for (Steinberg::int32 index = 0; index < pluginFactory->countClasses (); ++index)
    {
        Steinberg::PClassInfo info {};
        if (pluginFactory->getClassInfo (index, &info) != Steinberg::kResultOk)
            continue;
        if (std::strncmp (info.category, "Service", sizeof (info.category)) != 0)
            continue;
        void* instance = nullptr;
        if (pluginFactory->createInstance (info.cid, Steinberg::IPluginBase::iid.toTUID (), &instance)
                == Steinberg::kResultOk
            && instance)
            return static_cast<Steinberg::IPluginBase*> (instance);
    }
    return nullptr;
}

void LoadedModule::unload ()
{
    if (handle)
        dlclose (handle);
    handle = nullptr;
    entry = nullptr;
    exit = nullptr;
    factory = nullptr;
}

} // namespace Sim
