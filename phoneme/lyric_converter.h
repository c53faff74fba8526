#pragma once
// Lyric text -> one phoneme string per note. English words come from the
// pronouncing dictionary or, failing that, the letter-to-sound rules; kana
// come from the kana tables; the two may be mixed in one text.

#include "phoneme/pronouncing_dictionary.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Zelmor {

// Converts a UTF-8 lyric. Malformed UTF-8 raises utf8::not_enough_room,
// utf8::invalid_utf8 or utf8::invalid_code_point; nothing else is thrown
// besides allocation failure.
std::vector<std::string> convertLyric(const std::string& lyric, const PronouncingDictionary& dictionary);

// Converts text[first, end) as one word and appends its elements to `result`.
// The control word "0" instead trims the last phoneme off the last element.
// A code point above U+10FFFF or a surrogate raises utf8::invalid_code_point.
void convertWord(const std::u32string& text, int32_t first, int32_t end,
                 const PronouncingDictionary& dictionary, std::vector<std::string>& result);

// Spreads a hyphenated word: each hyphen adds one continuation note "-" to the
// syllable it falls in, and the syllable's closing phonemes move onto the
// last continuation.
void distributeSyllables(const std::vector<std::string>& syllables, const std::string& orthography,
                         const std::string& hyphenated, std::vector<std::string>& result);

// Index of the token that carries the syllable: the first vowel, else the
// first voiced continuant, else the first voiceless one, else 0.
size_t findNucleus(const std::vector<std::string>& tokens);

} // namespace Zelmor
