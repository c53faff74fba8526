// A whole song of 400 notes through the workbench: the module loaded, the
// project built, every lyric typed in its own host edit, idle passes, undo
// and redo, teardown. Wall time, as a user waits for it.
#include "workbench/cli/session.h"
#include "workbench/songs/compose.h"

#include <benchmark/benchmark.h>

namespace {

void WholeSong (benchmark::State& state)
{
    Midi::Song song;
    std::string error;
    if (!Midi::buildSong (Songs::long400 (), song, error))
    {
        state.SkipWithError (error.c_str ());
        return;
    }
    Workbench::Options options;
    options.modulePath = CANTORELA_MODULE_PATH;
    options.undo = static_cast<int> (state.range (0));
    options.redo = options.undo;
    Workbench::Outcome last;
    for (auto _ : state)
    {
        Workbench::Outcome outcome;
        if (!Workbench::run (song, "Long Song", options, outcome, error))
        {
            state.SkipWithError (error.c_str ());
            return;
        }
        last = outcome;
    }
    state.counters["notes"] = static_cast<double> (song.noteCount ());
    state.counters["edits"] = last.timing.lyricEdits;
    state.counters["edits_s"] = last.timing.edits;
    state.counters["idle_s"] = last.timing.idle;
    state.counters["load_s"] = last.timing.load;
    state.counters["host_calls"] = static_cast<double> (last.timing.hostCalls);
}
BENCHMARK (WholeSong)->Arg (0)->Arg (20)->Unit (benchmark::kMillisecond)->UseRealTime ()->Iterations (3);

} // namespace

BENCHMARK_MAIN ();
