#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"

#include <gtest/gtest.h>
#include <utf8.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#ifndef _WIN32
#include <sys/wait.h>
#endif

using namespace Zelmor;

namespace {

// Pieces that reach the interesting branches: kana pairs and singles,
// hiragana, the long-vowel mark, hyphens, the control word, punctuation,
// dictionary words, and broken or out-of-range UTF-8.
const std::vector<std::string> fragments = {
    "hello", "Hel", "lo", "-", "--", "0", " ", "  ", "キ", "ャ", "きゃ", "ー", "ッ", "ン", "ドゥ",
    "ィェ", "漢", "\u3000", "'", "_", "(1)", "!", "?", "/", ".", "absolve", "strength", "x", "aeiou",
    "\xe3\x81", "\xff", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\x80", "\t", "\n", "w00t",
};

bool elementsWellFormed(const std::vector<std::string>& elements)
{
    for (const auto& element : elements)
        if (element.find('.') != std::string::npos || element.find("  ") != std::string::npos)
            return false;
    return true;
}

} // namespace

// A bounded stand-in for coverage-guided fuzzing: only the three decoder
// exceptions may leave, and elements never carry a syllable mark.
TEST(Robustness, RandomLyricsOnlyRaiseDecoderErrors)
{
    const auto& dictionary = *dictionaryHolderMap();
    std::mt19937 random(20240611);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    int converted = 0;
    for (int round = 0; round < 30000 && std::chrono::steady_clock::now() < deadline; ++round) {
        std::string lyric;
        if (round % 3 == 0) {
            for (int len = random() % 12; len > 0; --len)
                lyric += static_cast<char>(random() % 256);
        } else {
            for (int len = random() % 6; len > 0; --len)
                lyric += fragments[random() % fragments.size()];
        }
        try {
            const auto elements = convertLyric(lyric, dictionary);
            ASSERT_TRUE(elementsWellFormed(elements)) << lyric;
            ++converted;
        } catch (const utf8::not_enough_room&) {
        } catch (const utf8::invalid_utf8&) {
        } catch (const utf8::invalid_code_point&) {
        } catch (const std::exception& other) {
            FAIL() << "unexpected " << other.what() << " for '" << lyric << "'";
        }
    }
    EXPECT_GT(converted, 1000);
}

// The tool's cases drive it through a POSIX shell.
#ifndef _WIN32
namespace {

struct ToolRun {
    int status;
    std::string out;
};

ToolRun run(const std::string& arguments, const std::string& feed = std::string())
{
    const std::string command = feed + "'" + LYRIC2PHONEME + "' " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    ToolRun result{-1, {}};
    if (!pipe)
        return result;
    char buffer[4096];
    size_t got;
    while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        result.out.append(buffer, got);
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

} // namespace

TEST(Lyric2Phoneme, PrintsElementsAndJson)
{
    ToolRun plain = run("hello cat-");
    EXPECT_EQ(plain.status, 0);
    EXPECT_EQ(plain.out, "hh ah\nl ow\n\nk ae\n- t\n");

    ToolRun json = run("--json 'hel-lo' '\"q\"'");
    EXPECT_EQ(json.status, 0);
    EXPECT_EQ(json.out, "{\"lyric\": \"hel-lo\", \"elements\": [\"hh ah\", \"- \", \"l ow\"]}\n"
                        "{\"lyric\": \"\\\"q\\\"\", \"elements\": [\"k y uw\"]}\n");

}

TEST(Lyric2Phoneme, InvalidUtf8NamesTheByteOffsetAndTheRestIsConverted)
{
    ToolRun bad = run("hello \"$(printf 'ab\\343\\201')\" cat-");
    EXPECT_EQ(bad.status, 1);
    EXPECT_NE(bad.out.find("invalid UTF-8 in argument 2 at byte offset 2"), std::string::npos) << bad.out;
    EXPECT_NE(bad.out.find("k ae\n- t\n"), std::string::npos) << bad.out;

    ToolRun badLine = run("", "printf 'ok\\nx\\377\\nhello\\n' | ");
    EXPECT_EQ(badLine.status, 1);
    EXPECT_NE(badLine.out.find("line 2 at byte offset 1"), std::string::npos) << badLine.out;
    EXPECT_NE(badLine.out.find("hh ah\nl ow\n"), std::string::npos) << badLine.out;
}

TEST(Lyric2Phoneme, ReadsTheHostsOwnFormAndAnswersHelpAndVersion)
{
    // The user's phonemes for the note, then what the agent deals on from the whole text.
    const struct {
        const char* args;
        int status;
        const char* out;
    } cases[] = {
        {"--json 'read[r eh d]' '[k a]' '[ k a ]'",
         0, "{\"lyric\": \"read[r eh d]\", \"elements\": [\"r eh d\", \"eh\", \"d\"]}\n"
            "{\"lyric\": \"[k a]\", \"elements\": [\"k a\"]}\n"
            "{\"lyric\": \"[ k a ]\", \"elements\": [\"k a\"]}\n"},
        {"'la[ ]' la", 1, "lyric2phoneme: argument 1: the brackets hold only blanks, which the agent cannot take\nl aa\n"},
        {"-h", 0, "usage: lyric2phoneme [--json] [LYRIC...]\n"},
        {"--version", 0, "lyric2phoneme " CANTORELA_VERSION "\n"},
        {"--bogus", 2, "usage: lyric2phoneme [--json] [LYRIC...]   (lyric2phoneme --help for more)\n"
                       "lyric2phoneme: unknown option --bogus\n"},
    };
    for (const auto& c : cases) {
        const ToolRun r = run(c.args);
        EXPECT_EQ(r.status, c.status) << c.args;
        EXPECT_EQ(r.out.substr(0, std::strlen(c.out)), c.out) << c.args;
    }
}
#endif
