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

#include <algorithm>
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
    // The score's piano part has no words: left out and said, unless asked for, when it sings "ah".
    EXPECT_NE (workbench (song ("lantern.musicxml")).err.find ("Piano: no words, so not sung"), std::string::npos);
    EXPECT_NE (workbench (song ("lantern.musicxml") + " --all-tracks").out.find ("== Piano / Slot 1  (9 records)"),
               std::string::npos);
    // A song on standard input sings as the file does, with `--opt=value` as the option apart.
    Outcome piped = workbench ("- --undo=1 < " + song ("morning.mid"));
    const std::string name = "morning.mid";
    std::string fromFile = expected ("morning-undo1.txt");
    for (auto at = fromFile.find (name); at != std::string::npos; at = fromFile.find (name))
        fromFile.replace (at, name.size (), "standard input");
    EXPECT_EQ (piped.out, fromFile) << piped.err;
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
    // B3..E4, 8 rows; a panel is a 24 px title, a 14 px lane of tempo marks, an 18 px
    // ruler, 14 px a row, two 14 px lines of words 5 px below and 8 px below that.
    EXPECT_EQ (be32 (16), 128u + 537u);
    EXPECT_EQ (be32 (20), (24u + 14u + 18u + 10u * 14u + 33u + 8u) + (24u + 14u + 18u + 8u * 14u + 33u + 8u));

    // 110 s of song: four pages of at most 30 s, named in order, and said.
    const std::string pages = temp ("pages.png");
    const Outcome longRun = workbench (song ("long400.mid") + " --piano-roll " + pages);
    ASSERT_EQ (longRun.status, 0) << longRun.err;
    EXPECT_NE (longRun.err.find ("takes 4 pages: " + temp ("pages-1.png") + " to " + temp ("pages-4.png")),
               std::string::npos) << longRun.err;
    for (const char* page : {"pages-1.png", "pages-2.png", "pages-3.png", "pages-4.png"})
        EXPECT_EQ (slurp (temp (page)).substr (0, 4), "\x89PNG") << page;
    EXPECT_FALSE (std::ifstream (pages).good ());
}

/** The lyric events of a MIDI file, each followed by "|". */
std::string lyricEvents (const std::string& path)
{
    Score::MidiFile file;
    std::string error, texts;
    std::vector<std::uint8_t> bytes;
    if (!Score::readFileBytes (path, bytes, error) || !Score::parseMidi (bytes.data (), bytes.size (), file, error))
        return error;
    for (const auto& track : file.tracks)
        for (const auto& e : track.events)
            texts += e.kind == Score::MidiEvent::Lyric ? e.text + "|" : "";
    return texts;
}

TEST (Workbench, WrittenSongReadsBackToTheSameNoteLists)
{
    // Under the same file name, so that the titles agree too.
    const std::string dir = temp ("written");
    mkdir (dir.c_str (), 0755);
    const struct
    {
        const char* song;
        const char* args;
    } cases[] = {
        {"morning.mid", ""},      {"overlap.mid", ""},           {"lantern.musicxml", "--all-tracks"},
        // After undo the notes that lost their words sing "ah"; the words before them, typed again
        // from the file, must not run on over them.
        {"morning.mid", "--undo 4"}, {"ramen.mid", "--undo 4 --redo 2"}, {"overlap.mid", "--undo 3"},
        {"evening.kar", "--undo 9"},
    };
    for (const auto& c : cases)
    {
        const std::string copy = dir + "/" + c.song;
        std::remove (copy.c_str ());
        const Outcome first = workbench (song (c.song) + " " + c.args + " --json --write-midi " + copy);
        ASSERT_EQ (first.status, 0) << first.err;
        const Outcome again = workbench (copy + " --all-tracks --json");
        ASSERT_EQ (again.status, 0) << again.err;
        const auto a = juce::JSON::parse (first.out)["synthesisers"], b = juce::JSON::parse (again.out)["synthesisers"];
        ASSERT_EQ (a.size (), b.size ()) << c.song << " " << c.args;
        for (int s = 0; s < a.size (); ++s)
        {
            const auto ra = a[s]["notes"], rb = b[s]["notes"];
            ASSERT_EQ (ra.size (), rb.size ()) << c.song << " " << c.args;
            for (int i = 0; i < ra.size (); ++i)
            {
                const auto what = std::string (c.song) + " " + c.args + " record " + std::to_string (i + 1);
                // A tempo goes into the file in whole microseconds a quarter note: 84 bpm moves by a few.
                EXPECT_NEAR (double (ra[i]["start"]), double (rb[i]["start"]), 2e-5) << what;
                EXPECT_EQ (juce::JSON::toString (ra[i]["phonemes"]), juce::JSON::toString (rb[i]["phonemes"])) << what;
                EXPECT_EQ (ra[i]["pitch"], rb[i]["pitch"]) << what;
                EXPECT_EQ (bool (ra[i]["continuation"]), bool (rb[i]["continuation"])) << what;
                if (ra[i]["lyric"] != rb[i]["lyric"])
                {
                    EXPECT_TRUE (ra[i]["lyric"] == "" && rb[i]["lyric"] == "[ah]") << what;
                }
            }
        }
    }
    // The texts are the ones written back, not the ones typed; the title is the song's.
    EXPECT_EQ (lyricEvents (dir + "/morning.mid").substr (0, 34), "Hel-lo[hh ah]|[-]|[l ow]|sun[s ah ");
    EXPECT_NE (workbench (dir + "/morning.mid").out.find ("\"Morning Song\""), std::string::npos);
    // For other programs: syllables with hyphens on the notes that begin them, nothing on held notes.
    const std::string plain = dir + "/plain.mid";
    ASSERT_EQ (workbench (song ("lantern.musicxml") + " --write-midi " + plain + " --midi-lyrics plain").status, 0);
    const std::string opening = "Lan-|tern|in|the|win-|dow|glow|a|won-|der-|ful|";
    EXPECT_EQ (lyricEvents (plain).substr (0, opening.size ()), opening);
}

