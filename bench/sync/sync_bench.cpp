// The idle pass in its steady state: every note already written back, so the
// pass reads, sends and finds nothing to record. Beside it the bare walk that
// finds the synthesisers, as the floor of any pass.
#include "agent/agent.h"
#include "sync/project_walk.h"
#include "workbench/sim/call_log.h"
#include "workbench/sim/folder.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/note.h"
#include "workbench/sim/part.h"
#include "workbench/sim/project.h"
#include "workbench/sim/project_manager.h"
#include "workbench/sim/svs_plugin.h"
#include "workbench/sim/track.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

using namespace Steinberg;

namespace {

constexpr int kNotesPerTrack = 500;

/** A host with one active project of `tracks` synthesiser tracks, and an agent that has synced it. */
struct SteadyProject
{
    explicit SteadyProject (int tracks)
    {
        Sim::CallLog::setRecording (false);
        for (int t = 0; t < tracks; ++t)
        {
            synths.push_back (std::make_unique<Sim::SvsPlugin> ("synth " + std::to_string (t)));
            auto& track = song.root ().addInstrumentTrack ("Track " + std::to_string (t));
            track.addSlot ("Slot 1", synths.back ()->unknown ());
            auto& part = track.addPart (0.0, kNotesPerTrack * 0.5);
            for (int n = 0; n < kNotesPerTrack; ++n)
            {
                // As a write-back leaves a note: lyric with hint, the same stored copy, seen.
                auto& note = part.addNote (n * 0.5, n * 0.5 + 0.4, 60 + n % 12, "la[l aa]");
                note.setText ("phoneme", "l aa");
                note.setAttr ("lyph", Sim::Value::text ("la[l aa]"));
                note.setAttr ("svsn", Sim::Value (int64_t {1}));
            }
        }
        agent = new Kt::CantorelaBetaAgent;
        agent->initialize (host.context ());
        host.projectManager ().addProject (song);
        host.projectManager ().activate (song);
    }
    ~SteadyProject ()
    {
        agent->terminate ();
        host.projectManager ().clearHistories ();
        agent->release ();
    }

    std::vector<std::unique_ptr<Sim::SvsPlugin>> synths;
    Sim::HostServices host;
    Sim::Project& song = host.projectManager ().createProject ("Song");
    Kt::CantorelaBetaAgent* agent = nullptr;
};

void report (benchmark::State& state, int64_t hostCallsBefore)
{
    const double notes = static_cast<double> (state.range (0)) * kNotesPerTrack;
    const double calls = static_cast<double> (Sim::CallLog::hostCalls () - hostCallsBefore);
    state.counters["host_calls_per_note"] = calls / (notes * static_cast<double> (state.iterations ()));
    state.counters["notes"] = notes;
}

void IdlePass (benchmark::State& state)
{
    SteadyProject project (static_cast<int> (state.range (0)));
    const int64_t before = Sim::CallLog::hostCalls ();
    for (auto _ : state)
        project.agent->runIdlePass ();
    report (state, before);
}

void PluginWalk (benchmark::State& state)
{
    SteadyProject project (static_cast<int> (state.range (0)));
    auto root = Zelmor::projectRoot (project.song.hostProject ());
    const int64_t before = Sim::CallLog::hostCalls ();
    for (auto _ : state)
    {
        Zelmor::PluginList plugins;
        Zelmor::collectSvsPlugins (root.get (), plugins);
        benchmark::DoNotOptimize (plugins.size ());
    }
    report (state, before);
}


/** A host with one project and a fresh agent, built outside the timed part of an iteration. */
struct FreshAgent
{
    FreshAgent ()
    {
        Sim::CallLog::setRecording (false);
        agent = new Kt::CantorelaBetaAgent;
        agent->initialize (host.context ());
    }
    ~FreshAgent ()
    {
        agent->terminate ();
        host.projectManager ().clearHistories ();
        agent->release ();
    }
    void open ()
    {
        host.projectManager ().addProject (song);
        host.projectManager ().activate (song);
    }
    FUnknown* hook () { return static_cast<IPluginBase*> (agent); }
    /** A track named `name` with a synthesiser of its own in its first slot, and one part as long as `length`. */
    Sim::Part& voiceTrack (const std::string& name, double length)
    {
        synths.push_back (std::make_unique<Sim::SvsPlugin> ("synth"));
        auto& track = song.root ().addInstrumentTrack (name);
        track.addSlot ("Slot 1", synths.back ()->unknown ());
        return track.addPart (0.0, length);
    }

