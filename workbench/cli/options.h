// The workbench's command line: what the user asked for, read from the arguments.
#pragma once

#include "score/song.h"
#include "workbench/cli/session.h"

#include <string>

namespace Workbench {

struct CommandLine
{
    Options run;               ///< the module, the idle passes, undo and redo, the window
    Score::ReadOptions reading;
    std::string songPath;      ///< empty: the built-in example
    std::string rollPath, midiPath;
    std::string lyrics, lyricsFile;
    std::string singPath;        ///< --sing: every synthesiser mixed into one WAV
    std::string singTracksDir;   ///< --sing-tracks: one WAV per synthesiser
    std::string singWorker;      ///< the sing executable; empty: the one in the build folder
    double singTimeout = 0.0;    ///< seconds per worker; 0: 30 s and half the song's length
    bool asJson = false;
    bool timing = false;
    bool help = false;
};

/** The usage text that -h prints. */
extern const char* const usage;

/**
 * Reads the arguments (without the program's name) over the defaults in `out`.
 * False with the reason in `error` for a command line that makes no sense.
 */
bool parseCommandLine (int argc, const char* const* argv, CommandLine& out, std::string& error);

} // namespace Workbench
