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

// One word of a lyric as the converter takes it: where it lies, its
// syllables before any hyphen deals them out, and what its hyphens are
// measured on.
struct LyricWord
{
    int32_t first = 0, end = 0;           // code points of the lyric
    size_t element = 0, elements = 0;     // the elements it gave, in the lyric's result
    std::vector<std::string> syllables;   // empty when the word has no phonemes
    std::string orthography;              // the text the hyphens are measured on
    std::string hyphenated;               // the word as its hyphens are counted in
    bool control = false;                 // the control word "0"
};

// Where each part of a converted lyric came from, so that a caller can tell
// what a mark typed into it would change without converting it again.
struct LyricLayout
{
    enum Role : uint8_t { Skipped, InWord, Space, Single, PairFirst, PairSecond };
    std::u32string text;
    std::vector<Role> roles;       // one a code point
    std::vector<size_t> arrival;   // elements given before each code point is read, and at the end
    std::vector<LyricWord> words;
    bool control = false;          // a control word changes the element before it
};

// Converts a UTF-8 lyric. Malformed UTF-8 raises utf8::not_enough_room,
// utf8::invalid_utf8 or utf8::invalid_code_point; nothing else is thrown
// besides allocation failure.
std::vector<std::string> convertLyric(const std::string& lyric, const PronouncingDictionary& dictionary);
// The same, and says in `layout` where each element came from.
std::vector<std::string> convertLyric(const std::string& lyric, const PronouncingDictionary& dictionary,
                                      LyricLayout& layout);

// Converts text[first, end) as one word, without appending anything.
LyricWord convertedWord(const std::u32string& text, int32_t first, int32_t end,
                        const PronouncingDictionary& dictionary);

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

// Which syllable of a word a hyphen holds, from the count of letters before
// it less one; the counts must not fall between calls.
class HyphenPlaces
{
public:
    HyphenPlaces(const std::string& orthography, size_t syllables);
    size_t syllableAfter(long letter);

private:
    std::vector<size_t> pieceEnds_;
    size_t syllables_ = 0;
    size_t piece_ = 0;
};

// How many hyphens of `hyphenated` fall on each syllable.
std::vector<int32_t> holdCounts(const std::vector<std::string>& syllables, const std::string& orthography,
                                const std::string& hyphenated);

// Appends one syllable held by `holds` hyphens: as it is without any; else its
// head up to the nucleus, then `holds` continuations, the last with its closing phonemes.
void dealSyllable(const std::string& syllable, int32_t holds, std::vector<std::string>& result);

// Index of the token that carries the syllable: the first vowel, else the
// first voiced continuant, else the first voiceless one, else 0.
size_t findNucleus(const std::vector<std::string>& tokens);

} // namespace Zelmor
