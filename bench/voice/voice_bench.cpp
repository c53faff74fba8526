// The singing voice: planning alone, and the sing worker as its callers run it, a process per
// song. The worker on an empty song is the baseline: start-up (the engine and its voice loaded)
// with nothing sung. Real-time factor is wall time over the song's length; peak_rss_mb is the
// worker's peak resident memory.
#include "voice/song_plan.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/** A song of `seconds`: kana and English syllables, a rest every eighth note. */
std::vector<Voice::Note> song (double seconds)
{
    const char* syllables[] = {"k a", "r a", "s e", "N", "t o", "hh ah", "l ow", "w er l d"};
    std::vector<Voice::Note> notes;
    for (int i = 0; 0.5 * (i + 1) <= seconds; ++i)
    {
        Voice::Note n;
        n.start = 0.5 * i, n.end = 0.5 * (i + 1), n.midi = 48 + (i * 5) % 24;
        n.kind = i % 8 == 7 ? Voice::NoteKind::rest : Voice::NoteKind::note;
        std::istringstream words (syllables[i % 8]);
        for (std::string w; words >> w;)
            n.phonemes.push_back (w);
        notes.push_back (n);
    }
    return notes;
}

void PlanSong (benchmark::State& state)
{
    const auto notes = song (static_cast<double> (state.range (0)));
    for (auto _ : state)
        benchmark::DoNotOptimize (Voice::planSong (notes, 0.0));
    state.counters["notes"] = static_cast<double> (notes.size ());
}
BENCHMARK (PlanSong)->Arg (60)->Arg (600)->Unit (benchmark::kMillisecond);

#ifdef SING
void Worker (benchmark::State& state)
{
    const double seconds = static_cast<double> (state.range (0));
    const std::string dir = "/tmp/voice_bench_" + std::to_string (getpid ());
    const std::string input = dir + ".json", output = dir + ".wav";
    {
        std::ofstream json (input);
        json << "{\"notes\": [";
        const auto notes = song (seconds);
        for (std::size_t i = 0; i < notes.size (); ++i)
        {
            json << (i ? "," : "") << "{\"start\": " << notes[i].start << ", \"end\": " << notes[i].end
                 << ", \"midi\": " << notes[i].midi << ", \"kind\": \""
                 << (notes[i].kind == Voice::NoteKind::rest ? "rest" : "note") << "\", \"phonemes\": [";
            for (std::size_t k = 0; k < notes[i].phonemes.size (); ++k)
                json << (k ? "," : "") << "\"" << notes[i].phonemes[k] << "\"";
            json << "]}";
        }
        json << "]}";
    }
    long peakKb = 0;
    double wall = 0.0;
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now ();
        const pid_t child = fork ();
        if (child == 0)
        {
            execl (SING, SING, "--quiet", input.c_str (), "-o", output.c_str (), static_cast<char*> (nullptr));
            _exit (127);
        }
        int status = 0;
        rusage usage {};
        wait4 (child, &status, 0, &usage);
        if (!WIFEXITED (status) || WEXITSTATUS (status) != 0)
        {
            state.SkipWithError ("the worker failed");
            break;
        }
        peakKb = std::max (peakKb, usage.ru_maxrss);
        wall += std::chrono::duration<double> (std::chrono::steady_clock::now () - begin).count ();
    }
    std::remove (input.c_str ());
    std::remove (output.c_str ());
    state.counters["song_s"] = seconds;
    state.counters["peak_rss_mb"] = static_cast<double> (peakKb) / 1024.0;
    if (seconds > 0.0 && state.iterations () > 0)
        state.counters["real_time_factor"] = wall / (static_cast<double> (state.iterations ()) * seconds);
}
BENCHMARK (Worker)->Arg (0)->Arg (60)->Arg (600)->Unit (benchmark::kMillisecond)->UseRealTime ()->Iterations (3);
#endif

} // namespace

BENCHMARK_MAIN ();
