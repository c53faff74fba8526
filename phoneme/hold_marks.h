#pragma once
// What a hold mark typed into a lyric does to its conversion, told for every
// place at once from one conversion, so that a caller looking for where a
// mark holds a given syllable need not convert the lyric once a place.

#include "phoneme/lyric_converter.h"

namespace Zelmor {

struct MarkEffect
{
    enum Kind { Unknown, Same, Replaced };
    Kind kind = Unknown;             // Unknown: only converting the marked lyric tells
    size_t from = 0, to = 0;         // Replaced: these elements of the lyric's conversion...
    std::vector<std::string> elements;  // ...give way to these
};

// For a hyphen or the long-vowel mark typed before each code point of the
// lyric laid out in `layout`, and after its last: size() + 1 effects.
std::vector<MarkEffect> markEffects(const LyricLayout& layout, const PronouncingDictionary& dictionary,
                                    char32_t mark);

} // namespace Zelmor
