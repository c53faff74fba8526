// The built workbench, run as a user runs it: on the bundled songs against
// outputs reviewed by hand, through undo and redo, into a PNG and a MIDI file
// that reads back, and on bad input.
#include "score/file_bytes.h"
#include "score/midi_file.h"

#include <juce_core/juce_core.h>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

struct Outcome
{
    int status = -1;
    std::string out, err;
};

std::string slurp (const std::string& path)
{
    std::ifstream in (path, std::ios::binary);
    return std::string ((std::istreambuf_iterator<char> (in)), std::istreambuf_iterator<char> ());
}

// ctest runs the cases as separate processes side by side: each keeps its files apart.
std::string temp (const std::string& name)
{
    return ::testing::TempDir () + "wb_" + std::to_string (getpid ()) + "_" + name;
}

Outcome workbench (const std::string& args)
{
    const std::string errPath = temp ("stderr.txt");
    const std::string command = std::string (WORKBENCH_EXE) + " " + args + " 2>" + errPath;
    Outcome run;
    FILE* pipe = popen (command.c_str (), "r");
    if (!pipe)
        return run;
    char buf[4096];
    std::size_t n;
    while ((n = fread (buf, 1, sizeof buf, pipe)) > 0)
        run.out.append (buf, n);
    const int raw = pclose (pipe);
    run.status = WIFEXITED (raw) ? WEXITSTATUS (raw) : 128 + WTERMSIG (raw);
    run.err = slurp (errPath);
    return run;
}

/** A file of one track of these events, beside this run's other files. */
std::string midiFile (const char* name, std::vector<Score::MidiEvent> events)
{
    Score::MidiFile file;
    file.tracks.push_back ({std::move (events)});
    const auto bytes = Score::writeMidi (file);
    std::ofstream (temp (name), std::ios::binary)
        .write (reinterpret_cast<const char*> (bytes.data ()), static_cast<std::streamsize> (bytes.size ()));
    return temp (name);
}

std::string song (const char* file) { return std::string (SONGS_DIR) + "/" + file; }
std::string expected (const char* file) { return slurp (std::string (EXPECTED_DIR) + "/" + file); }

TEST (Workbench, BundledSongsGiveTheReviewedNoteLists)
{
    const struct
    {
        std::string args;
        const char* expect;
    } cases[] = {
        {"", "example.txt"},
        {song ("morning.mid"), "morning.txt"},
        {song ("ramen.mid"), "ramen.txt"},
        {song ("duet.mid"), "duet.txt"},
        {song ("duet.mid") + " --json", "duet.json"},
        // Two parts of one track that overlap: one list, in the order of the notes' starts.
        {song ("overlap.mid"), "overlap.txt"},
        // Undoing the last word ("home") gives its note back the default vowel; undoing every
        // word and redoing it comes back to the same list.
        {song ("morning.mid") + " --undo 1", "morning-undo1.txt"},
        {song ("ramen.mid") + " --undo 6 --redo 6", "ramen.txt"},
        // Paced idle calls agree with refresh passes.
        {song ("duet.mid") + " --paced --idle 1", "duet.txt"},
        // Syllables joined into words, held notes as continuations, a part without words.
        {song ("evening.kar"), "evening.txt"},
        {song ("lantern.musicxml"), "lantern.txt"},
        {song ("lantern.musicxml") + " --verse 2", "lantern-verse2.txt"},
    };
    for (const auto& c : cases)
    {
        const Outcome run = workbench (c.args);
        EXPECT_EQ (run.status, 0) << c.args << "\n" << run.err;
        EXPECT_EQ (run.out, expected (c.expect)) << "workbench " << c.args;
    }
}

