// Loads a module bundle the way a host does: dlopen, the entry point with the
// loader's handle, the factory, and, at the end, the exit and dlclose; on
// Windows LoadLibrary, InitDll, the factory, ExitDll and FreeLibrary.
#pragma once

#include "pluginterfaces/base/ipluginbase.h"

#include <string>

namespace Sim {

class LoadedModule
{
public:
    /** Opens `path` (the module file or a .vst3 bundle folder). Check ok() and error(). */
    explicit LoadedModule (const std::string& path);
    ~LoadedModule ();

    LoadedModule (const LoadedModule&) = delete;
    LoadedModule& operator= (const LoadedModule&) = delete;

    bool ok () const { return handle != nullptr && error_.empty (); }
    const std::string& error () const { return error_; }
    const std::string& path () const { return soPath; }
    void* nativeHandle () const { return handle; }

    // The exported entry points, called as a host calls them.
    bool bundleEntry ();
    bool bundleExit ();
    /** One new reference, or null. */
    Steinberg::IPluginFactory* getPluginFactory ();
    /** Looks up any exported symbol (for tests). */
    void* symbol (const char* name) const;

    /** Finds the one class of category "Service" and creates it, asking for IPluginBase. */
    Steinberg::IPluginBase* createService (Steinberg::IPluginFactory* factory);

    /** Ends the module's life: dlclose or FreeLibrary. Called by the destructor if not before. */
    void unload ();

    /** The module file inside a bundle folder, or `path` itself if it is a file. */
    static std::string resolveSharedObject (const std::string& path);

private:
    /** <bundle>/Contents/<architecture>/<bundle's name><suffix>. */
    static std::string moduleInBundle (const std::string& path, const char* architecture, const char* suffix);

    std::string soPath;
    std::string error_;
    void* handle = nullptr;
    void* entryPoint = nullptr; // ModuleEntry, given the loader's handle; on Windows InitDll, given none
    bool (*exit) () = nullptr;
    Steinberg::IPluginFactory* (*factory) () = nullptr;
};

} // namespace Sim
