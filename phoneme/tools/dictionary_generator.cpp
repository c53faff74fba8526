#include "phoneme/tools/dictionary_generator.h"

#include "phoneme/fallback.h"
#include "phoneme/string_helpers.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <vector>

namespace Zelmor {

namespace {

const std::set<std::string>& symbols()
{
    static const std::set<std::string> all = {
        "aa", "ae", "ah", "ao", "aw", "ay", "eh", "er", "ey", "ih", "iy", "ow", "oy",
        "uh", "uw", "b",  "ch", "d",  "dh", "f",  "g",  "hh", "jh", "k",  "l",  "m",
        "n",  "ng", "p",  "r",  "s",  "sh", "t",  "th", "v",  "w",  "y",  "z",  "zh"};
    return all;
}

std::string lower(std::string s)
{
    for (char& c : s)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return s;
}

struct Row {
    std::string sortKey; // base word with '_' lifted above every other byte
    int source;          // 0 for the base row, else the list's own alternate number
    size_t line;         // tie-break: keep the list's order
    std::string word;
    std::string phonemes;
    std::string orthography;
};

// "absolve(2)" -> ("absolve", 2); a word without a mark -> (word, 0).
std::pair<std::string, int> splitAlternate(const std::string& word)
{
    if (word.size() < 4 || word.back() != ')')
        return {word, 0};
    const size_t open = word.rfind('(');
    if (open == std::string::npos || open == 0 || open + 2 >= word.size())
        return {word, 0};
    int n = 0;
    for (size_t i = open + 1; i + 1 < word.size(); ++i) {
        if (word[i] < '0' || word[i] > '9' || n > 1000)
            return {word, 0};
        n = n * 10 + (word[i] - '0');
    }
    return {word.substr(0, open), n};
}

// The cutter knows vowels without stress digits: cut the bare tokens and
// put the breaks at the same places among the marked ones.
std::string cutLikeBare(const std::vector<std::string>& tokens, const std::vector<std::string>& bareTokens)
{
    std::string out;
    size_t next = 0;
    std::vector<std::string> pieceTokens;
    for (const auto& piece : syllabifyPhonemes(join(" ", bareTokens))) {
        split(piece, pieceTokens);
        if (!out.empty())
            out += " . ";
        for (size_t i = 0; i < pieceTokens.size() && next < tokens.size(); ++i, ++next) {
            if (i)
                out += ' ';
            out += tokens[next];
        }
    }
    return out;
}

} // namespace

std::string generateDictionaryText(const std::string& cmuText, DictionaryGeneratorStats* stats)
{
    DictionaryGeneratorStats counts;
    std::vector<std::string> lines;
    splitlines(cmuText, lines);
    std::vector<Row> rows;
    rows.reserve(lines.size());
    std::vector<std::string> fields;
    for (size_t lineNo = 0; lineNo < lines.size(); ++lineNo) {
        split(lines[lineNo], fields);
        if (fields.size() < 2) {
            ++counts.skipped;
            continue;
        }
        Row row;
        auto [base, number] = splitAlternate(lower(fields[0]));
        bool known = !base.empty();
        std::vector<std::string> tokens;
        std::vector<std::string> bareTokens;
        for (size_t i = 1; i < fields.size() && known; ++i) {
            std::string token = lower(fields[i]);
            std::string bare = token;
            bare.erase(std::remove_if(bare.begin(), bare.end(),
                                      [](char c) { return c >= '0' && c <= '2'; }),
                       bare.end());
            known = symbols().count(bare) != 0;
            tokens.push_back(std::move(token));
            bareTokens.push_back(std::move(bare));
        }
        if (!known) {
            ++counts.skipped;
            continue;
        }
        row.sortKey = base;
        std::replace(row.sortKey.begin(), row.sortKey.end(), '_', '\xff');
        row.source = number;
        row.line = lineNo;
        row.word = base;
        row.phonemes = cutLikeBare(tokens, bareTokens);
        row.orthography = join(" . ", syllabifyLetters(base));
        rows.push_back(std::move(row));
    }

    std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
        return std::tie(a.sortKey, a.source, a.line) < std::tie(b.sortKey, b.source, b.line);
    });

    std::string out;
    const std::string* lastBase = nullptr;
    int alternate = 0;
    for (const auto& row : rows) {
        const bool sameBase = lastBase && *lastBase == row.word;
        if (row.source == 0 && sameBase) {
            ++counts.skipped; // a repeated word would shadow the first row at load
            continue;
        }
        std::string word = row.word;
        std::string orthography = row.orthography;
        if (row.source != 0) {
            alternate = sameBase ? alternate + 1 : 1;
            const std::string mark = "(" + std::to_string(alternate) + ")";
            word += mark;
            orthography += " . " + mark;
            ++counts.alternates;
        } else {
            alternate = 0;
        }
        lastBase = &row.word;
        if (!out.empty())
            out += '\n';
        out += word;
        out += '\t';
        out += row.phonemes;
        out += '\t';
        out += orthography;
        ++counts.rows;
    }
    if (stats)
        *stats = counts;
    return out;
}

} // namespace Zelmor
