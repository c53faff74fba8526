#pragma once
// One lyric as the host reads it off a note: the converter's elements, one a
// note, with the user's own phonemes in brackets taken as the host takes them.

#include "phoneme/pronouncing_dictionary.h"

#include <string>
#include <vector>

namespace Zelmor {

struct LyricLine {
    bool ok = false;
    std::string error;                  // why not, when !ok
    long badByte = -1;                  // where the UTF-8 goes wrong, if it does
    std::vector<std::string> elements;  // one a note, from the lyric's own note on
    bool ownPhonemes = false;           // the first element is the user's bracketed hint
};

// A text without brackets gives the converter's elements. "word[hint]" gives
// the hint for its own note and, for the notes after it, what the converter
// makes of the whole text from its second element on, brackets and all, as the
// agent deals it; "[hint]" alone gives the hint. A text that is not UTF-8, or
// whose brackets hold only blanks (which stops the agent's pass), is refused.
LyricLine convertLine(const std::string& text, const PronouncingDictionary& dictionary);

} // namespace Zelmor
