#include <utf8.h>

#include <gtest/gtest.h>

#include "sequence/lyric_text.h"

using namespace Zelmor;

namespace {
void expectSplit(const std::string& text, const std::string& word, const std::string& hint)
{
    const LyricParts parts = splitLyricText(text);
    EXPECT_EQ(parts.word, word) << text;
    EXPECT_EQ(parts.hint, hint) << text;
}
} // namespace

TEST(LyricText, SplitsWordAndHint)
{
    expectSplit("ka[k a]", "ka", "k a");
    expectSplit("ka[ k a ]", "ka", "k a");
    expectSplit("ka [\tk a]", "ka ", "k a");
    expectSplit("a[b[c]", "a[b", "c");
    expectSplit("a]b[", "a]b[", "");
    expectSplit("ka[]", "ka", "");
    expectSplit("ka[x]y", "ka", "x");
    expectSplit("[k a]", "", "k a");
    expectSplit("", "", "");
    expectSplit("あ[a]", "あ", "a");
    EXPECT_EQ(composeLyricText("ka", "k a"), "ka[k a]");
    EXPECT_EQ(composeLyricText("ka", ""), "ka");
}

TEST(LyricText, BlankHintRaisesNotEnoughRoom)
{
    EXPECT_THROW(splitLyricText("ka[ ]"), utf8::not_enough_room);
    EXPECT_THROW(utf8Trim(" \t "), utf8::not_enough_room);
    EXPECT_EQ(utf8Trim(""), "");
    EXPECT_EQ(utf8Trim("\t x y \n "), "x y \n");
}

TEST(LyricText, CountsCodePointsNotBytes)
{
    const std::string text = "aé日🎵b日";
    EXPECT_EQ(utf8Length(text), 6u);
    EXPECT_EQ(utf8Substring(text, 2, 2), "日🎵");
    EXPECT_EQ(utf8Substring(text, 4, 100), "b日");
    EXPECT_EQ(utf8Substring(text, 50, 1), "");
    EXPECT_EQ(utf8IndexOf(text, U'日'), 2);
    EXPECT_EQ(utf8LastIndexOf(text, U'日'), 5);
    EXPECT_EQ(utf8IndexOf(text, U'x'), -1);
    EXPECT_EQ(utf8LastIndexOf("", U'x'), -1);
}

TEST(LyricText, MalformedTextRaisesLibraryErrors)
{
    EXPECT_THROW(utf8Length("a\xff"), utf8::invalid_utf8);
    EXPECT_THROW(splitLyricText("ka[\xc3]"), utf8::exception);
    EXPECT_THROW(utf8IndexOf("ab\xe6\x97", U'x'), utf8::not_enough_room);
    EXPECT_THROW(utf8Trim("\x80 "), utf8::exception);
}
