#include <gtest/gtest.h>

#include "sequence/sequence_difference.h"
#include "test_notes.h"

using namespace Zelmor;

namespace {

// Script as "op index lyric" triples, e.g. "1 1 b, 0 1 x".
std::string describe(const NoteEditList& edits)
{
    std::string out;
    for (const NoteEdit& e : edits)
        out += (out.empty() ? "" : ", ") + std::to_string(e.op) + " " + std::to_string(e.index) + " " + e.note.lyric;
    return out;
}

std::vector<SequenceNote> notesOf(const std::string& lyrics)
{
    std::vector<SequenceNote> out;
    for (char c : lyrics)
        out.push_back(makeNote(c - 'a', std::string(1, c), c - 'a'));
    return out;
}

} // namespace

TEST(SequenceDifference, ScriptsAndTieBreaks)
{
    const auto abc = notesOf("abc");
    EXPECT_EQ(describe(diffNotes(abc, {abc[0], makeNote(1, "x", 23), abc[2]})), "1 1 b, 0 1 x");
    EXPECT_EQ(describe(diffNotes({}, abc)), "0 0 c, 0 0 b, 0 0 a");
    EXPECT_EQ(describe(diffNotes(abc, {})), "1 2 c, 1 1 b, 1 0 a");
    EXPECT_EQ(describe(diffNotes(abc, notesOf("bca"))), "0 3 a, 1 0 a");
    auto relyric = abc;
    relyric[1].lyric = "B";
    EXPECT_EQ(describe(diffNotes(abc, relyric)), "1 1 b, 0 1 B");

    // Identical twins match from the end: the first one goes.
    SequenceNote twin = makeNote(5, "t", 9), first = twin;
    first.muted = true;
    const auto edits = diffNotes({first, twin}, {twin});
    ASSERT_EQ(describe(edits), "1 0 t");
    EXPECT_TRUE(edits[0].note.muted);
}

TEST(SequenceDifference, ForeignEditsAreSkipped)
{
    TrackSequence track;
    track.notes = notesOf("ab");
    const SequenceNote q = makeNote(9, "q");
    track.redoStack.push_back({{7, 0, q}, {kNoteRemove, 5, q}, {kNoteInsert, 9, q}});
    applyRedo(track);
    applyUndo(track);
    EXPECT_EQ(track.notes.size(), 2u);
    EXPECT_EQ(track.orderHash, hashSequence(notesOf("ab")));
}
