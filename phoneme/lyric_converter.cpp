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

HyphenPlaces::HyphenPlaces(const std::string& orthography, size_t syllables)
    : syllables_(syllables)
{
    std::vector<std::string> pieces;
    split(orthography, pieces, ".");
    size_t total = 0;
    for (const auto& piece : pieces) {
        total += strip(piece).size();
        pieceEnds_.push_back(total);
    }
}

size_t HyphenPlaces::syllableAfter(long letter)
{
    // Letters only grow along the text and the piece ends are running sums, so
    // the piece a hyphen falls in only moves forward: one pass for the word.
    while (piece_ < pieceEnds_.size() && static_cast<long>(pieceEnds_[piece_]) <= letter)
        ++piece_;
    // Past the last piece the hyphen counts for the first syllable.
    const size_t index = piece_ < pieceEnds_.size() ? piece_ : 0;
    return std::min(index, syllables_ - 1);
}

std::vector<int32_t> holdCounts(const std::vector<std::string>& syllables, const std::string& orthography,
                                const std::string& hyphenated)
{
    std::vector<int32_t> count(syllables.size(), 0);
    if (syllables.empty())
        return count;
    HyphenPlaces places(orthography, syllables.size());
    long letter = -1;
    for (char c : hyphenated) {
        if (c != '-')
            ++letter;
        else
            ++count[places.syllableAfter(letter)];
    }
    return count;
}

void dealSyllable(const std::string& syllable, int32_t holds, std::vector<std::string>& result)
{
    if (holds == 0) {
        result.push_back(syllable);
        return;
    }
    std::vector<std::string> tokens;
    split(syllable, tokens);
    const size_t k = findNucleus(tokens);
    const size_t headEnd = tokens.empty() ? 0 : k + 1;
    result.push_back(join(" ", std::vector<std::string>(tokens.begin(), tokens.begin() + headEnd)));
    for (int32_t c = 0; c < holds; ++c)
        result.emplace_back("-");
    result.back() += ' ';
    result.back() += join(" ", std::vector<std::string>(tokens.begin() + headEnd, tokens.end()));
}

void distributeSyllables(const std::vector<std::string>& syllables, const std::string& orthography,
                         const std::string& hyphenated, std::vector<std::string>& result)
{
    const auto count = holdCounts(syllables, orthography, hyphenated);
    for (size_t s = 0; s < syllables.size(); ++s)
        dealSyllable(syllables[s], count[s], result);
}

LyricWord convertedWord(const std::u32string& text, int32_t first, int32_t end,
                        const PronouncingDictionary& dictionary)
{
    const int32_t size = static_cast<int32_t>(std::min<size_t>(text.size(), INT32_MAX));
    first = std::clamp(first, 0, size);
    end = std::clamp(end, first, size);
    LyricWord out;
    out.first = first;
    out.end = end;

    std::string word;
    word.reserve(static_cast<size_t>(end - first));
    for (int32_t i = first; i < end; ++i)
        utf8::append(static_cast<uint32_t>(text[static_cast<size_t>(i)]), std::back_inserter(word));
    // The C locale's tolower: only ASCII letters change.
    for (char& c : word)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');

    out.hyphenated.reserve(word.size());
    std::string key;
    key.reserve(word.size());
    for (char c : word) {
        if (isStrippedPunctuation(c))
            continue;
        out.hyphenated += c;
        if (c != '-')
            key += c;
    }

    const size_t hit = findWord(dictionary, key);
    out.control = end - first == 1 && text[static_cast<size_t>(first)] == U'0';

    std::string phonemes;
    if (hit != noWord) {
        // Hyphen positions on dictionary words are measured on the phoneme text.
        phonemes = phonemesAt(dictionary, hit);
        out.orthography = phonemes;
    } else if (canHavePhonemes(key)) {
        auto fallback = lettersToPhonemes(key);
        out.orthography = std::move(fallback.first);
        phonemes = std::move(fallback.second);
    }
    if (phonemes.empty())
        return out;

    split(phonemes, out.syllables, ".");
    for (auto& syllable : out.syllables)
        syllable = strip(syllable);
    return out;
}

