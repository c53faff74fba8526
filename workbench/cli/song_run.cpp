#include "workbench/cli/song_run.h"

#include "workbench/cli/file_output.h"
#include "workbench/cli/output_check.h"
#include "workbench/cli/piano_roll.h"
#include "workbench/cli/report.h"
#include "workbench/cli/singing.h"
#include "workbench/cli/song_file.h"
#include "workbench/cli/unsung.h"

#include "score/file_bytes.h"
#include "score/lay_lyrics.h"
#include "score/midi_song.h"
#include "score/song_reader.h"
#include "songs/generator/compose.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <set>

namespace Workbench {

namespace {

namespace fs = std::filesystem;

const char* const exampleName = "Morning Song (built-in example)";

std::string lower (std::string s)
{
    for (char& c : s)
        c = static_cast<char> (std::tolower (static_cast<unsigned char> (c)));
    return s;
}

bool isSongFile (const fs::path& p)
{
    static const std::set<std::string> extensions = {".mid", ".midi", ".kar", ".musicxml", ".xml", ".mxl"};
    return extensions.count (lower (p.extension ().u8string ())) > 0;
}

/** The name of a song's outputs in --out: its file's name without the extension. */
std::string stemOf (const SongJob& job)
{
    if (job.path.empty ())
        return "example";
    if (job.path == "-")
        return "stdin";
    return fs::u8path (job.path).stem ().u8string ();
}

std::string fileName (const std::string& path)
{
    const auto slash = path.find_last_of ("/\\");
    return slash == std::string::npos ? path : path.substr (slash + 1);
}

/** The song the job names, the built-in example, or one from standard input. */
bool readSong (const SongJob& job, const Score::ReadOptions& options, Score::Song& song, std::string& error)
{
    if (job.path.empty ())
    {
        // Through the bytes, so that the example takes the same road as a file.
        const auto bytes = Score::writeMidi (Songs::morning ());
        Score::MidiFile file;
        if (Score::parseMidi (bytes.data (), bytes.size (), file, error) && Score::readMidiSong (file, song, error, options))
            return true;
        error = "the built-in example: " + error;
        return false;
    }
    if (job.path != "-")
        return Score::readSong (job.path, options, song, error);
    // The readers take a file: standard input is copied into one, and named as itself in messages.
    std::vector<std::uint8_t> bytes;
    if (!Score::readStandardInput (bytes, error))
        return false;
    const std::string copy = temporaryCopy (bytes, error);
    if (copy.empty ())
        return false;
    const bool ok = Score::readSong (copy, options, song, error);
    std::error_code ignored;
    fs::remove (fs::u8path (copy), ignored);
    for (auto at = error.find (copy); at != std::string::npos; at = error.find (copy))
        error.replace (at, copy.size (), "standard input");
    return ok;
}

std::vector<std::string> inputsOf (const CommandLine& command, const std::vector<SongJob>& jobs)
{
    std::vector<std::string> inputs {command.lyricsFile, command.run.modulePath};
    for (const auto& j : jobs)
        inputs.push_back (j.path);
    return inputs;
}

void say (std::FILE* messages, const Notice& n)
{
    std::fprintf (messages, n.kind == Notice::Note ? "workbench: note: %s\n" : "workbench: %s\n", n.message.c_str ());
}

bool writeText (const std::string& text, const std::string& path, std::string& error)
{
    if (path.empty ())
    {
        std::fwrite (text.data (), 1, text.size (), stdout);
        std::fflush (stdout);
        return true;
    }
    return replaceFile (path, std::vector<std::uint8_t> (text.begin (), text.end ()), error);
}

} // namespace

bool planJobs (const CommandLine& command, std::vector<SongJob>& jobs, std::string& error, int& status)
{
    jobs.clear ();
    status = 1;
    bool standardInputTaken = command.lyricsFile == "-";
    for (const auto& arg : command.songs)
    {
        if (arg == "-")
        {
            if (standardInputTaken)
            {
                error = "standard input (-) can be read only once";
                status = 2;
                return false;
            }
            standardInputTaken = true;
            jobs.push_back ({"-", "standard input", {}, {}, {}, {}, {}});
            continue;
        }
        std::error_code ec;
        const fs::path path = fs::u8path (arg);
        if (!fs::is_directory (path, ec))
        {
            jobs.push_back ({arg, fileName (arg), {}, {}, {}, {}, {}});
            continue;
        }
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator (path, ec))
            if (entry.is_regular_file (ec) && isSongFile (entry.path ()))
                found.push_back (entry.path ().u8string ());
        if (found.empty ())
        {
            error = arg + " holds no songs (.mid, .midi, .kar, .musicxml, .xml, .mxl)";
            return false;
        }
        std::sort (found.begin (), found.end ());
        for (const auto& f : found)
            jobs.push_back ({f, fileName (f), {}, {}, {}, {}, {}});
    }
    if (jobs.empty ())
        jobs.push_back ({{}, exampleName, {}, {}, {}, {}, {}});

