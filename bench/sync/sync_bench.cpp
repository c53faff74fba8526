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

} // namespace

BENCHMARK (IdlePass)->Arg (1)->Arg (8)->Arg (32)->Unit (benchmark::kMillisecond);
BENCHMARK (PluginWalk)->Arg (1)->Arg (8)->Arg (32)->Unit (benchmark::kMicrosecond);

BENCHMARK_MAIN ();
