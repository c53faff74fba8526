// What the workbench does after the run, for a song of 400 notes: the table,
// the JSON, the piano roll written as PNG (its pages), and the search for what
// is not sung, which converts each word once more.
#include "workbench/cli/piano_roll.h"
#include "workbench/cli/report.h"
#include "workbench/cli/session.h"
#include "workbench/cli/unsung.h"
#include "score/midi_song.h"
#include "songs/generator/compose.h"

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

const Workbench::Outcome& long400 ()
{
    static const Workbench::Outcome outcome = [] {
        Score::Song song;
        std::string error;
        Workbench::Options options;
        options.modulePath = CANTORELA_MODULE_PATH;
        Workbench::Outcome out;
        if (!Score::readMidiSong (Songs::long400 (), song, error) || !Workbench::run (song, "long400.mid", options, out, error))
            std::fprintf (stderr, "%s\n", error.c_str ());
        return out;
    }();
    return outcome;
}

void Table (benchmark::State& state)
{
    const auto& outcome = long400 ();
    for (auto _ : state)
        benchmark::DoNotOptimize (Workbench::table ("long400.mid", outcome));
}
BENCHMARK (Table)->Unit (benchmark::kMillisecond);

void Json (benchmark::State& state)
{
    const auto& outcome = long400 ();
    for (auto _ : state)
        benchmark::DoNotOptimize (Workbench::json ("long400.mid", outcome));
}
BENCHMARK (Json)->Unit (benchmark::kMillisecond);

void Unsung (benchmark::State& state)
{
    const auto& outcome = long400 ();
    std::size_t found = 0;
    for (auto _ : state)
        found = Workbench::unsungSounds (outcome).size ();
    state.counters["notices"] = static_cast<double> (found);
}
BENCHMARK (Unsung)->Unit (benchmark::kMillisecond);

void PianoRoll (benchmark::State& state)
{
    const auto& outcome = long400 ();
    std::string error;
    for (auto _ : state)
        if (!Workbench::writePianoRoll (outcome, {}, "long400.mid", "/tmp/trusttmp/bench-roll.png", error))
            state.SkipWithError (error.c_str ());
}
BENCHMARK (PianoRoll)->Unit (benchmark::kMillisecond)->UseRealTime ();

} // namespace

BENCHMARK_MAIN ();
