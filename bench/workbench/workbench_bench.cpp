// A whole song through the workbench: the module loaded, the project built,
// every lyric typed in its own host edit, idle passes, undo and redo,
// teardown. Wall time, as a user waits for it. Beside it, a MusicXML score of
// 2,000 notes with words: reading it (syllables joined into typed words), and
// its whole life.
#include "workbench/cli/session.h"
#include "workbench/loader/module_loader.h"
#include "workbench/loader/module_search.h"
#include "score/midi_song.h"
#include "score/musicxml_reader.h"
#include "songs/generator/compose.h"
#include "songs/generator/score_writer.h"

#include <benchmark/benchmark.h>

namespace {

void WholeSong (benchmark::State& state)
{
    Score::Song song;
    std::string error;
    if (!Score::readMidiSong (Songs::long400 (), song, error))
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

/** The search for the module when none is named, every place looked at (none holds it here). */
void FindModule (benchmark::State& state)
{
    std::string path, error;
    for (auto _ : state)
        benchmark::DoNotOptimize (Sim::findDefaultModule (path, error));
    state.counters["places"] = static_cast<double> (Sim::defaultModulePlaces ().size ());
}
BENCHMARK (FindModule)->Unit (benchmark::kMicrosecond);

/** The baseline the search comes before: loading the module, entering it and unloading it. */
void LoadModule (benchmark::State& state)
{
    for (auto _ : state)
    {
        Sim::LoadedModule module (CANTORELA_MODULE_PATH);
        benchmark::DoNotOptimize (module.bundleEntry () && module.bundleExit ());
    }
}
BENCHMARK (LoadModule)->Unit (benchmark::kMicrosecond)->UseRealTime ()->Iterations (20);

/** 2,000 notes of one voice: words of one to three syllables, held notes inside words and on extension lines. */
std::string score2000 ()
{
    const std::vector<std::vector<std::string>> phrases = {
        {"Lan-", "", "-tern"}, {"in"},        {"the"},          {"win-", "-dow"}, {"glow_", "", ""},
        {"won-", "-der-", "-ful"}, {"light"}, {"car-", "-ry"},   {"me"},           {"home_", ""},
        {"to-", "", "-night"}, {"zen-", "-dra-", "-vo"}, {"a"},  {"sing-", "-ing_", ""}, {"brave"}};
    const int scale[] = {60, 62, 64, 65, 67, 69, 71, 72, 71, 69, 67, 65, 64, 62};
    Songs::ScoreWriter s ("Two Thousand");
    s.part ("Voice").tempo (120);
    for (int n = 0, p = 0; n < 2000; ++p)
        for (const auto& text : phrases[static_cast<std::size_t> (p) % phrases.size ()])
            if (n < 2000)
            {
                s.note (scale[n % 14], n % 16 == 15 ? 1.0 : 0.5, {text});  // a longer note every sixteen
                ++n;
            }
    return s.text ();
}

bool readScore (const std::string& xml, Score::Song& song, std::string& error, bool raw = false)
{
    return Score::readMusicXml (reinterpret_cast<const std::uint8_t*> (xml.data ()), xml.size (), {1, raw}, song,
                               error);
}

/** Argument 1 reads the lyrics raw, each syllable on its note: the difference is what joining them into words costs. */
void ReadScore (benchmark::State& state)
{
    const std::string xml = score2000 ();
    Score::Song song;
    std::string error;
    for (auto _ : state)
        if (!readScore (xml, song, error, state.range (0) == 1))
            state.SkipWithError (error.c_str ());
    std::size_t words = 0;
    for (const auto& n : song.tracks.at (0).notes)
        words += !n.lyric.empty ();
    state.counters["notes"] = static_cast<double> (song.noteCount ());
    state.counters["words"] = static_cast<double> (words);
    state.counters["bytes"] = static_cast<double> (xml.size ());
}
BENCHMARK (ReadScore)->Arg (0)->Arg (1)->Unit (benchmark::kMillisecond)->UseRealTime ();

void WholeScore (benchmark::State& state)
{
    const std::string xml = score2000 ();
    Workbench::Options options;
    options.modulePath = CANTORELA_MODULE_PATH;
    Workbench::Outcome last;
    std::string error;
    for (auto _ : state)
    {
        Score::Song song;
        Workbench::Outcome outcome;
        if (!readScore (xml, song, error) || !Workbench::run (song, "Two Thousand", options, outcome, error))
        {
            state.SkipWithError (error.c_str ());
            return;
        }
        last = outcome;
    }
    state.counters["edits"] = last.timing.lyricEdits;
    state.counters["edits_s"] = last.timing.edits;
    state.counters["idle_s"] = last.timing.idle;
    state.counters["load_s"] = last.timing.load;
}
BENCHMARK (WholeScore)->Unit (benchmark::kMillisecond)->UseRealTime ()->Iterations (1);

} // namespace

BENCHMARK_MAIN ();
