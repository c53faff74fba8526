// Lyrics as other programs write them into a MIDI file: one syllable on each
// note that begins one, a hyphen after a syllable that the word goes on from,
// nothing on held notes, and no phonemes in brackets.
#pragma once

#include "workbench/cli/host_notes.h"

#include <string>
#include <vector>

namespace Workbench {

/**
 * A word cut into the syllables its notes sing: by the pronouncing
 * dictionary's or the letter-to-sound rules' syllables for English, one piece
 * a kana (two for a digraph), the hold marks of the host's language left out.
 * Anything else stays whole.
 */
std::vector<std::string> syllablesOf (const std::string& word, bool& kana);

/**
 * For each note of one part, in the host's order, the text of its lyric event:
 * each word's syllables over the notes that begin them, from the word's note
 * on through the notes that carry its `[hint]`s.
 */
std::vector<std::string> plainLyrics (const std::vector<const HostNote*>& part);

} // namespace Workbench
