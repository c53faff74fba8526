// The edit step, its manager and the recording rules, driven through the sync
// against the simulated host without the module around them.
#include "sequence/sequence_store.h"
#include "sequence/undo/edit_step_manager.h"
#include "svs/svs_host_list.h"
#include "sync/plugin_binding.h"
#include "sync/sync_pass.h"
#include "workbench/sim/call_log.h"
#include "workbench/sim/project.h"
#include "workbench/sim/project_manager.h"
#include "workbench/sim/svs_plugin.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using namespace Steinberg;

namespace {

/** Into the call log, where its calls fall in order with what the synthesisers hear. */
struct TraceListener : Zelmor::ISequenceEditStepUndoRedoListener
{
    void willUndo () override { Sim::CallLog::record (Sim::Side::Agent, "willUndo"); }
    void didUndo () override { Sim::CallLog::record (Sim::Side::Agent, "didUndo"); }
    void willRedo () override { Sim::CallLog::record (Sim::Side::Agent, "willRedo"); }
    void didRedo () override { Sim::CallLog::record (Sim::Side::Agent, "didRedo"); }
};

class EditStepTest : public ::testing::Test
{
protected:
    EditStepTest ()
    {
        Sim::CallLog::clear ();
        steps.listener = &trace;
        steps.trackSender = &Zelmor::sendCurrentTrack;
        vocals.addSlot ("Slot 1", vocalSynth.unknown ());
        chorus.addSlot ("Slot 1", chorusSynth.unknown ());
        projects.activate (song);
    }
    ~EditStepTest () override
    {
        projects.clearHistories ();  // the host's references go before the steps do
    }

    /** A locked pass as the agent runs it. */
    void pass (Sim::Project& project, IProjectEditContext* context)
    {
        Zelmor::bindPlugins (project.hostProject (), svsHosts);
        Zelmor::syncPass ({svsHosts, nextTrackId, steps, &projects}, project.hostProject (), context, true);
    }
    /** A host edit that runs `change` and then the agent's pass inside it. */
    Sim::EditContext& edit (Sim::Project& project, const std::function<void ()>& change)
    {
        Sim::EditContext& context = project.beginEdit ();
        change ();
        pass (project, &context);
        project.endEdit ();
        return context;
    }
    Zelmor::SequenceEditStep& step () { return *steps.steps.at (0); }
    Zelmor::SequenceStore& store () { return *step ().store; }

