#include "fakes.h"

#include "workbench/sim/agent_driver.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/note.h"
#include "workbench/sim/part.h"
#include "workbench/sim/project.h"
#include "workbench/sim/text.h"
#include "workbench/sim/track.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

namespace {

using namespace Steinberg;

class TreeTest : public SimTest::Fixture
{
};

template <class I>
I* ask (FUnknown* object)
{
    I* face = nullptr;
    if (object->queryInterface (I::iid, reinterpret_cast<void**> (&face)) != kResultOk)
        return nullptr;
    return face;
}

TEST_F (TreeTest, IteratorYieldsBorrowedChildrenInOrderWithNullsAndStrangers)
{
    Sim::Project project ("Song");
    auto& root = project.root ();
    auto& folder = root.addFolder ("F");
    root.addNullChild ();
    auto& stranger = root.addStranger ();
    auto& track = root.addInstrumentTrack ("Vocals");

    INodeIterator* it = root.getChildren ();
    std::vector<IProjectNode*> seen;
    while (!it->isDone ())
        seen.push_back (it->next ());
    EXPECT_EQ (it->next (), nullptr);  // past the end stays harmless
    it->release ();
    ASSERT_EQ (seen.size (), 4u);
    EXPECT_EQ (seen[0], folder.face ());
    EXPECT_EQ (seen[1], nullptr);
    EXPECT_EQ (seen[3], track.face ());
    EXPECT_EQ (ask<IProjectNode> (seen[2]), nullptr);  // the stranger refuses the node face
    EXPECT_EQ (stranger.refCount (), 1);
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();

    track.setChildrenNull (true);
    EXPECT_EQ (track.getChildren (), nullptr);
    EXPECT_EQ (ask<ITrackNode> (root.addMidiTrack ("Keys").face ()), nullptr);  // no devices: no track face
}

TEST_F (TreeTest, AttributesFollowTheVariantRules)
{
    Sim::Project project ("Song");
    auto& note = project.root ().addInstrumentTrack ("V").addPart (0, 4).addNote (0, 1, 60);
    IProjectNode* node = note.face ();

    std::u16string buffer = u"ka[k a]";
    FVariant in;
    in.setString16 (Sim::units (buffer));  // type 32, no owner: the caller keeps its buffer
    node->setAttribute ("lyph", &in, 1);
    buffer.assign (u"xxxxxxx");
    EXPECT_EQ (note.attrText ("lyph"), "ka[k a]");

    FVariant out;
    ASSERT_EQ (node->getAttribute ("lyph", &out), kResultOk);
    EXPECT_EQ (out.type, FVariant::kString16 | FVariant::kOwner);
    EXPECT_NE (out.string16, Sim::units (note.attr ("lyph")->asWide ()));
    EXPECT_EQ (Sim::fromUnits (out.string16), u"ka[k a]");
    out.empty ();  // frees the copy with array delete

    FVariant one (static_cast<int64> (1));
    node->setAttribute ("svsn", &one, 1);
    FVariant back;
    node->getAttribute ("svsn", &back);
    EXPECT_EQ (back.type, FVariant::kInteger);
    EXPECT_EQ (back.intValue, 1);

    EXPECT_EQ (node->hasAttribute ("svsn"), kResultOk);
    EXPECT_EQ (node->hasAttribute ("TrID"), kResultFalse);
    EXPECT_EQ (node->getAttribute ("TrID", &back), kResultFalse);
    node->removeAttribute ("svsn");
    EXPECT_FALSE (note.hasAttr ("svsn"));
}

TEST_F (TreeTest, ContextsAreTheTempoMapForATrackAndAnAnchorForAPart)
{
    Sim::Project project ("Song");
    auto& track = project.root ().addInstrumentTrack ("V");
    auto& part = track.addPart (1, 3);
    auto& note = part.addNote (0, 1, 60);

    FUnknown* time = project.getContext (track.face ());
    EXPECT_EQ (time, static_cast<ITimeContext*> (&project.time ()));
    FUnknown* anchorHolder = project.getContext (part.face ());
    ASSERT_NE (anchorHolder, nullptr);
    auto* anchor = ask<IEditAnchor> (anchorHolder);
    EXPECT_NE (anchor, nullptr);
    EXPECT_EQ (project.getContext (note.face ()), nullptr);
    EXPECT_EQ (Sim::Tracker::imbalances ().size (), 2u);  // the two contexts are ours to give back
    anchor->release ();
    anchorHolder->release ();
    time->release ();
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();
}

struct Receiver : IProjectNotification3, IIdleHandler
{
    std::vector<std::string> heard;
    tresult PLUGIN_API queryInterface (const TUID, void** obj) override
    {
        *obj = this;
        return kResultOk;
    }
    uint32 PLUGIN_API addRef () override { return 1; }
    uint32 PLUGIN_API release () override { return 1; }
    void PLUGIN_API onProjectActivated (IHostProject*) override { heard.push_back ("activated"); }
    void PLUGIN_API onProjectDeactivated () override { heard.push_back ("deactivated"); }
    void PLUGIN_API onProjectAdded (IHostProject*) override { heard.push_back ("added"); }
    void PLUGIN_API onProjectRemoved (IHostProject*) override { heard.push_back ("removed"); }
    int32 PLUGIN_API onProjectQuery () override { return 0; }
    void PLUGIN_API onProjectNoOp () override {}
    void PLUGIN_API onProjectRefresh (IHostProject*) override { heard.push_back ("refresh"); }
    void PLUGIN_API onIdle () override { heard.push_back ("idle"); }
};

TEST_F (TreeTest, ProjectManagerAndIdleRegistryCallTheAgentInTurn)
{
    Sim::HostServices services;
    auto& pm = services.projectManager ();
    Receiver r;
    pm.addNotification (&r);
    services.idleRegistry ().addHandler (&r);
    Sim::AgentDriver driver (services, nullptr);
    auto& song = driver.openProject ("Song");
    EXPECT_EQ (pm.getActiveProject (), song.hostProject ());
    pm.refresh (song);
    driver.idle (2);
    driver.closeProject (song);
    EXPECT_EQ (pm.getActiveProject (), nullptr);
    EXPECT_EQ (pm.getProjectCount (), 0);
    pm.removeNotification (&r);
    pm.addProject (song);
    EXPECT_EQ (r.heard, (std::vector<std::string> {"added", "activated", "refresh", "idle", "idle", "deactivated",
                                                   "removed"}));
}

} // namespace
