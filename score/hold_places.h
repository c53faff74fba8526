// Where a hold mark typed into a word holds each of its syllables, as the
// converter sings the word: the places the typing rule chooses from.
#pragma once

#include "phoneme/lyric_converter.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Score {

/** One syllable as the converter sings it: its sounds (holds' closing sounds included) and its holds. */
struct SungSyllable
{
    std::string sound;
    int holds = 0;
    bool holdsConsonant = false;  ///< a bare hold repeats the last sound before it, so it must be a vowel
};

/** The converter's elements as syllables; false when they open with a hold, which belongs to no syllable. */
bool sungSyllables (const std::vector<std::string>& elements, std::vector<SungSyllable>& out);

/** How many holds each syllable gained in `elements` over `base`; false if they sing other sounds. */
bool gainedHolds (const std::vector<std::string>& elements, const std::vector<SungSyllable>& base,
                  std::vector<int>& gained);

/** The converter's elements for a text (and where each came from, into `layout` if given); none when there is no dictionary or the text is not UTF-8. */
std::vector<std::string> convertText (const std::string& text, Zelmor::LyricLayout* layout = nullptr);

/** The sounds of one element, split at blanks. */
std::vector<std::string> soundTokens (const std::string& element);

// One object each in the whole program (inline), so that a place's mark may be told by its address
// in any file; literals of the same text need not share one (an address sanitizer keeps them apart).
inline constexpr char hyphen[] = "-";
inline constexpr char longMark[] = "\xE3\x83\xBC";  ///< katakana long-vowel mark: holds kana and open vowels

/** Where one more mark gives syllable j one more hold; `mark` is null where none does (one of the two above). */
struct HoldPlace
{
    std::size_t at = 0;  ///< byte offset in the text
    const char* mark = nullptr;
};

/**
 * For each syllable of `text` (converted into `elements`, laid out in
 * `layout`, sung as `sung`), the place of one more mark
 * that holds it and nothing else: a hyphen if any place takes one, else a
 * long-vowel mark (when `withLongMarks`); of several, the one nearest
 * `target[j]`, the later on a tie.
 */
std::vector<HoldPlace> holdPlaces (const std::string& text, const Zelmor::LyricLayout& layout,
                                   const std::vector<std::string>& elements, const std::vector<SungSyllable>& sung,
                                   const std::vector<std::size_t>& target, bool withLongMarks);

} // namespace Score
