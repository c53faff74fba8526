#include "phoneme/fallback.h"
#include "phoneme/letter_to_sound.h"
#include "phoneme/phoneme_inventory.h"

#include <gtest/gtest.h>
#include <re2/re2.h>

#include <random>
#include <regex>

using namespace Zelmor;
using Pairs = std::vector<std::pair<std::string, std::string>>;

namespace {

const LetterToSoundEngine& engine()
{
    static const LetterToSoundEngine built;
    return built;
}

std::vector<std::string> phonemesOf(const std::string& padded)
{
    std::vector<std::string> out;
    for (const auto& pair : applyRules(engine(), padded))
        out.push_back(pair.second);
    return out;
}

} // namespace

TEST(LetterToSoundRules, TableShape)
{
    EXPECT_EQ(engine().compiledContextCount(), 272u);
    // Lists stand a..z then the apostrophe, each closed by a bare rule for the lone letter.
    const std::string keys = "abcdefghijklmnopqrstuvwxyz'";
    size_t at = 0;
    for (char key : keys) {
        ASSERT_LT(at, letterToSoundRuleCount);
        while (at + 1 < letterToSoundRuleCount && letterToSoundRules[at + 1].match[0] == key)
            ++at;
        const auto& last = letterToSoundRules[at];
        EXPECT_EQ(last.match, std::string(1, key)) << key;
        EXPECT_STREQ(last.left, "");
        EXPECT_STREQ(last.right, "");
        ++at;
    }
    EXPECT_EQ(at, letterToSoundRuleCount);
    EXPECT_EQ(engine().rulesFor(' '), nullptr);
    EXPECT_EQ(engine().rulesFor('a')->size(), 33u);
    EXPECT_EQ(engine().rulesFor('o')->size(), 48u);
}

TEST(LetterToSoundRules, ContextPatterns)
{
    EXPECT_EQ(contextPattern(" ", false, true), "( )$");
    EXPECT_EQ(contextPattern("#:", false, true), "([aeiouy]+[bcdfghjklmnpqrstvwxz]*)$");
    EXPECT_EQ(contextPattern("^+", true, false), "^([bcdfghjklmnpqrstvwxz][eiy])");
    EXPECT_EQ(contextPattern("%", true, false), "^((er|e|es|ed|ing|ely))");
}

