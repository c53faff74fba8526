// The sing worker end to end: generated songs in, WAV files out, the sound measured.
#include "audio_probe.h"

#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

using namespace VoiceTest;
namespace fs = std::filesystem;

namespace {

struct N
{
    double start, end, midi;
    std::string phonemes;  // blank-separated; "rest" for a rest, a leading "-" for a continuation
};

std::string jsonOf (const std::vector<N>& notes, double duration = 0.0)
{
    std::ostringstream out;
    out << "{\"duration\": " << duration << ", \"notes\": [";
    for (std::size_t i = 0; i < notes.size (); ++i)
    {
        const auto& n = notes[i];
        out << (i ? ",\n" : "\n") << "{\"start\": " << n.start << ", \"end\": " << n.end << ", \"midi\": " << n.midi;
        if (n.phonemes == "rest")
            out << ", \"kind\": \"rest\"}";
        else
            out << ", \"kind\": \"" << (n.phonemes.rfind ("-", 0) == 0 ? "cont" : "note") << "\", \"phonemes\": \""
                << n.phonemes << "\"}";
    }
    return out.str () + "]}";
}

struct Sung
{
    int status = -1;
    std::string messages;  // standard error
    Sound sound;
    double seconds = 0.0;
};

/** Runs the worker on `json` in a fresh folder; `out.wav` there holds "old" before the run. */
Sung sing (const std::string& json, const std::string& args = "")
{
    const fs::path dir = fs::temp_directory_path () / ("sing_test_" + std::to_string (::getpid ()));
    fs::remove_all (dir);
    fs::create_directories (dir);
    std::ofstream (dir / "song.json") << json;
    std::ofstream (dir / "out.wav") << "old";
    const auto begin = std::chrono::steady_clock::now ();
    const std::string command = std::string (SING) + " " + args + " " + (dir / "song.json").string () + " -o "
                                + (dir / "out.wav").string () + " 2>" + (dir / "err.txt").string ();
    Sung run;
    run.status = WEXITSTATUS (std::system (command.c_str ()));
    run.seconds = std::chrono::duration<double> (std::chrono::steady_clock::now () - begin).count ();
    std::stringstream err;
    err << std::ifstream (dir / "err.txt").rdbuf ();
    run.messages = err.str ();
    run.sound = readWav ((dir / "out.wav").string ());
    std::stringstream wav;
    wav << std::ifstream (dir / "out.wav").rdbuf ();
    if (wav.str () == "old")
        run.sound.rate = -1;  // left untouched
    // Nothing else may be left behind: no temporary file of a half-written WAV.
    EXPECT_EQ (std::distance (fs::directory_iterator (dir), fs::directory_iterator ()), 3) << command;
    fs::remove_all (dir);
    return run;
}

} // namespace

// One sonorant-led note per semitone from MIDI 40 to 79, each after a rest, close vowels too: the pitch of the
// note's middle half, where its sonorant onset lands, and the silence of the rests.
TEST (Sing, PitchOnsetsAndRestsAcrossTheRange)
{
    const char* syllables[] = {"l aa", "m iy", "n aa", "w uw", "l ae", "m ih"};
    std::vector<N> notes;
    double t = 0.3;
    for (int midi = 40; midi <= 79; ++midi, t += 0.6)
        notes.push_back ({t, t + 0.4, static_cast<double> (midi), syllables[midi % 6]});
    const Sung run = sing (jsonOf (notes));
    ASSERT_EQ (run.status, 0) << run.messages;
    ASSERT_EQ (run.sound.rate, 44100);
    double worst = 0.0, late = 0.0, meanLate = 0.0;
    for (const auto& n : notes)
    {
        const double middle = 0.25 * (n.end - n.start);
        const double f0 = pitchHz (run.sound, n.start + middle, n.end - middle, hz (n.midi));
        ASSERT_GT (f0, 0.0) << "no pitch at MIDI " << n.midi;
        EXPECT_NEAR (centsOff (f0, n.midi), 0.0, 30.0) << "MIDI " << n.midi;
        worst = std::max (worst, std::fabs (centsOff (f0, n.midi)));

        // The onset: the first 10 ms whose level comes within 30 dB of the vowel's (a nasal's murmur
        // is quiet at a high pitch).
        const double vowel = levelDb (run.sound, n.start + middle, n.end - middle);
        double onset = n.start - 0.1;
        while (onset < n.end && levelDb (run.sound, onset, onset + 0.01) < vowel - 30.0)
            onset += 0.001;
        EXPECT_NEAR (onset + 0.005, n.start, 0.02) << "MIDI " << n.midi << " \"" << n.phonemes << "\"";
        late = std::max (late, std::fabs (onset + 0.005 - n.start));
        meanLate += std::fabs (onset + 0.005 - n.start) / static_cast<double> (notes.size ());

        EXPECT_LT (levelDb (run.sound, n.end + 0.05, n.end + 0.18), -50.0) << "rest after MIDI " << n.midi;
    }
    std::printf ("worst F0 error %.1f cents, onsets %.1f ms off on average, %.0f ms at worst\n", worst, 1000.0 * meanLate, 1000.0 * late);
}

