#include <cmath>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

#include "full_table_difference.h"
#include "sequence/edit_application.h"
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

// Edit by edit, as the store first carried scripts out; an edit that doesn't fit is skipped.
std::vector<SequenceNote> oneByOne(std::vector<SequenceNote> notes, NoteEditList edits, bool backwards = false)
{
    if (backwards) {
        std::reverse(edits.begin(), edits.end());
        for (NoteEdit& e : edits)
            e.op = e.op == kNoteInsert ? kNoteRemove : e.op == kNoteRemove ? kNoteInsert : e.op;
    }
    for (const NoteEdit& e : edits) {
        if (e.op == kNoteInsert && e.index <= notes.size())
            notes.insert(notes.begin() + std::ptrdiff_t(e.index), e.note);
        else if (e.op == kNoteRemove && e.index < notes.size())
            notes.erase(notes.begin() + std::ptrdiff_t(e.index));
    }
    return notes;
}

bool sameRecords(const std::vector<SequenceNote>& a, const std::vector<SequenceNote>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), sameRecord);
}

} // namespace

// Pairs with many equal notes: a few kinds of note in runs, now and then one
// that equals nothing (its start is not a number), changed at either end, in
// the middle, here and there, or not at all.
TEST(SequenceDifference, AgreesWithTheFullTableAndRunsBothWays)
{
    std::mt19937 rng(20240612u);
    auto pick = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(rng); };
    for (int pair = 0; pair < 40000; ++pair) {
        std::vector<SequenceNote> kinds;
        for (std::size_t k = 0, count = 1 + pick(pair % 3 == 0 ? 2 : 6); k < count; ++k)
            kinds.push_back(makeNote(double(k), std::string(1, char('a' + k)), int(k)));
        if (pick(8) == 0)
            kinds.back().start = std::nan("");
        auto addRun = [&](std::vector<SequenceNote>& v, std::size_t at) {
            v.insert(v.begin() + std::ptrdiff_t(at), 1 + pick(4), kinds[pick(kinds.size())]);
        };
        std::vector<SequenceNote> o;
        for (std::size_t r = pick(12); r > 0; --r)
            addRun(o, o.size());
        std::vector<SequenceNote> n = o;
        if (pick(8) == 0) // a list of its own: many changes
            for (std::size_t r = n.size() / 3; r > 0; --r)
                addRun(n, pick(n.size() + 1));
        for (std::size_t c = pick(4); c > 0; --c) {
            const std::size_t where = pick(3), what = pick(4);
            const std::size_t at = where == 0 ? 0 : where == 1 ? n.size() : pick(n.size() + 1);
            if (what == 0 || n.empty()) {
                addRun(n, at);
            } else if (what == 1) {
                const std::size_t from = std::min(at, n.size() - 1);
                n.erase(n.begin() + std::ptrdiff_t(from), n.begin() + std::ptrdiff_t(std::min(n.size(), from + 1 + pick(3))));
            } else if (what == 2) {
                n[std::min(at, n.size() - 1)] = kinds[pick(kinds.size())];
            } else {
                n[std::min(at, n.size() - 1)].muted ^= true; // no change of identity
            }
        }

        const NoteEditList edits = diffNotes(o, n);
        ASSERT_TRUE(sameScript(edits, fullTableDiff(o, n))) << "pair " << pair;
        TrackSequence track;
        track.notes = o;
        track.redoStack.push_back(edits);
        applyRedo(track);
        ASSERT_TRUE(sameRecords(track.notes, oneByOne(o, edits))) << "pair " << pair;
        applyUndo(track);
        ASSERT_TRUE(sameRecords(track.notes, o)) << "pair " << pair;

        // A hand-built script, positions rising, falling or in any order, some that don't fit; both ways.
        NoteEditList script;
        for (std::size_t e = pick(10); e > 0; --e)
            script.push_back({int32_t(pick(7) / 3), pick(o.size() + 3), kinds[pick(kinds.size())]});
        const auto byIndex = [](const NoteEdit& a, const NoteEdit& b) { return a.index < b.index; };
        if (const std::size_t order = pick(3); order == 0)
            std::stable_sort(script.begin(), script.end(), byIndex);
        else if (order == 1)
            std::stable_sort(script.rbegin(), script.rend(), byIndex);
        for (const EditDirection way : {EditDirection::forwards, EditDirection::backwards}) {
            std::vector<SequenceNote> notes = o;
            runEdits(notes, script, way);
            ASSERT_TRUE(sameRecords(notes, oneByOne(o, script, way == EditDirection::backwards))) << "pair " << pair;
        }
    }
}

// A whole table for two lists of 46,341 notes would pass 2^31 - 1 cells; only
// the stretch that changed counts.
TEST(SequenceDifference, OnlyTheChangedStretchCountsTowardsTheTableLimit)
{
    std::vector<SequenceNote> o(46341);
    for (std::size_t k = 0; k < o.size(); ++k)
        o[k].start = double(k);
    std::vector<SequenceNote> n = o;
    n[20000].lyric = "x";
    EXPECT_EQ(describe(diffNotes(o, n)), "1 20000 , 0 20000 x");
    for (SequenceNote& note : n)
        note.pitch = 61;
    EXPECT_THROW(diffNotes(o, n), std::length_error);
}

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
