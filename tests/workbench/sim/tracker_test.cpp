// Each imbalance is checked through its line in the report, which is what a
// failing test of the agent prints.
#include "fakes.h"

#include "workbench/sim/host_services.h"
#include "workbench/sim/project.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

namespace {

using namespace Steinberg;

class TrackerTest : public SimTest::Fixture
{
};

TEST_F (TrackerTest, LeakAndOverReleaseAreReportedByName)
{
    Sim::Project project ("Song");
    auto& track = project.root ().addInstrumentTrack ("Vocals");
    EXPECT_EQ (Sim::Tracker::report (), "");

    track.face ()->addRef ();   // never given back
    project.time ().release (); // one too many: the owner's reference, whose share stays
    EXPECT_EQ (Sim::Tracker::report (), "TimeContext 'Song tempo': count 1, expected 1 (over-released 1)\n"
                                        "InstrumentTrack 'Vocals': count 2, expected 1 (leaked 1)\n");
    track.face ()->release ();
}

TEST_F (TrackerTest, ReleaseAfterTheLastAndDeathWhileReferencedLeaveAnEvent)
{
    {
        Sim::Project project ("Gone");
        project.root ().addFolder ("F");
        INodeIterator* kept = project.root ().getChildren ();
        EXPECT_EQ (Sim::Tracker::report (), "NodeIterator 'Gone': count 1, expected 0 (leaked 1)\n");
        kept->release ();
        EXPECT_EQ (Sim::Tracker::report (), "");
        kept->release ();  // after the last one: recorded, and the memory is still there
        project.addRef ();
    }
    EXPECT_EQ (Sim::Tracker::report (), "Project 'Gone': count 2, expected 1 (leaked 1) [gone]\n"
                                        "NodeIterator 'Gone': count 0, expected 0 (over-released 1) [gone]\n");
}

IHostProductInfo* queryProductInfo (Sim::HostServices& services)
{
    IHostProductInfo* info = nullptr;
    services.context ()->queryInterface (IHostProductInfo::iid, reinterpret_cast<void**> (&info));
    return info;
}

// The agent releases the product strings twice for one query; the host's own
// reference absorbs the second release, for one query only.
TEST_F (TrackerTest, ProductInfoAbsorbsTheDoubleReleaseOfOneQuery)
{
    const struct
    {
        int queries, releases;
        const char* report;
    } cases[] = {
        {1, 2, ""},
        {2, 2, "ProductInfo 'product': count 1, expected 0 (over-released 1)\n"},
        {1, 1, "ProductInfo 'product': count 2, expected 1 (leaked 1)\n"},
    };
    for (const auto& c : cases)
    {
        Sim::Tracker::reset ();
        Sim::HostServices services;
        for (int q = 0; q < c.queries; ++q)
        {
            auto* info = queryProductInfo (services);
            for (int r = 0; r < c.releases; ++r)
                info->release ();
        }
        EXPECT_EQ (Sim::Tracker::report (), c.report) << c.queries << " queries, " << c.releases << " releases each";
    }
}

} // namespace