// A vowel held for four seconds keeps its level: it is stretched at its centre, not at its decay.
TEST (Sing, LongVowelHoldsItsLevel)
{
    const Sung run = sing (jsonOf ({{0.5, 4.5, 57, "aa"}, {4.5, 5.0, 57, "rest"}}));
    ASSERT_EQ (run.status, 0) << run.messages;
    const double first = levelDb (run.sound, 0.6, 0.85);
    for (double t = 0.85; t + 0.25 < 4.45; t += 0.25)
        EXPECT_NEAR (levelDb (run.sound, t, t + 0.25), first, 6.0) << "at " << t << " s";
}

// Songs from our own lyrics through the converter: every sung note sounds, in tune where voiced.
TEST (Sing, KanaAndEnglishSongs)
{
    const char* lyrics[] = {"あかい はなが さいた ゆうやけ そらに きょうも らーめん カッター",
                            "the quiet river sings a song of morning light and falling rain"};
    for (const char* lyric : lyrics)
    {
        const auto elements = Zelmor::convertLyric (lyric, *Zelmor::dictionaryHolderMap ());
        ASSERT_GT (elements.size (), 10u);
        std::vector<N> notes;
        const int melody[] = {0, 2, 4, 5, 7, 5, 4, 2};
        for (std::size_t i = 0; i < elements.size (); ++i)
            notes.push_back ({0.2 + 0.45 * i, 0.2 + 0.45 * (i + 1), 55.0 + melody[i % 8], elements[i]});
        const Sung run = sing (jsonOf (notes));
        ASSERT_EQ (run.status, 0) << run.messages;
        EXPECT_EQ (run.messages, "") << lyric;
        for (const auto& n : notes)
        {
            EXPECT_GT (levelDb (run.sound, n.start + 0.1, n.end - 0.1), -35.0) << "\"" << n.phonemes << "\" of " << lyric;
            if (const double f0 = pitchHz (run.sound, n.start + 0.11, n.end - 0.11, hz (n.midi)); f0 > 0.0)
            {
                EXPECT_NEAR (centsOff (f0, n.midi), 0.0, 30.0) << "\"" << n.phonemes << "\" at " << n.start << " s of " << lyric;
            }
        }
    }
}

