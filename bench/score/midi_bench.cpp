// Reading a Standard MIDI File of 1,000,000 events: the bytes into events, and
// the events into a song (notes paired, words read by their convention,
// placed and typed). Two layouts: words in the melody's own track, and a words
// track apart over eight voices, where the reader must find the one that sings.
#include "score/midi_song.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

const char* const words[] = {"Lan-", "tern", "in", "the", "win-", "dow", "glow", "won-", "der-", "ful", "light", "home"};
const int scale[] = {60, 62, 64, 65, 67, 69, 71, 72, 71, 69, 67, 65, 64, 62};

void addNote (Score::MidiTrack& t, std::uint64_t at, int channel, int pitch)
{
    t.events.push_back ({at, Score::MidiEvent::NoteOn, channel, pitch, 90, 0, {}});
    t.events.push_back ({at + 240, Score::MidiEvent::NoteOff, channel, pitch, 0, 0, {}});
}

/** 1,000,000 events. Apart: a words track and eight voices on the beat; else a melody with its words and a piano. */
std::vector<std::uint8_t> millionEvents (bool apart)
{
    Score::MidiFile f;
    f.division = 480;
    f.tracks.resize (apart ? 10 : 3);
    f.tracks[0].events.push_back ({0, Score::MidiEvent::Tempo, 0, 0, 0, 500000, {}});
    const std::size_t lyrics = apart ? 200000 : 250000;
    Score::MidiTrack& text = f.tracks[1];
    for (std::size_t i = 0; i < lyrics; ++i)
    {
        const std::uint64_t at = i * 240;
        text.events.push_back ({at, Score::MidiEvent::Lyric, 0, 0, 0, 0, words[i % 12]});
        if (!apart)
            addNote (text, at, 0, scale[i % 14]);
    }
    // The other voices: eight of 50,000 notes each (the first on the words' beats), or a piano of 125,000.
    for (std::size_t v = 2; v < f.tracks.size (); ++v)
        for (std::size_t i = 0; i < (apart ? 50000u : 125000u); ++i)
            addNote (f.tracks[v], (apart ? 4 * i + (v == 2 ? 0 : 2) : 2 * i) * 240 + (v > 2 ? v : 0),
                     static_cast<int> (v), scale[i % 14] - 12);
    return Score::writeMidi (f);
}

void ParseMidi (benchmark::State& state)
{
    const auto bytes = millionEvents (state.range (0) == 1);
    for (auto _ : state)
    {
        Score::MidiFile file;
        std::string error;
        if (!Score::parseMidi (bytes.data (), bytes.size (), file, error))
            state.SkipWithError (error.c_str ());
        benchmark::DoNotOptimize (file.tracks.data ());
    }
    state.counters["MB"] = static_cast<double> (bytes.size ()) / 1e6;
}
BENCHMARK (ParseMidi)->Arg (0)->Arg (1)->Unit (benchmark::kMillisecond);

void ReadMidiSong (benchmark::State& state)
{
    const auto bytes = millionEvents (state.range (0) == 1);
    Score::MidiFile file;
    std::string error;
    if (!Score::parseMidi (bytes.data (), bytes.size (), file, error))
        state.SkipWithError (error.c_str ());
    std::size_t typed = 0;
    for (auto _ : state)
    {
        Score::Song song;
        if (!Score::readMidiSong (file, song, error))
            state.SkipWithError (error.c_str ());
        typed = 0;
        for (const auto& t : song.tracks)
            for (const auto& n : t.notes)
                typed += n.lyric.empty () ? 0 : 1;
    }
    state.counters["typed"] = static_cast<double> (typed);
}
BENCHMARK (ReadMidiSong)->Arg (0)->Arg (1)->Unit (benchmark::kMillisecond)->Iterations (3);

} // namespace

BENCHMARK_MAIN ();
