#include <algorithm>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include "full_table_difference.h"
#include "sequence/sequence_store.h"
#include "test_notes.h"

using namespace Zelmor;

namespace {

// Every field, not only identity: undo and redo must give back the very records.
bool sameRecords(const std::vector<SequenceNote>& a, const std::vector<SequenceNote>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const SequenceNote& x, const SequenceNote& y) {
        return equals(x, y) && x.muted == y.muted && x.transpose == y.transpose;
    });
}

// Plain model: full snapshots before and after every history entry.
struct Entry {
    int32_t track;
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
    for (std::size_t e = 0, edits = 1 + pick(3); e < edits; ++e) {
        const std::size_t op = pick(6);
        if (op < 2) { // small value ranges make identical twins likely
            SequenceNote n = makeNote(double(pick(6)), std::string(1, char('a' + pick(3))), int(pick(12)));
            n.transpose = int32_t(pick(5));
            notes.insert(notes.begin() + std::ptrdiff_t(pick(notes.size() + 1)), n);
        } else if (notes.empty()) {
        } else if (op == 2) {
            notes.erase(notes.begin() + std::ptrdiff_t(pick(notes.size())));
        } else if (op == 3) {
            notes[pick(notes.size())].lyric = std::string(1, char('a' + pick(3)));
        } else if (op == 4) {
            notes[pick(notes.size())].muted ^= true; // alone, no change
        } else {
            std::swap(notes[pick(notes.size())], notes[pick(notes.size())]);
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
        ASSERT_TRUE(sameRecords(store.tracks.at(id).notes, notes)) << "track " << id;
        ASSERT_EQ(store.tracks.at(id).orderHash, hashSequence(notes)) << "track " << id;
    }
}

} // namespace

TEST(SequenceStoreRandom, AgreesWithSnapshotModel)
{
    const uint32_t baseSeed = 20240611u;
    for (uint32_t seed = baseSeed; seed < baseSeed + 300; ++seed) {
        std::mt19937 rng(seed);
        SequenceStore store;
        Model model;
        bool pending = false;
        for (int step = 0; step < 60 && !HasFatalFailure(); ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            const int32_t track = 1 + int32_t(rng() % 2);
            const unsigned action = rng() % 10;
            if (action < 2 && model.cursor >= 0) {
                const Entry& e = model.history[size_t(model.cursor--)];
                undoStore(store);
                model.notes[e.track] = e.before;
                model.current = e.track;
            } else if (action < 4 && model.cursor + 1 < int32_t(model.history.size())) {
                const Entry& e = model.history[size_t(++model.cursor)];
                redoStore(store);
                model.notes[e.track] = e.after;
                model.current = e.track;
            } else {
                const bool known = model.notes.count(track) != 0;
                const auto before = known ? model.notes[track] : std::vector<SequenceNote>{};
                const auto next = mutate(before, rng);
                const bool changed = !known || !std::equal(before.begin(), before.end(), next.begin(),
                                                           next.end(), equals);
                ASSERT_TRUE(sameScript(diffNotes(before, next), fullTableDiff(before, next)));
                ASSERT_EQ(recordSequence(store, pending, track, "step", next), changed);
                ASSERT_EQ(pending, changed);
                if (changed) {
                    const auto& stored = store.tracks.at(track).notes;
                    ASSERT_TRUE(std::equal(stored.begin(), stored.end(), next.begin(), next.end(), equals));
                    model.history.resize(size_t(model.cursor + 1));
                    model.history.push_back({track, before, stored});
                    model.cursor += 1;
                    model.current = track;
                    model.notes[track] = stored;
                }
            }
            expectAgree(store, model);
        }
    }
}
