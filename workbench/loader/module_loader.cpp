#include "workbench/loader/module_loader.h"

#include <cstring>

namespace Sim {

LoadedModule::~LoadedModule () { unload (); }

Steinberg::IPluginFactory* LoadedModule::getPluginFactory () { return factory ? factory () : nullptr; }

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

std::string LoadedModule::moduleInBundle (const std::string& path, const char* architecture, const char* suffix)
{
    std::string bundle = path;
    while (bundle.size () > 1 && (bundle.back () == '/' || bundle.back () == '\\'))
        bundle.pop_back ();
    const auto slash = bundle.find_last_of ("/\\");
    std::string name = bundle.substr (slash == std::string::npos ? 0 : slash + 1);
    const std::string vst3 = ".vst3";
    if (name.size () > vst3.size () && name.compare (name.size () - vst3.size (), vst3.size (), vst3) == 0)
        name.resize (name.size () - vst3.size ());
    return bundle + "/Contents/" + architecture + "/" + name + suffix;
}

} // namespace Sim
