#pragma once
// Constant phoneme data: the vowel and nucleus classes that drive syllable
// logic, the rule engine's alias table and the two kana tables.

#include <cstddef>
#include <map>
#include <string>

namespace Zelmor {

// The syllable cutter's vowels, compared as whole tokens ("ax" included, as
// the rule engine writes it before aliasing).
bool isSyllableVowel(const std::string& token);

// Nucleus classes in the order `findNucleus` tries them. A token is a member
// when it is a leading part of an entry, so "n" falls in class 2 by way of
// "ng" and "t" in class 3 by way of "th".
constexpr int nucleusClassCount = 3;
bool inNucleusClass(int cls, const std::string& token);

// Rule-engine tokens that never reach the output: "ax", "nx", "wh".
const std::map<std::string, std::string>& phonemeAliases();

struct KanaDigraph {
    char32_t first;
    char32_t second;
    const char* phonemes;
};
struct KanaMonograph {
    char32_t kana;
    const char* phonemes;
};

constexpr size_t kanaDigraphCount = 102;
constexpr size_t kanaMonographCount = 85;
extern const KanaDigraph kanaDigraphTable[kanaDigraphCount];
extern const KanaMonograph kanaMonographTable[kanaMonographCount];

constexpr char32_t longVowelMark = 0x30FC;

// Folds hiragana onto katakana; returns 0 for anything that is no kana here.
// The long-vowel mark is handled apart and also gives 0.
char32_t foldKana(char32_t cp);

// First row whose pair equals (first, second), which must already be folded; null on a miss.
const char* findKanaDigraph(char32_t first, char32_t second);
// Row of one folded kana or of the long-vowel mark; null on a miss.
const char* findKanaMonograph(char32_t kana);

} // namespace Zelmor
