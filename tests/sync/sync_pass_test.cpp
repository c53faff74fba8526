// Whole passes through the agent library in this process: the life of a note's
// marks, track ids, host objects that follow or leave their plug-ins, the host's
// undo and redo, the idle pass beside a held mutex, and errors that leave a pass.
#include "agent/agent.h"
#include "svs/svs_host_list.h"
#include "workbench/sim/call_log.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/note_rows.h"
#include "workbench/sim/project.h"
#include "workbench/sim/project_manager.h"
#include "workbench/sim/svs_plugin.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>
#include <utf8.h>

#include <atomic>
#include <thread>

using namespace Steinberg;

namespace {

/** One agent in this process with one active project "Song" holding one synthesiser track. */
struct AgentPass : ::testing::Test
{
    void SetUp () override
    {
        Sim::Tracker::reset ();
        slot = &track.addSlot ("Slot 1", synth.unknown ());
        agent = new Kt::CantorelaBetaAgent;
        ASSERT_EQ (agent->initialize (host.context ()), kResultOk);
    }
    void TearDown () override
    {
        agent->terminate ();
        host.projectManager ().clearHistories ();
        EXPECT_EQ (agent->release (), 0u);
        EXPECT_EQ (Sim::Tracker::report (), "");  // every host object back at the count it started with
    }
    void open ()
    {
        host.projectManager ().addProject (song);
        host.projectManager ().activate (song);
    }
    FUnknown* hook () { return static_cast<IPluginBase*> (agent); }
    static bool mutexFree (Kt::CantorelaBetaAgent& a)
    {
        if (!a.passMutex ().try_lock ())
            return false;
        a.passMutex ().unlock ();
        return true;
    }

