// Reading large songs from disk through the dispatch, as the workbench does: a
// MusicXML score of 50 MB and a Standard MIDI File of 1,000,000 events. Wall
// time a read, and the resident memory the read adds at its peak (one read,
// apart from the timed ones), against the file's size.
#include "score/midi_file.h"
#include "score/song_reader.h"
#include "songs/generator/score_writer.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <malloc.h>

namespace {

/** Words of one to three syllables, held notes inside words and on extension lines, as bench/workbench writes them. */
const std::vector<std::vector<std::string>> phrases = {
    {"Lan-", "", "-tern"}, {"in"},        {"the"},          {"win-", "-dow"}, {"glow_", "", ""},
    {"won-", "-der-", "-ful"}, {"light"}, {"car-", "-ry"},   {"me"},           {"home_", ""},
    {"to-", "", "-night"}, {"zen-", "-dra-", "-vo"}, {"a"},  {"sing-", "-ing_", ""}, {"brave"}};
const int scale[] = {60, 62, 64, 65, 67, 69, 71, 72, 71, 69, 67, 65, 64, 62};

/** Four voices with words, about `megabytes` of MusicXML. */
std::string bigScore (std::size_t megabytes)
{
    const int notesAPart = static_cast<int> (megabytes * 1000000 / 4 / 160);  // a note with words is ~160 bytes
    Songs::ScoreWriter s ("Long Score");
    for (int part = 0; part < 4; ++part)
    {
        s.part ("Voice " + std::to_string (part + 1)).tempo (120);
        for (int n = 0, p = 0; n < notesAPart; ++p)
            for (const auto& text : phrases[static_cast<std::size_t> (p) % phrases.size ()])
                if (n < notesAPart)
                {
                    s.note (scale[n % 14] - 12 * part, n % 16 == 15 ? 1.0 : 0.5, {text});
                    ++n;
                }
    }
    return s.text ();
}

/** Words of 80 syllables, each syllable held over a second note: the dearest words to type. */
std::string longWordScore ()
{
    Songs::ScoreWriter s ("Long Words");
    s.part ("Voice").tempo (120);
    for (int word = 0; word < 16; ++word)
        for (int syllable = 0; syllable < 80; ++syllable)
        {
            const std::string text = syllable == 0 ? "la-" : syllable == 79 ? "-la" : "-la-";
            s.note (scale[syllable % 14], 0.5, {text});
            s.note (scale[syllable % 14], 0.5, {""});
        }
    return s.text ();
}

/** 1,000,000 events: eight tracks of notes, each with a lyric, and a tempo track. */
std::vector<std::uint8_t> bigMidi ()
{
    Score::MidiFile f;
    f.division = 480;
    f.tracks.resize (9);
    f.tracks[0].events.push_back ({0, Score::MidiEvent::Tempo, 0, 0, 0, 500000, {}});
    for (std::size_t t = 1; t < 9; ++t)
        for (std::uint64_t i = 0, p = 0; f.tracks[t].events.size () + 3 <= 125000; ++p)
            for (const auto& text : phrases[p % phrases.size ()])
            {
                const std::uint64_t at = i++ * 240;
                const int pitch = scale[i % 14] - 12 * static_cast<int> (t % 3);
                if (!text.empty ())
                    f.tracks[t].events.push_back ({at, Score::MidiEvent::Lyric, 0, 0, 0, 0, text});
                f.tracks[t].events.push_back ({at, Score::MidiEvent::NoteOn, static_cast<int> (t), pitch, 90, 0, {}});
                f.tracks[t].events.push_back ({at + 240, Score::MidiEvent::NoteOff, static_cast<int> (t), pitch, 0, 0, {}});
                if (f.tracks[t].events.size () + 3 > 125000)
                    break;
            }
    return Score::writeMidi (f);
}

std::size_t statusKiB (const char* field)
{
    std::ifstream in ("/proc/self/status");
    for (std::string line; std::getline (in, line);)
        if (line.rfind (field, 0) == 0)
            return std::stoul (line.substr (std::strlen (field)));
    return 0;
}

/** Resident memory that `work` adds at its peak, in bytes: the high-water mark is reset first. */
double peakBytes (const std::function<void ()>& work)
{
    malloc_trim (0);
    std::ofstream ("/proc/self/clear_refs") << "5";
    const std::size_t before = statusKiB ("VmRSS:");
    work ();
    return 1024.0 * static_cast<double> (statusKiB ("VmHWM:") - before);
}

void readFile (benchmark::State& state, const std::string& path, std::size_t bytes, bool raw)
{
    Score::Song song;
    std::string error;
    auto read = [&] {
        Score::Song s;
        if (!Score::readSong (path, {1, raw}, s, error))
            state.SkipWithError (error.c_str ());
        song = std::move (s);
    };
    const double peak = peakBytes (read);
    for (auto _ : state)
        read ();
    state.counters["MB"] = static_cast<double> (bytes) / 1e6;
    state.counters["notes"] = static_cast<double> (song.noteCount ());
    state.counters["peak_MB"] = peak / 1e6;
    state.counters["peak_x_file"] = peak / static_cast<double> (bytes);
}

std::string written (const std::string& name, const std::string& bytes)
{
    const std::string path = (std::filesystem::temp_directory_path () / name).string ();
    std::ofstream (path, std::ios::binary) << bytes;
    return path;
}

/** Argument 1 reads the words raw, each syllable on its note: the reader alone, without the typing rule. */
void ReadMusicXml50MB (benchmark::State& state)
{
    static const std::string xml = bigScore (50);
    static const std::string path = written ("cantorela-bench-50mb.musicxml", xml);
    readFile (state, path, xml.size (), state.range (0) == 1);
}
BENCHMARK (ReadMusicXml50MB)->Arg (1)->Arg (0)->Unit (benchmark::kMillisecond)->UseRealTime ()->Iterations (3);

void ReadMusicXmlLongWords (benchmark::State& state)
{
    static const std::string xml = longWordScore ();
    static const std::string path = written ("cantorela-bench-long-words.musicxml", xml);
    readFile (state, path, xml.size (), state.range (0) == 1);
}
BENCHMARK (ReadMusicXmlLongWords)->Arg (1)->Arg (0)->Unit (benchmark::kMillisecond)->UseRealTime ()->Iterations (1);

void ReadMidiMillionEvents (benchmark::State& state)
{
    static const std::vector<std::uint8_t> midi = bigMidi ();
    static const std::string path = written ("cantorela-bench-1m.mid", std::string (midi.begin (), midi.end ()));
    readFile (state, path, midi.size (), state.range (0) == 1);
}
BENCHMARK (ReadMidiMillionEvents)->Arg (1)->Arg (0)->Unit (benchmark::kMillisecond)->UseRealTime ()->Iterations (3);

} // namespace
