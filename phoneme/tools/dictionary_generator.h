#pragma once
// Turns the CMU pronouncing list in the layout Debian's pocketsphinx ships
// ("word PH0 PH1 ..." and "word(2) ..." for alternates) into the module's
// three-column dictionary text.

#include <cstddef>
#include <string>

namespace Zelmor {

struct DictionaryGeneratorStats {
    size_t rows = 0;
    size_t alternates = 0;
    size_t skipped = 0; // blank lines, unknown symbols, repeated words
};

// Rows come out ordered by word bytes with the underscore after every other
// character, alternates right behind their base and renumbered from (1).
// Lines are joined by LF with none after the last.
std::string generateDictionaryText(const std::string& cmuText, DictionaryGeneratorStats* stats = nullptr);

} // namespace Zelmor
