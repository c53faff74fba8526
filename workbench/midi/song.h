// A song as the workbench builds a project from it: the tempo map and, per
// track with notes, the notes with their times and the lyric typed on each.
#pragma once

#include "workbench/midi/midi_file.h"

#include <string>
#include <vector>

namespace Midi {

struct SongNote
{
    std::uint64_t startTick = 0, endTick = 0;
    double start = 0.0, end = 0.0;  ///< seconds
    int pitch = 60;
    std::string lyric;  ///< UTF-8, empty when none
};

struct SongTrack
{
    std::string name;
    std::vector<SongNote> notes;  ///< by start, then by pitch from the top
};

struct TempoChange
{
    double beat = 0.0;  ///< quarter notes from the start
    double bpm = 120.0;
};

struct Song
{
    std::vector<TempoChange> tempi;  ///< the first one at beat 0
    std::vector<SongTrack> tracks;   ///< only tracks with notes
    std::vector<std::string> warnings;
    double length () const;          ///< the end of the last note, in seconds
    std::size_t noteCount () const;
};

/**
 * Pairs note-ons with note-offs, applies the tempo map, and places each lyric
 * on the note that starts at or just after it (within a sixteenth). Lyric meta
 * events are used when the file has any; otherwise text events are, as
 * karaoke files carry their words there. Format 0 files are split by channel.
 * Returns false with a message for a file without notes.
 */
bool buildSong (const File& file, Song& out, std::string& error);

/** Text as UTF-8: valid UTF-8 is kept, anything else is read as Latin-1. */
std::string toUtf8 (const std::string& bytes);

} // namespace Midi
