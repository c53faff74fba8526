// The rule that turns a score's syllables into what a singer types in the
// host: each word whole on the note of its first syllable, with hold marks
// where the score holds a syllable over more notes. The agent deals the rest.
#pragma once

#include "score/syllable.h"

#include <string>
#include <vector>

namespace Score {

/**
 * The text to type on each note, in the notes' order: each word on the note of
 * its first syllable, nothing on the notes of its later syllables and holds.
 * Hyphens (or, after kana and open vowels, long-vowel marks) hold a syllable
 * over its melisma notes; where they go is chosen by asking the converter.
 */
std::vector<std::string> typedWords (const std::vector<Syllable>& notes);

struct SongNote;
/** Fills each note's `lyric` from the syllables of its track, by `typedWords`. */
void typeLyrics (std::vector<SongNote>& notes);

} // namespace Score
