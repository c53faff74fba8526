// A song as every reader hands it on: the tempo map and, per track with
// notes, the notes with their times, the syllable the file gives each, and
// the lyric a singer types on it.
#pragma once

#include "score/syllable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

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

/** A time signature from its beat on: `numerator` beats of a 1/`denominator` note a bar. */
struct MeterChange
{
    double beat = 0.0;  ///< quarter notes from the start
    int numerator = 4;
    int denominator = 4;
};

struct Song
{
    std::string title;               ///< as the file names the song; empty when it doesn't
    std::vector<TempoChange> tempi;  ///< the first one at beat 0
    std::vector<MeterChange> meters; ///< as the file gives them; empty when it gives none
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

} // namespace Score
