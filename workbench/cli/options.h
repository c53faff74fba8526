// The workbench's command line: what the user asked for, read from the arguments.
#pragma once

#include "score/song.h"
#include "workbench/cli/session.h"

#include <string>
#include <vector>

namespace Workbench {

struct CommandLine
{
    Options run;                     ///< the module, the idle passes, undo and redo, the window
    Score::ReadOptions reading;
    std::vector<std::string> songs;  ///< files, folders, or "-" for standard input; none: the built-in example
    std::string rollPath, midiPath;  ///< one song's outputs
    std::string outDir;              ///< each song's outputs in this folder, under its own name
    bool roll = false, midi = false; ///< with `outDir`: a piano roll, a MIDI file for each song
    bool sing = false, singTracks = false;  ///< with `outDir`: a WAV, a folder of WAVs for each song
    bool plainMidiLyrics = false;    ///< lyric events as other programs write them, not in the host's form
    std::string lyrics, lyricsFile, lyricsTrack;
    bool allTracks = false;          ///< sing the tracks without words too, when others have words
    std::string singPath;            ///< --sing: every synthesiser mixed into one WAV
    std::string singTracksDir;       ///< --sing-tracks: one WAV per synthesiser
    std::string singWorker;          ///< the sing executable; empty: the one in the build folder
    double singTimeout = 0.0;        ///< seconds per worker; 0: 30 s and half the song's length
    bool asJson = false;
    bool timing = false;
    bool help = false;
    bool version = false;
};

/** The usage text that --help prints, made from the table of options. */
std::string usage ();

/** The line that goes before a usage error's reason. */
extern const char* const usageHint;

/**
 * Reads the arguments (without the program's name) over the defaults in `out`.
 * False with the reason in `error` for a command line that makes no sense.
 * Every option with a value takes it as the next argument or after "=".
 */
bool parseCommandLine (int argc, const char* const* argv, CommandLine& out, std::string& error);

} // namespace Workbench