TEST (Workbench, SaysWhatIsNotSungWhereTheUserLooks)
{
    // A word with more sounds than notes, two kana on one note, text without a pronunciation, and
    // a word with its own phonemes followed by notes that nobody typed.
    using E = Score::MidiEvent;
    std::vector<E> events;
    const char* texts[] = {"Ev-ery", "", "day", "きょうは", "ね", "夜", "café", "read[r eh d]", "", ""};
    for (int i = 0; i < 10; ++i)
    {
        const auto tick = static_cast<std::uint64_t> (i * 480);
        if (*texts[i])
            events.push_back ({tick, E::Lyric, 0, 0, 0, 0, texts[i]});
        events.push_back ({tick, E::NoteOn, 0, 60 + i, 90, 0, ""});
        events.push_back ({tick + 480, E::NoteOff, 0, 60 + i, 0, 0, ""});
    }
    const std::string file = midiFile ("unsung.mid", events), roll = temp ("unsung.png");
    const Outcome run = workbench (file + " --piano-roll " + roll);
    ASSERT_EQ (run.status, 0) << run.err;
    for (const char* says :
         {"not sung: Track 1, 1:1 (0.00 s), C4: \"Ev-ery\" needs 4 notes and has 2; \"v er\" and \"iy\" are left out",
          "not sung: Track 1, 1:4 (1.50 s), D#4: \"きょうは\" needs 3 notes and has 1; \"u\" and \"h a\" are left out",
          "not understood: Track 1, 2:2 (2.50 s), F4: \"夜\" has no pronunciation; the note sings the default \"ah\"",
          "not understood: Track 1, 2:3 (3.00 s), F#4: \"é\" in \"café\" has no pronunciation and is left out",
          "not typed: Track 1, 3:1 (4.00 s), G#4: \"eh\" and \"d\", on 2 notes that nobody typed, come from the "
          "converter reading all of \"read[r eh d]\""})
        EXPECT_NE (run.err.find (says), std::string::npos) << says << "\n" << run.err;
    EXPECT_EQ (slurp (roll).substr (0, 4), "\x89PNG");

    // The same in the JSON, for programs.
    // How the file's words were read comes first, as a plain note; the rest say what is not sung.
    const auto all = juce::JSON::parse (workbench (file + " --json").out)["notices"];
    juce::Array<juce::var> notices;
    std::string kinds;
    for (int i = 0; i < all.size (); ++i)
        if (all[i]["kind"] != "note")
        {
            notices.add (all[i]);
            kinds += all[i]["kind"].toString ().toStdString () + " ";
        }
    EXPECT_EQ (kinds, "not-sung not-sung not-understood not-understood not-typed ");
    EXPECT_EQ (juce::JSON::toString (notices[0]["sounds"], true), "[\"v er\", \"iy\"]");
    EXPECT_EQ (notices[0]["at"].toString (), "1:1");
    EXPECT_EQ (int (notices[1]["note"]), 63);

    // Syllables elided onto one note are joined by an undertie, which is no text left unread.
    const std::string elided = midiFile ("elided.mid", {{0, E::Lyric, 0, 0, 0, 0, "to\u203fa"},
                                                        {0, E::NoteOn, 0, 60, 90, 0, ""},
                                                        {480, E::NoteOff, 0, 60, 0, 0, ""}});
    EXPECT_EQ (workbench (elided).err.find ("not understood"), std::string::npos);
}

