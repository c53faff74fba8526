// GetPluginFactory and the one class that the module offers.
#include "agent/agent.h"
#include "agent/plugin_factory.h"

#include <cstring>
#include <mutex>

namespace Kt {
namespace {

const Steinberg::PFactoryInfo& factoryInfo ()
{
    static const Steinberg::PFactoryInfo info ("Zelmor Corporation", "https://www.zelmor.example/cantorela",
                                               "", 24 /* kComponentNonDiscardable | kUnicode */);
    return info;
}

Steinberg::PClassInfo2 classInfo;
std::once_flag classInfoFilled;

// Filled once per process, however many factories come and go.
void fillClassInfo ()
{
    classInfo = Steinberg::PClassInfo2 {};
    static const Steinberg::TUID cid = INLINE_UID (0x13EA3FBB, 0xE8FB4FC5, 0xAF9D5329, 0xA091EB19);
    std::memcpy (classInfo.cid, cid, sizeof (Steinberg::TUID));
    classInfo.cardinality = 1;
    std::strncpy (classInfo.category, "Service", sizeof (classInfo.category) - 1);
    std::strncpy (classInfo.name, "Cantorela Beta", sizeof (classInfo.name) - 1);
    classInfo.classFlags = 0;
    std::strncpy (classInfo.version, "1.1.3", sizeof (classInfo.version) - 1);
    std::strncpy (classInfo.sdkVersion, "4.2", sizeof (classInfo.sdkVersion) - 1);
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
