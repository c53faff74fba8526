#include "phoneme/lyric_converter.h"

#include "phoneme/fallback.h"
#include "phoneme/phoneme_inventory.h"
#include "phoneme/string_helpers.h"

#include <utf8.h>

#include <algorithm>
#include <iterator>

namespace Zelmor {

namespace {

bool isStrippedPunctuation(char c)
{
    switch (c) {
    case '.': case ',': case ':': case ';': case '(': case ')':
    case '"': case '!': case '?': case '/':
        return true;
    default:
        return false;
    }
}

// The rules know only letters and the apostrophe; a key without either
// cannot give phonemes, and need not build the engine to find that out.
bool canHavePhonemes(const std::string& key)
{
    return std::any_of(key.begin(), key.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '\'';
    });
}

void applyControlWord(std::vector<std::string>& result)
{
    if (result.empty()) {
        result.emplace_back("sil");
        return;
    }
    std::vector<std::string> tokens;
    split(result.back(), tokens);
    if (tokens.size() < 2) {
        result.back() = "sil";
        return;
    }
    tokens.pop_back();
    result.back() = join(" ", tokens);
}

} // namespace

size_t findNucleus(const std::vector<std::string>& tokens)
{
    for (int cls = 0; cls < nucleusClassCount; ++cls)
        for (size_t i = 0; i < tokens.size(); ++i)
            if (inNucleusClass(cls, tokens[i]))
                return i;
    return 0;
}

void distributeSyllables(const std::vector<std::string>& syllables, const std::string& orthography,
                         const std::string& hyphenated, std::vector<std::string>& result)
{
    if (syllables.empty())
        return;
    std::vector<std::string> pieces;
    split(orthography, pieces, ".");
    std::vector<size_t> pieceEnds;
    size_t total = 0;
    for (const auto& piece : pieces) {
        total += strip(piece).size();
        pieceEnds.push_back(total);
    }

    const size_t m = syllables.size();
    std::vector<int32_t> count(m, 0);
    long letter = -1;
    // Letters only grow along the text and the piece ends are running sums, so
    // the piece a hyphen falls in only moves forward: one pass for the word.
    size_t piece = 0;
    for (char c : hyphenated) {
        if (c != '-') {
            ++letter;
            continue;
        }
        while (piece < pieceEnds.size() && static_cast<long>(pieceEnds[piece]) <= letter)
            ++piece;
        // Past the last piece the hyphen counts for the first syllable.
        const size_t index = piece < pieceEnds.size() ? piece : 0;
        ++count[std::min(index, m - 1)];
    }

    std::vector<std::string> tokens;
    for (size_t s = 0; s < m; ++s) {
        if (count[s] == 0) {
            result.push_back(syllables[s]);
            continue;
        }
        split(syllables[s], tokens);
        const size_t k = findNucleus(tokens);
        const size_t headEnd = tokens.empty() ? 0 : k + 1;
        result.push_back(join(" ", std::vector<std::string>(tokens.begin(), tokens.begin() + headEnd)));
        for (int32_t c = 0; c < count[s]; ++c)
            result.emplace_back("-");
        result.back() += ' ';
        result.back() += join(" ", std::vector<std::string>(tokens.begin() + headEnd, tokens.end()));
    }
}

void convertWord(const std::u32string& text, int32_t first, int32_t end,
                 const PronouncingDictionary& dictionary, std::vector<std::string>& result)
{
    const int32_t size = static_cast<int32_t>(std::min<size_t>(text.size(), INT32_MAX));
    first = std::clamp(first, 0, size);
    end = std::clamp(end, first, size);

    std::string word;
    word.reserve(static_cast<size_t>(end - first));
    for (int32_t i = first; i < end; ++i)
        utf8::append(static_cast<uint32_t>(text[static_cast<size_t>(i)]), std::back_inserter(word));
    // The C locale's tolower: only ASCII letters change.
    for (char& c : word)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');

    std::string hyphenated;
    hyphenated.reserve(word.size());
    std::string key;
    key.reserve(word.size());
    for (char c : word) {
        if (isStrippedPunctuation(c))
            continue;
        hyphenated += c;
        if (c != '-')
            key += c;
    }

    const size_t hit = findWord(dictionary, key);

    if (end - first == 1 && text[static_cast<size_t>(first)] == U'0')
        applyControlWord(result);

    std::string phonemes;
    std::string orthography;
    if (hit != noWord) {
        // Hyphen positions on dictionary words are measured on the phoneme text.
        phonemes = phonemesAt(dictionary, hit);
        orthography = phonemes;
    } else if (canHavePhonemes(key)) {
        auto fallback = lettersToPhonemes(key);
        orthography = std::move(fallback.first);
        phonemes = std::move(fallback.second);
    }
    if (phonemes.empty())
        return;

    std::vector<std::string> syllables;
    split(phonemes, syllables, ".");
    for (auto& syllable : syllables)
        syllable = strip(syllable);

    if (hyphenated.find('-') == std::string::npos) {
        result.insert(result.end(), std::make_move_iterator(syllables.begin()),
                      std::make_move_iterator(syllables.end()));
        return;
    }
    distributeSyllables(syllables, orthography, hyphenated, result);
}

std::vector<std::string> convertLyric(const std::string& lyric, const PronouncingDictionary& dictionary)
{
    std::u32string text;
    text.reserve(lyric.size());
    for (auto it = lyric.begin(); it != lyric.end();)
        text.push_back(static_cast<char32_t>(utf8::next(it, lyric.end())));

    std::vector<std::string> result;
    const int32_t n = static_cast<int32_t>(std::min<size_t>(text.size(), INT32_MAX));
    if (n < 1)
        return result;

    int32_t wordStart = -1;
    auto closeWord = [&](int32_t end) {
        if (wordStart >= 0) {
            convertWord(text, wordStart, end, dictionary, result);
            wordStart = -1;
        }
    };

    for (int32_t i = 0; i < n; ++i) {
        const char32_t c = text[static_cast<size_t>(i)];
        if (c == U' ') {
            closeWord(i);
            continue;
        }
        if (i < n - 1) {
            const char32_t a = foldKana(c);
            const char32_t b = foldKana(text[static_cast<size_t>(i) + 1]);
            const char* pair = (a && b) ? findKanaDigraph(a, b) : nullptr;
            if (pair) {
                // An open word takes the first kana of the pair with it.
                ++i;
                closeWord(i);
                result.emplace_back(pair);
                continue;
            }
        }
        const char* single = c == longVowelMark ? findKanaMonograph(c) : findKanaMonograph(foldKana(c));
        if (single) {
            closeWord(i);
            result.emplace_back(single);
            continue;
        }
        if (wordStart < 0 && c >= 0x21 && c <= 0x7E)
            wordStart = i;
    }
    closeWord(n);
    return result;
}

} // namespace Zelmor
