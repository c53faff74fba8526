// A song as the workbench builds a project from it: the tempo map and, per
// track with notes, the notes with their times and the lyric typed on each.
#pragma once

#include "workbench/midi/midi_file.h"
#include "workbench/midi/typed_words.h"

#include <string>
#include <vector>

namespace Midi {

struct SongNote
{
    std::uint64_t startTick = 0, endTick = 0;
    double start = 0.0, end = 0.0;  ///< seconds
    int pitch = 60;
    Syllable syllable;  ///< what the song's own words say about this note
    std::string lyric;  ///< UTF-8, what the user types on the note; empty when none
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

struct ReadOptions
{
    int verse = 1;           ///< which verse of a score's lyrics is sung
    bool rawLyrics = false;  ///< each text on its note as written, not joined into words
};

/**
 * Pairs note-ons with note-offs, applies the tempo map, and places each lyric
 * on the note that starts at or just after it (within a sixteenth). Lyric meta
 * events are used when the file has any; otherwise text events are, as
 * karaoke files carry their words there (see midi_lyrics.h). A note without
 * words holds the syllable before it inside a word, and after one when it
 * follows on without a rest. Format 0 files are split by channel.
 * Returns false with a message for a file without notes.
 */
bool buildSong (const File& file, Song& out, std::string& error, const ReadOptions& options = {});

/** Fills each note's `lyric` from the syllables of the track (see typed_words.h). */
void typeLyrics (std::vector<SongNote>& notes);

/** Text as UTF-8: valid UTF-8 is kept, anything else is read as Latin-1. */
std::string toUtf8 (const std::string& bytes);

} // namespace Midi
