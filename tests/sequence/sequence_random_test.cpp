#include <iostream>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include "sequence/sequence_store.h"
#include "test_notes.h"

using namespace Zelmor;

namespace {

// Every field, not just identity: undo and redo must give back the very records.
bool sameRecords(const std::vector<SequenceNote>& a, const std::vector<SequenceNote>& b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t k = 0; k < a.size(); ++k) {
        const SequenceNote &x = a[k], &y = b[k];
        if (!equals(x, y) || x.muted != y.muted || x.transpose != y.transpose
            || x.soundStart != y.soundStart || x.soundEnd != y.soundEnd || x.partAnchor != y.partAnchor)
            return false;
    }
    return true;
}

bool sameIdentity(const std::vector<SequenceNote>& a, const std::vector<SequenceNote>& b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), equals);
}

// Plain model: a full snapshot before and after every history entry.
struct Entry {
    int32_t track;
    std::string name;
    std::vector<SequenceNote> before, after;
};

struct Model {
    std::map<int32_t, std::vector<SequenceNote>> notes;
    std::vector<Entry> history;
    int32_t cursor = -1;
    int32_t current = -1;
};

std::vector<SequenceNote> mutate(std::vector<SequenceNote> notes, std::mt19937& rng)
{
    auto pick = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(rng); };
    const int edits = 1 + static_cast<int>(pick(3));
    for (int e = 0; e < edits; ++e) {
        switch (pick(6)) {
        case 0: case 1: { // insert; small value ranges make identical twins likely
            SequenceNote n = makeNote(static_cast<double>(pick(6)), std::string(1, char('a' + pick(3))),
                                      static_cast<int>(pick(12)));
            n.transpose = static_cast<int32_t>(pick(5));
            notes.insert(notes.begin() + static_cast<std::ptrdiff_t>(pick(notes.size() + 1)), n);
            break;
        }
        case 2: if (!notes.empty()) notes.erase(notes.begin() + static_cast<std::ptrdiff_t>(pick(notes.size()))); break;
        case 3: if (!notes.empty()) notes[pick(notes.size())].lyric = std::string(1, char('a' + pick(3))); break;
        case 4: if (!notes.empty()) notes[pick(notes.size())].muted ^= true; break; // no change by itself
        case 5: if (notes.size() > 1) std::swap(notes[pick(notes.size())], notes[pick(notes.size())]); break;
        }
    }
    return notes;
}

void expectAgree(const SequenceStore& store, const Model& model)
{
    std::vector<int32_t> ids;
    for (const Entry& e : model.history)
        ids.push_back(e.track);
    ASSERT_EQ(store.history, ids);
    ASSERT_EQ(store.cursor, model.cursor);
    ASSERT_EQ(store.currentTrackId, model.current);
    ASSERT_EQ(store.tracks.size(), model.notes.size());
    for (const auto& [id, notes] : model.notes) {
        const TrackSequence& track = store.tracks.at(id);
        ASSERT_TRUE(sameRecords(track.notes, notes)) << "track " << id;
        ASSERT_EQ(track.orderHash, hashSequence(notes)) << "track " << id;
    }
    // Names in force, then the redoable ones, follow the history; stale
    // names of cut entries may trail behind them.
    for (const auto& [id, names] : store.stepNames) {
        std::vector<std::string> applied, redoable;
        for (int32_t k = 0; k < static_cast<int32_t>(model.history.size()); ++k) {
            if (model.history[k].track == id)
                (k <= model.cursor ? applied : redoable).push_back(model.history[k].name);
        }
        ASSERT_EQ(names.cursor + 1, static_cast<int32_t>(applied.size())) << "track " << id;
        applied.insert(applied.end(), redoable.begin(), redoable.end());
        ASSERT_GE(names.names.size(), applied.size());
        ASSERT_TRUE(std::equal(applied.begin(), applied.end(), names.names.begin())) << "track " << id;
    }
}

} // namespace

TEST(SequenceStoreRandom, AgreesWithSnapshotModel)
{
    const uint32_t baseSeed = 20240611u;
    std::cout << "random store runs, base seed " << baseSeed << std::endl;
    for (uint32_t run = 0; run < 300; ++run) {
        const uint32_t seed = baseSeed + run;
        std::mt19937 rng(seed);
        SequenceStore store;
        Model model;
        bool pending = false;
        for (int step = 0; step < 60; ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            const int32_t track = 1 + static_cast<int32_t>(rng() % 2);
            const unsigned action = rng() % 10;
            if (action < 2 && model.cursor >= 0) {
                const Entry& e = model.history[static_cast<std::size_t>(model.cursor)];
                undoStore(store);
                model.notes[e.track] = e.before;
                model.current = e.track;
                model.cursor -= 1;
            } else if (action < 4 && model.cursor + 1 < static_cast<int32_t>(model.history.size())) {
                model.cursor += 1;
                const Entry& e = model.history[static_cast<std::size_t>(model.cursor)];
                redoStore(store);
                model.notes[e.track] = e.after;
                model.current = e.track;
            } else {
                const bool known = model.notes.count(track) != 0;
                const std::vector<SequenceNote> before = known ? model.notes[track] : std::vector<SequenceNote>{};
                const std::vector<SequenceNote> next = mutate(before, rng);
                const bool changed = !known || !sameIdentity(before, next);
                const std::string name = "t" + std::to_string(track) + "s" + std::to_string(step);
                ASSERT_EQ(recordSequence(store, pending, track, name, next), changed);
                ASSERT_EQ(pending, changed);
                if (changed) {
                    const auto& stored = store.tracks.at(track).notes;
                    ASSERT_TRUE(sameIdentity(stored, next));
                    model.history.resize(static_cast<std::size_t>(model.cursor + 1));
                    model.history.push_back({track, name, before, stored});
                    model.cursor += 1;
                    model.current = track;
                    model.notes[track] = stored;
                }
            }
            expectAgree(store, model);
            if (HasFatalFailure())
                return;
        }
    }
}
