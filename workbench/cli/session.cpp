#include "workbench/cli/session.h"

#include "workbench/cli/display.h"
#include "workbench/cli/host_loop.h"

#include "workbench/loader/module_loader.h"
#include "workbench/sim/agent_driver.h"
#include "workbench/sim/call_log.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/project.h"
#include "workbench/sim/project_manager.h"
#include "workbench/sim/svs_plugin.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

using namespace Steinberg;

namespace Workbench {

namespace {

using Clock = std::chrono::steady_clock;

double since (Clock::time_point t) { return std::chrono::duration<double> (Clock::now () - t).count (); }

struct Typed
{
    Sim::Note* note;
    std::string lyric;
};

/** Runs `f`; an exception that the agent lets out of a host call becomes a message. */
template <class F>
bool guarded (const char* what, std::string& error, F&& f)
{
    try
    {
        f ();
        return true;
    }
    catch (const std::exception& e)
    {
        error = std::string ("the agent threw during ") + what + ": " + e.what ();
    }
    catch (...)
    {
        error = std::string ("the agent threw during ") + what;
    }
    return false;
}

/** One instrument track: the MIDI tracks that carry its name, in file order. */
struct TrackParts
{
    std::string name;
    std::vector<const Score::SongTrack*> parts;
};

std::vector<TrackParts> partsByTrack (const Score::Song& song)
{
    std::vector<TrackParts> tracks;
    for (const auto& st : song.tracks)
    {
        auto same = std::find_if (tracks.begin (), tracks.end (),
                                  [&] (const TrackParts& t) { return t.name == st.name; });
        if (same == tracks.end ())
            tracks.push_back ({st.name, {&st}});
        else
            same->parts.push_back (&st);
    }
    return tracks;
}

} // namespace

bool run (const Score::Song& song, const std::string& projectName, const Options& options, Outcome& out,
          std::string& error)
{
    const auto start = Clock::now ();
    Sim::CallLog::setRecording (false);  // counters only: a long song makes millions of calls
    Sim::CallLog::clear ();

    auto t = Clock::now ();
    Sim::LoadedModule module (options.modulePath);
    if (!module.ok ())
    {
        error = module.error ().empty () ? "cannot load module " + options.modulePath : module.error ();
        return false;
    }
    if (!module.bundleEntry ())
    {
        error = "the module's entry point refused to start: " + module.path ();
        return false;
    }
    IPluginFactory* factory = module.getPluginFactory ();
    IPluginBase* agent = factory ? module.createService (factory) : nullptr;
    if (!agent)
    {
        error = "the module offers no service to create: " + (module.error ().empty () ? module.path () : module.error ());
        if (factory)
            factory->release ();
        module.bundleExit ();
        return false;
    }

    // The plug-ins outlive the host's project and the agent: both point at them.
    std::vector<std::unique_ptr<Sim::SvsPlugin>> synths;
    bool ok = true;
    {
        Sim::HostServices host;
        if (agent->initialize (host.context ()) != kResultOk)
        {
            error = "the agent refused to initialise";
            agent->release ();
            factory->release ();
            module.bundleExit ();
            return false;
        }
        out.timing.load = since (t);

        t = Clock::now ();
        auto& manager = host.projectManager ();
        Sim::Project& project = manager.createProject (projectName);
        project.time ().setTempo (song.tempi.empty () ? 120.0 : song.tempi.front ().bpm);
        for (const auto& change : song.tempi)
            if (change.beat > 0.0)
                project.time ().addTempoChange (change.beat, change.bpm);

        std::vector<Typed> typing;
        std::vector<std::string> names;
        std::vector<std::vector<Sim::Note*>> trackNotes;
        for (const auto& group : partsByTrack (song))
        {
            auto& track = project.root ().addInstrumentTrack (group.name);
            names.push_back (group.name);
            trackNotes.emplace_back ();
            synths.push_back (std::make_unique<Sim::SvsPlugin> (group.name));
            track.addSlot ("Slot 1", synths.back ()->unknown ());
            for (std::size_t i = 0; i < group.parts.size (); ++i)
            {
                const auto& notes = group.parts[i]->notes;
                double end = 0.0;
                for (const auto& n : notes)
                    end = std::max (end, n.end);
                // The first part starts with the song; a later one with its own first note,
                // so that it overlaps the part before when it enters while that one sings.
                // Its content starts with it, so the notes keep their times in the song.
                auto& part = track.addPart (i == 0 ? 0.0 : notes.front ().start, end + 1.0);
                for (const auto& n : notes)
                {
                    Sim::Note& note = part.addNote (n.start, n.end, n.pitch);
                    trackNotes.back ().push_back (&note);
                    if (!n.lyric.empty ())
                        typing.push_back ({&note, n.lyric});
                }
            }
        }
        Sim::AgentDriver driver (host, agent);
        ok = guarded ("the opening of the project", error, [&] {
            manager.addProject (project);
            manager.activate (project);
        });
        out.timing.build = since (t);

        auto idlePasses = [&] {
            for (int i = 0; i < options.idlePasses; ++i)
            {
                if (options.paced)
                {
                    std::this_thread::sleep_for (std::chrono::milliseconds (1010));
                    driver.idle ();
                }
                else
                    manager.refresh (project);
                ++out.timing.idleCalls;
            }
        };

        t = Clock::now ();
        // The user types the words in the order of the song, one host edit each.
        if (ok)
            ok = guarded ("a lyric edit", error, [&] {
                for (auto& typed : typing)
                {
                    project.typeLyric (*typed.note, typed.lyric, agent);
                    ++out.timing.lyricEdits;
                }
            });
        out.timing.edits = since (t);

        t = Clock::now ();
        if (ok)
            ok = guarded ("an idle pass", error, idlePasses);
        out.timing.idle = since (t);

        t = Clock::now ();
        if (ok && (options.undo > 0 || options.redo > 0))
        {
            ok = guarded ("undo or redo", error, [&] {
                for (int i = 0; i < options.undo && project.undo (); ++i)
                    ++out.timing.undone;
                for (int i = 0; i < options.redo && project.redo (); ++i)
                    ++out.timing.redone;
                idlePasses ();
            });
            if (out.timing.undone < options.undo)
                out.notices.push_back ("the history held only " + std::to_string (out.timing.undone)
                                       + " edit(s) to undo");
            if (out.timing.redone < options.redo)
                out.notices.push_back ("only " + std::to_string (out.timing.redone) + " edit(s) could be redone");
        }
        out.timing.history = since (t);

        if (ok && options.showEditor)
        {
            std::string reason;
            if (void* display = openDisplay (reason))
            {
                driver.action ("Cantorela Beta Agent", "Show Editor");
                // The host's main loop: idle calls are what let the window paint.
                const auto until = Clock::now () + std::chrono::duration<double> (options.editorSeconds);
                while (Clock::now () < until)
                {
                    dispatchWindowMessages ();
                    driver.idle ();
                    std::this_thread::sleep_for (std::chrono::milliseconds (20));
                }
                closeDisplay (display);
            }
            else
                out.notices.push_back (reason);
        }

        // What the host holds now, with the texts that the agent wrote back.
        for (std::size_t i = 0; i < synths.size (); ++i)
        {
            Received r {names[i], "Slot 1", synths[i]->title (), synths[i]->notes (), {}, {}};
            for (const Sim::Note* note : trackNotes[i])
                r.hostNotes.push_back ({note->start (), note->end (), project.time ().secondsToBeats (note->start ()),
                                        project.time ().secondsToBeats (note->end ()), note->pitch (),
                                        note->lyric ()});
            r.lyrics = lyricsOfRecords (r.notes, r.hostNotes);
            out.synthesisers.push_back (std::move (r));
        }
        out.tempi = song.tempi.empty () ? std::vector<Score::TempoChange> {{0.0, 120.0}} : song.tempi;
        out.timing.hostCalls = Sim::CallLog::hostCalls ();

        // A host's end: the project goes, the agent is terminated, the histories
        // let the agent's steps go, and the last reference is dropped.
        t = Clock::now ();
        std::string closing;
        const bool closed = guarded ("the closing of the project", closing, [&] {
            manager.deactivate ();
            manager.removeProject (project);
        });
        if (ok && !closed)
        {
            ok = false;
            error = closing;
        }
        agent->terminate ();
        manager.clearHistories ();
        agent->release ();
    }
    factory->release ();
    module.bundleExit ();
    module.unload ();
    out.timing.teardown = since (t);
    out.timing.total = since (start);
    return ok;
}

} // namespace Workbench
