#pragma once
// Pronunciation of a word that the dictionary lacks, cut into syllables the
// way a dictionary row is: "phonemes . phonemes" and "letters . letters".

#include <string>
#include <utility>
#include <vector>

namespace Zelmor {

class LetterToSoundEngine;

// a, e, i, o, u and y in lower case only.
bool isVowelLetter(char c);

// Consonants between two vowel groups go to the next syllable, except that of
// two or more the first closes the syllable before. A final vowel group of two
// letters or more leaves its last letter as a group of its own.
std::vector<std::string> syllabifyLetters(const std::string& letters);

// The same cut over blank-separated tokens, where each vowel token is a group.
std::vector<std::string> syllabifyPhonemes(const std::string& phonemes);

// Returns (orthography, phonemes), both with " . " between syllables. The
// engine is built on the first call.
std::pair<std::string, std::string> lettersToPhonemes(const std::string& word);
// The same with an engine of the caller's.
std::pair<std::string, std::string> lettersToPhonemes(const LetterToSoundEngine& engine,
                                                      const std::string& word);

} // namespace Zelmor
