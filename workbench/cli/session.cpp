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
#include <map>
#include <memory>
#include <optional>
#include <thread>

using namespace Steinberg;

namespace Workbench {

namespace {

using Clock = std::chrono::steady_clock;

/** Adds the time from its making to its end to `seconds`. */
class Stopwatch
{
public:
    explicit Stopwatch (double& seconds) : seconds_ (seconds) {}
    ~Stopwatch () { seconds_ += std::chrono::duration<double> (Clock::now () - start_).count (); }

private:
    double& seconds_;
    Clock::time_point start_ = Clock::now ();
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

/** The module as a host holds it: loaded, entered, with its factory and the one agent made from it. */
class ModuleHold
{
public:
    ModuleHold () = default;
    ModuleHold (const ModuleHold&) = delete;
    ModuleHold& operator= (const ModuleHold&) = delete;

    ~ModuleHold ()
    {
        releaseAgent ();
        if (factory_)
            factory_->release ();
        if (entered_)
            module_->bundleExit ();
        if (module_)
            module_->unload ();
    }

    /** Loads the module, calls its entry point, and makes the agent of its one "Service" class. */
    bool load (const std::string& path, std::string& error)
    {
        module_.emplace (path);
        if (!module_->ok ())
        {
            error = module_->error ().empty () ? "cannot load module " + module_->path () : module_->error ();
            return false;
        }
        if (!(entered_ = module_->bundleEntry ()))
        {
            error = "the module's entry point refused to start: " + module_->path ();
            return false;
        }
        factory_ = module_->getPluginFactory ();
        agent_ = factory_ ? module_->createService (factory_) : nullptr;
        if (!agent_)
            error = "the module offers no service to create: "
                    + (module_->error ().empty () ? module_->path () : module_->error ());
        return agent_ != nullptr;
    }

    IPluginBase* agent () const { return agent_; }

    /** The host's last reference to the agent, dropped while the host's services still stand. */
    void releaseAgent ()
    {
        if (agent_)
            agent_->release ();
        agent_ = nullptr;
    }

private:
    std::optional<Sim::LoadedModule> module_;
    bool entered_ = false;
    IPluginFactory* factory_ = nullptr;
    IPluginBase* agent_ = nullptr;
};

/** A note of the project that the user types a lyric on. */
struct Typed
{
    Sim::Note* note;
    std::string lyric;
};

/** The project built from the song: one instrument track with a synthesiser per song track name. */
struct SongProject
{
    Sim::Project* project = nullptr;
    std::vector<std::string> trackNames;
    std::vector<std::unique_ptr<Sim::SvsPlugin>> synths;  ///< outlive the project and the agent: both point at them
    std::vector<std::vector<Sim::Note*>> trackNotes;
    std::vector<std::vector<int>> trackParts;  ///< for each of `trackNotes`, the part it lies in
    std::vector<Typed> typing;  ///< in the order of the song
};

/** One instrument track: the song's tracks that carry its name, in file order. */
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

// --- The steps of a run, in the order they run -------------------------------------------------

/** The project in the host's tree: the tempo map, and per track its synthesiser and its parts' notes. */
void buildProject (Sim::ProjectManager& manager, const Score::Song& song, const std::string& name, SongProject& out)
{
    Sim::Project& project = manager.createProject (name);
    out.project = &project;
    project.time ().setTempo (song.tempi.empty () ? 120.0 : song.tempi.front ().bpm);
    for (const auto& change : song.tempi)
        if (change.beat > 0.0)
            project.time ().addTempoChange (change.beat, change.bpm);

    for (const auto& group : partsByTrack (song))
    {
        auto& track = project.root ().addInstrumentTrack (group.name);
        out.trackNames.push_back (group.name);
        out.trackNotes.emplace_back ();
        out.trackParts.emplace_back ();
        out.synths.push_back (std::make_unique<Sim::SvsPlugin> (group.name));
        track.addSlot ("Slot 1", out.synths.back ()->unknown ());
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
                out.trackNotes.back ().push_back (&note);
                out.trackParts.back ().push_back (static_cast<int> (i));
                if (!n.lyric.empty ())
                    out.typing.push_back ({&note, n.lyric});
            }
        }
    }
}

/** The user types the words in the order of the song, one host edit each. */
void typeWords (SongProject& song, FUnknown* agent, Timing& timing, const Options& options)
{
    for (std::size_t i = 0; i < song.typing.size (); ++i)
    {
        if (options.progress)
            options.progress ("typing the words", static_cast<double> (i) / static_cast<double> (song.typing.size ()));
        song.project->typeLyric (*song.typing[i].note, song.typing[i].lyric, agent);
        ++timing.lyricEdits;
    }
}

/** Idle passes: the host's project refresh, or, paced, real idle calls after the agent's interval. */
void idlePasses (const Options& options, Sim::ProjectManager& manager, Sim::Project& project,
                 Sim::AgentDriver& driver, Timing& timing)
{
    for (int i = 0; i < options.idlePasses; ++i)
    {
        if (options.paced)
        {
            std::this_thread::sleep_for (std::chrono::milliseconds (1010));
            driver.idle ();
        }
        else
            manager.refresh (project);
        ++timing.idleCalls;
    }
}

/** Back and forth through the host's own history; the agent's step follows. */
void undoAndRedo (const Options& options, Sim::Project& project, Timing& timing)
{
    for (int i = 0; i < options.undo && project.undo (); ++i)
        ++timing.undone;
    for (int i = 0; i < options.redo && project.redo (); ++i)
        ++timing.redone;
}

/** The agent's window, kept alive by the host's main loop for a while. */
void showEditor (const Options& options, Sim::AgentDriver& driver, std::vector<std::string>& notices)
{
    std::string reason;
    void* display = openDisplay (reason);
    if (!display)
    {
        notices.push_back (reason);
        return;
    }
    driver.action ("Cantorela Beta Agent", "Show Editor");
    // Idle calls are what let the window paint.
    const auto until = Clock::now () + std::chrono::duration<double> (options.editorSeconds);
    while (Clock::now () < until)
    {
        dispatchWindowMessages ();
        driver.idle ();
        std::this_thread::sleep_for (std::chrono::milliseconds (20));
    }
    closeDisplay (display);
}

/** What each synthesiser holds now, beside the host's notes with the texts the agent wrote back. */
void collectReceived (const SongProject& song, std::vector<Received>& out)
{
    const auto& time = song.project->time ();
    std::map<const Sim::Note*, const std::string*> typed;
    for (const auto& t : song.typing)
        typed[t.note] = &t.lyric;
    for (std::size_t i = 0; i < song.synths.size (); ++i)
    {
        Received r {song.trackNames[i], "Slot 1", song.synths[i]->title (), song.synths[i]->notes (), {}, {}};
        for (std::size_t k = 0; k < song.trackNotes[i].size (); ++k)
        {
            const Sim::Note* note = song.trackNotes[i][k];
            const auto t = typed.find (note);
            r.hostNotes.push_back ({note->start (), note->end (), time.secondsToBeats (note->start ()),
                                    time.secondsToBeats (note->end ()), note->pitch (), note->lyric (),
                                    t == typed.end () ? std::string () : *t->second, song.trackParts[i][k]});
        }
        r.lyrics = lyricsOfRecords (r.notes, r.hostNotes);
        out.push_back (std::move (r));
    }
}

} // namespace

