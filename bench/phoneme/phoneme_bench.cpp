// Load, lookup, conversion and regular-expression costs of the lyric
// converter, with the former map dictionary and espeak-ng for scale.

#include "phoneme/dictionary_holder.h"
#include "phoneme/fallback.h"
#include "phoneme/letter_to_sound.h"
#include "phoneme/lyric_converter.h"

#include <benchmark/benchmark.h>
#include <re2/re2.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <dlfcn.h>
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
        for (size_t i = 0; i < dictionary().rows.size(); i += 64) {
            const std::string_view word = wordAt(dictionary(), i);
            if (word.find_first_not_of("abcdefghijklmnopqrstuvwxyz") == std::string::npos)
                out.emplace_back(word);
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
            if (findWord(dictionary(), reversed) == noWord)
                out.push_back(reversed);
        }
        return out;
    }();
    return words;
}

// The dictionary as it was held before the index: an ordered map with a node
// and two strings a row, filled in one pass over the text. The baseline for
// load time, memory and lookups.
struct MapEntry {
    std::string phonemes;
    std::string orthography;
};
using MapDictionary = std::map<std::string, MapEntry, std::less<>>;

MapDictionary loadMapDictionary(const char* text, int32_t length)
{
    const auto isBlank = [](char c) {
        return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
    };
    MapDictionary map;
    const std::string_view all(text, static_cast<size_t>(length));
    size_t start = 0;
    while (start < all.size()) {
        size_t stop = start;
        while (stop < all.size() && all[stop] != '\n' && all[stop] != '\r')
            ++stop;
        std::string_view line = all.substr(start, stop - start);
        start = stop;
        if (start < all.size())
            start += (all[start] == '\r' && start + 1 < all.size() && all[start + 1] == '\n') ? 2 : 1;
        while (!line.empty() && isBlank(line.front()))
            line.remove_prefix(1);
        while (!line.empty() && isBlank(line.back()))
            line.remove_suffix(1);
        const size_t tab1 = line.find('\t');
        if (tab1 == std::string_view::npos)
            continue;
        const size_t tab2 = line.find('\t', tab1 + 1);
        if (tab2 == std::string_view::npos || line.find('\t', tab2 + 1) != std::string_view::npos)
            continue;
        auto it = map.try_emplace(map.end(), std::string(line.substr(0, tab1)));
        it->second.phonemes = stripStress(std::string(line.substr(tab1 + 1, tab2 - tab1 - 1)));
        it->second.orthography.assign(line.substr(tab2 + 1));
    }
    map["sil"] = MapEntry{"SIL", "sil"};
    map["br"] = MapEntry{"BR", "br"};
    return map;
}

long residentKib()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0)
            return std::atol(line.c_str() + 6);
    return 0;
}

// The floor for any load: one memchr pass that finds every line.
size_t plainScan()
{
    const char* p = embeddedDictionaryText();
    const char* const end = p + embeddedDictionarySize();
    size_t lines = 1;
    while ((p = static_cast<const char*>(std::memchr(p, '\n', static_cast<size_t>(end - p)))) != nullptr) {
        ++p;
        ++lines;
    }
    return lines;
}

void BM_DictionaryPlainScan(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(plainScan());
    state.SetBytesProcessed(int64_t(state.iterations()) * embeddedDictionarySize());
}
BENCHMARK(BM_DictionaryPlainScan)->Unit(benchmark::kMillisecond);

// The index, as the module builds it. rss_kib: what the first load added.
void BM_DictionaryLoad(benchmark::State& state)
{
    static const long added = [] {
        const long before = residentKib();
        const auto index = loadPronouncingDictionary(embeddedDictionaryText(), embeddedDictionarySize());
        return residentKib() - before;
    }();
    for (auto _ : state) {
        auto index = loadPronouncingDictionary(embeddedDictionaryText(), embeddedDictionarySize());
        benchmark::DoNotOptimize(index.rows.data());
        state.PauseTiming();
        index = PronouncingDictionary();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * embeddedDictionarySize());
    state.counters["rss_kib"] = double(added);
}
BENCHMARK(BM_DictionaryLoad)->Unit(benchmark::kMillisecond);

void BM_DictionaryLoad_Map(benchmark::State& state)
{
    static const long added = [] {
        const long before = residentKib();
        const auto map = loadMapDictionary(embeddedDictionaryText(), embeddedDictionarySize());
        return residentKib() - before;
    }();
    for (auto _ : state) {
        auto map = loadMapDictionary(embeddedDictionaryText(), embeddedDictionarySize());
        benchmark::DoNotOptimize(map.size());
        // Freeing the map belongs to unload, not to load.
        state.PauseTiming();
        map = MapDictionary();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * embeddedDictionarySize());
    state.counters["rss_kib"] = double(added);
}
BENCHMARK(BM_DictionaryLoad_Map)->Unit(benchmark::kMillisecond);

#ifdef CANTORELA_MODULE_PATH
// dlopen of the built bundle: the module's static initialisation with its
// dictionary. scan_ratio: the load over a plain scan timed beside it;
// rss_kib: resident memory that the first load in this process added.
void BM_ModuleLoad(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    static long added = -1;
    double load = 0, scan = 0;
    for (auto _ : state) {
        const long before = residentKib();
        const auto t0 = Clock::now();
        void* module = dlopen(CANTORELA_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
        const auto t1 = Clock::now();
        if (!module) {
            state.SkipWithError(dlerror());
            return;
        }
        if (added < 0)
            added = residentKib() - before;
        dlclose(module);
        const auto t2 = Clock::now();
        benchmark::DoNotOptimize(plainScan());
        const auto t3 = Clock::now();
        load += std::chrono::duration<double>(t1 - t0).count();
        scan += std::chrono::duration<double>(t3 - t2).count();
        state.SetIterationTime(std::chrono::duration<double>(t1 - t0).count());
    }
    state.counters["scan_ms"] = 1000 * scan / double(state.iterations());
    state.counters["scan_ratio"] = load / scan;
    state.counters["rss_kib"] = double(added);
}
BENCHMARK(BM_ModuleLoad)->Unit(benchmark::kMillisecond)->UseManualTime();
#endif

// Exact searches of dictionary words, the copy of their phonemes included.
void BM_LookUp(benchmark::State& state)
{
    for (auto _ : state)
        for (const auto& word : dictionaryWords())
            benchmark::DoNotOptimize(phonemesAt(dictionary(), findWord(dictionary(), word)));
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(dictionaryWords().size()));
}
BENCHMARK(BM_LookUp)->Unit(benchmark::kMicrosecond);

void BM_LookUp_Map(benchmark::State& state)
{
    static const MapDictionary map = loadMapDictionary(embeddedDictionaryText(), embeddedDictionarySize());
    for (auto _ : state)
        for (const auto& word : dictionaryWords())
            benchmark::DoNotOptimize(std::string(map.find(word)->second.phonemes));
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(dictionaryWords().size()));
}
BENCHMARK(BM_LookUp_Map)->Unit(benchmark::kMicrosecond);

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
