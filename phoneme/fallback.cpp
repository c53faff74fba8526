#include "phoneme/fallback.h"

#include "phoneme/letter_to_sound.h"
#include "phoneme/phoneme_inventory.h"
#include "phoneme/string_helpers.h"

#include <cctype>

namespace Zelmor {

bool isVowelLetter(char c)
{
    return c == 'a' || c == 'e' || c == 'i' || c == 'o' || c == 'u' || c == 'y';
}

std::vector<std::string> syllabifyLetters(const std::string& letters)
{
    if (letters.empty())
        return {std::string()};
    const size_t n = letters.size();
    std::vector<std::string> pieces;
    size_t pending = 0;
    long lastEnd = -1;
    size_t i = 0;
    while (i < n) {
        if (!isVowelLetter(letters[i])) {
            ++pending;
            ++i;
            continue;
        }
        size_t end = i + 1;
        while (end < n && isVowelLetter(letters[end]))
            ++end;
        if (end == n && end - i >= 2)
            end = n - 1;
        const size_t chunkStart = i - pending;
        std::string chunk = letters.substr(chunkStart, end - chunkStart);
        if (pieces.empty() || pending < 2) {
            pieces.push_back(std::move(chunk));
        } else {
            pieces.back() += chunk[0];
            pieces.push_back(chunk.substr(1));
        }
        lastEnd = static_cast<long>(end) - 1;
        pending = 0;
        i = end;
    }
    if (lastEnd < 0)
        return {letters};
    pieces.back().append(letters, static_cast<size_t>(lastEnd) + 1, std::string::npos);
    return pieces;
}

std::vector<std::string> syllabifyPhonemes(const std::string& phonemes)
{
    std::vector<std::string> tokens;
    split(phonemes, tokens);
    if (tokens.empty())
        return {phonemes};
    std::vector<std::string> pieces;
    std::vector<std::string> pending;
    bool sawVowel = false;
    for (auto& token : tokens) {
        if (!isSyllableVowel(token)) {
            pending.push_back(std::move(token));
            continue;
        }
        sawVowel = true;
        if (pieces.empty() || pending.size() < 2) {
            pending.push_back(std::move(token));
            pieces.push_back(join(" ", pending));
        } else {
            pieces.back() += ' ';
            pieces.back() += pending[0];
            pending.erase(pending.begin());
            pending.push_back(std::move(token));
            pieces.push_back(join(" ", pending));
        }
        pending.clear();
    }
    if (!sawVowel)
        return {phonemes};
    for (const auto& token : pending) {
        pieces.back() += ' ';
        pieces.back() += token;
    }
    return pieces;
}

std::pair<std::string, std::string> lettersToPhonemes(const LetterToSoundEngine& engine,
                                                      const std::string& word)
{
    // Cleaning: drop all but [a-zA-Z' ], lower-case, fold runs of blanks into
    // one and trim them, then pad with a blank at each end.
    std::string padded = " ";
    padded.reserve(word.size() + 2);
    for (char c : word) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (letter || c == '\'') {
            padded += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        } else if (c == ' ' && padded.back() != ' ') {
            padded += ' ';
        }
    }
    if (padded.size() > 1 && padded.back() == ' ')
        padded.pop_back();
    padded += ' ';

    std::vector<std::string> found;
    for (auto& pair : applyRules(engine, padded))
        found.push_back(std::move(pair.second));
    const std::string rulePhonemes = join(" ", found);

    std::string letters;
    letters.reserve(padded.size());
    for (char c : padded)
        if (c != ' ')
            letters += c;
    std::string orthography = join(" . ", syllabifyLetters(letters));

    // Aliases come after the cut, so that "ax" still counts as a vowel there.
    std::vector<std::string> tokens;
    split(join(" . ", syllabifyPhonemes(rulePhonemes)), tokens);
    const auto& aliases = phonemeAliases();
    for (auto& token : tokens) {
        auto alias = aliases.find(token);
        if (alias != aliases.end())
            token = alias->second;
    }
    return {std::move(orthography), join(" ", tokens)};
}

std::pair<std::string, std::string> lettersToPhonemes(const std::string& word)
{
    static const LetterToSoundEngine engine;
    return lettersToPhonemes(engine, word);
}

} // namespace Zelmor
