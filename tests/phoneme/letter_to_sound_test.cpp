#include "phoneme/fallback.h"
#include "phoneme/letter_to_sound.h"

#include <gtest/gtest.h>
#include <re2/re2.h>

#include <array>
#include <random>
#include <regex>

using namespace Zelmor;
using V = std::vector<std::string>;

namespace {

const LetterToSoundEngine& engine()
{
    static const LetterToSoundEngine built;
    return built;
}

V phonemesOf(const std::string& padded)
{
    V out;
    for (const auto& pair : applyRules(engine(), padded))
        out.push_back(pair.second);
    return out;
}

} // namespace

TEST(LetterToSoundRules, ContextPatternsAndMatching)
{
    EXPECT_EQ(contextPattern(" ", false, true), "( )$");
    EXPECT_EQ(contextPattern("#:", false, true), "([aeiouy]+[bcdfghjklmnpqrstvwxz]*)$");
    EXPECT_EQ(contextPattern("%", true, false), "^((er|e|es|ed|ing|ely))");

    const auto& as = *engine().rulesFor('a');
    const std::string text = " are ";
    // Rule 1 ("a" before a blank) fails, rule 2 ("are" between blanks) holds.
    EXPECT_EQ(matchRule(text, 1, as[0]), (std::pair<std::string, std::string>{}));
    EXPECT_EQ(matchRule(text, 1, as[1]), (std::pair<std::string, std::string>{"are", "aa r"}));
    EXPECT_EQ(matchRule(" care ", 2, as[1]).first, "");  // left context wants the boundary
    EXPECT_EQ(matchRule(" ar", 1, as[1]).first, "");     // fewer letters than the match
    EXPECT_EQ(matchRule(text, 5, as.back()).first, "");  // position past the end
    EXPECT_EQ(matchRule(text, -1, as.back()).first, "");
}

// Words traced by hand through the lists; the comments name the deciding rules.
TEST(LetterToSoundRules, HandTracedWords)
{
    const std::vector<std::pair<std::string, V>> cases = {
        {" cat ", {"k", "ae", "t"}},        // bare "a": no context before "t_" fits
        {" phone ", {"f", "ow", "n", ""}},  // o with "^%" behind; final e silent after "#:"
        {" quick ", {"k w", "ih", "k"}},    // qu; i falls through to the bare rule; ck
        {" thorn ", {"th", "ao r", "n"}},   // "#: or _" needs a vowel before: the bare "or"
        {" table ", {"t", "ey b ax l"}},    // "_: able": the boundary and one consonant
        {" boss ", {"b", "ah m"}},          // a row that reads oddly stands as it is
        {" ''' ", {"", "", ""}},
        {" a b ", {"ax"}},                  // an inner blank ends the scan
    };
    for (const auto& [padded, phonemes] : cases)
        EXPECT_EQ(phonemesOf(padded), phonemes) << padded;
}

TEST(Fallback, LettersToPhonemes)
{
    const std::vector<std::array<std::string, 3>> cases = {
        {"where", "whe . re", "w eh r"},
        {"snarfle", "snar . fle", "s n aa r . f ah l"},
        {"aaa", "aa . a", "ae . ae . ah"},
        {"table", "tab . le", "t ey . b ah l"},
        {"  Ph\xc3\xa9one7 ", "pho . ne", "f ow n"},  // case, stray characters and blanks go
        {"123", "", ""},
    };
    for (const auto& [word, orthography, phonemes] : cases)
        EXPECT_EQ(lettersToPhonemes(word), std::make_pair(orthography, phonemes)) << word;
}

TEST(Fallback, SyllableCutters)
{
    const std::vector<std::pair<std::string, V>> letters = {
        {"", {""}}, {"x", {"x"}}, {"eat", {"eat"}}, {"strengths", {"strengths"}},
        {"queue", {"queu", "e"}}, {"hello", {"hel", "lo"}}, {"banana", {"ba", "na", "na"}},
    };
    for (const auto& [word, pieces] : letters)
        EXPECT_EQ(syllabifyLetters(word), pieces) << word;
    EXPECT_FALSE(isVowelLetter('A'));
    EXPECT_TRUE(isVowelLetter('y'));

    const std::vector<std::pair<std::string, V>> phonemes = {
        {"", {""}}, {"k s", {"k s"}}, {"ae ae ax", {"ae", "ae", "ax"}},
        {"k ah n t ih n y uw ih ng", {"k ah n", "t ih n", "y uw", "ih ng"}},
        {"  s t r eh ng k th ", {"s t r eh ng k th"}},
        {"b a d ahx", {"b a d ahx"}},  // whole tokens only: "a" or "ahx" is no vowel
    };
    for (const auto& [text, pieces] : phonemes)
        EXPECT_EQ(syllabifyPhonemes(text), pieces) << text;
}

// The contexts must mean the same under ECMAScript as under RE2: run both on
// every context over texts made of the letters the rules see.
TEST(LetterToSoundRules, ExpressionsAgreeWithEcmaScript)
{
    std::vector<std::pair<std::regex, std::unique_ptr<re2::RE2>>> both;
    for (const auto& rule : letterToSoundRules) {
        if (rule.left[0])
            both.emplace_back(std::regex(contextPattern(rule.left, false, true)),
                              compileContext(rule.left, false, true));
        if (rule.right[0])
            both.emplace_back(std::regex(contextPattern(rule.right, true, false)),
                              compileContext(rule.right, true, false));
    }
    ASSERT_EQ(both.size(), 272u);
    std::vector<std::string> texts = {"", " ", " the", "e ", "ing ", "ely ", "sh", " sch", "ner "};
    std::mt19937 random(7);
    const std::string alphabet = "aeiouybcdghlmnrstxz' ";
    for (int i = 0; i < 400; ++i) {
        std::string text;
        for (int len = random() % 8; len > 0; --len)
            text += alphabet[random() % alphabet.size()];
        texts.push_back(text);
    }
    for (const auto& [ecma, re2Expression] : both)
        for (const auto& text : texts)
            ASSERT_EQ(std::regex_search(text, ecma), re2::RE2::PartialMatch(text, *re2Expression))
                << re2Expression->pattern() << " on '" << text << "'";
}