    Sim::SvsPlugin synth {"synth"}, second {"second"};  // outlive the agent, which detaches them
    Sim::HostServices host;
    Sim::Project& song = host.projectManager ().createProject ("Song");
    Sim::Track& track = song.root ().addInstrumentTrack ("Vocals");
    Sim::Part& part = track.addPart (0.0, 8.0);
    Sim::InsertSlot* slot = nullptr;
    Kt::CantorelaBetaAgent* agent = nullptr;
};

TEST_F (AgentPass, ANotesMarksFromUntouchedToCleared)
{
    auto& n1 = part.addNote (1.0, 2.0, 60);
    auto& n2 = part.addNote (2.0, 3.0, 62);
    // seen: a notification pass marks, and writes nothing else
    open ();
    EXPECT_EQ (n1.attrInt ("svsn"), 1);
    EXPECT_FALSE (n1.hasAttr ("lyph"));
    auto& late = part.addNote (4.0, 5.0, 64);
    agent->runIdlePass ();
    EXPECT_FALSE (late.hasAttr ("svsn")) << "the idle pass does not mark";

    // written: the user's edit is written back over the note and the one after it
    ASSERT_EQ (song.typeLyric (n1, "hello", hook ()), kResultOk);
    EXPECT_EQ (n1.lyric (), "hello[hh ah]");
    EXPECT_EQ (n1.attrText ("lyph"), "hello[hh ah]");
    EXPECT_EQ (n2.lyric (), "[l ow]");
    EXPECT_EQ (late.attrInt ("svsn"), 1) << "every note of the track is written";
    const int edits = n1.setValueCalls ();

    // changed outside an edit: the synthesiser hears it, the note is not written
    n1.setText ("lyrics", "ka");
    const int heard = synth.sequenceChangedCalls ();
    agent->runIdlePass ();
    EXPECT_EQ (synth.sequenceChangedCalls (), heard + 1);
    ASSERT_GE (synth.notes ().size (), 2u);
    EXPECT_STREQ (synth.notes ()[1].phonemes[0], "k");
    EXPECT_EQ (n1.setValueCalls (), edits);

    // cleared: the synthesiser leaves the track
    track.removeSlot (*slot);
    host.projectManager ().refresh (song);
    for (Sim::Note* n : {&n1, &n2, &late})
    {
        EXPECT_FALSE (n->hasAttr ("svsn"));
        EXPECT_FALSE (n->hasAttr ("lyph"));
    }
    EXPECT_EQ (n2.lyric (), "[l ow]") << "lyrics stay";
}

TEST_F (AgentPass, OtherTracksLoseOurMarksAndHostObjectsFollowTheirPlugins)
{
    auto& piano = song.root ().addInstrumentTrack ("Piano");
    auto& onlyLyph = piano.addPart (0.0, 4.0).addNote (0.0, 1.0, 60, "ka[k a]");
    onlyLyph.setAttr ("lyph", Sim::Value::text ("ka[k a]"));
    auto& midi = song.root ().addMidiTrack ("Keys", true);
    auto& copied = midi.addPart (0.0, 4.0).addNote (0.0, 1.0, 60, "ka[k a]");
    copied.setAttr ("svsn", Sim::Value (int64_t {1}));
    copied.setAttr ("lyph", Sim::Value::text ("ka[k a]"));
    auto& mine = part.addNote (0.0, 1.0, 60, "ka[k a]");
    mine.setAttr ("lyph", Sim::Value::text ("ka[k a]"));
    auto& choir = song.root ().addInstrumentTrack ("Choir");
    auto& choirSlot = choir.addSlot ("Slot 2", second.unknown ());
    open ();
    // A note copied from a synthesiser's track loses our marks; instrument tracks get ids in walk order.
    EXPECT_FALSE (copied.hasAttr ("svsn"));
    EXPECT_FALSE (copied.hasAttr ("lyph"));
    EXPECT_TRUE (onlyLyph.hasAttr ("lyph")) << "without a seen mark the stored lyric stays";
    EXPECT_TRUE (mine.hasAttr ("lyph"));
    EXPECT_EQ (track.attrInt ("TrID"), 1);
    EXPECT_EQ (piano.attrInt ("TrID"), 2);
    EXPECT_FALSE (midi.hasAttr ("TrID"));
    EXPECT_EQ (choir.attrInt ("TrID"), 3);
    // A host's copy of a track brings the id along: the copy gets a new one.
    auto& copy = song.root ().addInstrumentTrack ("Copy");
    copy.setAttr ("TrID", Sim::Value (int64_t {1}));
    host.projectManager ().refresh (song);
    EXPECT_EQ (copy.attrInt ("TrID"), 4);

    // Moved: the same host object, and the plug-in is told of its new title.
    FUnknown* kept = synth.host ();
    Sim::movePlugin (track, *slot, piano, "Slot 9");
    host.projectManager ().refresh (song);
    EXPECT_EQ (synth.host (), kept);
    EXPECT_EQ (synth.title (), "Cantorela Beta Agent: Song - Slot 9 - Piano");

    // Removed: its host object goes without a word to the plug-in; added again, it gets a new one.
    choir.removeSlot (choirSlot);
    host.projectManager ().refresh (song);
    const int titles = second.titleChangedCalls ();
    host.projectManager ().refresh (song);
    EXPECT_EQ (second.titleChangedCalls (), titles);
    choir.addSlot ("Slot 3", second.unknown ());
    host.projectManager ().refresh (song);
    EXPECT_EQ (second.setHostCalls (), 2);
    EXPECT_EQ (second.title (), "Cantorela Beta Agent: Song - Slot 3 - Choir");
    EXPECT_EQ (choir.attrInt ("TrID"), 3);
}

TEST_F (AgentPass, TwoSynthesisersOnOneTrackHearTheSameNotes)
{
    track.addSlot ("Slot 2", second.unknown ());
    auto& n = part.addNote (1.0, 2.0, 60);
    open ();
    EXPECT_EQ (second.title (), "Cantorela Beta Agent: Song - Slot 2 - Vocals");

    ASSERT_EQ (song.typeLyric (n, "hello", hook ()), kResultOk);
    ASSERT_EQ (synth.notes ().size (), second.notes ().size ());
    ASSERT_EQ (second.notes ().size (), 3u);
    EXPECT_STREQ (second.notes ()[1].phonemes[0], "hh");
    EXPECT_EQ (n.setValueCalls (), 2) << "written once: the second plug-in finds the track unchanged";
}

TEST_F (AgentPass, EditsFollowTheHostsUndoAndAClosedProjectsStepRetires)
{
    auto& sung = part.addNote (1.0, 2.0, 60);
    auto& chorus = song.root ().addInstrumentTrack ("Chorus");
    chorus.addSlot ("Slot 1", second.unknown ());
    auto& backing = chorus.addPart (0.0, 8.0).addNote (1.0, 2.0, 67, "la");
    open ();
    song.typeLyric (sung, "hello", hook ());
    const auto before = Sim::rowsOf (second.notes ());
    song.typeLyric (backing, "sky", hook ());
    const auto after = Sim::rowsOf (second.notes ());
    ASSERT_NE (after, before);
    IEditStep* step = song.historyEntry (1)->context->steps ().at (0);

    // An edit that changes nothing leaves no step, so the host drops it.
    song.edit (hook (), nullptr);
    EXPECT_EQ (song.historySize (), 2u);

    // Undo: the host restores its notes, the step sends the stored list, the idle pass reads it back.
    ASSERT_TRUE (song.undo ());
    EXPECT_EQ (Sim::rowsOf (second.notes ()), before);
    ASSERT_TRUE (song.redo ());
    EXPECT_EQ (Sim::rowsOf (second.notes ()), after);

    // A redo while the project is busy: the follow-up pass gives up at once, so the synthesiser's list
    // comes from the store alone.
    ASSERT_TRUE (song.undo ());
    song.setBusy (true);
    Sim::CallLog::clear ();
    ASSERT_TRUE (song.redo ());
    EXPECT_EQ (Sim::rowsOf (second.notes ()), after);
    EXPECT_EQ (Sim::CallLog::calls ().back (), "IHostProject::isBusy");
    song.setBusy (false);

    // Closed and opened again at its old address: the old step retires, Vocals hands the host null
    // and Chorus makes a new step.
    host.projectManager ().deactivate ();
    host.projectManager ().removeProject (song);
    open ();
    Sim::CallLog::clear ();
    song.typeLyric (sung, "world", hook ());
    EXPECT_EQ (Sim::CallLog::count ("IProjectEditContext::addEditStep"), 2);
    const auto reopened = song.historyEntry (song.historySize () - 1)->context->steps ();
    ASSERT_EQ (reopened.size (), 1u);
    EXPECT_NE (reopened[0], step);
}

TEST_F (AgentPass, TheIdlePassGivesUpWhileTheMutexIsHeld)
{
    part.addNote (1.0, 2.0, 60, "ka");
    open ();
    const int before = synth.sequenceChangedCalls ();

    std::atomic<bool> held {false}, done {false};
    std::thread holder ([&] {
        std::lock_guard<std::mutex> lock (agent->passMutex ());
        held = true;
        while (!done)
            std::this_thread::yield ();
    });
    while (!held)
        std::this_thread::yield ();
    agent->runIdlePass ();
    EXPECT_EQ (synth.sequenceChangedCalls (), before) << "skipped, not queued";
    done = true;
    holder.join ();
    agent->runIdlePass ();
    EXPECT_EQ (synth.sequenceChangedCalls (), before + 1);
}

TEST_F (AgentPass, ErrorsLeaveThePassAndReleaseTheMutex)
{
    auto& n1 = part.addNote (1.0, 2.0, 60, "ka[ ]");  // a hint of blanks
    host.projectManager ().addProject (song);
    EXPECT_THROW (host.projectManager ().activate (song), utf8::not_enough_room);
    EXPECT_TRUE (mutexFree (*agent));

    n1.setText ("lyrics", "ka");
    EXPECT_NO_THROW (host.projectManager ().refresh (song));
    track.setRawName (u"bad \xD800 name");
    // Called directly: the simulated manager's refresh would keep its interface reference on a throw.
    EXPECT_THROW (agent->onProjectRefresh (song.hostProject ()), utf8::invalid_utf16);
    EXPECT_TRUE (mutexFree (*agent));
    track.rename ("Vocals");
    n1.setRawText ("lyrics", u"\xDC00");
    EXPECT_THROW (agent->runIdlePass (), utf8::invalid_utf16);
    EXPECT_TRUE (mutexFree (*agent));
}

} // namespace