namespace {

void appendWord(LyricWord& word, std::vector<std::string>& result)
{
    if (word.control)
        applyControlWord(result);
    word.element = result.size();
    if (word.hyphenated.find('-') == std::string::npos)
        result.insert(result.end(), word.syllables.begin(), word.syllables.end());
    else
        distributeSyllables(word.syllables, word.orthography, word.hyphenated, result);
    word.elements = result.size() - word.element;
}

std::vector<std::string> convertText(const std::string& lyric, const PronouncingDictionary& dictionary,
                                     LyricLayout* layout)
{
    std::u32string text;
    text.reserve(lyric.size());
    for (auto it = lyric.begin(); it != lyric.end();)
        text.push_back(static_cast<char32_t>(utf8::next(it, lyric.end())));

    std::vector<std::string> result;
    const int32_t n = static_cast<int32_t>(std::min<size_t>(text.size(), INT32_MAX));
    if (layout) {
        *layout = LyricLayout{};
        layout->text = text;
        layout->roles.assign(text.size(), LyricLayout::Skipped);
        layout->arrival.assign(text.size() + 1, 0);
    }
    if (n < 1)
        return result;

    int32_t wordStart = -1;
    auto closeWord = [&](int32_t end) {
        if (wordStart >= 0) {
            LyricWord word = convertedWord(text, wordStart, end, dictionary);
            appendWord(word, result);
            if (layout) {
                layout->control = layout->control || word.control;
                layout->words.push_back(std::move(word));
            }
            wordStart = -1;
        }
    };
    auto role = [&](int32_t i, LyricLayout::Role r) {
        if (layout)
            layout->roles[static_cast<size_t>(i)] = r;
    };

    for (int32_t i = 0; i < n; ++i) {
        if (layout)
            layout->arrival[static_cast<size_t>(i)] = result.size();
        const char32_t c = text[static_cast<size_t>(i)];
        if (c == U' ') {
            role(i, LyricLayout::Space);
            closeWord(i);
            continue;
        }
        if (i < n - 1) {
            const char32_t a = foldKana(c);
            const char32_t b = foldKana(text[static_cast<size_t>(i) + 1]);
            const char* pair = (a && b) ? findKanaDigraph(a, b) : nullptr;
            if (pair) {
                role(i, LyricLayout::PairFirst);
                role(i + 1, LyricLayout::PairSecond);
                if (layout)
                    layout->arrival[static_cast<size_t>(i) + 1] = result.size();
                // An open word takes the first kana of the pair with it.
                ++i;
                closeWord(i);
                result.emplace_back(pair);
                continue;
            }
        }
        const char* single = c == longVowelMark ? findKanaMonograph(c) : findKanaMonograph(foldKana(c));
        if (single) {
            role(i, LyricLayout::Single);
            closeWord(i);
            result.emplace_back(single);
            continue;
        }
        if (wordStart < 0 && c >= 0x21 && c <= 0x7E)
            wordStart = i;
        if (wordStart >= 0)
            role(i, LyricLayout::InWord);
    }
    if (layout)
        layout->arrival[static_cast<size_t>(n)] = result.size();
    closeWord(n);
    return result;
}

} // namespace

void convertWord(const std::u32string& text, int32_t first, int32_t end,
                 const PronouncingDictionary& dictionary, std::vector<std::string>& result)
{
    LyricWord word = convertedWord(text, first, end, dictionary);
    appendWord(word, result);
}

std::vector<std::string> convertLyric(const std::string& lyric, const PronouncingDictionary& dictionary)
{
    return convertText(lyric, dictionary, nullptr);
}

std::vector<std::string> convertLyric(const std::string& lyric, const PronouncingDictionary& dictionary,
                                      LyricLayout& layout)
{
    return convertText(lyric, dictionary, &layout);
}

} // namespace Zelmor
