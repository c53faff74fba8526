// workbench: reads a song, loads the agent module as a host does, builds a
// project from the song, types its lyrics, and shows what each synthesiser received.
#include "workbench/cli/options.h"
#include "workbench/cli/piano_roll.h"
#include "workbench/cli/progress.h"
#include "workbench/cli/report.h"
#include "workbench/cli/session.h"
#include "workbench/cli/singing.h"
#include "workbench/cli/song_file.h"
#include "workbench/loader/module_search.h"

#include "score/file_bytes.h"
#include "score/lay_lyrics.h"
#include "score/midi_song.h"
#include "score/song_reader.h"
#include "songs/generator/compose.h"

#include <cstdio>
#include <filesystem>
#include <string>

#ifndef CANTORELA_SING_PATH
#define CANTORELA_SING_PATH "sing"
#endif

namespace {

int fail (const std::string& message, int code = 1)
{
    std::fprintf (stderr, "workbench: %s\n", message.c_str ());
    return code;
}

/** The song the user named, or the built-in example; its name titles the project. */
bool readSong (const Workbench::CommandLine& command, Score::Song& song, std::string& name, std::string& error)
{
    if (!command.songPath.empty ())
    {
        const auto slash = command.songPath.find_last_of ('/');
        name = slash == std::string::npos ? command.songPath : command.songPath.substr (slash + 1);
        return Score::readSong (command.songPath, command.reading, song, error);
    }
    // Through the bytes, so that the example takes the same road as a file.
    name = "Morning Song (built-in example)";
    const auto bytes = Score::writeMidi (Songs::morning ());
    Score::MidiFile file;
    if (Score::parseMidi (bytes.data (), bytes.size (), file, error)
        && Score::readMidiSong (file, song, error, command.reading))
        return true;
    error = "the built-in example: " + error;
    return false;
}

/** The sing worker: beside this program where it is installed, else the one this build made. */
std::string defaultSingWorker ()
{
    const std::string folder = Sim::programFolder ();
    std::error_code ignored;
    if (!folder.empty () && std::filesystem::exists (std::filesystem::u8path (folder) / "sing", ignored))
        return (std::filesystem::u8path (folder) / "sing").u8string ();
    return CANTORELA_SING_PATH;
}

/** Plain words over the tracks without any, from the command line or a file. */
bool layLyrics (const Workbench::CommandLine& command, Score::Song& song, std::string& error)
{
    std::string lyrics = command.lyrics;
    if (!command.lyricsFile.empty ())
    {
        std::vector<std::uint8_t> bytes;
        if (!Score::readFileBytes (command.lyricsFile, bytes, error))
            return false;
        lyrics.assign (bytes.begin (), bytes.end ());
    }
    if (!lyrics.empty ())
        Score::layLyrics (lyrics, song);
    return true;
}

} // namespace

int main (int argc, char** argv)
{
    Workbench::CommandLine command;
    std::string error;
    if (!Workbench::parseCommandLine (argc - 1, argv + 1, command, error))
        return fail (error + "\n" + Workbench::usage, 2);
    if (command.help)
    {
        std::fputs (Workbench::usage, stdout);
        return 0;
    }
    if (command.run.modulePath.empty () && !Sim::findDefaultModule (command.run.modulePath, error))
        return fail (error);

    Score::Song song;
    std::string name;
    if (!readSong (command, song, name, error) || !layLyrics (command, song, error))
        return fail (error);
    for (const auto& w : song.warnings)
        std::fprintf (stderr, "workbench: note: %s\n", w.c_str ());

    // Long work draws a bar on a terminal's standard error; it is cleared before anything is printed.
    Workbench::Progress progress (Workbench::Progress::standardErrorIsTerminal ());
    const auto tell = [&progress] (const std::string& step, double fraction) { progress.step (step, fraction); };
    command.run.progress = tell;
    Workbench::Outcome outcome;
    const bool ran = Workbench::run (song, name, command.run, outcome, error);
    progress.finish ();
    if (!ran)
        return fail (error);
    for (const auto& n : outcome.notices)
        std::fprintf (stderr, "workbench: note: %s\n", n.c_str ());

    const std::string text = command.asJson ? Workbench::json (name, outcome) : Workbench::table (name, outcome);
    std::fwrite (text.data (), 1, text.size (), stdout);
    std::fflush (stdout);
    if (command.timing)
        std::fputs (Workbench::timingText (outcome).c_str (), stderr);

    if (!command.rollPath.empty () && !Workbench::writePianoRoll (outcome, name, command.rollPath, error))
        return fail (error);
    if (!command.midiPath.empty () && !Workbench::writeSongFile (name, outcome, command.midiPath, error))
        return fail (error);

    if (!command.singPath.empty () || !command.singTracksDir.empty ())
    {
        Workbench::SingOptions singing;
        singing.worker = command.singWorker.empty () ? defaultSingWorker () : command.singWorker;
        singing.mixPath = command.singPath;
        singing.tracksDir = command.singTracksDir;
        singing.timeout = command.singTimeout;
        const bool sung = Workbench::sing (outcome, singing, tell, error);
        progress.finish ();
        if (!sung)
            return fail (error);
    }
    return 0;
}
