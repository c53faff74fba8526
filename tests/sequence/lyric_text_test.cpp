#include <array>

#include <utf8.h>

#include <gtest/gtest.h>

#include "sequence/lyric_text.h"

using namespace Zelmor;

TEST(LyricText, SplitAndCompose)
{
    const std::vector<std::array<std::string, 3>> cases = {
        {"ka[k a]", "ka", "k a"}, {"ka [\tk a ]", "ka ", "k a"}, {"a[b[c]", "a[b", "c"},
        {"a]b[", "a]b[", ""},     {"ka[]", "ka", ""},            {"ka[x]y", "ka", "x"},
        {"あ[a]", "あ", "a"},     {"", "", ""}};
    for (const auto& [text, word, hint] : cases) {
        const LyricParts parts = splitLyricText(text);
        EXPECT_EQ(parts.word, word) << text;
        EXPECT_EQ(parts.hint, hint) << text;
    }
    EXPECT_EQ(composeLyricText("ka", "k a"), "ka[k a]");
    EXPECT_EQ(composeLyricText("ka", ""), "ka");
    // A hint of blanks is an error for the caller, not an empty hint.
    EXPECT_THROW(splitLyricText("ka[ ]"), utf8::not_enough_room);
    EXPECT_EQ(utf8Trim("\t x y \n "), "x y \n");
}

TEST(LyricText, CodePointsAndMalformedInput)
{
    const std::string text = "aé日🎵b日";
    EXPECT_EQ(utf8Length(text), 6u);
    EXPECT_EQ(utf8Substring(text, 2, 2), "日🎵");
    EXPECT_EQ(utf8Substring(text, 4, 100), "b日");
    EXPECT_EQ(utf8LastIndexOf(text, U'日'), 5);
    EXPECT_THROW(splitLyricText("ka[\xc3]"), utf8::exception);
    // The first bad sequence decides, wherever the brackets stand.
    EXPECT_THROW(splitLyricText("ka[a]\xe6\x97"), utf8::not_enough_room);
    EXPECT_THROW(splitLyricText("\xed\xa0\x80[a\xff]"), utf8::invalid_code_point);
    EXPECT_THROW(utf8IndexOf("ab\xe6\x97", U'x'), utf8::not_enough_room);
}
