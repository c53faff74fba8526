#include "phoneme/hold_marks.h"

#include "phoneme/phoneme_inventory.h"

namespace Zelmor {

namespace {

// Letters a code point adds to a word's count: its bytes, less stripped
// punctuation and hyphens, which the converter leaves out of the count.
long lettersOf(char32_t c)
{
    if (c >= 0x80)
        return c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
    switch (c) {
    case '-': case '.': case ',': case ':': case ';': case '(': case ')':
    case '"': case '!': case '?': case '/':
        return 0;
    default:
        return 1;
    }
}

// A hyphen inside a word, or at either end of it, only deals its syllables
// differently: the word's letters and so its phonemes stay as they are.
void hyphensInWord(const LyricLayout& layout, const LyricWord& word, std::vector<MarkEffect>& out)
{
    const size_t first = static_cast<size_t>(word.first);
    const size_t end = static_cast<size_t>(word.end);
    // Between the two kana of a pair the hyphen parts them.
    const size_t last = end < layout.roles.size() && layout.roles[end] == LyricLayout::PairSecond ? end - 1 : end;
    if (word.syllables.empty()) {
        for (size_t p = first; p <= last; ++p)
            out[p].kind = MarkEffect::Same;
        return;
    }
    const auto counts = holdCounts(word.syllables, word.orthography, word.hyphenated);
    std::vector<size_t> from(counts.size() + 1, word.element);
    for (size_t s = 0; s < counts.size(); ++s)
        from[s + 1] = from[s] + 1 + static_cast<size_t>(counts[s]);
    std::vector<std::vector<std::string>> dealt(counts.size());
    HyphenPlaces places(word.orthography, word.syllables.size());
    long letter = -1;
    for (size_t p = first; p <= last; ++p) {
        const size_t s = places.syllableAfter(letter);
        if (dealt[s].empty())
            dealSyllable(word.syllables[s], counts[s] + 1, dealt[s]);
        out[p] = {MarkEffect::Replaced, from[s], from[s + 1], dealt[s]};
        if (p < end)
            letter += lettersOf(layout.text[p]);
    }
}

} // namespace

std::vector<MarkEffect> markEffects(const LyricLayout& layout, const PronouncingDictionary& dictionary,
                                    char32_t mark)
{
    const size_t n = layout.text.size();
    std::vector<MarkEffect> out(n + 1);
    // The control word trims the element before it, which a mark may change.
    if (layout.control)
        return out;
    // The word each place touches: a mark before its first code point or after its last joins it.
    std::vector<const LyricWord*> wordAt(n + 1, nullptr);
    for (const auto& w : layout.words)
        for (size_t p = static_cast<size_t>(w.first); p <= static_cast<size_t>(w.end); ++p)
            wordAt[p] = &w;

    if (mark == U'-') {
        // Alone between spaces and kana a hyphen is a word of no letters.
        const bool bareHyphenSilent = findWord(dictionary, "") == noWord;
        for (size_t p = 0; p <= n; ++p) {
            const auto role = p < n ? layout.roles[p] : LyricLayout::Space;
            if (!wordAt[p] && bareHyphenSilent
                && (role == LyricLayout::Space || role == LyricLayout::Single))
                out[p].kind = MarkEffect::Same;
        }
        for (const auto& w : layout.words)
            hyphensInWord(layout, w, out);
        return out;
    }
    if (mark != longVowelMark)
        return out;
    const std::string held = findKanaMonograph(longVowelMark);
    for (size_t p = 0; p <= n; ++p) {
        const LyricWord* w = wordAt[p];
        if (p < n && layout.roles[p] == LyricLayout::PairSecond)
            continue;  // it parts the pair
        if (w && static_cast<size_t>(w->first) < p && p < static_cast<size_t>(w->end))
            continue;  // it parts the word in two
        // Otherwise it is a kana of its own between the others: a hold after what came before.
        const size_t at = w && p == static_cast<size_t>(w->end) ? w->element + w->elements : layout.arrival[p];
        out[p] = {MarkEffect::Replaced, at, at, {held}};
    }
    return out;
}

} // namespace Zelmor
