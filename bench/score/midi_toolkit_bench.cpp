// The toolkit's own MIDI file class beside ours, on the same 1,000,000-event
// file: the bytes into events, and for the toolkit its note-offs matched to
// their note-ons as a song reader needs. Why the reader keeps its own parser.
#include "score/midi_file.h"

#include <benchmark/benchmark.h>
#include <juce_audio_basics/juce_audio_basics.h>

namespace {

std::vector<std::uint8_t> millionEvents ()
{
    const char* const words[] = {"Lan-", "tern", "in", "the", "win-", "dow", "glow", "light"};
    Score::MidiFile f;
    f.division = 480;
    f.tracks.resize (2);
    for (std::uint64_t i = 0; i < 250000; ++i)
    {
        const int pitch = 60 + static_cast<int> (i % 12);
        f.tracks[0].events.push_back ({i * 240, Score::MidiEvent::Lyric, 0, 0, 0, 0, words[i % 8]});
        f.tracks[0].events.push_back ({i * 240, Score::MidiEvent::NoteOn, 0, pitch, 90, 0, {}});
        f.tracks[0].events.push_back ({i * 240 + 240, Score::MidiEvent::NoteOff, 0, pitch, 0, 0, {}});
        if (i % 2 == 0)
        {
            f.tracks[1].events.push_back ({i * 240, Score::MidiEvent::NoteOn, 1, pitch - 12, 90, 0, {}});
            f.tracks[1].events.push_back ({i * 240 + 480, Score::MidiEvent::NoteOff, 1, pitch - 12, 0, 0, {}});
        }
    }
    return Score::writeMidi (f);
}

void Ours (benchmark::State& state)
{
    const auto bytes = millionEvents ();
    for (auto _ : state)
    {
        Score::MidiFile file;
        std::string error;
        if (!Score::parseMidi (bytes.data (), bytes.size (), file, error))
            state.SkipWithError (error.c_str ());
        benchmark::DoNotOptimize (file.tracks.data ());
    }
}
BENCHMARK (Ours)->Unit (benchmark::kMillisecond);

void Toolkit (benchmark::State& state)
{
    const auto bytes = millionEvents ();
    const bool matchNoteOffs = state.range (0) == 1;
    for (auto _ : state)
    {
        juce::MemoryInputStream in (bytes.data (), bytes.size (), false);
        juce::MidiFile file;
        if (!file.readFrom (in, matchNoteOffs))
            state.SkipWithError ("not read");
        benchmark::DoNotOptimize (file.getNumTracks ());
    }
}
BENCHMARK (Toolkit)->Arg (0)->Arg (1)->Unit (benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN ();
