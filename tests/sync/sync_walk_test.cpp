// The project walks and the note collection against a simulated project:
// odd tree shapes, time arithmetic, muting, ordering and lyric dealing.
#include "sync/note_collection.h"
#include "sync/project_walk.h"
#include "sync/track_identity.h"
#include "workbench/sim/call_log.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/project.h"
#include "workbench/sim/project_manager.h"
#include "workbench/sim/svs_plugin.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Steinberg;
using Zelmor::SequenceNote;

namespace {

struct Fixture : ::testing::Test
{
    Sim::HostServices host;
    Sim::Project& song = host.projectManager ().createProject ("Song");
    Zelmor::HostRef<IProjectNode> root = Zelmor::projectRoot (song.hostProject ());

    std::vector<ISvsPlugin*> plugins ()
    {
        Zelmor::PluginList list;
        Zelmor::collectSvsPlugins (root.get (), list);
        return {list.begin (), list.end ()};
    }
    std::vector<SequenceNote> notesOf (Sim::SvsPlugin& synth, bool markSeen = false)
    {
        return Zelmor::collectTrackNotes (song.hostProject (), root.get (), synth.plugin (), markSeen).notes;
    }
};

std::vector<double> starts (const std::vector<SequenceNote>& notes)
{
    std::vector<double> out;
    for (const auto& n : notes)
        out.push_back (n.start);
    return out;
}

using Walks = Fixture;

TEST_F (Walks, FoldersTakeTheirPlaceAndSlotsOfTheWrongShapeHoldNothing)
{
    Sim::SvsPlugin a ("a"), b ("b"), c ("c"), good ("good");
    Sim::SvsPlugin named ("named"), twin1 ("twin1"), twin2 ("twin2"), notSvs ("not svs");
    notSvs.enablePlugin (false);
    song.root ().addInstrumentTrack ("A").addSlot ("Slot 1", a.unknown ());
    auto& outer = song.root ().addFolder ("outer");
    outer.addFolder ("inner").addInstrumentTrack ("B").addSlot ("Slot 1", b.unknown ());
    outer.addInstrumentTrack ("C").addSlot ("Slot 1", c.unknown ());
    song.root ().addMidiTrack ("plain midi");
    song.root ().addNullChild ();
    song.root ().addStranger ();
    auto& track = song.root ().addInstrumentTrack ("D");
    track.devices ().addChild ("slot").addInsert ("lower case", named.unknown ());
    auto& two = track.devices ().addChild ("Slot");
    two.addInsert ("first", twin1.unknown ());
    two.addInsert ("second", twin2.unknown ());
    track.devices ().addChild ("Slot").addNullChild ();
    track.devices ().addNullChild ();
    track.addSlot ("not a synthesiser", notSvs.unknown ());
    track.addSlot ("Slot 5", good.unknown ());

    EXPECT_EQ (plugins (), (std::vector<ISvsPlugin*> {a.plugin (), b.plugin (), c.plugin (), good.plugin ()}));
    Zelmor::TrackList tracks;
    Zelmor::collectInstrumentTracks (root.get (), tracks);
    ASSERT_EQ (tracks.size (), 4u);
    EXPECT_EQ (Zelmor::findTrackOfPlugin (root.get (), b.plugin ()).get (), tracks[1]);
    EXPECT_FALSE (Zelmor::findTrackOfPlugin (root.get (), twin1.plugin ()));
    EXPECT_EQ (Zelmor::readPluginLabels (song.hostProject (), good.plugin ()).slotName, "Slot 5");

    track.devices ().setChildCountOverride (0);
    EXPECT_EQ (plugins ().size (), 3u);
}

TEST_F (Walks, TwoSynthesisersOnOneTrackAndAttachOnlyWhenDetached)
{
    Sim::SvsPlugin first ("first"), second ("second");
    first.setAttached (0);
    auto& track = song.root ().addInstrumentTrack ("Choir");
    track.addSlot ("Slot 1", first.unknown ());
    track.addSlot ("Slot 2", second.unknown ());

    EXPECT_EQ (plugins (), (std::vector<ISvsPlugin*> {first.plugin (), second.plugin ()}));
    EXPECT_EQ (first.attachCalls (), 1);
    EXPECT_EQ (second.attachCalls (), 0);

    track.setAttr ("TrID", Sim::Value (int64_t {7}));
    EXPECT_EQ (Zelmor::trackIdOfPlugin (root.get (), second.plugin ()), 7);
    track.setAttr ("TrID", Sim::Value::text ("seven"));
    EXPECT_EQ (Zelmor::trackIdOfPlugin (root.get (), second.plugin ()), 0);
    track.removeAttr ("TrID");
    EXPECT_EQ (Zelmor::trackIdOfPlugin (root.get (), second.plugin ()), -1);
    Sim::SvsPlugin stranger;
    EXPECT_EQ (Zelmor::trackIdOfPlugin (root.get (), stranger.plugin ()), -1);
}

TEST_F (Walks, PartsAreFoundAtAnyDepthButNotInsideAPart)
{
    auto& track = song.root ().addInstrumentTrack ("Vocals");
    track.addPart (0.0, 1.0);
    auto& partOnly = track.addNode ("part only", {"part"});
    auto& deep = partOnly.adopt (std::make_unique<Sim::Part> ("deep", &song));
    deep.adopt (std::make_unique<Sim::Part> ("inside a part", &song));
    track.addNode ("midi only", {"midi"}).adopt (std::make_unique<Sim::Part> ("under midi", &song));

    Zelmor::PartList parts;
    Zelmor::collectMidiParts (track.face (), parts);
    ASSERT_EQ (parts.size (), 3u);
    EXPECT_EQ (parts[1], deep.face ());
}

TEST_F (Walks, TrackIdsAreWrittenWhileHeldAndContextsGoBeforeMarksAreCleared)
{
    auto& a = song.root ().addInstrumentTrack ("A");
    auto& b = song.root ().addFolder ("folder").addInstrumentTrack ("B");
    b.setAttr ("TrID", Sim::Value (int64_t {7}));
    auto& keys = song.root ().addMidiTrack ("Keys", true);
    keys.addPart (0.0, 4.0).addNote (0.0, 1.0, 60).setAttr ("svsn", Sim::Value (int64_t {1}));
    a.logReleases (true);
    b.logReleases (true);
    song.time ().logReleases (true);

    // A host node may live only while it is referenced: the id is read and written before the walk lets go.
    Sim::CallLog::clear ();
    uint64_t next = 1;
    Zelmor::assignTrackIds (root.get (), next);
    EXPECT_EQ (Sim::CallLog::trace ({"IProjectNode::hasAttribute", "IProjectNode::setAttribute", "FUnknown::release"}),
               (std::vector<std::string> {"IProjectNode::hasAttribute A", "IProjectNode::setAttribute A",
                                          "FUnknown::release A", "IProjectNode::hasAttribute B", "FUnknown::release B"}));
    // With the counter at the largest id, the next id is 1.
    uint64_t last = 0x7FFFFFFFFFFFFFFEull;
    EXPECT_EQ (Zelmor::takeNewTrackId (last), 0x7FFFFFFFFFFFFFFEull);
    EXPECT_EQ (Zelmor::takeNewTrackId (last), 1u);
    EXPECT_EQ (last, 2u);

    a.logReleases (false);
    b.logReleases (false);
    Sim::CallLog::clear ();
    Zelmor::clearNoteMarks (song.hostProject (), root.get ());
    const std::string context = "IHostProject::getContext Song", released = "FUnknown::release Song tempo";
    EXPECT_EQ (Sim::CallLog::trace ({"IHostProject::getContext", "IProjectNode::removeAttribute", "FUnknown::release"}),
               (std::vector<std::string> {context, released, context, released, context, released,
                                          "IProjectNode::removeAttribute Keys part 1 note 1"}));
}

/** One synthesiser on the track "Vocals". */
struct Collection : Fixture
{
    Collection () { track.addSlot ("Slot 1", synth.unknown ()); }
    std::vector<SequenceNote> notes () { return notesOf (synth); }

