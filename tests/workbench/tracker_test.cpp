#include "workbench/sim/host_services.h"
#include "workbench/sim/project.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

namespace {

using namespace Steinberg;

class TrackerTest : public ::testing::Test
{
protected:
    void SetUp () override { Sim::Tracker::reset (); }
    void TearDown () override { Sim::Tracker::reset (); }
};

TEST_F (TrackerTest, LeakAndOverReleaseAreReportedByName)
{
    Sim::Project project ("Song");
    auto& track = project.root ().addInstrumentTrack ("Vocals");
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();

    track.face ()->addRef ();  // never given back
    project.time ().release (); // one too many: the owner's reference
    auto found = Sim::Tracker::imbalances ();
    ASSERT_EQ (found.size (), 2u);
    EXPECT_EQ (found[0].kind, "TimeContext");
    EXPECT_EQ (found[0].overReleases, 1);
    EXPECT_EQ (found[0].count, 1);  // the owner's share stays
    EXPECT_EQ (found[1].name, "Vocals");
    EXPECT_EQ (found[1].count, 2);
    EXPECT_NE (Sim::Tracker::report ().find ("InstrumentTrack 'Vocals': count 2, expected 1 (leaked 1)"),
               std::string::npos);
    track.face ()->release ();
}

TEST_F (TrackerTest, HandedOutIteratorsMustBeReleasedExactlyOnce)
{
    Sim::Project project ("Song");
    project.root ().addFolder ("F");
    INodeIterator* kept = project.root ().getChildren ();
    ASSERT_EQ (Sim::Tracker::imbalances ().size (), 1u);  // not yet released: a leak
    kept->release ();
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ());
    kept->release ();  // after the last one: recorded, and the memory is still there
    auto found = Sim::Tracker::imbalances ();
    ASSERT_EQ (found.size (), 1u);
    EXPECT_EQ (found[0].kind, "NodeIterator");
    EXPECT_FALSE (found[0].alive);
    EXPECT_EQ (found[0].overReleases, 1);
}

TEST_F (TrackerTest, ObjectDestroyedWhileStillReferencedLeavesAnEvent)
{
    {
        Sim::Project project ("Gone");
        project.addRef ();
    }
    auto found = Sim::Tracker::imbalances ();
    ASSERT_EQ (found.size (), 1u);
    EXPECT_EQ (found[0].name, "Gone");
    EXPECT_FALSE (found[0].alive);
}

// The agent releases the product strings twice for one query; the host's own
// reference absorbs the second release.
IHostProductInfo* queryProductInfo (Sim::HostServices& services)
{
    IHostProductInfo* info = nullptr;
    services.context ()->queryInterface (IHostProductInfo::iid, reinterpret_cast<void**> (&info));
    return info;
}

TEST_F (TrackerTest, ProductInfoBalancesOnlyForTheDoubleRelease)
{
    {
        Sim::HostServices services;
        auto* info = queryProductInfo (services);
        ASSERT_NE (info, nullptr);
        info->release ();
        info->release ();
        EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();
    }
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();

    Sim::HostServices once;
    queryProductInfo (once)->release ();
    auto found = Sim::Tracker::imbalances ();
    ASSERT_EQ (found.size (), 1u);
    EXPECT_EQ (found[0].kind, "ProductInfo");
    EXPECT_EQ (found[0].count, found[0].expected + 1);
}

TEST_F (TrackerTest, SecondProductInfoQueryNeedsASecondHostReference)
{
    {
        Sim::HostServices services;
        for (int i = 0; i < 2; ++i)
        {
            auto* info = queryProductInfo (services);
            info->release ();
            info->release ();
        }
        ASSERT_EQ (Sim::Tracker::imbalances ().size (), 1u);
        EXPECT_EQ (Sim::Tracker::imbalances ()[0].overReleases, 1);
    }

    Sim::Tracker::reset ();
    Sim::HostServices generous;
    generous.setProductInfoReserve (2);
    for (int i = 0; i < 2; ++i)
    {
        auto* info = queryProductInfo (generous);
        info->release ();
        info->release ();
    }
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();
}

TEST_F (TrackerTest, SwitchedOffServicesAreNotHandedOut)
{
    Sim::HostServices services;
    services.enableIdleRegistry (false);
    services.enableProductInfo (false);
    void* out = reinterpret_cast<void*> (1);
    EXPECT_NE (services.getService (IIdleHandlerRegistry::iid, &out), kResultOk);
    EXPECT_EQ (out, nullptr);
    EXPECT_EQ (queryProductInfo (services), nullptr);
    ASSERT_EQ (services.getService (IProjectManager::iid, &out), kResultOk);
    EXPECT_EQ (out, static_cast<IProjectManager*> (&services.projectManager ()));
    EXPECT_EQ (Sim::Tracker::imbalances ().size (), 1u);  // the manager's reference is still out
    static_cast<IProjectManager*> (out)->release ();

    services.servicesOnly ();
    EXPECT_NE (services.getService (IProjectManager::iid, &out), kResultOk);
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();
}

} // namespace