// What the worker does with input it cannot sing as given: a warning and a song, or one message,
// exit status 1 and the old file left as it was.
TEST (Sing, OddAndBadInput)
{
    struct Case
    {
        std::string json, args;
        int status;
        std::string message;  // a part of standard error; empty: nothing at all
        double seconds;       // of the WAV; -1: none written
    };
    const Case cases[] = {
        {"{\"notes\": []}", "", 0, "", 0.0},
        {"{\"notes\": [], \"duration\": 2}", "", 0, "", 2.0},
        {jsonOf ({{0, 1, 60, "qq aa"}}), "", 0, "unknown phoneme \"qq\" left out", 1.0},
        {jsonOf ({{0, 1, 100, "aa"}}), "", 0, "1 note(s) outside MIDI 36-84", 1.0},
        {jsonOf ({{0, 1, 100, "aa"}}), "--quiet", 0, "", 1.0},
        {jsonOf ({{0.3, 0.6, 84, "aa"}}, 5.0), "", 0, "", 5.0},  // a high note in a long song: the engine's crash
        {"{\"notes\": [", "", 1, "song.json: parse error at line 1", -1},
        {"{\"notes\": [{\"start\": 1, \"end\": 0.5, \"midi\": 60}]}", "", 1, "note 1: \"end\" is before \"start\"", -1},
        {"{\"notes\": [{\"start\": 0, \"end\": 1}]}", "", 1, "note 1: a sung note needs \"midi\" or \"cents\"", -1},
        {"{\"notes\": [{\"start\": 0, \"end\": 99999, \"midi\": 60}]}", "", 1, "\"end\" is 99999, outside", -1},
        {"[1, 2]", "", 1, "must be a JSON object", -1},
        {"{}", "--synthesiser x", 1, "--synthesiser wants a number", -1},
    };
    for (const auto& c : cases)
    {
        const Sung run = sing (c.json, c.args);
        EXPECT_EQ (run.status, c.status) << c.json;
        if (c.message.empty ())
            EXPECT_EQ (run.messages, "") << c.json;
        else
            EXPECT_NE (run.messages.find (c.message), std::string::npos) << run.messages;
        EXPECT_EQ (std::count (run.messages.begin (), run.messages.end (), '\n'), c.message.empty () ? 0 : 1) << run.messages;
        if (c.seconds < 0)
            EXPECT_EQ (run.sound.rate, -1) << c.json;
        else
            EXPECT_NEAR (run.sound.seconds (), c.seconds, 1e-4) << c.json;
    }
    // A WAV that cannot be put in place (a folder has its name) leaves nothing behind.
    const fs::path dir = fs::temp_directory_path () / ("sing_test_dir_" + std::to_string (::getpid ()));
    fs::create_directories (dir / "out.wav");
    std::ofstream (dir / "song.json") << jsonOf ({{0, 1, 60, "aa"}});
    const std::string command = std::string (SING) + " " + (dir / "song.json").string () + " -o " + (dir / "out.wav").string () + " 2>/dev/null";
    EXPECT_EQ (WEXITSTATUS (std::system (command.c_str ())), 1);
    EXPECT_EQ (std::distance (fs::directory_iterator (dir), fs::directory_iterator ()), 2);
    fs::remove_all (dir);

    // A note far above the voice is sung whole octaves lower, on its own pitch class.
    const Sung high = sing (jsonOf ({{0, 1, 100, "aa"}}));
    EXPECT_NEAR (centsOff (pitchHz (high.sound, 0.25, 0.75, hz (76)), 76), 0.0, 30.0);
}

// Ten minutes of song go through in one piece.
TEST (Sing, TenMinuteSong)
{
    std::vector<N> notes;
    const char* syllables[] = {"k a", "r a", "s e", "N", "t o", "- o"};
    for (int i = 0; i < 1200; ++i)
        notes.push_back ({0.5 * i, 0.5 * (i + 1), 48.0 + (i * 7) % 24, syllables[i % 6]});
    const Sung run = sing (jsonOf (notes));
    ASSERT_EQ (run.status, 0) << run.messages;
    EXPECT_NEAR (run.sound.seconds (), 600.0, 1e-4);
    EXPECT_GT (levelDb (run.sound, 590.0, 599.0), -30.0);
    std::printf ("ten minutes sung in %.2f s\n", run.seconds);
}

// Random songs, odd ones included (tiny and overlapping notes, any pitch, long silences, stray
// tokens): the worker sings every one. Festival's own faults end its process, so this is where
// they show.
TEST (Sing, RandomSongsAreAllSung)
{
    std::mt19937 random (5);
    const char* tokens[] = {"k", "a", "r", "N", "cl", "-", "sil", "BR", "ts", "ky", "wo", "hh", "ah", "l", "ow",
                            "s", "t", "y", "w", "ng", "zz", "iy", "uw", "p", "er", "m"};
    const auto pick = [&] (int n) { return std::uniform_int_distribution<int> (0, n - 1) (random); };
    for (int round = 0; round < 40; ++round)
    {
        std::vector<N> notes;
        double t = 0.5 * pick (6);
        for (int i = pick (25); i > 0; --i)
        {
            const double length = std::vector<double> {0.001, 0.01, 0.05, 0.2, 0.6, 2.0}[static_cast<std::size_t> (pick (6))];
            std::string text = pick (5) == 0 ? "rest" : pick (4) == 0 ? "-" : "";
            for (int k = pick (5); k > 0 && text != "rest"; --k)
                text += (text.empty () ? "" : " ") + std::string (tokens[pick (26)]);
            notes.push_back ({t, t + length, static_cast<double> (pick (128)), text});
            t += std::vector<double> {0.0, length, length + 0.1, length + 3.0}[static_cast<std::size_t> (pick (4))];
        }
        const Sung run = sing (jsonOf (notes, 2.0 * pick (4)), "--quiet");
        EXPECT_EQ (run.status, 0) << jsonOf (notes) << run.messages;
    }
}
