// Where a MIDI file's words land: each text on the note that starts at it or
// just after it, in the track that sings it; several texts on one note are all
// sung on it. The file names no note for a text, so this is a matter of time.
#pragma once

#include "score/midi_lyrics.h"
#include "score/song.h"

#include <functional>
#include <string>
#include <vector>

namespace Score {

/** One sung line of a MIDI file: a track, or one channel of it. */
struct MidiVoice
{
    std::string name;
    int track = 0;                ///< the file's track it comes from, counted from 0
    std::vector<SongNote> notes;  ///< by start, then by pitch from the top
};

/** One track's words, on their way to the voice that sings them. */
struct TrackLyrics
{
    std::string name;
    int track = 0;
    std::vector<TimedSyllable> syllables;
};

/** How far a text may stand before its note, and how a message names a tick. */
struct LyricTiming
{
    std::uint64_t tolerance = 0;
    std::function<std::string (std::uint64_t)> place;
};

/**
 * The voice that sings each track's words: its own, when the track is one
 * voice; else, for a track of words alone or one of several channels, the
 * voice on whose note starts the most of its words land (the first of equals);
 * -1 when none of them lands anywhere.
 */
std::vector<int> chooseSingers (const std::vector<MidiVoice>& voices, const std::vector<TrackLyrics>& words,
                                const LyricTiming& timing);

/**
 * Places each track's syllables on the notes of its singer, and a syllable
 * that finds no note there on the first voice with a note there. Several texts
 * on one note become one `Elided` syllable, all sung on it; a text that would
 * join one to be typed as written is left out. Each kind of message is said
 * for a few places and then counted. Time: n log n in the notes and syllables.
 */
void placeLyrics (std::vector<MidiVoice>& voices, const std::vector<TrackLyrics>& words, const std::vector<int>& singers,
                  const LyricTiming& timing, std::vector<std::string>& warnings);

} // namespace Score
