#include "tests/hardening/host_text_case.h"

#include "sequence/undo/edit_step_manager.h"
#include "svs/svs_host_list.h"
#include "sync/plugin_binding.h"
#include "sync/sync_pass.h"
#include "workbench/sim/call_log.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/project.h"
#include "workbench/sim/svs_plugin.h"
#include "workbench/sim/tracker.h"

#include <utf8.h>

#include <cstring>
#include <functional>
#include <stdexcept>

namespace Hardening {
namespace {

// Far past any fixed buffer or the longest dictionary entry, small enough to keep a fuzz run
// at hundreds of cases a second; host_text_test.cpp takes texts of 65536 units on its own.
constexpr std::size_t kMaxRepeatUnits = 1 << 13;
constexpr int kNotes = 4;

std::vector<std::u16string> splitTexts (const uint8_t* data, std::size_t size)
{
    std::vector<std::u16string> texts (1);
    for (std::size_t i = 0; i + 1 < size; i += 2)
    {
        const char16_t unit = static_cast<char16_t> (data[i] | (data[i + 1] << 8));
        if (unit == 0)
            texts.emplace_back ();
        else
            texts.back ().push_back (unit);
    }
    for (auto& text : texts)
    {
        if (text.size () < 2 || text[0] != 0xFFFF)
            continue;
        const std::size_t want = std::min<std::size_t> (static_cast<std::size_t> (text[1]) * 8, kMaxRepeatUnits);
        const std::u16string pattern = text.size () > 2 ? std::u16string (text.begin () + 2, text.end ()) : u"a";
        std::u16string grown (std::max (want, pattern.size ()), u'a');
        for (std::size_t i = 0; i < grown.size (); ++i)
            grown[i] = pattern[i % pattern.size ()];
        text.swap (grown);
    }
    return texts;
}

/** Runs one pass and counts how it ended; the exceptions a pass may let out are expected here. */
void guarded (HostTextOutcome& outcome, const std::function<void ()>& pass)
{
    try
    {
        pass ();
        ++outcome.passesRun;
    }
    catch (const utf8::exception&)
    {
        ++outcome.utf8Errors;
    }
    catch (const std::length_error&)
    {
        ++outcome.lengthErrors;
    }
    catch (const std::out_of_range&)
    {
        ++outcome.rangeErrors;
    }
}

bool wellFormed (const std::vector<SVS::SVSNote>& notes)
{
    // Long hint tokens may run on across entries and parameters by design; what they
    // must never reach is anything before the entries, nor the count's bounds.
    for (const auto& note : notes)
    {
        if (note.phonemeCount < 1 || note.phonemeCount > 8)
            return false;
        if (note.fixedValueA != 4 || note.fixedValueB != 4 || note.reserved0 != 0 || note.reserved1 != 0)
            return false;
        if (!(note.startTime <= note.endTime))
            return false;
    }
    return true;
}

} // namespace

template <class Take>
void runProject (HostTextOutcome& outcome, Take& take);

HostTextOutcome runHostTextCase (const uint8_t* data, std::size_t size)
{
    return runHostTextCase (splitTexts (data, size));
}

HostTextOutcome runHostTextCase (const std::vector<std::u16string>& texts)
{
    std::size_t next = 0;
    auto take = [&] () -> std::u16string { return next < texts.size () ? texts[next++] : std::u16string (); };

    HostTextOutcome outcome;
    Sim::Tracker::reset ();
    Sim::CallLog::clear ();  // the simulated host's record of calls would only grow
    runProject (outcome, take);
    outcome.referencesBalanced = Sim::Tracker::report ().empty ();
    Sim::Tracker::reset ();  // frees the iterators it kept after their release
    return outcome;
}

template <class Take>
void runProject (HostTextOutcome& outcome, Take& take)
{
    Sim::SvsPlugin synth ("synth");  // outlives the hosts, which detach from it
    Sim::HostServices host;
    auto& manager = host.projectManager ();
    Sim::Project& project = manager.createProject ("p");
    project.root ().setRawName (take ());
    Sim::Track& track = project.root ().addInstrumentTrack ("t");
    track.setRawName (take ());
    track.addSlot ("Slot 1", synth.unknown ()).setRawDisplayName (take ());
    Sim::Part& part = track.addPart (0.0, 2.0 * kNotes);
    part.setRawName (take ());
    std::vector<Sim::Note*> notes;
    for (int i = 0; i < kNotes; ++i)
    {
        Sim::Note& note = part.addNote (1.0 + i, 2.0 + i, 60 + i);
        note.setRawName (take ());
        // Odd notes keep what the agent would write, so both the changed and the unchanged paths are read.
        const std::u16string lyric = take ();
        note.setRawText ("lyrics", lyric);
        note.setRawText ("phoneme", take ());
        note.setAttr ("lyph", Sim::Value (i % 2 ? lyric : take ()));
        notes.push_back (&note);
    }
    manager.addProject (project);
    manager.activate (project);

    {
        Zelmor::SVSHostList hosts;
        uint64_t nextTrackId = 1;
        Zelmor::SequenceEditStepManager steps;
        steps.trackSender = &Zelmor::sendCurrentTrack;
        const Zelmor::AgentState state {hosts, nextTrackId, steps, &manager};
        Steinberg::IHostProject* face = project.hostProject ();

        // The first sight of the project, an edit with write-back, then a second edit over what was written.
        guarded (outcome, [&] {
            Zelmor::bindPlugins (face, hosts);
            Zelmor::syncPass (state, face, nullptr, true);
        });
        for (int round = 0; round < 2; ++round)
        {
            Sim::EditContext& context = project.beginEdit ();
            notes[round]->setRawText ("lyrics", take ());
            guarded (outcome, [&] {
                Zelmor::bindPlugins (face, hosts);
                Zelmor::syncPass (state, face, &context, true);
            });
            project.endEdit ();
        }
        guarded (outcome, [&] { Zelmor::syncPass (state, face, nullptr, false); });
        guarded (outcome, [&] { project.undo (); });
        guarded (outcome, [&] { project.redo (); });
        outcome.recordsWellFormed = wellFormed (synth.notes ());

        // The host lets its history go before the steps die, as it does before releasing the agent.
        manager.clearHistories ();
    }
}

} // namespace Hardening
