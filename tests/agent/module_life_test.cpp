// The built module, loaded with dlopen and met as a host meets it: its exports, its
// factory, its query table, and initialize and terminate. The whole life of an agent
// with a project is in tests/hardening/module_cycles_test.cpp, two hundred times over.
#include "host/agent_interfaces.h"
#include "workbench/loader/module_loader.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

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

TEST_F (LoadedAgentModule, QueryTableHandsOutEveryFaceOnceAndNothingElse)
{
    // An unknown interface or class gives no instance, and the new one goes at once.
    void* instance = reinterpret_cast<void*> (1);
    const TUID unknown = INLINE_UID (0xDEADBEEF, 0, 0, 1);
    EXPECT_NE (factory->createInstance (kAgentClass, unknown, &instance), kResultOk);
    EXPECT_EQ (instance, nullptr);
    EXPECT_NE (factory->createInstance (unknown, IPluginBase::iid.toTUID (), &instance), kResultOk);

    IPluginBase* agent = createAgent ();
    ASSERT_NE (agent, nullptr);
    const FUID faces[] = {IPluginBase::iid, IActionHandler::iid, IIdleHandler::iid, IProjectNotification::iid,
                          IProjectNotification2::iid, IProjectNotification3::iid,
                          IProjectStorageNotification::iid, IProjectEditHook::iid, FUnknown::iid};
    std::vector<void*> given;
    for (const auto& iid : faces)
    {
        void* out = nullptr;
        EXPECT_EQ (agent->queryInterface (iid.toTUID (), &out), kResultOk);
        ASSERT_NE (out, nullptr);
        static_cast<FUnknown*> (out)->release ();
        given.push_back (out);
    }
    // The three notification identifiers share one face.
    EXPECT_EQ (given[3], given[5]);
    EXPECT_EQ (given[4], given[5]);
    void* out = nullptr;
    EXPECT_NE (agent->queryInterface (unknown, &out), kResultOk);
    EXPECT_EQ (agent->release (), 0u);
}

TEST_F (LoadedAgentModule, InitializeWithoutServicesOrWithServicesOnlyRegistersNothing)
{
    Sim::Tracker::reset ();
    {
        Sim::ProjectManager notServices;  // answers no IHostServices
        Sim::HostServices bare;
        bare.servicesOnly ();
        IPluginBase* agent = createAgent ();
        EXPECT_EQ (agent->initialize (nullptr), kResultFalse);
        EXPECT_EQ (agent->initialize (static_cast<IProjectManager*> (&notServices)), kResultFalse);
        EXPECT_EQ (agent->initialize (bare.context ()), kResultOk);
        EXPECT_TRUE (bare.actionRegistry ().added ().empty ());
        EXPECT_TRUE (bare.idleRegistry ().added ().empty ());
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
        const std::vector<std::string> order {"IProjectManager::removeNotification",
                                              "IIdleHandlerRegistry::removeHandler",
                                              "IModuleUnloadSink::moduleTerminating",
                                              "IActionHandlerRegistry::removeHandler"};
        EXPECT_EQ (Sim::CallLog::only ({order[0].c_str (), order[1].c_str (), order[2].c_str (), order[3].c_str ()}),
                   order);
        ASSERT_EQ (second.unloadSink ().handles ().size (), 1u);
        EXPECT_EQ (second.unloadSink ().handles ()[0], module.nativeHandle ());
        EXPECT_EQ (agent->release (), 0u);
        // The first host's services and project manager went back when the second came.
        EXPECT_EQ (first.refCount (), first.expectedCount ());
    }
    EXPECT_EQ (Sim::Tracker::report (), "");
}

} // namespace