    Sim::ProjectManager projects;
    Sim::Project& song = projects.createProject ("Song");
    Sim::Track& vocals = song.root ().addInstrumentTrack ("Vocals");
    Sim::Track& chorus = song.root ().addInstrumentTrack ("Chorus");
    Sim::Part& vocalPart = vocals.addPart (0.0, 8.0);
    Sim::Part& chorusPart = chorus.addPart (0.0, 8.0);
    Sim::SvsPlugin vocalSynth {"vocal synth"};
    Sim::SvsPlugin chorusSynth {"chorus synth"};
    TraceListener trace;
    Zelmor::SVSHostList svsHosts;
    uint64_t nextTrackId = 1;
    Zelmor::SequenceEditStepManager steps;
};

TEST_F (EditStepTest, QueriesAnswerWithoutAFace)
{
    pass (song, nullptr);
    int marker = 0;
    void* out = &marker;
    const TUID anything = INLINE_UID (1, 2, 3, 4);
    EXPECT_EQ (step ().queryInterface (anything, &out), kResultOk);
    EXPECT_EQ (out, &marker);
}

TEST_F (EditStepTest, ReportChangePassesAPendingChangeOnOnce)
{
    pass (song, nullptr);
    Sim::StepChangeSink& sink = song.stepChanges ();
    step ().pending = false;
    EXPECT_EQ (step ().reportChange (&sink), kResultOk);
    EXPECT_TRUE (sink.marked ().empty ());

    step ().pending = true;
    step ().reportChange (&sink);
    step ().reportChange (&sink);
    EXPECT_EQ (sink.marked (), (std::vector<IHostProject*> {song.hostProject ()}));
    step ().pending = true;
    EXPECT_EQ (step ().reportChange (nullptr), kResultOk);
    EXPECT_FALSE (step ().pending);
}

TEST_F (EditStepTest, UndoOfAnEmptyFirstSightMovesTheCursorsAndSendsTheStoredNotes)
{
    pass (song, nullptr);  // Vocals, empty, is the one track recorded
    ASSERT_EQ (store ().history, (std::vector<int32_t> {1}));
    EXPECT_TRUE (store ().tracks.at (1).undoStack.back ().empty ());

    vocalPart.addNote (1.0, 2.0, 60, "ka");
    pass (song, nullptr);  // sent, not recorded
    ASSERT_FALSE (vocalSynth.notes ().empty ());

    Sim::CallLog::clear ();
    step ().undo ();
    EXPECT_EQ (store ().cursor, -1);
    EXPECT_EQ (store ().stepNames.at (1).cursor, -1);
    EXPECT_TRUE (vocalSynth.notes ().empty ());
    // The synthesiser has the restored notes before the listener hears that the undo is done.
    const std::initializer_list<const char*> heard {"willUndo", "ISvsSequenceSink::sequenceChanged", "didUndo",
                                                    "willRedo", "didRedo"};
    EXPECT_EQ (Sim::CallLog::only (heard),
               (std::vector<std::string> {"willUndo", "ISvsSequenceSink::sequenceChanged", "didUndo"}));

    // Beyond either end of the history there is nothing to move, and the host hears no exception.
    step ().undo ();
    step ().redo ();
    step ().redo ();
    EXPECT_EQ (store ().cursor, 0);
    EXPECT_EQ (Sim::CallLog::only (heard).size (), 6u);
}

TEST_F (EditStepTest, UndoAndRedoOfAnInactiveProjectMoveOnlyTheStore)
{
    Sim::Note& note = vocalPart.addNote (1.0, 2.0, 60, "ka");
    pass (song, nullptr);
    edit (song, [&] { note.setText ("lyrics", "ki"); });
    ASSERT_EQ (store ().history, (std::vector<int32_t> {1, 1, 2}));  // Vocals, then the empty Chorus

    Sim::Project& other = projects.createProject ("Other");
    projects.activate (other);
    const int told = vocalSynth.sequenceChangedCalls () + chorusSynth.sequenceChangedCalls ();
    step ().undo ();
    step ().undo ();
    EXPECT_EQ (store ().tracks.at (1).notes.at (0).lyric.rfind ("ka", 0), 0u);
    step ().redo ();
    step ().redo ();
    EXPECT_EQ (store ().cursor, 2);
    EXPECT_EQ (vocalSynth.sequenceChangedCalls () + chorusSynth.sequenceChangedCalls (), told);
}

TEST_F (EditStepTest, RecordingFollowsTheHostsEdits)
{
    Sim::Note& sung = vocalPart.addNote (1.0, 2.0, 60, "ka");
    Sim::Note& backing = chorusPart.addNote (1.0, 2.0, 64, "ra");
    pass (song, nullptr);
    ASSERT_EQ (steps.steps.size (), 1u);
    EXPECT_EQ (store ().tracks.size (), 1u);  // only the first track visited

    // Vocals changed and Chorus is seen for the first time: the one step, twice.
    Sim::EditContext& both = edit (song, [&] { sung.setText ("lyrics", "ko"); });
    EXPECT_EQ (both.steps (), (std::vector<IEditStep*> {&step (), &step ()}));
    EXPECT_EQ (store ().history, (std::vector<int32_t> {1, 1, 2}));
    EXPECT_EQ (backing.attrText ("lyph"), backing.lyric ());

    // Each synthesiser hears its list first; a changed track's step enters the edit
    // before its notes are written.
    Sim::CallLog::clear ();
    edit (song, [&] { sung.setText ("lyrics", "sa"); });
    EXPECT_EQ (Sim::CallLog::trace ({"ISvsSequenceSink::sequenceChanged", "IProjectEditContext::addEditStep",
                                     "INoteText::setValue"}),
               (std::vector<std::string> {"ISvsSequenceSink::sequenceChanged vocal synth",
                                          "IProjectEditContext::addEditStep edit",
                                          "INoteText::setValue Vocals part 1 note 1",
                                          "INoteText::setValue Vocals part 1 note 1",
                                          "ISvsSequenceSink::sequenceChanged chorus synth"}));
}

TEST_F (EditStepTest, AClosedProjectsStepIsRetiredByTheNextRecording)
{
    Sim::Note& sung = vocalPart.addNote (1.0, 2.0, 60, "ka");
    pass (song, nullptr);
    edit (song, [&] { sung.setText ("lyrics", "ki"); });
    Zelmor::SequenceEditStep* old = &step ();
    old->closed = true;  // as the agent does when the host removes the project

    pass (song, nullptr);  // no edit: the closed step is still the project's and blocks recording
    EXPECT_EQ (old->project, song.hostProject ());

    Sim::CallLog::clear ();
    Sim::EditContext& context = edit (song, [&] { sung.setText ("lyrics", "ko"); });
    EXPECT_EQ (old->refCount, 0u);
    EXPECT_EQ (old->project, nullptr);
    EXPECT_EQ (old->store->history, (std::vector<int32_t> {1}));  // recorded anew into the reset store
    ASSERT_EQ (steps.steps.size (), 2u);
    // Vocals handed null to the host; Chorus found no step and made one.
    EXPECT_EQ (Sim::CallLog::count ("IProjectEditContext::addEditStep"), 2);
    EXPECT_EQ (context.steps (), (std::vector<IEditStep*> {steps.steps[1].get ()}));
}

} // namespace
