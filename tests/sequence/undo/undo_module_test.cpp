// Lyrics typed in host edits, written back, undone and redone with the host's
// own history, through the built module as a host loads it.
#include "host/agent_interfaces.h"
#include "workbench/loader/module_loader.h"
#include "workbench/sim/agent_driver.h"
#include "workbench/sim/call_log.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/note_rows.h"
#include "workbench/sim/project.h"
#include "workbench/sim/svs_plugin.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Steinberg;

namespace {

Sim::LoadedModule& module ()
{
    static Sim::LoadedModule loaded (CANTORELA_MODULE_PATH);
    return loaded;
}

/** What every note of a track holds after write-back: "lyph" mirrors "lyrics", which ends in the hint. */
void expectWrittenBack (const Sim::Note& note)
{
    SCOPED_TRACE (note.lyric ());
    EXPECT_TRUE (note.hasAttr ("lyph"));
    EXPECT_EQ (note.attrText ("lyph"), note.lyric ());
    EXPECT_EQ (note.attrInt ("svsn"), 1);
    const std::string hint = note.phoneme ();
    if (!hint.empty ())
    {
        const std::string tail = "[" + hint + "]";
        ASSERT_GE (note.lyric ().size (), tail.size ());
        EXPECT_EQ (note.lyric ().substr (note.lyric ().size () - tail.size ()), tail);
    }
}

std::vector<IEditStep*> stepsOf (const Sim::Project& project, std::size_t edit)
{
    return project.historyEntry (edit)->context->steps ();
}

/** The calls recorded after the last "IHostProject::isBusy". */
std::vector<std::string> callsAfterBusyCheck ()
{
    const auto calls = Sim::CallLog::calls ();
    std::vector<std::string> after;
    for (const auto& call : calls)
    {
        if (call == "IHostProject::isBusy")
            after.clear ();
        else
            after.push_back (call);
    }
    return after;
}

TEST (UndoThroughModule, LyricEditsAreWrittenBackAndFollowTheHostsUndo)
{
    ASSERT_TRUE (module ().ok ()) << module ().error ();
    ASSERT_TRUE (module ().bundleEntry ());
    IPluginFactory* factory = module ().getPluginFactory ();
    ASSERT_NE (factory, nullptr);
    Sim::Tracker::reset ();
    Sim::CallLog::clear ();
    {
        Sim::HostServices host;
        auto& manager = host.projectManager ();
        Sim::Project& song = manager.createProject ("Song");
        Sim::SvsPlugin vocalSynth ("vocal synth"), chorusSynth ("chorus synth"), freshSynth ("fresh synth");
        auto& vocals = song.root ().addInstrumentTrack ("Vocals");
        vocals.addSlot ("Slot 1", vocalSynth.unknown ());
        auto& vocalPart = vocals.addPart (0.0, 8.0);
        std::vector<Sim::Note*> sung {&vocalPart.addNote (1.0, 2.0, 60), &vocalPart.addNote (2.0, 3.0, 62),
                                      &vocalPart.addNote (3.0, 4.0, 64)};
        auto& chorus = song.root ().addInstrumentTrack ("Chorus");
        chorus.addSlot ("Slot 1", chorusSynth.unknown ());
        Sim::Note& backing = chorus.addPart (0.0, 8.0).addNote (1.0, 2.0, 67, "la");

        IPluginBase* agent = module ().createService (factory);
        ASSERT_NE (agent, nullptr);
        ASSERT_EQ (agent->initialize (host.context ()), kResultOk);
        manager.addProject (song);
        manager.activate (song);  // records Vocals alone, writes nothing
        EXPECT_FALSE (sung[0]->hasAttr ("lyph"));

        // Vocals changed and Chorus is seen for the first time: the one step, once per track.
        song.typeLyric (*sung[0], "hello", agent);
        ASSERT_EQ (song.historySize (), 1u);
        const auto first = stepsOf (song, 0);
        ASSERT_EQ (first.size (), 2u);
        EXPECT_EQ (first[0], first[1]);
        IEditStep* step = first[0];
        // The word's syllables are dealt out: word[hint] on the typed note, [hint] on the next, the rest empty.
        EXPECT_EQ (sung[0]->lyric (), "hello[hh ah]");
        EXPECT_EQ (sung[1]->lyric (), "[l ow]");
        EXPECT_EQ (sung[1]->phoneme (), "l ow");
        EXPECT_EQ (sung[2]->lyric (), "");
        for (const Sim::Note* note : sung)
            expectWrittenBack (*note);
        expectWrittenBack (backing);

        const auto chorusBefore = Sim::rowsOf (chorusSynth.notes ());
        std::vector<int> writes;
        for (const Sim::Note* note : sung)
            writes.push_back (note->setValueCalls ());
        song.typeLyric (backing, "sky", agent);
        ASSERT_EQ (song.historySize (), 2u);
        EXPECT_EQ (stepsOf (song, 1), (std::vector<IEditStep*> {step}));
        EXPECT_EQ (backing.lyric ().rfind ("sky[", 0), 0u);
        expectWrittenBack (backing);
        for (std::size_t i = 0; i < sung.size (); ++i)
            EXPECT_EQ (sung[i]->setValueCalls (), writes[i]);  // the unchanged track is not written
        const auto chorusAfter = Sim::rowsOf (chorusSynth.notes ());
        ASSERT_NE (chorusAfter, chorusBefore);

        // An edit that changes nothing leaves no step and no write, so the host drops it.
        const int backingWrites = backing.setValueCalls ();
        song.edit (agent, nullptr);
        EXPECT_EQ (song.historySize (), 2u);
        EXPECT_EQ (backing.setValueCalls (), backingWrites);

        // Undo: the host restores its notes, the step sends the stored list, the idle pass reads it back.
        Sim::CallLog::clear ();
        int told = chorusSynth.sequenceChangedCalls ();
        ASSERT_TRUE (song.undo ());
        EXPECT_EQ (backing.lyric ().rfind ("la[", 0), 0u);
        EXPECT_EQ (Sim::rowsOf (chorusSynth.notes ()), chorusBefore);
        EXPECT_EQ (chorusSynth.sequenceChangedCalls (), told + 2);
        EXPECT_EQ (Sim::CallLog::count ("IHostProject::isBusy"), 1);
        // The store went back with the host: an edit now finds nothing to record.
        song.edit (agent, nullptr);
        EXPECT_EQ (song.historySize (), 2u);

        ASSERT_TRUE (song.redo ());
        EXPECT_EQ (backing.lyric ().rfind ("sky[", 0), 0u);
        EXPECT_EQ (Sim::rowsOf (chorusSynth.notes ()), chorusAfter);

        // A redo while the project is busy: the follow-up pass gives up at once, so what the synthesiser
        // gets comes from the store alone, which still had the change to redo after the undo's idle pass.
        ASSERT_TRUE (song.undo ());
        song.setBusy (true);
        Sim::CallLog::clear ();
        told = chorusSynth.sequenceChangedCalls ();
        ASSERT_TRUE (song.redo ());
        EXPECT_EQ (chorusSynth.sequenceChangedCalls (), told + 1);
        EXPECT_EQ (Sim::rowsOf (chorusSynth.notes ()), chorusAfter);
        EXPECT_EQ (Sim::CallLog::count ("IHostProject::isBusy"), 1);
        EXPECT_TRUE (callsAfterBusyCheck ().empty ());
        song.setBusy (false);

        // Closed, and another project opened at another address: a step of its own.
        Sim::AgentDriver driver (host, agent);
        driver.closeProject (song);
        Sim::Project& fresh = manager.createProject ("Fresh");
        auto& freshTrack = fresh.root ().addInstrumentTrack ("Lead");
        freshTrack.addSlot ("Slot 1", freshSynth.unknown ());
        Sim::Note& lead = freshTrack.addPart (0.0, 8.0).addNote (1.0, 2.0, 60);
        manager.addProject (fresh);
        manager.activate (fresh);
        fresh.typeLyric (lead, "hi", agent);
        ASSERT_EQ (fresh.historySize (), 1u);
        ASSERT_EQ (stepsOf (fresh, 0).size (), 1u);
        EXPECT_NE (stepsOf (fresh, 0)[0], step);
        driver.closeProject (fresh);

        // The closed project comes back at its old address: its old step retires, Vocals hands the host null.
        manager.addProject (song);
        manager.activate (song);
        Sim::CallLog::clear ();
        song.typeLyric (*sung[1], "world", agent);
        EXPECT_EQ (Sim::CallLog::count ("IProjectEditContext::addEditStep"), 2);
        const auto reopened = stepsOf (song, song.historySize () - 1);
        ASSERT_EQ (reopened.size (), 1u);  // Chorus, with a new step
        EXPECT_NE (reopened[0], step);
        EXPECT_NE (reopened[0], stepsOf (fresh, 0)[0]);
        for (const Sim::Note* note : sung)
            expectWrittenBack (*note);

        EXPECT_EQ (agent->terminate (), kResultOk);
        manager.clearHistories ();
        EXPECT_EQ (agent->release (), 0u);
    }
    EXPECT_EQ (Sim::Tracker::report (), "");
    factory->release ();
    EXPECT_TRUE (module ().bundleExit ());
}

} // namespace
