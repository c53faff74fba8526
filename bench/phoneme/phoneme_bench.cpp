// Load, conversion and regular-expression costs of the lyric converter, with
// espeak-ng on the same words for scale.

#include "phoneme/dictionary_holder.h"
#include "phoneme/fallback.h"
#include "phoneme/letter_to_sound.h"
#include "phoneme/lyric_converter.h"

#include <benchmark/benchmark.h>
#include <re2/re2.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <unistd.h>

using namespace Zelmor;

namespace {

const PronouncingDictionary& dictionary()
{
    return *dictionaryHolderMap();
}

// Every 64th plain word of the dictionary: about 2,000 words.
const std::vector<std::string>& dictionaryWords()
{
    static const std::vector<std::string> words = [] {
        std::vector<std::string> out;
        size_t i = 0;
        for (const auto& [word, entry] : dictionary()) {
            if (i++ % 64 != 0)
                continue;
            if (word.find_first_not_of("abcdefghijklmnopqrstuvwxyz") == std::string::npos)
                out.push_back(word);
        }
        return out;
    }();
    return words;
}

// Dictionary words spelled backwards, kept when the dictionary lacks them.
const std::vector<std::string>& unknownWords()
{
    static const std::vector<std::string> words = [] {
        std::vector<std::string> out;
        for (const auto& word : dictionaryWords()) {
            std::string reversed(word.rbegin(), word.rend());
            if (dictionary().count(reversed) == 0)
                out.push_back(reversed);
        }
        return out;
    }();
    return words;
}

void BM_DictionaryParse(benchmark::State& state)
{
    for (auto _ : state) {
        auto map = loadPronouncingDictionary(embeddedDictionaryText(), embeddedDictionarySize());
        benchmark::DoNotOptimize(map.size());
        // Freeing the map belongs to unload, not to load.
        state.PauseTiming();
        map = PronouncingDictionary();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * embeddedDictionarySize());
}
BENCHMARK(BM_DictionaryParse)->Unit(benchmark::kMillisecond);

// The floor for any parse: one pass that finds every line and field.
void BM_DictionaryPlainScan(benchmark::State& state)
{
    const char* text = embeddedDictionaryText();
    const int32_t size = embeddedDictionarySize();
    for (auto _ : state) {
        size_t lines = 0, tabs = 0;
        for (int32_t i = 0; i < size; ++i) {
            lines += text[i] == '\n';
            tabs += text[i] == '\t';
        }
        benchmark::DoNotOptimize(lines);
        benchmark::DoNotOptimize(tabs);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * size);
}
BENCHMARK(BM_DictionaryPlainScan)->Unit(benchmark::kMillisecond);

void convertAll(benchmark::State& state, const std::vector<std::string>& words)
{
    for (auto _ : state)
        for (const auto& word : words)
            benchmark::DoNotOptimize(convertLyric(word, dictionary()));
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(words.size()));
}

void BM_ConvertDictionaryWords(benchmark::State& state)
{
    convertAll(state, dictionaryWords());
}
BENCHMARK(BM_ConvertDictionaryWords)->Unit(benchmark::kMillisecond);

void BM_ConvertUnknownWords(benchmark::State& state)
{
    convertLyric(unknownWords().front(), dictionary()); // the engine exists already
    convertAll(state, unknownWords());
}
BENCHMARK(BM_ConvertUnknownWords)->Unit(benchmark::kMillisecond);

// What the first unknown word pays: building the engine, then the word.
void BM_FirstUnknownWord(benchmark::State& state)
{
    for (auto _ : state) {
        LetterToSoundEngine engine;
        benchmark::DoNotOptimize(lettersToPhonemes(engine, "snarfle"));
    }
}
BENCHMARK(BM_FirstUnknownWord)->Unit(benchmark::kMillisecond);

// std::regex against RE2 on the 272 rule contexts.
std::vector<std::pair<std::string, bool>> contexts()
{
    std::vector<std::pair<std::string, bool>> out; // pattern, is left
    for (const auto& rule : letterToSoundRules) {
        if (rule.left[0])
            out.emplace_back(contextPattern(rule.left, false, true), true);
        if (rule.right[0])
            out.emplace_back(contextPattern(rule.right, true, false), false);
    }
    return out;
}

void BM_CompileContexts_StdRegex(benchmark::State& state)
{
    const auto patterns = contexts();
    for (auto _ : state)
        for (const auto& pattern : patterns)
            benchmark::DoNotOptimize(std::regex(pattern.first));
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(patterns.size()));
}
BENCHMARK(BM_CompileContexts_StdRegex)->Unit(benchmark::kMillisecond);

