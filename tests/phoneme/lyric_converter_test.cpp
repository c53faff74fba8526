#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"

#include <gtest/gtest.h>
#include <utf8.h>

using namespace Zelmor;
using V = std::vector<std::string>;

namespace {

V convert(const std::string& lyric)
{
    return convertLyric(lyric, *dictionaryHolderMap());
}

} // namespace

TEST(LyricConverter, Lyrics)
{
    const std::vector<std::pair<std::string, V>> cases = {
        // Dictionary hits, whatever the case and punctuation; misses go through the rules.
        {"(HELLO?)", {"hh ah", "l ow"}},
        {"SIL", {"SIL"}}, {"br", {"BR"}}, {"'bout", {"b aw t"}}, {"123", {}}, {"", {}},
        {"absolve(1)", {"ae b", "s aa l v"}},  // alternates are unreachable: the key loses its parentheses
        {"continuing", {"k ah n", "t ih n", "y uw", "ih ng"}},
        {"snarfle", {"s n aa r", "f ah l"}},
        {"hello  world", {"hh ah", "l ow", "w er l d"}},
        // The control word "0" takes the last phoneme before it, or stands for a rest.
        {"0", {"sil"}}, {"a 0", {"sil"}}, {"00", {}}, {"キャ0", {"ky"}},
        {"hello 0", {"hh ah", "l"}},
        {"hello 0 0", {"hh ah", "sil"}},
        // Hyphens hold the syllable before them.
        {"hel-lo", {"hh ah", "- ", "l ow"}},
        {"he--llo", {"hh ah", "-", "- ", "l ow"}},
        {"cat-", {"k ae", "- t"}},
        {"love-ly", {"l ah", "- v", "l iy"}},
        {"blorp-", {"b l ao", "- r p"}}, {"-", {}},
        // Kana, folded hiragana, small kana and the long-vowel mark.
        {"らーめん", {"r a", "-", "m e", "N"}},
        {"カッター", {"k a", "cl", "t a", "-"}},
        {"きゃー", {"ky a", "-"}},
        {"ヴァ", {"v a"}}, {"ドゥ", {"d u"}}, {"ィェ", {"y e"}}, {"を", {"wo"}}, {"ゔ", {"v u"}},
        {"\u3095\u30F5漢\u3000", {}},  // kana-like code points outside the folding range are no kana
        // Scripts mixed in one lyric; a kana pair takes its first kana into the open word.
        {"abcカ", {"ey", "b iy", "s iy", "k a"}},
        {"theキャ", {"dh ah", "ky a"}},
        {"helloきゃ", {"hh eh", "l ow", "ky a"}},
        {"カhelloカ", {"k a", "hh ah", "l ow", "k a"}},
    };
    for (const auto& [lyric, elements] : cases)
        EXPECT_EQ(convert(lyric), elements) << lyric;
}

TEST(LyricConverter, UnderscoreAndApostropheKeysAreReachable)
{
    const std::string text = "air_force\teh r . f ao r s\tair . force\nrock'n\tr aa k . ah n\trock . 'n";
    const auto dictionary = loadPronouncingDictionary(text.data(), static_cast<int32_t>(text.size()));
    EXPECT_EQ(convertLyric("Air_Force", dictionary), (V{"eh r", "f ao r s"}));
    EXPECT_EQ(convertLyric("rock'n", dictionary), (V{"r aa k", "ah n"}));
}

// An empty syllable must not be read past.
TEST(LyricConverter, AnEmptySyllableIsNotReadPast)
{
    V out;
    distributeSyllables({"", "l ow"}, " . l ow", "-x", out);
    EXPECT_EQ(out, (V{"", "- ", "l ow"}));
    out.clear();
    distributeSyllables({}, "", "-", out);
    EXPECT_TRUE(out.empty());
    // The first hyphen falls in "b"; the second, behind the last piece of the spelling, counts for "a".
    out.clear();
    distributeSyllables({"a", "b"}, "a . b", "ab-c-", out);
    EXPECT_EQ(out, (V{"a", "- ", "b", "- "}));
}

TEST(LyricConverter, MalformedUtf8Throws)
{
    EXPECT_THROW(convert("ok \xe3\x81"), utf8::not_enough_room);
    EXPECT_THROW(convert("\xff"), utf8::invalid_utf8);
    EXPECT_THROW(convert("\xc0\xaf"), utf8::invalid_utf8); // overlong
    EXPECT_THROW(convert("a\x80"), utf8::invalid_utf8);
    EXPECT_THROW(convert("\xed\xa0\x80"), utf8::invalid_code_point); // surrogate
    EXPECT_THROW(convert("\xf4\x90\x80\x80"), utf8::invalid_code_point);
    V out;
    EXPECT_THROW(convertWord(U"a\xD800", 0, 2, *dictionaryHolderMap(), out), utf8::invalid_code_point);
    // Out-of-range slices are clamped, never read past.
    convertWord(U"hello", -5, 99, *dictionaryHolderMap(), out);
    EXPECT_EQ(out, (V{"hh ah", "l ow"}));
    convertWord(U"hello", 4, 1, *dictionaryHolderMap(), out);
    EXPECT_EQ(out.size(), 2u);
}
