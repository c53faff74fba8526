#pragma once
// The English pronouncing dictionary: word -> phonemes with " . " syllable
// breaks, loaded from a tab-separated text of three columns.
//
// It is an index into the text, not a copy of it: one offset per row, sorted
// by the row's word. The text is read in place, so 134,000 rows cost half a
// megabyte and no allocation each, and the load is a single pass.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Zelmor {

struct PronouncingDictionary {
    // The text as given to the load; it must outlive the dictionary.
    std::string_view text;
    // Offset of each row's word, in byte order of the words, a repeated word
    // once. Offsets from text.size() on lie in the reserved rows' own text.
    std::vector<uint32_t> rows;
};

constexpr size_t noWord = static_cast<size_t>(-1);

// Indexes `length` bytes of "word<TAB>phonemes<TAB>orthography" lines, cut at
// "\n", "\r" and "\r\n" and stripped of white space at both ends. Lines without
// exactly three fields are skipped; of a repeated word the last row counts.
// The reserved rows "sil" -> "SIL" and "br" -> "BR" come last and win over any
// row of the text. The text is not copied.
PronouncingDictionary loadPronouncingDictionary(const char* text, int32_t length);

// Exact search by bytes: the word's index, or noWord.
size_t findWord(const PronouncingDictionary& dictionary, std::string_view word);

// The row at `index` (below rows.size()): its word, its phonemes without
// stress digits, its orthography as it stands.
std::string_view wordAt(const PronouncingDictionary& dictionary, size_t index);
std::string phonemesAt(const PronouncingDictionary& dictionary, size_t index);
std::string_view orthographyAt(const PronouncingDictionary& dictionary, size_t index);

// Drops every stress digit 0, 1 and 2.
std::string stripStress(const std::string& phonemes);

} // namespace Zelmor