    if (command.outDir.empty ())
    {
        if (jobs.size () > 1 && (command.roll || command.midi || command.sing || command.singTracks))
        {
            error = std::string (command.roll ? "--piano-roll" : command.midi ? "--write-midi" : command.sing ? "--sing"
                                                                                                  : "--sing-tracks")
                    + " names one file, for one song; with several, --out DIR writes each song's into DIR";
            status = 2;
            return false;
        }
        jobs.front ().roll = command.rollPath;
        jobs.front ().midi = command.midiPath;
        jobs.front ().wav = command.singPath;
        jobs.front ().wavTracks = command.singTracksDir;
        return true;
    }
    std::error_code ec;
    const fs::path out = fs::u8path (command.outDir);
    if (!fs::is_directory (out, ec) && !fs::create_directory (out, ec))
    {
        error = "cannot make the folder " + command.outDir + (ec ? ": " + ec.message () : std::string ());
        return false;
    }
    for (auto& job : jobs)
    {
        const std::string stem = (out / fs::u8path (stemOf (job))).u8string ();
        job.report = stem + (command.asJson ? ".json" : ".txt");
        job.roll = command.roll ? stem + ".png" : std::string ();
        job.midi = command.midi ? stem + ".sung.mid" : std::string ();
        job.wav = command.sing ? stem + ".wav" : std::string ();
        job.wavTracks = command.singTracks ? stem + ".tracks" : std::string ();
    }
    return true;
}

bool checkJobs (const CommandLine& command, const std::vector<SongJob>& jobs, std::string& error)
{
    std::vector<PlannedOutput> outputs;
    for (const auto& j : jobs)
    {
        if (!j.report.empty ())
            outputs.push_back ({j.report, "the report of " + j.name, command.asJson ? ".json" : ""});
        if (!j.roll.empty ())
            outputs.push_back ({j.roll, "the piano roll of " + j.name, ".png"});
        if (!j.midi.empty ())
            outputs.push_back ({j.midi, "the MIDI file of " + j.name, ".mid"});
        if (!j.wav.empty ())
            outputs.push_back ({j.wav, "the singing of " + j.name, ".wav"});
    }
    std::vector<std::string> warnings;
    const bool ok = checkOutputs (outputs, inputsOf (command, jobs), warnings, error);
    for (const auto& w : warnings)
        std::fprintf (stderr, "workbench: warning: %s\n", w.c_str ());
    return ok;
}

void chooseTracks (Score::Song& song, bool all, std::vector<Notice>& notices)
{
    std::set<std::string> worded;
    for (const auto& t : song.tracks)
        for (const auto& n : t.notes)
            if (!n.lyric.empty ())
                worded.insert (t.name);
    if (worded.empty ())
        return;  // a melody alone is still worth hearing
    std::set<std::string> said;
    for (const auto& t : song.tracks)
        if (!worded.count (t.name) && said.insert (t.name).second)
            notices.push_back (remark (t.name + ": no words, " + (all ? "sung as \"ah\" (--all-tracks)"
                                                                             : "so not sung (--all-tracks sings it as \"ah\")")));
    if (all)
        return;
    song.tracks.erase (std::remove_if (song.tracks.begin (), song.tracks.end (),
                                       [&] (const Score::SongTrack& t) { return !worded.count (t.name); }),
                       song.tracks.end ());
}

bool singSong (const SongJob& job, const CommandLine& command, const std::string& sheet, std::FILE* messages,
               Progress& progress, std::string& error)
{
    Score::Song song;
    if (!readSong (job, command.reading, song, error))
        return false;
    if ((!sheet.empty () || !command.lyricsTrack.empty ())
        && !Score::layLyrics (sheet, song, command.lyricsTrack, error))
    {
        error = job.name + ": " + error;
        return false;
    }
    std::vector<Notice> notices;
    for (const auto& w : song.warnings)
        notices.push_back (remark (w));
    chooseTracks (song, command.allTracks, notices);
    for (const auto& n : notices)
        say (messages, n);

    Outcome outcome;
    const bool ran = run (song, job.name, command.run, outcome, error);
    progress.finish ();
    if (!ran)
        return false;
    const std::size_t before = notices.size ();
    for (const auto& n : outcome.notices)
        notices.push_back (remark (n));
    for (auto& n : unsungSounds (outcome))
        notices.push_back (std::move (n));
    for (std::size_t i = before; i < notices.size (); ++i)
        say (messages, notices[i]);

    if (!writeText (command.asJson ? json (job.name, outcome, notices) : table (job.name, outcome), job.report, error))
        return false;
    if (command.timing)
        std::fputs (timingText (outcome).c_str (), messages);

    const std::string title = outcome.title.empty () ? job.name : outcome.title;
    if (!job.roll.empty ())
    {
        // A long song's pages are named only now: each is checked as the file was.
        std::vector<PlannedOutput> pages;
        for (const auto& f : pageFiles (job.roll, pianoRollPages (outcome).size ()))
            pages.push_back ({f, "the piano roll of " + job.name, ""});
        std::vector<std::string> ignored;
        if (!checkOutputs (pages, inputsOf (command, {job}), ignored, error)
            || !writePianoRoll (outcome, notices, job.name.rfind (title, 0) == 0 ? job.name : job.name + " \"" + title + "\"", job.roll,
                                error))
            return false;
        if (pages.size () > 1)
            std::fprintf (messages, "workbench: the piano roll of %s takes %zu pages: %s to %s\n", job.name.c_str (),
                          pages.size (), pages.front ().path.c_str (), pages.back ().path.c_str ());
    }
    if (!job.midi.empty ()
        && !writeSongFile (title, outcome, command.plainMidiLyrics ? MidiLyrics::Plain : MidiLyrics::Host, job.midi,
                           error))
        return false;
    if (job.wav.empty () && job.wavTracks.empty ())
        return true;
    SingOptions singing;
    singing.worker = command.singWorker;
    singing.mixPath = job.wav;
    singing.tracksDir = job.wavTracks;
    singing.timeout = command.singTimeout;
    const bool sung = sing (outcome, singing, command.run.progress, error);
    progress.finish ();
    return sung;
}

} // namespace Workbench
