// Host texts that no well-behaved host sends, through whole passes: unpaired
// surrogates, huge lengths and hostile phoneme hints. Only the exceptions a pass may
// let out are allowed; the note records stay sound. Random input is the fuzz target's
// (host_text_fuzz.cpp), run by the hardening stage.
#include "tests/hardening/host_text_case.h"

#include <gtest/gtest.h>

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

std::u16string repeated (const std::u16string& head, const std::u16string& unit, std::size_t length)
{
    std::u16string text = head;
    while (text.size () < length)
        text += unit;
    return text;
}

TEST (HostTexts, HostileTextsRaiseOnlyTheirOwnErrorsAndStayInsideTheNoteRecord)
{
    struct Row
    {
        std::vector<std::u16string> texts;
        bool utf8Error;  // the converter's error, from an unpaired surrogate; no other error is allowed
    };
    std::vector<Row> rows;
    const std::u16string lead (1, char16_t (0xD800)), trail (1, char16_t (0xDC00));
    for (const auto& bad : {u"ka" + lead, lead + u"ka", u"ka" + trail + u"ki", trail, lead + lead})
    {
        rows.push_back ({project (bad), true});
        rows.push_back ({project (u"ka", bad), true});
        rows.push_back ({project (u"ka", u"", bad), true});
    }
    rows.push_back ({project (u"ka\U0001F600"), false});  // a well-formed pair is one code point
    for (const auto& huge : {repeated (u"", u"la ", 1u << 16), std::u16string (1u << 18, u'k'),
                             repeated (u"ka[", u"k a ", 1u << 16) + u"]"})
        rows.push_back ({project (huge, huge, huge), false});
    // Hints of fifty long tokens, of one very long token, and of many short ones.
    std::u16string fifty = u"ka[";
    for (int i = 0; i < 50; ++i)
        fifty += std::u16string (100 + i, char16_t (u'a' + i % 26)) + u" ";
    for (const auto& hint : {fifty + u"]", u"[" + std::u16string (300, u'x') + u"]",
                             std::u16string (u"[a b c d e f g h i j k l m n o p q r s t u v w x y z]")})
        rows.push_back ({project (hint), false});
    // A hint of blanks alone is the one failure of a hint: the trim runs off its start.
    rows.push_back ({project (u"ka[ \t ]"), true});

    for (std::size_t i = 0; i < rows.size (); ++i)
    {
        SCOPED_TRACE (i);
        const auto outcome = runHostTextCase (rows[i].texts);
        EXPECT_TRUE (outcome.recordsWellFormed);
        EXPECT_TRUE (outcome.referencesBalanced);
        EXPECT_EQ (outcome.utf8Errors > 0, rows[i].utf8Error) << outcome.utf8Errors;
        EXPECT_EQ (outcome.lengthErrors + outcome.rangeErrors, 0);
    }
}

} // namespace
