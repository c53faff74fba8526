#include <stdexcept>

#include <gtest/gtest.h>

#include "sequence/sequence_store.h"
#include "test_notes.h"

using namespace Zelmor;

namespace {
const std::vector<SequenceNote> kAB = {makeNote(0, "a", 1), makeNote(1, "b", 2)};
const std::vector<SequenceNote> kBA = {kAB[1], kAB[0]};
}

// The order hash only speeds the compare up: a collision must still count as a change.
TEST(SequenceStore, AForgedHashCollisionIsStillAChange)
{
    SequenceStore store;
    bool pending = false;
    recordSequence(store, pending, 1, "A", kBA);
    store.tracks.at(1).orderHash = hashSequence(kAB);
    EXPECT_TRUE(recordSequence(store, pending, 1, "A", kAB));
}

TEST(SequenceStore, NewChangeCutsUndoneHistoryOfAllTracks)
{
    SequenceStore store;
    bool pending = false;
    recordSequence(store, pending, 1, "A1", {kAB[0]});
    recordSequence(store, pending, 1, "A2", kAB);
    recordSequence(store, pending, 2, "B1", kBA);
    undoStore(store);
    undoStore(store);
    EXPECT_EQ(store.cursor, 0);

    recordSequence(store, pending, 1, "A3", kBA);
    EXPECT_EQ(store.history, (std::vector<int32_t>{1, 1}));
    EXPECT_EQ(store.stepNames.at(1).names, (std::vector<std::string>{"A1", "A3"}));
    // B's undone script lingers, but no history entry leads to it any more.
    EXPECT_EQ(store.tracks.at(2).redoStack.size(), 1u);
    EXPECT_THROW(redoStore(store), std::out_of_range);
    recordSequence(store, pending, 2, "B2", kAB);
    EXPECT_TRUE(store.tracks.at(2).redoStack.empty());
    EXPECT_EQ(store.stepNames.at(2).names, (std::vector<std::string>{"B2"}));
}

TEST(SequenceStore, HostErrorsSurfaceAsOutOfRange)
{
    SequenceStore store;
    bool pending = false;
    EXPECT_THROW(undoStore(store), std::out_of_range);
    EXPECT_THROW(currentSequence(store), std::out_of_range);
    // A history entry whose track is gone: current moves, the cursor stays.
    recordSequence(store, pending, 4, "D", kAB);
    store.tracks.erase(4);
    EXPECT_THROW(undoStore(store), std::out_of_range);
    EXPECT_EQ(store.currentTrackId, 4);
    EXPECT_EQ(store.cursor, 0);
}
