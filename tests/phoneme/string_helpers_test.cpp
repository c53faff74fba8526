#include "phoneme/string_helpers.h"

#include <gtest/gtest.h>

using namespace Zelmor;
using Pieces = std::vector<std::string>;

TEST(StringHelpers, Split)
{
    // A blank separator cuts at runs of white space and drops empty pieces; any other keeps them.
    const struct {
        std::string text, separator;
        int32_t maxsplit;
        Pieces pieces;
    } cases[] = {
        {" \t a \n b\r\n", "", -1, {"a", "b"}},
        {"   ", "", -1, {}},
        {"  a b  c  ", "", 1, {"a", "b  c  "}},
        {"\tx\t\t", "\t", -1, {"", "x", "", ""}},
        {"a,b,c", ",", 1, {"a", "b,c"}},
        {"a,b", ",", -7, {"a", "b"}},
        {"", ",", -1, {""}},
    };
    Pieces out{"stale"};
    for (const auto& c : cases) {
        split(c.text, out, c.separator, c.maxsplit);
        EXPECT_EQ(out, c.pieces) << "'" << c.text << "' at '" << c.separator << "'";
    }
}

TEST(StringHelpers, StripJoinReplaceFind)
{
    EXPECT_EQ(strip(" \t hh ah \r\n"), "hh ah");
    EXPECT_EQ(strip("xxhixy", "xy"), "hi");
    EXPECT_EQ(stripEnds("  a  ", "", StripLeft), "a  ");
    EXPECT_EQ(stripEnds("  a  ", "", StripRight), "  a");
    EXPECT_EQ(join(" ", {"a", "", "b"}), "a  b");
    EXPECT_EQ(replace("aaaa", "a", "b", 3), "bbba");
    EXPECT_EQ(replace("ab", "", "-", 2), "-a-b");

    EXPECT_EQ(find("hello", "l", 3), 3);
    EXPECT_EQ(find("hello", "lo", 0, 4), -1);
    EXPECT_EQ(find("hello", "h", -100, -4), 0);
    EXPECT_EQ(find("hello", "", 6), -1);
}

TEST(StringHelpers, SplitlinesAtEveryLineEnd)
{
    Pieces out;
    splitlines("a\nb\r\nc\rd", out);
    EXPECT_EQ(out, (Pieces{"a", "b", "c", "d"}));
    splitlines("a\n\nb\n", out);
    EXPECT_EQ(out, (Pieces{"a", "", "b"}));
    splitlines("a\r\n\r", out, true);
    EXPECT_EQ(out, (Pieces{"a\r\n", "\r"}));
}
