// One song through the workbench, from its file to its outputs, and the list
// of songs a command line asks for, with where each one's outputs go.
#pragma once

#include "workbench/cli/notice.h"
#include "workbench/cli/options.h"
#include "workbench/cli/progress.h"

#include <cstdio>
#include <string>
#include <vector>

namespace Workbench {

struct SongJob
{
    std::string path;    ///< empty: the built-in example; "-": standard input
    std::string name;    ///< how the reports name the song: its file's name
    std::string report;  ///< the table's or the JSON's file; empty: standard output
    std::string roll, midi;  ///< empty: none
    std::string wav, wavTracks;  ///< all synthesisers mixed, a folder of one each; empty: none
};

/**
 * The songs of the command line in order, a folder giving each song in it by
 * name, and each song's outputs. False with a message, and with `status` 2
 * where the command line asks for what cannot be (one file for several songs),
 * 1 where the files are at fault (a folder without songs).
 */
bool planJobs (const CommandLine& command, std::vector<SongJob>& jobs, std::string& error, int& status);

/**
 * Every output of every job checked before the first run (see checkOutputs),
 * against every file the run reads. Warnings go to `messages`.
 */
bool checkJobs (const CommandLine& command, const std::vector<SongJob>& jobs, std::string& error);

/**
 * Reads the song, lays the lyric sheet over it, leaves out the tracks without
 * words when others have some (unless asked), runs the agent, writes the
 * report and the files asked for, and has the voice sing it if asked. Notices
 * go to `messages` as they come, the bar cleared first. False with the error.
 */
bool singSong (const SongJob& job, const CommandLine& command, const std::string& sheet, std::FILE* messages,
               Progress& progress, std::string& error);

/** Drops the tracks without words when another has some; says which in `notices`. */
void chooseTracks (Score::Song& song, bool all, std::vector<Notice>& notices);

} // namespace Workbench
