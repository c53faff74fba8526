// GetPluginFactory and the one class that the module offers.
#include "agent/agent.h"
#include "agent/module_info.h"
#include "agent/plugin_factory.h"

#include <cstring>
#include <mutex>

namespace Kt {
namespace {

const Steinberg::PFactoryInfo& factoryInfo ()
{
    static const Steinberg::PFactoryInfo info (ModuleInfo::vendor, ModuleInfo::url, ModuleInfo::email,
                                               ModuleInfo::flags);
    return info;
}

Steinberg::PClassInfo2 classInfo;
std::once_flag classInfoFilled;

// Filled once per process, however many factories come and go.
void fillClassInfo ()
{
    classInfo = Steinberg::PClassInfo2 {};
    using namespace ModuleInfo;
    static const Steinberg::TUID cid = INLINE_UID (classId[0], classId[1], classId[2], classId[3]);
    std::memcpy (classInfo.cid, cid, sizeof (Steinberg::TUID));
    classInfo.cardinality = cardinality;
    std::strncpy (classInfo.category, category, sizeof (classInfo.category) - 1);
    std::strncpy (classInfo.name, name, sizeof (classInfo.name) - 1);
    classInfo.classFlags = classFlags;
    std::strncpy (classInfo.version, version, sizeof (classInfo.version) - 1);
    std::strncpy (classInfo.sdkVersion, sdkVersion, sizeof (classInfo.sdkVersion) - 1);
}

} // namespace

static_assert (sizeof (Steinberg::PClassInfo2) == 440, "the class record is 440 bytes");

Steinberg::FUnknown* createAgentInstance (void*)
{
    auto* agent = new CantorelaBetaAgent ();
    return static_cast<Steinberg::IPluginBase*> (agent);
}

} // namespace Kt

extern "C" SMTG_EXPORT_SYMBOL Steinberg::IPluginFactory* PLUGIN_API GetPluginFactory ()
{
    using namespace Steinberg;
    if (gPluginFactory)
    {
        gPluginFactory->addRef ();
        return gPluginFactory;
    }
    auto* factory = new CPluginFactory (Kt::factoryInfo ());
    gPluginFactory = factory;
    std::call_once (Kt::classInfoFilled, Kt::fillClassInfo);
    factory->registerClass (&Kt::classInfo, Kt::createAgentInstance, nullptr);
    return gPluginFactory;
}
