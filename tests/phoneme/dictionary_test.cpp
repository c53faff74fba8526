#include "phoneme/dictionary_holder.h"
#include "phoneme/pronouncing_dictionary.h"
#include "phoneme/tools/dictionary_generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

using namespace Zelmor;

namespace {

PronouncingDictionary load(const std::string& text)
{
    return loadPronouncingDictionary(text.data(), static_cast<int32_t>(text.size()));
}

std::string readFile(const char* path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

} // namespace

TEST(PronouncingDictionary, LoadsThreeFieldLinesOnly)
{
    const auto map = load("hello\thh ah0 . l ow1\the . llo\r\n"
                          "two\tfields\n"
                          "four\ta\tb\tc\n"
                          "  padded\tp ae d\tpa . dded \t\n"
                          "empty\t\t\r"
                          "retweet\tr iy . t w iy t\tr e . tweet");
    EXPECT_EQ(map.at("hello").phonemes, "hh ah . l ow");
    EXPECT_EQ(map.at("hello").orthography, "he . llo");
    EXPECT_EQ(map.count("two"), 0u);
    EXPECT_EQ(map.count("four"), 0u);
    // Strip runs on the whole line before the tab split.
    EXPECT_EQ(map.at("padded").orthography, "pa . dded");
    // "empty\t\t" loses its tabs to the strip and so has one field.
    EXPECT_EQ(map.count("empty"), 0u);
    EXPECT_EQ(map.at("retweet").phonemes, "r iy . t w iy t");
    EXPECT_EQ(map.size(), 5u);
}

TEST(PronouncingDictionary, ReservedRowsWinAndRepeatsReplace)
{
    const auto map = load("sil\ts ih1 l\tsil\nw\tone\tx\nw\ttwo\ty");
    EXPECT_EQ(map.at("sil").phonemes, "SIL");
    EXPECT_EQ(map.at("sil").orthography, "sil");
    EXPECT_EQ(map.at("br").phonemes, "BR");
    EXPECT_EQ(map.at("w").phonemes, "two");
    EXPECT_EQ(loadPronouncingDictionary(nullptr, 10).size(), 2u);
    EXPECT_EQ(loadPronouncingDictionary("x\ty\tz", -1).size(), 2u);
}

TEST(PronouncingDictionary, StripStress)
{
    EXPECT_EQ(stripStress("ae0 b . z aa1 l v2"), "ae b . z aa l v");
    EXPECT_EQ(stripStress("r iy . t w iy t"), "r iy . t w iy t");
    EXPECT_EQ(stripStress(""), "");
}

TEST(EmbeddedDictionary, HolderIsBuiltFromTheEmbeddedText)
{
    const char* text = embeddedDictionaryText();
    const int32_t size = embeddedDictionarySize();
    ASSERT_GT(size, 5000000);
    const std::string_view all(text, static_cast<size_t>(size));
    EXPECT_NE(all.back(), '\n');
    EXPECT_EQ(all.find('\r'), std::string_view::npos);
    EXPECT_TRUE(std::none_of(all.begin(), all.end(), [](char c) { return static_cast<unsigned char>(c) > 0x7f; }));

    const PronouncingDictionary* map = dictionaryHolderMap();
    ASSERT_NE(map, nullptr);
    ASSERT_NE(dictionaryHolder(), nullptr);
    const size_t lines = static_cast<size_t>(std::count(all.begin(), all.end(), '\n')) + 1;
    EXPECT_EQ(map->size(), lines + 1); // every row, plus "br"
    EXPECT_EQ(map->at("hello").phonemes, "hh ah . l ow");
    EXPECT_EQ(map->at("continuing").phonemes, "k ah n . t ih n . y uw . ih ng");
    EXPECT_EQ(map->at("lovely").phonemes, "l ah v . l iy");
    EXPECT_EQ(map->at("absolve(1)").orthography, "ab . sol . ve . (1)");
    EXPECT_EQ(map->at("'bout").phonemes, "b aw t");
}

TEST(DictionaryGenerator, ConvertsCmuRows)
{
    DictionaryGeneratorStats stats;
    const std::string text = generateDictionaryText("hello HH AH0 L OW1\n"
                                                    "air_force EH R F AO R S\n"
                                                    "airbus EH R B AH S\n"
                                                    "absolve(3) AH B Z AA L V\n"
                                                    "absolve AE B Z AA L V\n"
                                                    "absolve(2) AE B S AA L V\n"
                                                    "absolve's AE B Z AA L V Z\n"
                                                    "bogus B QQ\n"
                                                    "hello HH EH L OW\n"
                                                    "\n",
                                                    &stats);
    EXPECT_EQ(text, "absolve\tae b . z aa l v\tab . sol . ve\n"
                    "absolve(1)\tae b . s aa l v\tab . sol . ve . (1)\n"
                    "absolve(2)\tah b . z aa l v\tab . sol . ve . (2)\n"
                    "absolve's\tae b . z aa l v z\tab . sol . ve's\n"
                    "airbus\teh r . b ah s\tair . bus\n"
                    "air_force\teh r . f ao r s\tair . _for . ce\n"
                    "hello\thh ah0 . l ow1\thel . lo");
    EXPECT_EQ(stats.rows, 7u);
    EXPECT_EQ(stats.alternates, 2u);
    EXPECT_EQ(stats.skipped, 3u); // unknown symbol, repeated word, blank line
    EXPECT_EQ(generateDictionaryText(""), "");
}

// The committed text is exactly what the generator makes of the installed list.
TEST(DictionaryGenerator, CommittedTextMatchesInstalledList)
{
    const std::string cmu = readFile(CANTORELA_CMU_LIST);
    if (cmu.empty())
        GTEST_SKIP() << "no CMU list at " CANTORELA_CMU_LIST;
    const std::string generated = generateDictionaryText(cmu);
    const std::string committed = readFile(CANTORELA_DICTIONARY_FILE);
    ASSERT_EQ(generated.size(), committed.size());
    EXPECT_TRUE(generated == committed);
    EXPECT_EQ(std::string_view(embeddedDictionaryText(), static_cast<size_t>(embeddedDictionarySize())),
              committed);
}
