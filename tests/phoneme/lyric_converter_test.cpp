#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"
#include "phoneme/phoneme_inventory.h"

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

TEST(LyricConverter, DictionaryHitsAndMisses)
{
    EXPECT_EQ(convert("hello"), (V{"hh ah", "l ow"}));
    EXPECT_EQ(convert("Hello!"), (V{"hh ah", "l ow"}));
    EXPECT_EQ(convert("(HELLO?)"), (V{"hh ah", "l ow"}));
    EXPECT_EQ(convert("sil"), (V{"SIL"}));
    EXPECT_EQ(convert("SIL"), (V{"SIL"}));
    EXPECT_EQ(convert("br"), (V{"BR"}));
    EXPECT_EQ(convert("'bout"), (V{"b aw t"}));
    // Alternates are unreachable: the key loses its parentheses and misses.
    EXPECT_EQ(convert("absolve(1)"), (V{"ae b", "s aa l v"}));
    EXPECT_EQ(convert("absolve"), (V{"ah b", "z aa l v"}));
    EXPECT_EQ(convert("continuing"), (V{"k ah n", "t ih n", "y uw", "ih ng"}));
    // Unknown words go through the rules.
    EXPECT_EQ(convert("snarfle"), (V{"s n aa r", "f ah l"}));
    EXPECT_EQ(convert("123"), V{});
    EXPECT_EQ(convert(""), V{});
    EXPECT_EQ(convert("   "), V{});
    EXPECT_EQ(convert("hello  world"), (V{"hh ah", "l ow", "w er l d"}));
}

TEST(LyricConverter, UnderscoreAndApostropheKeysAreReachable)
{
    const std::string text = "air_force\teh r . f ao r s\tair . force\nw00t\tw uw t\tw00t\n"
                             "rock'n\tr aa k . ah n\trock . 'n";
    const auto dictionary = loadPronouncingDictionary(text.data(), static_cast<int32_t>(text.size()));
    EXPECT_EQ(convertLyric("Air_Force", dictionary), (V{"eh r", "f ao r s"}));
    EXPECT_EQ(convertLyric("w00t", dictionary), (V{"w uw t"}));
    EXPECT_EQ(convertLyric("rock'n", dictionary), (V{"r aa k", "ah n"}));
}

TEST(LyricConverter, ControlWordZero)
{
    EXPECT_EQ(convert("0"), (V{"sil"}));
    EXPECT_EQ(convert("hello 0"), (V{"hh ah", "l"}));
    EXPECT_EQ(convert("a 0"), (V{"sil"}));
    EXPECT_EQ(convert("hello 0 0"), (V{"hh ah", "sil"}));
    EXPECT_EQ(convert("00"), V{});
    EXPECT_EQ(convert("キャ0"), (V{"ky"}));
}

TEST(LyricConverter, Hyphens)
{
    EXPECT_EQ(convert("hel-lo"), (V{"hh ah", "- ", "l ow"}));
    EXPECT_EQ(convert("he--llo"), (V{"hh ah", "-", "- ", "l ow"}));
    EXPECT_EQ(convert("cat-"), (V{"k ae", "- t"}));
    EXPECT_EQ(convert("strength-"), (V{"s t r eh", "- ng k th"}));
    EXPECT_EQ(convert("love-ly"), (V{"l ah", "- v", "l iy"}));
    EXPECT_EQ(convert("-hello"), (V{"hh ah", "- ", "l ow"}));
    EXPECT_EQ(convert("hello-"), (V{"hh ah", "- ", "l ow"}));
    EXPECT_EQ(convert("hello------"), (V{"hh ah", "-", "-", "-", "-", "-", "- ", "l ow"}));
    EXPECT_EQ(convert("-"), V{});
    EXPECT_EQ(convert("blorp-"), (V{"b l ao", "- r p"}));
}

TEST(LyricConverter, DistributeAndNucleus)
{
    EXPECT_EQ(findNucleus({"k", "ae", "t"}), 1u);
    EXPECT_EQ(findNucleus({"s", "t", "r"}), 0u);
    EXPECT_EQ(findNucleus({"n", "t"}), 0u);
    EXPECT_EQ(findNucleus({"t", "k"}), 0u);
    EXPECT_EQ(findNucleus({"k", "j"}), 1u);
    EXPECT_EQ(findNucleus({"k", "r", "N"}), 2u);
    EXPECT_EQ(findNucleus({}), 0u);
    // An empty syllable must not be read past.
    V out;
    distributeSyllables({"", "l ow"}, " . l ow", "-x", out);
    EXPECT_EQ(out, (V{"", "- ", "l ow"}));
    out.clear();
    distributeSyllables({}, "", "-", out);
    EXPECT_TRUE(out.empty());
}

TEST(LyricConverter, Kana)
{
    EXPECT_EQ(convert("らーめん"), (V{"r a", "-", "m e", "N"}));
    EXPECT_EQ(convert("カッター"), (V{"k a", "cl", "t a", "-"}));
    EXPECT_EQ(convert("きゃ"), (V{"ky a"}));
    EXPECT_EQ(convert("キャ"), (V{"ky a"}));
    EXPECT_EQ(convert("きゃー"), (V{"ky a", "-"}));
    EXPECT_EQ(convert("キ"), (V{"k i"}));
    EXPECT_EQ(convert("ヴァ"), (V{"v a"}));
    EXPECT_EQ(convert("ー"), (V{"-"}));
    EXPECT_EQ(convert("ドゥ"), (V{"d u"}));
    EXPECT_EQ(convert("ィェ"), (V{"y e"}));
    EXPECT_EQ(convert("を"), (V{"wo"}));
    EXPECT_EQ(convert("ゔ"), (V{"v u"}));
    // Kana-like code points outside the folding range are no kana; kanji and ideographic blanks drop.
    EXPECT_EQ(convert("\u3095\u30F5漢\u3000"), V{});
    EXPECT_EQ(kanaDigraphTable[0].phonemes, std::string("ky a"));
    EXPECT_EQ(findKanaMonograph(0x30F2), std::string("wo"));
    EXPECT_EQ(findKanaMonograph(0x30F5), nullptr);
    EXPECT_EQ(foldKana(0x3041), char32_t{0x30A1});
    EXPECT_EQ(foldKana(0x30FC), char32_t{0});
}

TEST(LyricConverter, MixedScans)
{
    EXPECT_EQ(convert("the キャ"), (V{"dh ah", "ky a"}));
    EXPECT_EQ(convert("abcカ"), (V{"ey", "b iy", "s iy", "k a"}));
    EXPECT_EQ(convert("theキ"), (V{"dh ah", "k i"}));
    // The pair takes its first kana into the open word, so it misses the dictionary.
    EXPECT_EQ(convert("theキャ"), (V{"dh ah", "ky a"}));
    EXPECT_EQ(convert("helloきゃ"), (V{"hh eh", "l ow", "ky a"}));
    EXPECT_EQ(convert("漢hello"), (V{"hh ah", "l ow"}));
    EXPECT_EQ(convert("hel漢lo"), (V{"hh eh", "l ow"}));
    EXPECT_EQ(convert("カhelloカ"), (V{"k a", "hh ah", "l ow", "k a"}));
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
