#include "phoneme/pronouncing_dictionary.h"

#include <string_view>

namespace Zelmor {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

std::string withoutStress(std::string_view phonemes)
{
    // Lists without stress marks are common; copy those in one go.
    if (phonemes.find_first_of("012") == std::string_view::npos)
        return std::string(phonemes);
    std::string out;
    out.reserve(phonemes.size());
    for (char c : phonemes)
        if (c != '0' && c != '1' && c != '2')
            out += c;
    return out;
}

} // namespace

std::string stripStress(const std::string& phonemes)
{
    return withoutStress(phonemes);
}

// This is a single pass over the bytes with the meaning of "splitlines, strip
// each line, split it at every tab": it runs at module load, where a vector of
// 130,000 line copies would cost more than the map itself.
PronouncingDictionary loadPronouncingDictionary(const char* text, int32_t length)
{
    PronouncingDictionary map;
    const std::string_view all =
        (text && length > 0) ? std::string_view(text, static_cast<size_t>(length)) : std::string_view();
    size_t start = 0;
    while (start < all.size()) {
        size_t stop = start;
        while (stop < all.size() && all[stop] != '\n' && all[stop] != '\r')
            ++stop;
        std::string_view line = all.substr(start, stop - start);
        start = stop;
        if (start < all.size())
            start += (all[start] == '\r' && start + 1 < all.size() && all[start + 1] == '\n') ? 2 : 1;

        while (!line.empty() && isBlank(line.front()))
            line.remove_prefix(1);
        while (!line.empty() && isBlank(line.back()))
            line.remove_suffix(1);
        const size_t tab1 = line.find('\t');
        if (tab1 == std::string_view::npos)
            continue;
        const size_t tab2 = line.find('\t', tab1 + 1);
        if (tab2 == std::string_view::npos || line.find('\t', tab2 + 1) != std::string_view::npos)
            continue;

        // Rows come sorted, so the end is nearly always the right hint. A
        // repeated word overwrites the entry in place.
        auto it = map.try_emplace(map.end(), std::string(line.substr(0, tab1)));
        it->second.phonemes = withoutStress(line.substr(tab1 + 1, tab2 - tab1 - 1));
        it->second.orthography.assign(line.substr(tab2 + 1));
    }
    map["sil"] = PronouncingEntry{"SIL", "sil"};
    map["br"] = PronouncingEntry{"BR", "br"};
    return map;
}

} // namespace Zelmor
