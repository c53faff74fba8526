#include "phoneme/pronouncing_dictionary.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Zelmor {

namespace {

// The two rows every dictionary has, read as if they followed the text: last,
// so that they win over a row of the same word.
constexpr char reservedRows[] = "sil\tSIL\tsil\nbr\tBR\tbr";
constexpr std::string_view reservedText(reservedRows, sizeof reservedRows - 1);

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Finds the tabs, line feeds and carriage returns of a text in order, from a
// mask of them over 64 bytes at a time: a line then costs a few bit
// operations instead of a branch on every byte.
class BreakScanner {
public:
    BreakScanner(const char* begin, const char* end) : end(end) { seek(begin); }

    // Goes on from `p`.
    void seek(const char* p)
    {
        block = p;
        mask = breaksInBlock();
    }

    // The next break, or end when there is none.
    const char* next()
    {
        while (!mask) {
            if (end - block <= 64)
                return end;
            block += 64;
            mask = breaksInBlock();
        }
        const char* at = block + lowestBit(mask);
        mask &= mask - 1;
        return at;
    }

private:
    static unsigned lowestBit(uint64_t bits)
    {
#if defined(__GNUC__)
        return static_cast<unsigned>(__builtin_ctzll(bits));
#else
        unsigned bit = 0;
        for (; !(bits & 1); bits >>= 1)
            ++bit;
        return bit;
#endif
    }

    // Bit i for a break at block[i]; the text's end ends the block early.
    uint64_t breaksInBlock() const
    {
        if (end - block < 64) {
            char padded[64] = {};
            if (end > block)
                std::memcpy(padded, block, static_cast<size_t>(end - block));
            return breaksIn(padded) & ((uint64_t(1) << (end - block)) - 1);
        }
        return breaksIn(block);
    }

    static uint64_t breaksIn(const char* p)
    {
        uint64_t bits = 0;
#if defined(__SSE2__)
        const __m128i tab = _mm_set1_epi8('\t');
        const __m128i lineFeed = _mm_set1_epi8('\n');
        const __m128i carriageReturn = _mm_set1_epi8('\r');
        for (int i = 0; i < 4; ++i) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * i));
            const __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, tab), _mm_cmpeq_epi8(bytes, lineFeed)),
                                              _mm_cmpeq_epi8(bytes, carriageReturn));
            bits |= uint64_t(static_cast<uint32_t>(_mm_movemask_epi8(hits))) << (16 * i);
        }
#else
        for (int i = 0; i < 64; ++i)
            bits |= uint64_t(p[i] == '\t' || p[i] == '\n' || p[i] == '\r') << i;
#endif
        return bits;
    }

    const char* const end;
    const char* block = nullptr;
    uint64_t mask = 0;
};

// The text that a row offset points into, from the row on.
std::string_view rowText(const PronouncingDictionary& dictionary, uint32_t row)
{
    if (row < dictionary.text.size())
        return dictionary.text.substr(row);
    return reservedText.substr(row - dictionary.text.size());
}