void BM_CompileContexts_RE2(benchmark::State& state)
{
    const auto patterns = contexts();
    for (auto _ : state)
        for (const auto& pattern : patterns)
            benchmark::DoNotOptimize(compileContext(pattern.first, false, false)->ok());
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(patterns.size()));
}
BENCHMARK(BM_CompileContexts_RE2)->Unit(benchmark::kMillisecond);

// The rule scan with std::regex contexts, step for step as applyRules runs it.
struct StdRule {
    const LetterToSoundRule* raw;
    std::string match;
    std::unique_ptr<std::regex> left, right;
};

size_t stdApplyRules(const std::vector<std::vector<StdRule>>& lists, const std::string& text)
{
    size_t found = 0;
    size_t position = 1;
    while (position < text.size()) {
        const auto& list = lists[static_cast<unsigned char>(text[position])];
        if (list.empty())
            break;
        bool won = false;
        for (const auto& rule : list) {
            if (text.compare(position, rule.match.size(), rule.match) != 0)
                continue;
            if (rule.left && !std::regex_search(text.begin(), text.begin() + long(position), *rule.left))
                continue;
            if (rule.right
                && !std::regex_search(text.begin() + long(position + rule.match.size()), text.end(), *rule.right))
                continue;
            position += rule.match.size();
            ++found;
            won = true;
            break;
        }
        if (!won)
            ++position;
    }
    return found;
}

void BM_MatchUnknownWords_StdRegex(benchmark::State& state)
{
    std::vector<std::vector<StdRule>> lists(256);
    for (const auto& raw : letterToSoundRules) {
        StdRule rule{&raw, raw.match, nullptr, nullptr};
        if (raw.left[0])
            rule.left = std::make_unique<std::regex>(contextPattern(raw.left, false, true));
        if (raw.right[0])
            rule.right = std::make_unique<std::regex>(contextPattern(raw.right, true, false));
        lists[static_cast<unsigned char>(raw.match[0])].push_back(std::move(rule));
    }
    for (auto _ : state)
        for (const auto& word : unknownWords())
            benchmark::DoNotOptimize(stdApplyRules(lists, " " + word + " "));
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(unknownWords().size()));
}
BENCHMARK(BM_MatchUnknownWords_StdRegex)->Unit(benchmark::kMillisecond);

void BM_MatchUnknownWords_RE2(benchmark::State& state)
{
    const LetterToSoundEngine engine;
    for (auto _ : state)
        for (const auto& word : unknownWords())
            benchmark::DoNotOptimize(applyRules(engine, " " + word + " ").size());
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(unknownWords().size()));
}
BENCHMARK(BM_MatchUnknownWords_RE2)->Unit(benchmark::kMillisecond);

// espeak-ng phonemising the same words (as one text, so its start-up is
// spread over the list). ratio = our words/s over espeak-ng's.
void espeakComparison(benchmark::State& state, const std::vector<std::string>& words)
{
    char path[] = "/tmp/phoneme_bench_XXXXXX";
    const int fd = mkstemp(path);
    if (fd < 0) {
        state.SkipWithError("cannot make a temporary file");
        return;
    }
    close(fd);
    {
        std::ofstream out(path);
        for (const auto& word : words)
            out << word << "\n";
    }
    const std::string command = std::string("espeak-ng -q -x -f ") + path + " > /dev/null 2>&1";
    if (std::system("command -v espeak-ng > /dev/null 2>&1") != 0) {
        std::remove(path);
        state.SkipWithError("espeak-ng is not installed");
        return;
    }
    double ours = 0, theirs = 0;
    using Clock = std::chrono::steady_clock;
    for (auto _ : state) {
        auto t0 = Clock::now();
        for (const auto& word : words)
            benchmark::DoNotOptimize(convertLyric(word, dictionary()));
        auto t1 = Clock::now();
        const int status = std::system(command.c_str());
        auto t2 = Clock::now();
        if (status != 0) {
            state.SkipWithError("espeak-ng failed");
            break;
        }
        ours += std::chrono::duration<double>(t1 - t0).count();
        theirs += std::chrono::duration<double>(t2 - t1).count();
    }
    std::remove(path);
    const double n = double(words.size()) * double(state.iterations());
    if (ours > 0 && theirs > 0) {
        state.counters["ours_words_per_s"] = n / ours;
        state.counters["espeak_words_per_s"] = n / theirs;
        state.counters["ratio"] = theirs / ours;
        state.counters["words"] = double(words.size());
    }
}

void BM_EspeakNg_DictionaryWords(benchmark::State& state)
{
    espeakComparison(state, dictionaryWords());
}
BENCHMARK(BM_EspeakNg_DictionaryWords)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_EspeakNg_UnknownWords(benchmark::State& state)
{
    espeakComparison(state, unknownWords());
}
BENCHMARK(BM_EspeakNg_UnknownWords)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

BENCHMARK_MAIN();