TEST(LetterToSoundRules, MatchRuleChecksPositionLettersAndContexts)
{
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

// Words traced by hand through the lists; each line notes the deciding rule.
TEST(LetterToSoundRules, HandTracedWords)
{
    // c: bare "c"; a: bare "a" (no context before "t_" fits); t: bare "t".
    EXPECT_EQ(phonemesOf(" cat "), (std::vector<std::string>{"k", "ae", "t"}));
    // ph -> f; o with "^%" behind ("ne"); n; final e silent after "#:".
    EXPECT_EQ(phonemesOf(" phone "), (std::vector<std::string>{"f", "ow", "n", ""}));
    // qu -> k w; i falls through to the bare rule; ck -> k.
    EXPECT_EQ(phonemesOf(" quick "), (std::vector<std::string>{"k w", "ih", "k"}));
    // th; "#: or _" needs a vowel before, so the bare "or"; n.
    EXPECT_EQ(phonemesOf(" thorn "), (std::vector<std::string>{"th", "ao r", "n"}));
    // t; "_: able" with the boundary and one consonant on the left.
    EXPECT_EQ(phonemesOf(" table "), (std::vector<std::string>{"t", "ey b ax l"}));
    // n; "igh" -> ay; t.
    EXPECT_EQ(phonemesOf(" night "), (std::vector<std::string>{"n", "ay", "t"}));
    // Rows that read oddly stand as they are.
    EXPECT_EQ(phonemesOf(" boss "), (std::vector<std::string>{"b", "ah m"}));
    EXPECT_EQ(phonemesOf(" turn "), (std::vector<std::string>{"t", "er", "n"}));
}

TEST(LetterToSoundRules, EdgeWords)
{
    EXPECT_EQ(applyRules(engine(), " where "), (Pairs{{"where", "wh eh r"}}));
    EXPECT_EQ(phonemesOf(" zzxqt "), (std::vector<std::string>{"z", "z", "k s", "k", "t"}));
    EXPECT_EQ(phonemesOf(" blorp "), (std::vector<std::string>{"b", "l", "ao r", "p"}));
    EXPECT_EQ(phonemesOf(" ''' "), (std::vector<std::string>{"", "", ""}));
    EXPECT_EQ(phonemesOf(" of "), (std::vector<std::string>{"ax v"}));
    // An inner blank ends the scan.
    EXPECT_EQ(phonemesOf(" a b "), (std::vector<std::string>{"ax"}));
}

TEST(Fallback, LettersToPhonemes)
{
    using Out = std::pair<std::string, std::string>;
    EXPECT_EQ(lettersToPhonemes("where"), (Out{"whe . re", "w eh r"}));
    EXPECT_EQ(lettersToPhonemes("blorp"), (Out{"blorp", "b l ao r p"}));
    EXPECT_EQ(lettersToPhonemes("snarfle"), (Out{"snar . fle", "s n aa r . f ah l"}));
    EXPECT_EQ(lettersToPhonemes("aaa"), (Out{"aa . a", "ae . ae . ah"}));
    EXPECT_EQ(lettersToPhonemes("flee"), (Out{"fle . e", "f l iy"}));
    EXPECT_EQ(lettersToPhonemes("phone"), (Out{"pho . ne", "f ow n"}));
    EXPECT_EQ(lettersToPhonemes("table"), (Out{"tab . le", "t ey . b ah l"}));
    // Cleaning: case, stray characters and blanks around the word.
    EXPECT_EQ(lettersToPhonemes("  Ph\xc3\xa9one7 "), lettersToPhonemes("phone"));
    EXPECT_EQ(lettersToPhonemes("123"), (Out{"", ""}));
    EXPECT_EQ(lettersToPhonemes("-"), (Out{"", ""}));
    EXPECT_EQ(lettersToPhonemes("'''"), (Out{"'''", ""}));
}

TEST(Fallback, LetterCutter)
{
    using V = std::vector<std::string>;
    EXPECT_EQ(syllabifyLetters(""), (V{""}));
    EXPECT_EQ(syllabifyLetters("x"), (V{"x"}));
    EXPECT_EQ(syllabifyLetters("queue"), (V{"queu", "e"}));
    EXPECT_EQ(syllabifyLetters("hello"), (V{"hel", "lo"}));
    EXPECT_EQ(syllabifyLetters("strengths"), (V{"strengths"}));
    EXPECT_EQ(syllabifyLetters("banana"), (V{"ba", "na", "na"}));
    EXPECT_EQ(syllabifyLetters("a"), (V{"a"}));
    EXPECT_EQ(syllabifyLetters("eat"), (V{"eat"}));
    EXPECT_FALSE(isVowelLetter('A'));
    EXPECT_TRUE(isVowelLetter('y'));
}

TEST(Fallback, PhonemeCutter)
{
    using V = std::vector<std::string>;
    EXPECT_EQ(syllabifyPhonemes(""), (V{""}));
    EXPECT_EQ(syllabifyPhonemes("k s"), (V{"k s"}));
    EXPECT_EQ(syllabifyPhonemes("k ah n t ih n y uw ih ng"), (V{"k ah n", "t ih n", "y uw", "ih ng"}));
    EXPECT_EQ(syllabifyPhonemes("ae ae ax"), (V{"ae", "ae", "ax"}));
    EXPECT_EQ(syllabifyPhonemes("  s t r eh ng k th "), (V{"s t r eh ng k th"}));
    // Whole-token comparison: "a" or "ahx" is no vowel.
    EXPECT_EQ(syllabifyPhonemes("b a d ahx"), (V{"b a d ahx"}));
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
