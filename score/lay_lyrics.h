// A lyric sheet laid over a melody that has no words (--lyrics, --lyrics-file).
#pragma once

#include "score/song.h"

#include <string>
#include <vector>

namespace Score {

/**
 * One syllable of a lyric sheet, as written: words are separated by white
 * space; a hyphen splits a word into syllables on successive notes
 * ("won-der", also "won- der" and "won -der"); an underscore after a syllable,
 * or a lone "_", holds it over one more note; the host's own `word[hint]`
 * stays one item as written, blanks inside its brackets and all. A word
 * without hyphens takes as many notes as the converter gives it elements.
 */
struct SheetSyllable
{
    Syllable syllable;  ///< Begin to End, Single, Held or AsWritten
    std::size_t word = 0;  ///< which word of the sheet, from 0
};

/** The sheet's syllables, one a note, in order. */
std::vector<SheetSyllable> readLyricSheet (const std::string& sheet);

/**
 * Lays the sheet over the track named `track` (all its parts, in order,
 * replacing any words it has), or, with no name, over each track without
 * words of its own from its first note. Of notes that start together only
 * the top one takes a syllable. Words left when the notes run out, and a song
 * with words on every track, are said in its warnings. False with a message
 * when no track has the name.
 */
bool layLyrics (const std::string& sheet, Song& song, const std::string& track, std::string& error);
/** The same over the tracks without words. */
void layLyrics (const std::string& sheet, Song& song);

} // namespace Score