TEST (Workbench, PianoRollIsAPngOfTheExpectedSize)
{
    const std::string png = temp ("roll.png");
    std::remove (png.c_str ());
    const Outcome run = workbench (song ("duet.mid") + " --piano-roll " + png);
    ASSERT_EQ (run.status, 0) << run.err;
    const std::string bytes = slurp (png);
    ASSERT_GT (bytes.size (), 24u);
    EXPECT_EQ (bytes.substr (0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ (bytes.substr (12, 4), "IHDR");
    auto be32 = [&] (std::size_t at) {
        std::uint32_t v = 0;
        for (std::size_t i = 0; i < 4; ++i)
            v = (v << 8) | static_cast<unsigned char> (bytes[at + i]);
        return v;
    };
    // The duet's records end at 5.364 s (the closing rests): 100 px a second and two
    // 64 px margins. Lead sings D4..A4, with a spare row each side 10 rows; Harmony
    // B3..E4, 8 rows; a panel is a 24 px title, an 18 px ruler, 14 px a row, two
    // 14 px lines of words 5 px below and 8 px below that.
    EXPECT_EQ (be32 (16), 128u + 537u);
    EXPECT_EQ (be32 (20), (24u + 18u + 10u * 14u + 33u + 8u) + (24u + 18u + 8u * 14u + 33u + 8u));
}

TEST (Workbench, WrittenSongReadsBackToTheSameNoteLists)
{
    // Under the same file name, so that the titles agree too.
    const std::string dir = temp ("written");
    mkdir (dir.c_str (), 0755);
    for (const char* name : {"morning.mid", "overlap.mid"})
    {
        const std::string copy = dir + "/" + name;
        std::remove (copy.c_str ());
        const Outcome first = workbench (song (name) + " --json --write-midi " + copy);
        ASSERT_EQ (first.status, 0) << first.err;
        const Outcome again = workbench (copy + " --json");
        EXPECT_EQ (again.status, 0) << again.err;
        EXPECT_EQ (again.out, first.out) << name;
    }
    // The texts are the ones written back, not the ones typed.
    Score::MidiFile file;
    std::string error;
    std::vector<std::uint8_t> bytes;
    ASSERT_TRUE (Score::readFileBytes (dir + "/morning.mid", bytes, error)
                 && Score::parseMidi (bytes.data (), bytes.size (), file, error)) << error;
    std::string texts;
    for (const auto& track : file.tracks)
        for (const auto& e : track.events)
            texts += e.kind == Score::MidiEvent::Lyric ? e.text + "|" : "";
    EXPECT_EQ (texts.substr (0, 34), "Hel-lo[hh ah]|[-]|[l ow]|sun[s ah ") << texts;
}

TEST (Workbench, BadInputIsRefusedWithAReason)
{
    const std::string text = temp ("not-midi.mid"), cut = temp ("cut.mid"), fake = temp ("fake.so"),
                      unwritten = temp ("unwritten.mid");
    std::remove (unwritten.c_str ());
    std::ofstream (text) << "just some words\n";
    std::ofstream (fake) << "not a shared object\n";
    std::ofstream (cut, std::ios::binary) << slurp (song ("morning.mid")).substr (0, 100);
    // Events as {tick, kind, channel, pitch, velocity, value, text}.
    using E = Score::MidiEvent;
    const std::string silent = midiFile ("silent.mid", {{0, E::Tempo, 0, 0, 0, 500000, ""}});
    // A hint of blanks makes the agent throw out of the host's edit call.
    const std::string blankHint = midiFile ("blank-hint.mid", {{0, E::Lyric, 0, 0, 0, 0, "la[ ]"},
                                                               {0, E::NoteOn, 0, 60, 90, 0, ""},
                                                               {480, E::NoteOff, 0, 60, 0, 0, ""}});
    // A target that is a folder: the rename fails, and the file written beside it must go too.
    const std::string folder = temp ("folder");
    std::filesystem::remove_all (folder);
    std::filesystem::create_directories (folder + "/out.mid");

    // Scores: each file bad in its own way; nothing is written for them.
    const std::string roll = temp ("never.png"), noScore = temp ("no-score.mxl"), nowhere = temp ("nowhere.mxl"),
                      good = temp ("lantern.mxl");
    auto score = [&] (const char* name, const std::string& text) {
        std::ofstream (temp (name)) << text;
        return temp (name) + " --piano-roll " + roll;
    };
    auto zip = [] (const std::string& path, const std::vector<std::pair<const char*, std::string>>& entries) {
        juce::ZipFile::Builder builder;
        for (const auto& [name, text] : entries)
            builder.addEntry (new juce::MemoryInputStream (text.data (), text.size (), true), 9, name,
                              juce::Time (2024, 0, 1, 12, 0));  // zip times count from 1980
        juce::File (path).deleteFile ();
        juce::FileOutputStream out ((juce::File (path)));
        builder.writeToStream (out, nullptr);
        return path;
    };
    const std::string container =
        "<container><rootfiles><rootfile full-path=\"s/l.musicxml\"/></rootfiles></container>";
    std::string deep = "<score-partwise>";
    for (int i = 0; i < 100000; ++i)
        deep += "<a>";  // the toolkit's reader would go one call deeper for each
    zip (noScore, {{"readme.txt", "no score here"}});
    zip (nowhere, {{"META-INF/container.xml", container}});
    zip (good, {{"META-INF/container.xml", container}, {"s/l.musicxml", slurp (song ("lantern.musicxml"))}});

    const struct
    {
        std::string args;
        int status;
        std::string says;
    } cases[] = {
        {score ("broken.musicxml", "<score-partwise><part"), 1, "broken.musicxml: broken XML"},
        {score ("page.xml", "<html><body/></html>"), 1, "page.xml: XML, but not a MusicXML score"},
        {score ("deep.musicxml", deep), 1, "deep.musicxml: XML nested deeper than 256 levels"},
        {noScore + " --piano-roll " + roll, 1, "no-score.mxl: a zip without a score"},
        {nowhere + " --piano-roll " + roll, 1, "nowhere.mxl: META-INF/container.xml points to s/l.musicxml"},
        {score ("empty.musicxml", "<score-partwise><part id='P1'><measure/></part></score-partwise>"), 1,
         "empty.musicxml: the score holds no notes"},
        {"--verse 0", 2, "--verse needs a whole number from 1 on"},
        {"/nonexistent/song.mid", 1, "cannot open /nonexistent/song.mid"},
        {text, 1, "not a Standard MIDI File"},
        {cut, 1, "claims"},
        {silent + " --write-midi " + unwritten, 1, "the file holds no notes"},
        {blankHint + " --write-midi " + unwritten, 1, "the agent threw during a lyric edit"},
        {"--module /nonexistent/Agent.vst3", 1, "cannot load module /nonexistent/Agent.vst3"},
        {"--module " + fake, 1, "cannot load module"},
        {"--module " + song ("morning.mid"), 1, "cannot load module"},
        {"--undo minus", 2, "--undo needs a whole number"},
        {"--frobnicate", 2, "unknown option --frobnicate"},
        {"a.mid b.mid", 2, "one song at a time"},
        {"--piano-roll", 2, "--piano-roll needs a path"},
        {"--piano-roll /nonexistent/dir/roll.png", 1, "cannot write /nonexistent/dir/roll.png"},
        {"--write-midi", 2, "--write-midi needs a path"},
        {"--write-midi /nonexistent/dir/out.mid", 1, "cannot write /nonexistent/dir/out.mid"},
        {song ("morning.mid") + " --write-midi " + folder + "/out.mid", 1, "cannot write " + folder + "/out.mid"},
        // Beyond the history there is nothing to undo: said, not fatal.
        {song ("ramen.mid") + " --undo 50", 0, "held only 6 edit(s)"},
    };
    for (const auto& c : cases)
    {
        const Outcome run = workbench (c.args);
        EXPECT_EQ (run.status, c.status) << c.args << "\n" << run.err;
        EXPECT_NE (run.err.find (c.says), std::string::npos) << c.args << ": " << run.err;
    }
    EXPECT_FALSE (std::ifstream (unwritten).good ()) << "a failed run wrote " << unwritten;
    EXPECT_FALSE (std::ifstream (roll)) << "a failed run wrote " << roll;
    EXPECT_EQ (std::distance (std::filesystem::directory_iterator (folder), {}), 1) << "a failed write left its file";
    // The zipped song sings as the plain one; only its file name differs.
    std::string unzipped = workbench (good).out;
    const std::string name = good.substr (good.rfind ('/') + 1);
    ASSERT_NE (unzipped.find (name), std::string::npos) << unzipped;
    for (auto at = unzipped.find (name); at != std::string::npos; at = unzipped.find (name))
        unzipped.replace (at, name.size (), "lantern.musicxml");
    EXPECT_EQ (unzipped, expected ("lantern.txt"));
}

} // namespace
