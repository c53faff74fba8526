#pragma once
// The English pronouncing dictionary: word -> phonemes with " . " syllable
// breaks, loaded from a tab-separated text of three columns.

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace Zelmor {

struct PronouncingEntry {
    std::string phonemes;    // second column without stress digits
    std::string orthography; // third column as it stands
};

// Ordered by bytes; std::less<> lets callers search with a string_view.
using PronouncingDictionary = std::map<std::string, PronouncingEntry, std::less<>>;

// Parses `length` bytes of "word<TAB>phonemes<TAB>orthography" lines. Lines
// without exactly three fields are skipped. The reserved rows "sil" -> "SIL"
// and "br" -> "BR" are set last and win over any row of the text.
PronouncingDictionary loadPronouncingDictionary(const char* text, int32_t length);

// Drops every stress digit 0, 1 and 2.
std::string stripStress(const std::string& phonemes);

} // namespace Zelmor
