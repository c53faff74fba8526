#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "sequence/note_edit.h"
#include "sequence/sequence_note.h"

// The plain dynamic programme over the whole of both lists, as the store first
// did it: the reference that the trimmed difference must agree with, script for script.
inline Zelmor::NoteEditList fullTableDiff(const std::vector<Zelmor::SequenceNote>& o,
                                          const std::vector<Zelmor::SequenceNote>& n)
{
    using namespace Zelmor;
    const std::size_t cols = n.size() + 1;
    std::vector<int32_t> t((o.size() + 1) * cols, 0);
    auto cell = [&](std::size_t i, std::size_t j) -> int32_t& { return t[i * cols + j]; };
    for (std::size_t i = 1; i <= o.size(); ++i)
        for (std::size_t j = 1; j <= n.size(); ++j)
            cell(i, j) = equals(o[i - 1], n[j - 1]) ? cell(i - 1, j - 1) + 1 : std::max(cell(i - 1, j), cell(i, j - 1));

    NoteEditList edits;
    std::size_t i = o.size(), j = n.size();
    while (i > 0 && j > 0) {
        if (equals(o[i - 1], n[j - 1])) {
            --i;
            --j;
        } else if (cell(i - 1, j) >= cell(i, j - 1)) {
            edits.push_back({kNoteRemove, i - 1, o[i - 1]});
            --i;
        } else {
            edits.push_back({kNoteInsert, i, n[j - 1]});
            --j;
        }
    }
    for (; i > 0; --i)
        edits.push_back({kNoteRemove, i - 1, o[i - 1]});
    for (; j > 0; --j)
        edits.push_back({kNoteInsert, 0, n[j - 1]});
    return edits;
}

// The same record, field by field: a start that is not a number matches its own copy here.
inline bool sameRecord(const Zelmor::SequenceNote& x, const Zelmor::SequenceNote& y)
{
    auto same = [](double a, double b) { return a == b || (a != a && b != b); };
    return same(x.start, y.start) && same(x.end, y.end) && x.pitch == y.pitch && x.lyric == y.lyric
           && x.phoneme == y.phoneme && x.noteObject == y.noteObject && x.muted == y.muted && x.transpose == y.transpose;
}

inline bool sameScript(const Zelmor::NoteEditList& a, const Zelmor::NoteEditList& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Zelmor::NoteEdit& x, const Zelmor::NoteEdit& y) {
        return x.op == y.op && x.index == y.index && sameRecord(x.note, y.note);
    });
}
