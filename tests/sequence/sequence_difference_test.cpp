#include <gtest/gtest.h>

#include "sequence/sequence_difference.h"
#include "test_notes.h"

using namespace Zelmor;

namespace {

struct Step {
    int32_t op;
    uint64_t index;
    std::string lyric;
};

void expectScript(const NoteEditList& edits, const std::vector<Step>& expected)
{
    ASSERT_EQ(edits.size(), expected.size());
    for (std::size_t k = 0; k < edits.size(); ++k) {
        EXPECT_EQ(edits[k].op, expected[k].op) << "edit " << k;
        EXPECT_EQ(edits[k].index, expected[k].index) << "edit " << k;
        EXPECT_EQ(edits[k].note.lyric, expected[k].lyric) << "edit " << k;
    }
}

std::vector<SequenceNote> notesOf(const std::string& lyrics)
{
    std::vector<SequenceNote> out;
    for (char c : lyrics)
        out.push_back(makeNote(c - 'a', std::string(1, c), c - 'a'));
    return out;
}

void expectSameNotes(const std::vector<SequenceNote>& a, const std::vector<SequenceNote>& b)
{
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t k = 0; k < a.size(); ++k)
        EXPECT_TRUE(equals(a[k], b[k])) << "note " << k;
}

} // namespace

TEST(SequenceDifference, ScriptsAndTieBreaks)
{
    const auto abc = notesOf("abc");
    SequenceNote x = makeNote(1.0, "x", 23);
    // b -> x at the same place: the tie gives the removal first.
    expectScript(diffNotes(abc, {abc[0], x, abc[2]}), {{1, 1, "b"}, {0, 1, "x"}});
    expectScript(diffNotes({}, abc), {{0, 0, "c"}, {0, 0, "b"}, {0, 0, "a"}});
    expectScript(diffNotes(abc, {}), {{1, 2, "c"}, {1, 1, "b"}, {1, 0, "a"}});
    expectScript(diffNotes({}, {}), {});
    // Front to back is a remove and an insert, not a move.
    expectScript(diffNotes(abc, notesOf("bca")), {{0, 3, "a"}, {1, 0, "a"}});

    // A lyric change on the same host note: remove then insert in place.
    auto relyric = abc;
    relyric[1].lyric = "B";
    expectScript(diffNotes(abc, relyric), {{1, 1, "b"}, {0, 1, "B"}});

    // Identical twins match from the end: the first one is the one removed.
    const SequenceNote twin = makeNote(5.0, "t", 9);
    SequenceNote twinA = twin, twinB = twin;
    twinA.muted = true;
    twinB.transpose = 3;
    const auto edits = diffNotes({twinA, twinB}, {twin});
    ASSERT_EQ(edits.size(), 1u);
    EXPECT_EQ(edits[0].index, 0u);
    EXPECT_TRUE(edits[0].note.muted);
}

TEST(SequenceDifference, ApplyUndoRedoRoundTrip)
{
    TrackSequence track;
    auto old = notesOf("abcde");
    old[2].muted = true;
    diffAndApply(track, old);
    EXPECT_EQ(track.undoStack.size(), 1u);

    const auto next = notesOf("xbdcy");
    diffAndApply(track, next);
    expectSameNotes(track.notes, next);
    EXPECT_EQ(track.orderHash, hashSequence(next));
    // Kept notes stay the old records.
    EXPECT_TRUE(track.notes[3].muted);

    applyUndo(track);
    expectSameNotes(track.notes, old);
    EXPECT_TRUE(track.notes[2].muted);
    EXPECT_EQ(track.orderHash, hashSequence(old));
    applyRedo(track);
    expectSameNotes(track.notes, next);
    EXPECT_EQ(track.orderHash, hashSequence(next));
    EXPECT_TRUE(track.redoStack.empty());

    // A new change ends the redo chain.
    applyUndo(track);
    diffAndApply(track, {});
    EXPECT_TRUE(track.notes.empty());
    EXPECT_EQ(track.orderHash, 0u);
    EXPECT_TRUE(track.redoStack.empty());
    EXPECT_EQ(track.undoStack.size(), 2u);
}

TEST(SequenceDifference, ForeignEditsAreSkipped)
{
    TrackSequence track;
    track.notes = notesOf("ab");
    track.redoStack.push_back({{7, 0, makeNote(9, "q")},
                               {kNoteRemove, 5, makeNote(9, "q")},
                               {kNoteInsert, 9, makeNote(9, "q")}});
    applyRedo(track);
    expectSameNotes(track.notes, notesOf("ab"));
    applyUndo(track);
    expectSameNotes(track.notes, notesOf("ab"));
    EXPECT_EQ(track.orderHash, hashSequence(track.notes));
    applyRedo(track);
    applyRedo(track); // nothing left: no effect
    EXPECT_TRUE(track.redoStack.empty());
}