TEST (Workbench, SeveralSongsOrAFolderWriteEachOneUnderItsOwnName)
{
    namespace fs = std::filesystem;
    const std::string in = temp ("batch-in"), out = temp ("batch-out");
    fs::remove_all (in);
    fs::remove_all (out);
    fs::create_directories (in);
    fs::copy_file (song ("duet.mid"), in + "/duet.mid");
    fs::copy_file (song ("evening.kar"), in + "/evening.kar");
    std::ofstream (in + "/broken.mid") << "not a song";
    std::ofstream (in + "/notes.txt") << "not a song either, and not taken for one";

    const Outcome run = workbench (in + " --out " + out + " --piano-roll --write-midi");
    EXPECT_EQ (run.status, 1) << "one song failed";
    EXPECT_NE (run.err.find ("broken.mid: not a Standard MIDI File"), std::string::npos) << run.err;
    EXPECT_NE (run.err.find ("workbench: 3 songs: 2 sung, 1 failed (broken.mid)\n"), std::string::npos) << run.err;
    EXPECT_TRUE (run.out.empty ());
    std::vector<std::string> written;
    for (const auto& e : fs::directory_iterator (out))
        written.push_back (e.path ().filename ().string ());
    std::sort (written.begin (), written.end ());
    EXPECT_EQ (written, (std::vector<std::string> {"duet.png", "duet.sung.mid", "duet.txt", "evening.png",
                                                   "evening.sung.mid", "evening.txt"}));
    EXPECT_EQ (slurp (out + "/duet.txt"), expected ("duet.txt"));

    // Two songs of one name would write one report: refused before either runs.
    EXPECT_EQ (workbench (in + "/duet.mid " + in + "/evening.kar --json --out " + out).status, 0);
    EXPECT_EQ (slurp (out + "/duet.json"), expected ("duet.json"));
    fs::copy_file (song ("duet.mid"), in + "/evening.mid");
    const Outcome twice = workbench (in + "/evening.kar " + in + "/evening.mid --out " + out);
    EXPECT_EQ (twice.status, 1);
    EXPECT_NE (twice.err.find ("evening.txt is named for two outputs: the report of evening.kar and the report of "
                               "evening.mid"),
               std::string::npos) << twice.err;
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
    // A target that is a folder: refused before the run, and nothing is written beside it.
    const std::string folder = temp ("folder");
    std::filesystem::remove_all (folder);
    std::filesystem::create_directories (folder + "/out.mid");
    std::filesystem::create_directories (temp ("") + "no-songs");
    // The user's own song, and another name for it: writing to either would destroy it.
    const std::string own = temp ("own.mid"), linked = temp ("linked.mid"), jpeg = temp ("roll.jpg");
    std::filesystem::remove (linked);
    std::filesystem::copy_file (song ("morning.mid"), own, std::filesystem::copy_options::overwrite_existing);
    std::filesystem::create_symlink (own, linked);

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
        {"--json=yes", 2, "--json takes no value"},
        {"--midi-lyrics words", 2, "--midi-lyrics takes host or plain"},
        {"--piano-roll", 2, "--piano-roll needs a file name"},
        // A forgotten file name must not make a file named after the next option.
        {"--piano-roll --json", 2, "--piano-roll needs a file name, and --json is an option"},
        {"--write-midi=-x.mid", 2, "-x.mid looks like an option (write ./-x.mid"},
        {"- -", 2, "standard input (-) can be read only once"},
        {song ("morning.mid") + " " + song ("ramen.mid") + " --piano-roll " + roll, 2, "with several, --out DIR"},
        {"--lyrics-track Soprano", 2, "neither is given"},
        {song ("lantern.musicxml") + " --lyrics la --lyrics-track Alto", 1,
         "no track named \"Alto\"; its tracks: \"Soprano\", \"Piano\""},
        {"/nonexistent/a.mid /nonexistent/b.mid", 1, "2 songs: 0 sung, 2 failed (a.mid, b.mid)"},
        {temp ("") + "no-songs", 1, "holds no songs"},
        // Outputs are checked before the run: nothing is printed, nothing written.
        {"--piano-roll /nonexistent/dir/roll.png", 1, "there is no folder /nonexistent/dir"},
        {"--write-midi /nonexistent/dir/out.mid", 1, "cannot write the MIDI file of"},
        {song ("morning.mid") + " --write-midi " + folder + "/out.mid", 1, folder + "/out.mid: it is a folder"},
        {linked + " --write-midi " + own, 1, "which this run reads"},
        {linked + " --piano-roll " + own, 1, "which this run reads"},
        {"--piano-roll " + roll + " --write-midi " + roll, 1, "is named for two outputs"},
        // A name that says otherwise than what is written is only a warning.
        {"--piano-roll " + jpeg, 0, "the piano roll of Morning Song (built-in example) is written as PNG, but the name ends in .jpg"},
        // Beyond the history there is nothing to undo: said, not fatal.
        {song ("ramen.mid") + " --undo 50", 0, "held only 6 edit(s)"},
    };
    for (const auto& c : cases)
    {
        const Outcome run = workbench (c.args);
        EXPECT_EQ (run.status, c.status) << c.args << "\n" << run.err;
        EXPECT_NE (run.err.find (c.says), std::string::npos) << c.args << ": " << run.err;
        if (c.status != 0)
        {
            EXPECT_TRUE (run.out.empty ()) << c.args << ": the run went ahead";
        }
        if (c.status == 2)
        {
            // The reason is the last line, where the eye lands.
            EXPECT_EQ (run.err.rfind ("workbench: ", run.err.size () - 2), run.err.rfind ('\n', run.err.size () - 2) + 1)
                << run.err;
        }
    }
    EXPECT_FALSE (std::ifstream ("--json").good ()) << "a file named after an option";
    EXPECT_EQ (slurp (own), slurp (song ("morning.mid"))) << "the song was written over";
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
