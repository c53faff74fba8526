// The built module, loaded with dlopen and driven through a host's whole life
// by the simulated host, with no display.
#include "host/agent_interfaces.h"
#include "host/service_interfaces.h"
#include "workbench/loader/module_loader.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/project.h"
#include "workbench/sim/project_manager.h"
#include "workbench/sim/svs_plugin.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

using namespace Steinberg;

namespace {

const TUID kAgentClass = INLINE_UID (0x13EA3FBB, 0xE8FB4FC5, 0xAF9D5329, 0xA091EB19);

/** The module entered and its factory at hand; every case leaves the module as it found it. */
class LoadedAgentModule : public ::testing::Test
{
protected:
    void SetUp () override
    {
        ASSERT_TRUE (module.ok ()) << module.error ();
        ASSERT_TRUE (module.bundleEntry ());
        factory = module.getPluginFactory ();
        ASSERT_NE (factory, nullptr);
    }
    void TearDown () override
    {
        if (factory)
            factory->release ();
        EXPECT_TRUE (module.bundleExit ());
    }

    IPluginBase* createAgent ()
    {
        void* instance = nullptr;
        EXPECT_EQ (factory->createInstance (kAgentClass, IPluginBase::iid.toTUID (), &instance), kResultOk);
        return static_cast<IPluginBase*> (instance);
    }

    template <class I>
    I* face (FUnknown* object)
    {
        void* out = nullptr;
        if (object->queryInterface (I::iid.toTUID (), &out) != kResultOk)
            return nullptr;
        return static_cast<I*> (out);
    }