bool run (const Score::Song& song, const std::string& projectName, const Options& options, Outcome& out,
          std::string& error)
{
    Stopwatch total (out.timing.total);
    Sim::CallLog::setRecording (false);  // counters only: a long song makes millions of calls
    Sim::CallLog::clear ();

    // Declared in the order a host lets them go, backwards: the synthesisers
    // outlive the module, the module the host's services.
    std::optional<Stopwatch> teardown;
    SongProject project;
    ModuleHold module;
    {
        Stopwatch load (out.timing.load);
        if (!module.load (options.modulePath, error))
            return false;
    }
    IPluginBase* agent = module.agent ();

    Sim::HostServices host;
    {
        Stopwatch load (out.timing.load);
        if (agent->initialize (host.context ()) != kResultOk)
        {
            error = "the agent refused to initialise";
            return false;
        }
    }
    auto& manager = host.projectManager ();
    Sim::AgentDriver driver (host, agent);

    bool ok;
    if (options.progress)
        options.progress ("building the project", 0.0);
    {
        Stopwatch build (out.timing.build);
        buildProject (manager, song, projectName, project);
        ok = guarded ("the opening of the project", error, [&] {
            manager.addProject (*project.project);
            manager.activate (*project.project);
        });
    }
    if (ok)
    {
        Stopwatch edits (out.timing.edits);
        ok = guarded ("a lyric edit", error, [&] { typeWords (project, agent, out.timing, options); });
    }
    const auto step = [&] (const char* name)
    {
        if (options.progress)
            options.progress (name, 0.0);
    };
    if (ok)
    {
        step ("idle passes");
        Stopwatch idle (out.timing.idle);
        ok = guarded ("an idle pass", error,
                     [&] { idlePasses (options, manager, *project.project, driver, out.timing); });
    }
    if (ok && (options.undo > 0 || options.redo > 0))
    {
        step ("undo and redo");
        Stopwatch history (out.timing.history);
        ok = guarded ("undo or redo", error, [&] {
            undoAndRedo (options, *project.project, out.timing);
            idlePasses (options, manager, *project.project, driver, out.timing);
        });
        if (out.timing.undone < options.undo)
            out.notices.push_back ("the history held only " + std::to_string (out.timing.undone) + " edit(s) to undo");
        if (out.timing.redone < options.redo)
            out.notices.push_back ("only " + std::to_string (out.timing.redone) + " edit(s) could be redone");
    }
    if (ok && options.showEditor)
        showEditor (options, driver, out.notices);

    collectReceived (project, out.synthesisers);
    out.tempi = song.tempi.empty () ? std::vector<Score::TempoChange> {{0.0, 120.0}} : song.tempi;
    out.meters = song.meters;
    out.title = song.title;
    out.timing.hostCalls = Sim::CallLog::hostCalls ();

    // A host's end: the project goes, the agent is terminated, the histories let
    // the agent's steps go, the last reference is dropped; then the module is unloaded.
    teardown.emplace (out.timing.teardown);
    std::string closing;
    const bool closed = guarded ("the closing of the project", closing, [&] {
        manager.deactivate ();
        manager.removeProject (*project.project);
    });
    if (ok && !closed)
    {
        ok = false;
        error = closing;
    }
    agent->terminate ();
    manager.clearHistories ();
    module.releaseAgent ();
    return ok;
}

} // namespace Workbench