// Every row that the load kept has two tabs on its line.
std::string_view wordOf(const PronouncingDictionary& dictionary, uint32_t row)
{
    const std::string_view text = rowText(dictionary, row);
    return text.substr(0, text.find('\t'));
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

// Collects the rows of one text in a single pass. Rows that come in ascending
// order of their words go straight to the index; the few that don't (numbered
// alternates, joined phrases, later additions, a repeated word) wait aside and
// are put in their places at the end.
struct Indexer {
    PronouncingDictionary& dictionary;
    std::vector<uint32_t> strays;
    std::string_view lastWord;

    void add(const char* word, const char* tab, uint32_t row)
    {
        const std::string_view view(word, static_cast<size_t>(tab - word));
        if (dictionary.rows.empty() || lastWord < view) {
            dictionary.rows.push_back(row);
            lastWord = view;
        } else {
            strays.push_back(row);
        }
    }

    // The meaning of "splitlines, strip each line, split it at every tab,
    // keep three fields", without a copy of any line. The common line is
    // word, tab, phonemes, tab, orthography, line feed, with no blank at either
    // end; anything else takes the long way.
    void indexText(std::string_view text, uint32_t base)
    {
        const char* const begin = text.data();
        const char* const end = begin + text.size();
        BreakScanner breaks(begin, end);
        const char* p = begin;
        while (p < end) {
            if (!isBlank(*p)) {
                const char* tab1 = breaks.next();
                if (tab1 < end && *tab1 == '\t') {
                    const char* tab2 = breaks.next();
                    if (tab2 < end && *tab2 == '\t') {
                        const char* stop = breaks.next();
                        if ((stop == end || *stop == '\n') && !isBlank(stop[-1])) {
                            add(p, tab1, base + static_cast<uint32_t>(p - begin));
                            p = stop == end ? end : stop + 1;
                            continue;
                        }
                    }
                }
            }
            p = indexLine(p, end, begin, base);
            breaks.seek(p);
        }
    }

    // Indexes the line at `p` if it has three fields; returns the next line.
    const char* indexLine(const char* p, const char* end, const char* begin, uint32_t base)
    {
        const char* stop = p;
        while (stop < end && *stop != '\n' && *stop != '\r')
            ++stop;
        const char* next = stop;
        if (next < end)
            next += (*next == '\r' && next + 1 < end && next[1] == '\n') ? 2 : 1;

        const char* first = p;
        const char* last = stop;
        while (first < last && isBlank(*first))
            ++first;
        while (last > first && isBlank(last[-1]))
            --last;
        const char* tab1 = std::find(first, last, '\t');
        const char* tab2 = tab1 == last ? last : std::find(tab1 + 1, last, '\t');
        if (tab2 != last && std::find(tab2 + 1, last, '\t') == last)
            add(first, tab1, base + static_cast<uint32_t>(first - begin));
        return next;
    }

    // Puts the strays in: sorted, a repeated word's last row kept, each either
    // replacing the row of its word or inserted, all insertions in one sweep
    // from the back.
    void finish()
    {
        if (strays.empty())
            return;
        auto& rows = dictionary.rows;
        const auto byWord = [this](uint32_t a, uint32_t b) {
            return wordOf(dictionary, a) < wordOf(dictionary, b);
        };
        // Stable, so that equal words keep the order of the text.
        std::stable_sort(strays.begin(), strays.end(), byWord);
        size_t kept = 0;
        for (size_t i = 0; i < strays.size(); ++i) {
            if (kept > 0 && !byWord(strays[kept - 1], strays[i]))
                strays[kept - 1] = strays[i];
            else
                strays[kept++] = strays[i];
        }
        strays.resize(kept);

        // A stray belongs just before the row that turned it away or a little
        // further back, so each search starts there. Until the strays go in,
        // the index holds rows in the order of the text, which finds that row
        // by offset alone. The index's row of a stray's word came before it in
        // the text, so the stray replaces it.
        struct Place {
            size_t position;
            uint32_t row;
            bool replaces;
        };
        std::vector<Place> places;
        places.reserve(strays.size());
        for (const uint32_t stray : strays) {
            size_t bound = static_cast<size_t>(std::upper_bound(rows.begin(), rows.end(), stray) - rows.begin()) - 1;
            size_t step = 1;
            for (; bound >= step && !byWord(rows[bound - step], stray); step *= 2)
                bound -= step;
            const auto from = rows.begin() + static_cast<std::ptrdiff_t>(bound >= step ? bound - step + 1 : 0);
            const auto at = std::lower_bound(from, rows.begin() + static_cast<std::ptrdiff_t>(bound), stray, byWord);
            places.push_back({static_cast<size_t>(at - rows.begin()), stray, !byWord(stray, *at)});
        }
        std::vector<std::pair<size_t, uint32_t>> inserts; // position, row
        for (const Place& place : places) {
            if (place.replaces)
                rows[place.position] = place.row;
            else
                inserts.emplace_back(place.position, place.row);
        }
        size_t read = rows.size();
        rows.resize(rows.size() + inserts.size());
        size_t write = rows.size();
        for (size_t i = inserts.size(); i-- > 0;) {
            const size_t position = inserts[i].first;
            std::move_backward(rows.begin() + static_cast<std::ptrdiff_t>(position),
                               rows.begin() + static_cast<std::ptrdiff_t>(read),
                               rows.begin() + static_cast<std::ptrdiff_t>(write));
            write -= read - position;
            read = position;
            rows[--write] = inserts[i].second;
        }
    }
};

} // namespace

std::string stripStress(const std::string& phonemes)
{
    return withoutStress(phonemes);
}

PronouncingDictionary loadPronouncingDictionary(const char* text, int32_t length)
{
    PronouncingDictionary dictionary;
    if (text && length > 0)
        dictionary.text = std::string_view(text, static_cast<size_t>(length));
    // Sized for rows of about 40 bytes, as English words with their phonemes
    // and syllables run; a text of shorter rows only makes the index grow.
    dictionary.rows.reserve(dictionary.text.size() / 32 + 2);
    Indexer indexer{dictionary, {}, {}};
    indexer.indexText(dictionary.text, 0);
    indexer.indexText(reservedText, static_cast<uint32_t>(dictionary.text.size()));
    indexer.finish();
    return dictionary;
}

size_t findWord(const PronouncingDictionary& dictionary, std::string_view word)
{
    // The row's word ends at its tab; reading to there spares a search for it
    // at every step.
    const auto compare = [&](uint32_t row) {
        const char* text = rowText(dictionary, row).data();
        for (size_t i = 0;; ++i) {
            const bool rowEnds = text[i] == '\t';
            if (i == word.size())
                return rowEnds ? 0 : 1;
            if (rowEnds)
                return -1;
            if (text[i] != word[i])
                return static_cast<unsigned char>(text[i]) < static_cast<unsigned char>(word[i]) ? -1 : 1;
        }
    };
    const auto& rows = dictionary.rows;
    const auto at = std::lower_bound(rows.begin(), rows.end(), 0,
                                     [&](uint32_t row, int) { return compare(row) < 0; });
    if (at == rows.end() || compare(*at) != 0)
        return noWord;
    return static_cast<size_t>(at - rows.begin());
}

std::string_view wordAt(const PronouncingDictionary& dictionary, size_t index)
{
    return wordOf(dictionary, dictionary.rows[index]);
}

std::string phonemesAt(const PronouncingDictionary& dictionary, size_t index)
{
    const std::string_view text = rowText(dictionary, dictionary.rows[index]);
    const size_t tab1 = text.find('\t');
    return withoutStress(text.substr(tab1 + 1, text.find('\t', tab1 + 1) - tab1 - 1));
}

std::string_view orthographyAt(const PronouncingDictionary& dictionary, size_t index)
{
    std::string_view text = rowText(dictionary, dictionary.rows[index]);
    text.remove_prefix(text.find('\t', text.find('\t') + 1) + 1);
    // To the line's end, less the blanks that the load stripped; a tab among
    // them is one of those blanks.
    text = text.substr(0, text.find_first_of("\n\r"));
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace Zelmor
