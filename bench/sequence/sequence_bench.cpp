// Cost of recording a changed track: one changed lyric, and 100 lyrics changed
// here and there, each beside the whole-table difference that the store first
// used (kept here as the baseline, with its edit-by-edit application); and the
// no-change path (length + hash + pairwise compare) for tracks of growing size.
#include <malloc.h>

#include <cstdlib>
#include <fstream>
#include <new>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>

#include "sequence/sequence_store.h"
#include "tests/sequence/full_table_difference.h"  // the whole table: the baseline of the rows below

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
std::size_t allocatedBytes = 0; // every allocation, freed or not

} // namespace

void* operator new(std::size_t size)
{
    void* p = std::malloc(size ? size : 1);
    if (!p)
        throw std::bad_alloc();
    liveBytes += malloc_usable_size(p);
    allocatedBytes += size;
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
    std::size_t allocatedBefore;

    MemoryProbe()
    {
        // Hand freed heap back first so that a reused free block cannot hide
        // the table from the resident peak.
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5"; // resets VmHWM
        rssBefore = statusKb("VmRSS:");
        heapBefore = liveBytes;
        peakBytes = liveBytes;
        allocatedBefore = allocatedBytes;
    }

    void report(benchmark::State& state) const
    {
        // Heap first: reading /proc allocates.
        const double heap = static_cast<double>(peakBytes - heapBefore) / (1024.0 * 1024.0);
        const double allocated = static_cast<double>(allocatedBytes - allocatedBefore) / (1024.0 * 1024.0);
        const long peak = statusKb("VmHWM:");
        state.counters["peak_heap_delta_MiB"] = heap;
        state.counters["allocated_MiB"] = allocated;
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

// The store's first recording: the whole table, and one vector insert or erase per edit.
void recordWithFullTable(TrackSequence& track, const std::vector<SequenceNote>& notes)
{
    NoteEditList edits = fullTableDiff(track.notes, notes);
    track.redoStack.clear();
    for (const NoteEdit& edit : edits) {
        if (edit.op == kNoteRemove)
            track.notes.erase(track.notes.begin() + static_cast<std::ptrdiff_t>(edit.index));
        else
            track.notes.insert(track.notes.begin() + static_cast<std::ptrdiff_t>(edit.index), edit.note);
    }
    track.undoStack.push_back(std::move(edits));
    track.orderHash = hashSequence(track.notes);
}

enum Variant { kTrimmed = 0, kFullTable = 1 };

// Alternates between two versions of a track, so that every pass records a
// real change. Argument 1 picks the store (0) or the whole-table baseline (1).
void recordChanges(benchmark::State& state, const std::vector<SequenceNote>& original,
                   const std::vector<SequenceNote>& edited)
{
    const bool baseline = state.range(1) == kFullTable;
    SequenceStore store;
    bool pending = false;
    TrackSequence track;
    auto record = [&](const std::vector<SequenceNote>& notes) {
        if (baseline)
            recordWithFullTable(track, notes);
        else
            benchmark::DoNotOptimize(recordSequence(store, pending, 1, "track", notes));
    };
    record(original);

    // One untimed pass for the memory figures of a single change.
    const MemoryProbe probe;
    record(edited);
    probe.report(state);

    bool flip = false;
    for (auto _ : state) {
        record(flip ? edited : original);
        flip = !flip;
    }
    state.SetLabel(baseline ? "whole table" : "trimmed");
}

void relyric(SequenceNote& note)
{
    note.lyric = "lo[l o]";
    note.phoneme = "l o";
}

void BM_RecordOneLyricEdit(benchmark::State& state)
{
    std::vector<char> nodes;
    const std::vector<SequenceNote> original = makeTrack(static_cast<std::size_t>(state.range(0)), nodes);
    std::vector<SequenceNote> edited = original;
    relyric(edited[edited.size() / 2]);
    recordChanges(state, original, edited);
}

// 100 lyrics changed, spread evenly over the track.
void BM_RecordScatteredEdits(benchmark::State& state)
{
    std::vector<char> nodes;
    const std::vector<SequenceNote> original = makeTrack(static_cast<std::size_t>(state.range(0)), nodes);
    std::vector<SequenceNote> edited = original;
    for (std::size_t k = 0; k < 100; ++k)
        relyric(edited[(2 * k + 1) * edited.size() / 200]);
    recordChanges(state, original, edited);
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

BENCHMARK(BM_RecordOneLyricEdit)
    ->ArgsProduct({{100, 1000, 4000}, {kTrimmed, kFullTable}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RecordScatteredEdits)->ArgsProduct({{4000}, {kTrimmed, kFullTable}})->Unit(benchmark::kMillisecond);
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
