// Scores as notation programs export them: MusicXML, partwise or timewise.
#pragma once

#include "score/song.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

constexpr std::size_t mostScoreNotes = 1000000;  ///< notes and rests of all parts together
constexpr std::size_t longestScoreText = 4096;   ///< bytes of a lyric, a title, a part's name or id

/**
 * Reads a MusicXML document (UTF-8 or UTF-16) into a song. Each part with
 * notes becomes a track named by its part-name. A part sings one voice: the
 * first that has words, else its first; of a chord, the top note, with the
 * words of whichever note of the chord carries them. Tied notes are one note,
 * `<sound tempo>` makes the tempo map, and the lyrics of the verse asked for
 * become syllables: a note after an `<extend/>`, or without words inside a
 * word, holds the syllable before it. Repeats are not unrolled; grace notes
 * are left out and cue notes are rests. False with a message for broken XML,
 * XML that is no score, a score without notes, and one past the limits above.
 */
bool readMusicXml (const std::uint8_t* data, std::size_t size, const ReadOptions& options, Song& out,
                   std::string& error);

/** The same, parsed where the bytes lie instead of in a copy; they are used up. */
bool readMusicXml (std::vector<std::uint8_t>&& data, const ReadOptions& options, Song& out, std::string& error);

} // namespace Score
