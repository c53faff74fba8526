#include "phoneme/dictionary_holder.h"
#include "phoneme/pronouncing_dictionary.h"
#include "phoneme/string_helpers.h"
#include "phoneme/tools/dictionary_generator.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

using namespace Zelmor;

namespace {

// The plain reading of the format into an ordered map, line by line with the
// string helpers: what every lookup of the index must answer like.
std::map<std::string, std::pair<std::string, std::string>> referenceParse(const std::string& text)
{
    std::map<std::string, std::pair<std::string, std::string>> map;
    std::vector<std::string> lines, fields;
    splitlines(text, lines);
    for (const auto& line : lines) {
        split(strip(line), fields, "\t");
        if (fields.size() == 3)
            map[fields[0]] = {stripStress(fields[1]), fields[2]};
    }
    map["sil"] = {"SIL", "sil"};
    map["br"] = {"BR", "br"};
    return map;
}

// Same words in the same byte order, same answers, and near misses miss alike.
void expectSameAsReference(const std::string& text)
{
    const auto reference = referenceParse(text);
    const auto dictionary = loadPronouncingDictionary(text.data(), static_cast<int32_t>(text.size()));
    ASSERT_EQ(dictionary.rows.size(), reference.size());
    size_t i = 0;
    for (const auto& [word, entry] : reference) {
        ASSERT_EQ(wordAt(dictionary, i), word);
        ASSERT_EQ(findWord(dictionary, word), i);
        ASSERT_EQ(phonemesAt(dictionary, i), entry.first) << word;
        ASSERT_EQ(orthographyAt(dictionary, i), entry.second) << word;
        for (const std::string& near : {word.substr(0, word.size() - 1), word + '\t', word + '~'})
            ASSERT_EQ(findWord(dictionary, near) != noWord, reference.count(near) == 1) << near;
        ++i;
    }
}

std::string readFile(const char* path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

} // namespace

TEST(PronouncingDictionary, AnswersLikeAPlainParse)
{
    using namespace std::string_literals;
    const std::string texts[] = {
        // Malformed lines, line ends, blanks that the strip takes.
        "hello\thh ah0 . l ow1\the . llo\r\ntwo\tfields\nfour\ta\tb\tc\n  padded\tp ae d\tpa . dded \t\n"
        "empty\t\t\rq\tr\rs\tt\nretweet\tr iy . t w iy t\tr e . tweet\n\n\r\n\t\n\ta\tb\tc\t\nk \t\tx\vy\nz\tq\tr\r",
        // The reserved words win; a repeated word keeps its last row, in order or not.
        "sil\ts ih1 l\tsil\nw\tone\tx\nw\ttwo\ty\nbr\tb r\tbr\nw\tthree\tz",
        // Out of order: alternates, joined phrases, late additions, bytes above 0x7f.
        "b\tb\tb\nab\tx\tx\nab(1)\ty\ty\nab's\tz\tz\na_b\tu\tu\na\ta1\ta\n\xc3\xa9\te\te\nzz\tz\tz\na\ta2\ta",
        // Control bytes and zeros inside fields of long rows.
        "key\x01\x0e\x0e\x0e\x0e\x0e\x0e\x0e\x0e\tph0 x\x0e\x0e\x0e\x0e\x0e\x0e\x0e\x0e\torth\x0b\x0c\x0e\x0e\x0e\x0e\x0e\x0e\n"
        "n\0ul\0\0\0\0\0\0\0\0\tn\0\0\0\0\0\0\0\0\0\tz\0"s,
        "",
    };
    for (const auto& text : texts)
        expectSameAsReference(text);
    EXPECT_EQ(loadPronouncingDictionary(nullptr, 10).rows.size(), 2u);
    EXPECT_EQ(loadPronouncingDictionary("x\ty\tz", -1).rows.size(), 2u);
    // The plain parse strips stress the same way, so it is checked on its own.
    EXPECT_EQ(stripStress("ae0 b . z aa1 l v2"), "ae b . z aa l v");
}

TEST(EmbeddedDictionary, HolderIsBuiltFromTheEmbeddedText)
{
    const std::string all(embeddedDictionaryText(), static_cast<size_t>(embeddedDictionarySize()));
    ASSERT_GT(all.size(), 5000000u);
    const PronouncingDictionary* dictionary = dictionaryHolderMap();
    ASSERT_NE(dictionary, nullptr);
    EXPECT_EQ(orthographyAt(*dictionary, findWord(*dictionary, "absolve(1)")), "ab . sol . ve . (1)");
    expectSameAsReference(all);
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
