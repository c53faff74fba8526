#include "phoneme/string_helpers.h"

#include <gtest/gtest.h>

using namespace Zelmor;
using Pieces = std::vector<std::string>;

TEST(StringHelpers, SplitAtWhiteSpaceDropsEmptyPieces)
{
    Pieces out{"stale"};
    split("a  b", out);
    EXPECT_EQ(out, (Pieces{"a", "b"}));
    split(" \t a \n b\r\n", out);
    EXPECT_EQ(out, (Pieces{"a", "b"}));
    split("   ", out);
    EXPECT_TRUE(out.empty());
    split("  a b  c  ", out, "", 1);
    EXPECT_EQ(out, (Pieces{"a", "b  c  "}));
}

TEST(StringHelpers, SplitAtSeparatorKeepsEmptyPieces)
{
    Pieces out;
    split("a . b", out, ".");
    EXPECT_EQ(out, (Pieces{"a ", " b"}));
    split("\tx\t\t", out, "\t");
    EXPECT_EQ(out, (Pieces{"", "x", "", ""}));
    split("a,b,c", out, ",", 1);
    EXPECT_EQ(out, (Pieces{"a", "b,c"}));
    split("a,b", out, ",", -7);
    EXPECT_EQ(out, (Pieces{"a", "b"}));
    split("", out, ",");
    EXPECT_EQ(out, (Pieces{""}));
}

TEST(StringHelpers, StripJoinReplace)
{
    EXPECT_EQ(strip(" \t hh ah \r\n"), "hh ah");
    EXPECT_EQ(strip("xxhixy", "xy"), "hi");
    EXPECT_EQ(stripEnds("  a  ", "", StripLeft), "a  ");
    EXPECT_EQ(stripEnds("  a  ", "", StripRight), "  a");
    EXPECT_EQ(strip("   "), "");

    EXPECT_EQ(join(" . ", {}), "");
    EXPECT_EQ(join(" . ", {"one"}), "one");
    EXPECT_EQ(join(" ", {"a", "", "b"}), "a  b");

    EXPECT_EQ(replace("ah0 l ow1", "0", ""), "ah l ow1");
    EXPECT_EQ(replace("aaaa", "aa", "b"), "bb");
    EXPECT_EQ(replace("aaaa", "a", "b", 3), "bbba");
    EXPECT_EQ(replace("ab", "", "-"), "-a-b-");
    EXPECT_EQ(replace("ab", "", "-", 2), "-a-b");
}

TEST(StringHelpers, FindHonoursRangeAndNegativeBounds)
{
    EXPECT_EQ(find("", "a"), -1);
    EXPECT_EQ(find("", ""), 0);
    EXPECT_EQ(find("hello", "l"), 2);
    EXPECT_EQ(find("hello", "l", 3), 3);
    EXPECT_EQ(find("hello", "lo", 0, 4), -1);
    EXPECT_EQ(find("hello", "lo", -2), 3);
    EXPECT_EQ(find("hello", "h", -100, -4), 0);
    EXPECT_EQ(find("hello", "", 6), -1);
    EXPECT_EQ(find("hello", "o", 9), -1);
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
    splitlines("", out);
    EXPECT_TRUE(out.empty());
}
