// Host texts that no well-behaved host sends, through whole passes: unpaired
// surrogates, huge lengths, hostile phoneme hints, and bounded random input.
// Only the exceptions a pass may let out are allowed; the note records stay sound.
#include "tests/hardening/host_text_case.h"

#include <gtest/gtest.h>

#include <random>

using Hardening::HostTextOutcome;
using Hardening::runHostTextCase;

namespace {

// Order of the texts: root, track, slot, part, then per note name, lyrics, phoneme, "lyph" (even notes),
// then the two typed lyrics.
std::vector<std::u16string> project (const std::u16string& lyric, const std::u16string& lyph = u"",
                                     const std::u16string& name = u"Vocals")
{
    std::vector<std::u16string> texts {u"root", name, u"Slot 1", u"part"};
    for (int i = 0; i < 4; ++i)
    {
        texts.insert (texts.end (), {u"n", i == 0 ? lyric : u"la", u""});
        if (i % 2 == 0)
            texts.push_back (i == 0 ? lyph : u"");
    }
    texts.insert (texts.end (), {lyric, u"sky"});
    return texts;
}

int errors (const HostTextOutcome& o) { return o.utf8Errors + o.lengthErrors + o.rangeErrors; }

TEST (HostTexts, UnpairedSurrogatesRaiseTheConvertersErrorAndNothingElse)
{
    const std::u16string lead (1, char16_t (0xD800)), trail (1, char16_t (0xDC00));
    for (const auto& bad : {u"ka" + lead, lead + u"ka", u"ka" + trail + u"ki", trail, lead + lead})
    {
        const auto asLyric = runHostTextCase (project (bad));
        EXPECT_GT (asLyric.utf8Errors, 0);
        EXPECT_TRUE (asLyric.recordsWellFormed);
        EXPECT_TRUE (asLyric.referencesBalanced);
        const auto asLyph = runHostTextCase (project (u"ka", bad));
        EXPECT_GT (asLyph.utf8Errors, 0);
        EXPECT_TRUE (asLyph.referencesBalanced);
        const auto asName = runHostTextCase (project (u"ka", u"", bad));
        EXPECT_TRUE (asName.recordsWellFormed);
    }
    // A well-formed pair is one code point and goes through.
    const auto pair = runHostTextCase (project (u"ka\U0001F600"));
    EXPECT_EQ (errors (pair), 0);
    EXPECT_EQ (pair.passesRun, 6);
}

TEST (HostTexts, HugeTextsGoThroughOrRaiseALengthError)
{
    std::u16string words;
    while (words.size () < (1u << 16))
        words += u"la ";
    std::u16string word (1u << 18, u'k');
    std::u16string hint = u"ka[";
    while (hint.size () < (1u << 16))
        hint += u"k a ";
    hint += u"]";
    for (const auto& text : {words, word, hint})
    {
        const auto outcome = runHostTextCase (project (text, text, text));
        EXPECT_EQ (outcome.utf8Errors + outcome.rangeErrors, 0);
        EXPECT_TRUE (outcome.recordsWellFormed);
    }
}

TEST (HostTexts, HostileHintsStayInsideTheNoteRecord)
{
    std::u16string fifty = u"ka[";
    for (int i = 0; i < 50; ++i)
        fifty += std::u16string (100 + i, char16_t (u'a' + i % 26)) + u" ";
    fifty += u"]";
    const std::u16string longToken = u"[" + std::u16string (300, u'x') + u"]";
    const std::u16string manyShort = u"[a b c d e f g h i j k l m n o p q r s t u v w x y z]";
    for (const auto& hint : {fifty, longToken, manyShort})
    {
        const auto outcome = runHostTextCase (project (hint, u"", u"Vocals"));
        EXPECT_TRUE (outcome.recordsWellFormed);
        EXPECT_TRUE (outcome.referencesBalanced);
        EXPECT_EQ (errors (outcome), 0);
    }
    // A hint of blanks alone is the one specified failure of a hint: the trim runs off its start.
    const auto blank = runHostTextCase (project (u"ka[ \t ]"));
    EXPECT_GT (blank.utf8Errors, 0);
    EXPECT_TRUE (blank.referencesBalanced);
}

TEST (HostTexts, BoundedRandomInputLetsOnlyTheAllowedExceptionsOut)
{
    // Units drawn mostly from what the parsers care about: letters, kana, brackets, blanks, surrogates.
    const char16_t alphabet[] = {u'a', u'k', u'o', u'r', u'[', u']', u' ', u'\t', u'-', 0x3042, 0x304B, 0x30FC,
                                 0x3063, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xFFFF, 0x00E9, 0};
    std::mt19937 random (20240817);
    int withErrors = 0;
    for (int round = 0; round < 400; ++round)
    {
        std::vector<uint8_t> bytes;
        const int units = std::uniform_int_distribution<int> (0, 160) (random);
        for (int i = 0; i < units; ++i)
        {
            char16_t unit = random () % 4 == 0 ? char16_t (random () & 0xFFFF)
                                               : alphabet[random () % (sizeof (alphabet) / sizeof (alphabet[0]))];
            bytes.push_back (static_cast<uint8_t> (unit & 0xFF));
            bytes.push_back (static_cast<uint8_t> (unit >> 8));
        }
        SCOPED_TRACE (round);
        HostTextOutcome outcome;
        ASSERT_NO_THROW (outcome = runHostTextCase (bytes.data (), bytes.size ()));
        ASSERT_TRUE (outcome.recordsWellFormed);
        ASSERT_TRUE (outcome.referencesBalanced) << "a pass that threw kept a host reference";
        withErrors += errors (outcome) > 0;
    }
    EXPECT_GT (withErrors, 0) << "the input never reached the checked conversions";
}

} // namespace
