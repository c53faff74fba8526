// The song as the host's notes stand at the end of a run, written back out as
// a Standard MIDI File that the workbench reads again to the same note lists.
#pragma once

#include "workbench/cli/session.h"
#include "score/midi_file.h"

#include <string>

namespace Workbench {

/**
 * Format 1: a first track with the song's name and the project's tempo map,
 * then one named track per instrument track with its notes and, on each note
 * that has one, a lyric event with the text the agent wrote back. False with
 * a message when a position does not fit a file's ticks.
 */
bool songFile (const std::string& title, const Outcome& outcome, Score::MidiFile& out, std::string& error);
/** songFile, written whole to `path` or not at all. */
bool writeSongFile (const std::string& title, const Outcome& outcome, const std::string& path, std::string& error);

} // namespace Workbench
