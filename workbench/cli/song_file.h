// The song as the host's notes stand at the end of a run, written back out as
// a Standard MIDI File that the workbench reads again to the same note lists.
#pragma once

#include "workbench/cli/session.h"
#include "score/midi_file.h"

#include <string>

namespace Workbench {

/** How the lyric events read. */
enum class MidiLyrics
{
    Host,   ///< the texts the agent wrote back, `word[hint]`: a host reads them back to the same note lists
    Plain,  ///< syllables with hyphens, as notation and karaoke programs write them
};

/**
 * Format 1: a first track with the song's title and the project's tempo map,
 * the time signatures if the song has any, then one track for each part of
 * each instrument track, named after the instrument track, with its notes
 * and, on each note that has a text, a lyric event. False with a message when
 * a position does not fit a file's ticks.
 *
 * In the host's form a note without text on which a word before it would
 * run on when the file is typed back, which the agent does with the
 * bracketed text, gets "[ah]": what it sings now, so that it sings it then.
 */
bool songFile (const std::string& title, const Outcome& outcome, MidiLyrics lyrics, Score::MidiFile& out,
               std::string& error);
/** songFile, written whole to `path` or not at all. */
bool writeSongFile (const std::string& title, const Outcome& outcome, MidiLyrics lyrics, const std::string& path,
                    std::string& error);

} // namespace Workbench