    Sim::SvsPlugin synth;
    Sim::Track& track = song.root ().addInstrumentTrack ("Vocals");
};

TEST_F (Collection, PartShiftInBothTimeDomains)
{
    // 120 bpm for the first two beats (1 s), then 60 bpm: the musical shift of
    // a distance differs from the distance of two musical positions.
    song.time ().setTempo (120.0);
    song.time ().addTempoChange (2.0, 60.0);
    auto& part = track.addPart (3.0, 10.0, 1.0);
    part.addNote (0.5, 0.75, 60);

    // 0.5 s is beat 1, the 2 s shift is 3 beats: beat 4 lies at 3.0 s; 0.75 s + shift = beat 4.5 at 3.5 s.
    auto found = notes ();
    ASSERT_EQ (found.size (), 1u);
    EXPECT_DOUBLE_EQ (found[0].start, 3.0);
    EXPECT_DOUBLE_EQ (found[0].end, 3.5);

    track.setTimeDomain (1);
    found = notes ();
    ASSERT_EQ (found.size (), 1u);
    EXPECT_DOUBLE_EQ (found[0].start, 2.5);
    EXPECT_TRUE (found[0].muted) << "starts before the part";
    EXPECT_DOUBLE_EQ (found[0].soundStart, 3.0);

    track.setTimeDomain (2);
    EXPECT_TRUE (notes ().empty ());
}

TEST_F (Collection, MutingAtThePartsBounds)
{
    auto& part = track.addPart (2.0, 4.0);
    part.setTranspose (5);
    part.addNote (1.5, 2.5, 60);
    part.addNote (2.0, 2.5, 61);
    part.addNote (3.9, 4.5, 62);
    part.addNote (4.0, 4.5, 63);
    part.addNote (3.0, 3.5, 64).setMuted (true);

    auto found = notes ();
    ASSERT_EQ (found.size (), 5u);
    const std::vector<bool> muted = {true, false, false, true, true};
    for (size_t i = 0; i < found.size (); ++i)
        EXPECT_EQ (found[i].muted, muted[i]) << i;
    EXPECT_EQ (found[0].soundStart, 2.0);
    EXPECT_EQ (found[0].start, 1.5);
    EXPECT_EQ (found[2].end, 4.5) << "ends are not cut at the part's end";
    EXPECT_EQ (found[1].transpose, 5);

    part.setMuted (true);
    for (const auto& n : notes ())
        EXPECT_TRUE (n.muted);
}

TEST_F (Collection, SortedOnlyWhenPartsOverlap)
{
    auto& first = track.addPart (0.0, 4.0);
    first.addNote (3.0, 3.5, 60);
    first.addNote (1.0, 1.5, 60);
    track.addPart (0.0, 100.0).setChildrenNull (true);  // no events: not in the overlap test
    auto& second = track.addPart (4.0, 8.0);
    second.addNote (5.0, 5.5, 60);
    EXPECT_EQ (starts (notes ()), (std::vector<double> {3.0, 1.0, 5.0}));

    second.setTimes (3.5, 8.0);
    second.setContentStart (3.5);
    second.addNote (3.6, 3.8, 60).setMuted (true);
    EXPECT_EQ (starts (notes ()), (std::vector<double> {1.0, 3.0, 3.6, 5.0}));
}

TEST_F (Collection, LyricsAreDealtOverFollowingNotesWithinOnePart)
{
    auto& first = track.addPart (0.0, 4.0);
    first.addNote (0.0, 1.0, 60, "hello");
    first.addNote (1.0, 2.0, 60, "[k a]");  // its own hint gives way to the running word
    first.addNote (2.0, 3.0, 60);
    auto& second = track.addPart (4.0, 8.0);
    second.addNote (4.0, 5.0, 60, "hello");
    auto& third = track.addPart (8.0, 12.0);
    third.addNote (8.0, 9.0, 60);

    const auto found = notes ();
    ASSERT_EQ (found.size (), 5u);
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"hello[hh ah]", "hh ah"}, {"[l ow]", "l ow"}, {"", ""}, {"hello[hh ah]", "hh ah"}, {"", ""}};
    for (size_t i = 0; i < found.size (); ++i)
    {
        EXPECT_EQ (found[i].lyric, expected[i].first) << i;
        EXPECT_EQ (found[i].phoneme, expected[i].second) << i;
    }

    // A word whose hint we wrote is not converted again: the note after it stays empty.
    auto& written = first.addNote (3.0, 3.5, 60, "hello[hh ah]");
    written.setAttr ("lyph", Sim::Value::text ("hello[hh ah]"));
    first.addNote (3.5, 3.9, 60);
    const auto again = notes ();
    ASSERT_EQ (again.size (), 7u);
    EXPECT_EQ (again[3].lyric, "hello[hh ah]");
    EXPECT_EQ (again[4].lyric, "");

    // The word changed under the hint we wrote: it is converted again and dealt over the note after it.
    written.setText ("lyrics", "yellow[hh ah]");
    EXPECT_EQ (notes ()[4].lyric, "[l ow]");
}

} // namespace
