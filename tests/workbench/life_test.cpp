// A host's whole life with an agent that follows the rules: the simulated host
// must end balanced and log the calls in the agent's order.
#include "workbench/sim/agent_driver.h"
#include "workbench/sim/tracker.h"

#include "pluginterfaces/base/ipluginbase.h"

#include <gtest/gtest.h>

namespace {

using namespace Steinberg;

template <class I>
I* service (IHostServices* s)
{
    void* out = nullptr;
    return s->getService (I::iid, &out) == kResultOk ? static_cast<I*> (out) : nullptr;
}

struct RuleAbidingAgent : IPluginBase, IIdleHandler, IProjectNotification3
{
    IHostServices* services = nullptr;
    IProjectManager* projects = nullptr;
    int idles = 0;

    tresult PLUGIN_API queryInterface (const TUID iid, void** obj) override
    {
        if (FUnknownPrivate::iidEqual (iid, IPluginBase::iid))
            *obj = static_cast<IPluginBase*> (this);
        else if (FUnknownPrivate::iidEqual (iid, IProjectNotification3::iid))
            *obj = static_cast<IProjectNotification3*> (this);
        else
            return kNoInterface;
        return kResultOk;
    }
    uint32 PLUGIN_API addRef () override { return 1; }
    uint32 PLUGIN_API release () override { return 1; }

    tresult PLUGIN_API initialize (FUnknown* context) override
    {
        context->queryInterface (IHostServices::iid, reinterpret_cast<void**> (&services));
        IHostProductInfo* info = nullptr;
        if (services->queryInterface (IHostProductInfo::iid, reinterpret_cast<void**> (&info)) == kResultOk)
        {
            info->release ();
            info->getProductString1 ();
            info->release ();
        }
        if (auto* idle = service<IIdleHandlerRegistry> (services))
        {
            idle->addHandler (this);
            idle->release ();
        }
        projects = service<IProjectManager> (services);
        projects->addNotification (this);
        return kResultOk;
    }
    tresult PLUGIN_API terminate () override
    {
        projects->removeNotification (this);
        for (int32 i = 0; i < projects->getProjectCount (); ++i)
            projects->getProject (i)->removeStorageNotification (nullptr);
        projects->release ();
        auto* idle = service<IIdleHandlerRegistry> (services);
        idle->removeHandler (this);
        auto* unload = service<IModuleUnloadSink> (services);
        unload->moduleTerminating (nullptr);
        unload->release ();
        idle->release ();
        services->release ();
        return kResultOk;
    }
    void PLUGIN_API onIdle () override { ++idles; }
    void PLUGIN_API onProjectActivated (IHostProject* p) override
    {
        IProjectNode* root = nullptr;
        p->queryInterface (IProjectNode::iid, reinterpret_cast<void**> (&root));
        INodeIterator* it = root->getChildren ();
        while (!it->isDone ())
            if (IProjectNode* child = it->next ())
                p->getContext (child)->release ();
        it->release ();
        root->release ();
    }
    void PLUGIN_API onProjectDeactivated () override {}
    void PLUGIN_API onProjectAdded (IHostProject*) override {}
    void PLUGIN_API onProjectRemoved (IHostProject*) override {}
    int32 PLUGIN_API onProjectQuery () override { return 0; }
    void PLUGIN_API onProjectNoOp () override {}
    void PLUGIN_API onProjectRefresh (IHostProject*) override {}
};

TEST (HostLife, RuleAbidingAgentLeavesTheHostBalanced)
{
    Sim::Tracker::reset ();
    Sim::CallLog::clear ();
    {
        Sim::HostServices host;
        RuleAbidingAgent agent;
        Sim::AgentDriver driver (host, static_cast<IPluginBase*> (&agent));
        ASSERT_EQ (driver.initialize (), kResultOk);
        auto& song = driver.openProject ("Song");
        song.root ().addInstrumentTrack ("Vocals");
        host.projectManager ().activate (song);
        driver.idle (2);
        EXPECT_EQ (agent.idles, 2);
        EXPECT_EQ (driver.terminate (), kResultOk);
        EXPECT_TRUE (host.idleRegistry ().handlers ().empty ());
        EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();
    }
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();
    EXPECT_EQ (Sim::CallLog::only ({"IIdleHandlerRegistry::removeHandler", "IModuleUnloadSink::moduleTerminating",
                                    "IProjectManager::removeNotification", "IHostProject::removeStorageNotification"}),
               (std::vector<std::string> {"IProjectManager::removeNotification",
                                          "IHostProject::removeStorageNotification",
                                          "IIdleHandlerRegistry::removeHandler",
                                          "IModuleUnloadSink::moduleTerminating"}));
    EXPECT_GT (Sim::CallLog::count ("INodeIterator::next"), 0);
}

} // namespace
