// Cost of recording a one-lyric edit (full LCS table) against the no-change
// path (length + hash + pairwise compare) for tracks of growing size.
#include <malloc.h>

#include <cstdlib>
#include <fstream>
#include <new>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "sequence/sequence_store.h"

using namespace Zelmor;

namespace {

// Read in kB from /proc/self/status.
long statusKb(const std::string& key)
{
    std::ifstream in("/proc/self/status");
    std::string line;
    while (std::getline(in, line)) {
        if (line.compare(0, key.size(), key) == 0)
            return std::stol(line.substr(key.size() + 1));
    }
    return -1;
}

// Live and peak bytes of this process's operator new, for an exact heap
// figure that does not depend on what the allocator keeps resident.
std::size_t liveBytes = 0;
std::size_t peakBytes = 0;

} // namespace

void* operator new(std::size_t size)
{
    void* p = std::malloc(size ? size : 1);
    if (!p)
        throw std::bad_alloc();
    liveBytes += malloc_usable_size(p);
    if (liveBytes > peakBytes)
        peakBytes = liveBytes;
    return p;
}

// GCC cannot see that this pairs with the malloc in operator new above.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* p) noexcept
{
    if (p)
        liveBytes -= malloc_usable_size(p);
    std::free(p);
}
#pragma GCC diagnostic pop

void operator delete(void* p, std::size_t) noexcept { operator delete(p); }

namespace {

struct MemoryProbe {
    long rssBefore;
    std::size_t heapBefore;

    MemoryProbe()
    {
        // Hand freed heap back first so that a reused free block cannot hide
        // the table from the resident peak.
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5"; // resets VmHWM
        rssBefore = statusKb("VmRSS:");
        heapBefore = liveBytes;
        peakBytes = liveBytes;
    }

    void report(benchmark::State& state) const
    {
        // Heap first: reading /proc allocates.
        const double heap = static_cast<double>(peakBytes - heapBefore) / (1024.0 * 1024.0);
        const long peak = statusKb("VmHWM:");
        state.counters["peak_heap_delta_MiB"] = heap;
        state.counters["peak_rss_delta_MiB"] = rssBefore >= 0 && peak >= 0 ? (peak - rssBefore) / 1024.0 : -1.0;
    }
};

std::vector<SequenceNote> makeTrack(std::size_t count, std::vector<char>& nodes)
{
    nodes.assign(count, 0);
    std::vector<SequenceNote> notes(count);
    for (std::size_t k = 0; k < count; ++k) {
        SequenceNote& n = notes[k];
        n.start = 0.5 * static_cast<double>(k);
        n.end = n.start + 0.4;
        n.soundStart = n.start;
        n.soundEnd = n.end;
        n.pitch = 60 + static_cast<int32_t>(k % 12);
        n.lyric = "la[l a]";
        n.phoneme = "l a";
        n.noteObject = reinterpret_cast<Steinberg::IProjectNode*>(&nodes[k]);
    }
    return notes;
}


void BM_RecordOneLyricEdit(benchmark::State& state)
{
    const std::size_t count = static_cast<std::size_t>(state.range(0));
    std::vector<char> nodes;
    const std::vector<SequenceNote> original = makeTrack(count, nodes);
    std::vector<SequenceNote> edited = original;
    edited[count / 2].lyric = "lo[l o]";
    edited[count / 2].phoneme = "l o";

    SequenceStore store;
    bool pending = false;
    recordSequence(store, pending, 1, "track", original);

    // One untimed pass for the memory figures of a single change.
    const MemoryProbe probe;
    recordSequence(store, pending, 1, "track", edited);
    probe.report(state);

    bool flip = false;
    for (auto _ : state) {
        // Alternate so that every pass is a real change.
        benchmark::DoNotOptimize(recordSequence(store, pending, 1, "track", flip ? edited : original));
        flip = !flip;
    }
    const double cells = static_cast<double>(count + 1) * static_cast<double>(count + 1);
    state.counters["table_MiB"] = cells * 4.0 / (1024.0 * 1024.0);
}

void BM_RecordNoChange(benchmark::State& state)
{
    const std::size_t count = static_cast<std::size_t>(state.range(0));
    std::vector<char> nodes;
    const std::vector<SequenceNote> notes = makeTrack(count, nodes);
    SequenceStore store;
    bool pending = false;
    recordSequence(store, pending, 1, "track", notes);

    const MemoryProbe probe;
    recordSequence(store, pending, 1, "track", notes);
    probe.report(state);

    for (auto _ : state)
        benchmark::DoNotOptimize(recordSequence(store, pending, 1, "track", notes));
}

} // namespace

BENCHMARK(BM_RecordOneLyricEdit)->Arg(100)->Arg(1000)->Arg(4000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RecordNoChange)->Arg(100)->Arg(1000)->Arg(4000)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv)
{
    // A fixed threshold stops glibc from raising it after the first big free,
    // so every table is a fresh mapping and shows up in the resident peak.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