    static Sim::LoadedModule module;
    IPluginFactory* factory = nullptr;
};

Sim::LoadedModule LoadedAgentModule::module (CANTORELA_MODULE_PATH);

// On Windows the run script reads the DLL's export table instead.
#ifndef _WIN32
TEST_F (LoadedAgentModule, ExportsOnlyItsEntryPoints)
{
    const std::string command = "nm -D --defined-only '" + module.path () + "' | awk '{print $3}' | sort";
    FILE* pipe = popen (command.c_str (), "r");
    ASSERT_NE (pipe, nullptr);
    std::string symbols;
    char line[256];
    while (fgets (line, sizeof (line), pipe))
        symbols += line;
    pclose (pipe);
    EXPECT_EQ (symbols, "GetPluginFactory\nModuleEntry\nModuleExit\nbundleEntry\nbundleExit\n");
    EXPECT_EQ (module.symbol ("ModuleEntry"), module.symbol ("bundleEntry"));
    EXPECT_EQ (module.symbol ("ModuleExit"), module.symbol ("bundleExit"));
}
#endif

TEST_F (LoadedAgentModule, FactoryOffersOneServiceClass)
{
    PFactoryInfo info {};
    ASSERT_EQ (factory->getFactoryInfo (&info), kResultOk);
    EXPECT_STREQ (info.vendor, "Zelmor Corporation");
    EXPECT_STREQ (info.email, "");
    EXPECT_EQ (info.flags, 24);
    ASSERT_EQ (factory->countClasses (), 1);

    auto* factory2 = face<IPluginFactory2> (factory);
    ASSERT_NE (factory2, nullptr);
    PClassInfo2 cls {};
    ASSERT_EQ (factory2->getClassInfo2 (0, &cls), kResultOk);
    factory2->release ();
    EXPECT_EQ (std::memcmp (cls.cid, kAgentClass, 16), 0);
    EXPECT_EQ (cls.cardinality, 1);
    EXPECT_STREQ (cls.category, "Service");
    EXPECT_STREQ (cls.name, "Cantorela Beta");
    EXPECT_STREQ (cls.vendor, "");
    EXPECT_STREQ (cls.version, "1.1.3");
    EXPECT_STREQ (cls.sdkVersion, "4.2");
    EXPECT_EQ (cls.classFlags, 0u);
}

TEST_F (LoadedAgentModule, FactoryIsSharedWhileHeldAndRebuiltAfterwards)
{
    IPluginFactory* second = module.getPluginFactory ();
    EXPECT_EQ (second, factory);
    second->release ();
    factory->release ();
    factory = module.getPluginFactory ();  // a fresh one, with the same single class
    ASSERT_NE (factory, nullptr);
    EXPECT_EQ (factory->countClasses (), 1);
}

TEST_F (LoadedAgentModule, UnknownInterfaceDestroysTheNewInstance)
{
    void* instance = reinterpret_cast<void*> (1);
    const TUID unknown = INLINE_UID (1, 2, 3, 4);
    EXPECT_NE (factory->createInstance (kAgentClass, unknown, &instance), kResultOk);
    EXPECT_EQ (instance, nullptr);
    EXPECT_NE (factory->createInstance (unknown, IPluginBase::iid.toTUID (), &instance), kResultOk);
}

TEST_F (LoadedAgentModule, QueryTableHandsOutEveryFaceOnce)
{
    IPluginBase* agent = createAgent ();
    ASSERT_NE (agent, nullptr);
    const FUID faces[] = {IPluginBase::iid, IActionHandler::iid, IIdleHandler::iid, IProjectNotification::iid,
                          IProjectNotification2::iid, IProjectNotification3::iid,
                          IProjectStorageNotification::iid, IProjectEditHook::iid, FUnknown::iid};
    for (const auto& iid : faces)
    {
        void* out = nullptr;
        EXPECT_EQ (agent->queryInterface (iid.toTUID (), &out), kResultOk);
        ASSERT_NE (out, nullptr);
        static_cast<FUnknown*> (out)->release ();
    }
    // The three notification identifiers share one face.
    auto* n1 = face<IProjectNotification> (agent);
    auto* n3 = face<IProjectNotification3> (agent);
    EXPECT_EQ (static_cast<void*> (n1), static_cast<void*> (static_cast<IProjectNotification*> (n3)));
    n1->release ();
    n3->release ();

    void* out = nullptr;
    const TUID unknown = INLINE_UID (0xDEADBEEF, 0, 0, 1);
    EXPECT_NE (agent->queryInterface (unknown, &out), kResultOk);
    EXPECT_EQ (agent->release (), 0u);
}

TEST_F (LoadedAgentModule, InitializeWithoutServices)
{
    IPluginBase* agent = createAgent ();
    EXPECT_EQ (agent->initialize (nullptr), kResultFalse);
    {
        Sim::ProjectManager notServices;  // answers no IHostServices
        EXPECT_EQ (agent->initialize (static_cast<IProjectManager*> (&notServices)), kResultFalse);
    }
    EXPECT_EQ (agent->terminate (), kResultOk);
    EXPECT_EQ (agent->release (), 0u);
}

TEST_F (LoadedAgentModule, InitializeWithServicesOnlyRegistersNothing)
{
    Sim::CallLog::clear ();
    {
        Sim::HostServices host;
        host.servicesOnly ();
        IPluginBase* agent = createAgent ();
        EXPECT_EQ (agent->initialize (host.context ()), kResultOk);
        EXPECT_TRUE (host.actionRegistry ().added ().empty ());
        EXPECT_TRUE (host.idleRegistry ().added ().empty ());
        EXPECT_EQ (agent->terminate (), kResultOk);
        EXPECT_EQ (agent->release (), 0u);
    }
    EXPECT_EQ (Sim::Tracker::report (), "");
}

TEST_F (LoadedAgentModule, InitializeTwiceRegistersTwiceAndTerminateKeepsItsOrder)
{
    Sim::Tracker::reset ();
    Sim::CallLog::clear ();
    {
        Sim::HostServices first;
        Sim::HostServices second;
        IPluginBase* agent = createAgent ();
        ASSERT_EQ (agent->initialize (first.context ()), kResultOk);
        ASSERT_EQ (agent->initialize (second.context ()), kResultOk);
        EXPECT_EQ (first.actionRegistry ().added ().size (), 1u);
        EXPECT_EQ (second.actionRegistry ().added ().size (), 1u);
        EXPECT_EQ (second.idleRegistry ().added ().size (), 1u);

        Sim::CallLog::clear ();
        EXPECT_EQ (agent->terminate (), kResultOk);
        const std::vector<std::string> order = Sim::CallLog::only (
            {"IProjectManager::removeNotification", "IIdleHandlerRegistry::removeHandler",
             "IModuleUnloadSink::moduleTerminating", "IActionHandlerRegistry::removeHandler"});
        EXPECT_EQ (order, (std::vector<std::string> {"IProjectManager::removeNotification",
                                                     "IIdleHandlerRegistry::removeHandler",
                                                     "IModuleUnloadSink::moduleTerminating",
                                                     "IActionHandlerRegistry::removeHandler"}));
        ASSERT_EQ (second.unloadSink ().handles ().size (), 1u);
        EXPECT_EQ (second.unloadSink ().handles ()[0], module.nativeHandle ());
        EXPECT_EQ (agent->release (), 0u);
        // The first host's services and project manager went back when the second came.
        EXPECT_EQ (first.refCount (), first.expectedCount ());
    }
    EXPECT_EQ (Sim::Tracker::report (), "");
}

TEST_F (LoadedAgentModule, AHostsWholeLifeLeavesEveryCountWhereItStarted)
{
    Sim::Tracker::reset ();
    {
        Sim::HostServices host;
        auto& manager = host.projectManager ();
        Sim::Project& project = manager.createProject ("Song");
        auto& vocals = project.root ().addInstrumentTrack ("Vocals");
        Sim::SvsPlugin synth ("synth");
        vocals.addSlot ("Slot 1", synth.unknown ());
        auto& part = vocals.addPart (0.0, 8.0);
        part.addNote (1.0, 2.0, 60, "hello");
        part.addNote (2.0, 3.0, 62);

        IPluginBase* agent = createAgent ();
        ASSERT_EQ (agent->initialize (host.context ()), kResultOk);
        ASSERT_EQ (host.idleRegistry ().handlers ().size (), 1u);
        manager.addProject (project);
        manager.activate (project);
        EXPECT_EQ (synth.setHostCalls (), 1);
        EXPECT_FALSE (synth.notes ().empty ());
        EXPECT_EQ (synth.title (), "Cantorela Beta Agent: Song - Slot 1 - Vocals");
        for (int turn = 0; turn < 3; ++turn)
            host.idleRegistry ().idle ();

        EXPECT_EQ (agent->terminate (), kResultOk);
        EXPECT_TRUE (host.idleRegistry ().handlers ().empty ());
        EXPECT_TRUE (host.actionRegistry ().handlers ().empty ());
        EXPECT_TRUE (manager.receivers ().empty ());
        EXPECT_TRUE (project.storageReceivers ().empty ());
        EXPECT_EQ (agent->release (), 0u);
        EXPECT_EQ (synth.host (), nullptr);  // detached when the agent went
        manager.clearHistories ();
    }
    EXPECT_EQ (Sim::Tracker::report (), "");
}

} // namespace