    std::vector<std::unique_ptr<Sim::SvsPlugin>> synths;
    Sim::HostServices host;
    Sim::Project& song = host.projectManager ().createProject ("Song");
    Kt::CantorelaBetaAgent* agent = nullptr;
};

/** Many synthesisers: `range (0)` tracks of one note each, every track with its own synthesiser; one idle pass. */
void ManyTracks (benchmark::State& state)
{
    FreshAgent project;
    const int tracks = static_cast<int> (state.range (0));
    for (int t = 0; t < tracks; ++t)
    {
        project.synths.push_back (std::make_unique<Sim::SvsPlugin> ("synth " + std::to_string (t)));
        auto& track = project.song.root ().addInstrumentTrack ("Track " + std::to_string (t));
        track.addSlot ("Slot 1", project.synths.back ()->unknown ());
        track.addPart (0.0, 1.0).addNote (0.0, 0.5, 60, "la");
    }
    project.open ();
    const int64_t before = Sim::CallLog::hostCalls ();
    for (auto _ : state)
        project.agent->runIdlePass ();
    state.counters["host_calls"] = static_cast<double> (Sim::CallLog::hostCalls () - before)
                                   / static_cast<double> (state.iterations ());
}

/** One track of `range (0)` notes. The project's opening records the whole track, one insert a note. */
void LongTrackOpening (benchmark::State& state)
{
    for (auto _ : state)
    {
        state.PauseTiming ();
        {
            FreshAgent project;
            const auto count = static_cast<int> (state.range (0));
            auto& part = project.voiceTrack ("Vocals", count * 0.5);
            for (int n = 0; n < count; ++n)
                part.addNote (n * 0.5, n * 0.5 + 0.4, 60 + n % 12, "la");
            state.ResumeTiming ();
            project.open ();
            state.PauseTiming ();
        }
        state.ResumeTiming ();
    }
}

/** The same track after its opening: the user types one word on the note in its middle. */
void LongTrackEdit (benchmark::State& state)
{
    FreshAgent project;
    const auto count = static_cast<int> (state.range (0));
    auto& part = project.voiceTrack ("Vocals", count * 0.5);
    std::vector<Sim::Note*> notes;
    for (int n = 0; n < count; ++n)
        notes.push_back (&part.addNote (n * 0.5, n * 0.5 + 0.4, 60 + n % 12, "la"));
    project.open ();
    project.song.typeLyric (*notes.front (), "la", project.hook ());  // every note written back once
    bool flip = false;
    const int64_t before = Sim::CallLog::hostCalls ();
    for (auto _ : state)
    {
        project.song.typeLyric (*notes[notes.size () / 2], flip ? "love" : "sing", project.hook ());
        flip = !flip;
    }
    state.counters["host_calls_per_note"] = static_cast<double> (Sim::CallLog::hostCalls () - before)
                                            / (static_cast<double> (count) * static_cast<double> (state.iterations ()));
}

/** One host edit that types "a-b" `range (0)` times over as one word (200,000 times: 600 KB) on the first of
    eight notes. */
void HyphenatedLyric (benchmark::State& state)
{
    std::string lyric;
    for (int k = 0; k < state.range (0); ++k)
        lyric += "a-b";
    for (auto _ : state)
    {
        state.PauseTiming ();
        {
            FreshAgent project;
            auto& part = project.voiceTrack ("Vocals", 8.0);
            std::vector<Sim::Note*> notes;
            for (int n = 0; n < 8; ++n)
                notes.push_back (&part.addNote (n, n + 0.5, 60));
            project.open ();
            state.ResumeTiming ();
            project.song.typeLyric (*notes.front (), lyric, project.hook ());
            state.PauseTiming ();
        }
        state.ResumeTiming ();
    }
    state.counters["bytes"] = static_cast<double> (lyric.size ());
}

} // namespace

BENCHMARK (IdlePass)->Arg (1)->Arg (8)->Arg (32)->Unit (benchmark::kMillisecond);
BENCHMARK (PluginWalk)->Arg (1)->Arg (8)->Arg (32)->Unit (benchmark::kMicrosecond);

BENCHMARK (ManyTracks)->Arg (100)->Arg (200)->Arg (400)->Unit (benchmark::kMillisecond);
BENCHMARK (LongTrackOpening)->Arg (10000)->Arg (40000)->Unit (benchmark::kMillisecond)->Iterations (1);
BENCHMARK (LongTrackEdit)->Arg (2000)->Arg (4000)->Arg (40000)->Unit (benchmark::kMillisecond);
BENCHMARK (HyphenatedLyric)->Arg (20000)->Arg (64000)->Arg (200000)->Unit (benchmark::kMillisecond)->Iterations (1);

BENCHMARK_MAIN ();
