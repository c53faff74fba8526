#include "sequence/sequence_difference.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

namespace Zelmor {

namespace {

// Positions come from our own scripts; one that does not fit could only come
// from a hand-built stack, and skipping it keeps the list in one piece.
void insertAt(std::vector<SequenceNote>& notes, uint64_t index, const SequenceNote& note)
{
    if (index <= notes.size())
        notes.insert(notes.begin() + static_cast<std::ptrdiff_t>(index), note);
}

void removeAt(std::vector<SequenceNote>& notes, uint64_t index)
{
    if (index < notes.size())
        notes.erase(notes.begin() + static_cast<std::ptrdiff_t>(index));
}

} // namespace

NoteEditList diffNotes(const std::vector<SequenceNote>& oldNotes,
                       const std::vector<SequenceNote>& newNotes)
{
    const std::size_t m = oldNotes.size();
    const std::size_t n = newNotes.size();

    // The counters are 32-bit and so is the cell count: refuse a table whose
    // size would not fit rather than allocate a short one.
    const std::size_t cols = n + 1;
    const uint64_t cells = static_cast<uint64_t>(m + 1) * static_cast<uint64_t>(cols);
    if (m >= static_cast<std::size_t>(std::numeric_limits<int32_t>::max())
        || n >= static_cast<std::size_t>(std::numeric_limits<int32_t>::max())
        || cells > static_cast<uint64_t>(std::numeric_limits<int32_t>::max()))
        throw std::length_error("note table too large");

    // The whole table is kept on purpose: it makes the walk back and its
    // tie-breaks exact, at m*n*4 bytes for the length of one call.
    std::vector<int32_t> table(static_cast<std::size_t>(cells), 0);
    auto cell = [&](std::size_t i, std::size_t j) -> int32_t& { return table[i * cols + j]; };

    for (std::size_t i = 1; i <= m; ++i) {
        for (std::size_t j = 1; j <= n; ++j) {
            if (equals(oldNotes[i - 1], newNotes[j - 1]))
                cell(i, j) = cell(i - 1, j - 1) + 1;
            else
                cell(i, j) = std::max(cell(i - 1, j), cell(i, j - 1));
        }
    }

    NoteEditList edits;
    std::size_t i = m;
    std::size_t j = n;
    while (i > 0 && j > 0) {
        if (equals(oldNotes[i - 1], newNotes[j - 1])) {
            --i;
            --j;
        } else if (cell(i - 1, j) >= cell(i, j - 1)) {
            edits.push_back(NoteEdit{kNoteRemove, i - 1, oldNotes[i - 1]});
            --i;
        } else {
            edits.push_back(NoteEdit{kNoteInsert, i, newNotes[j - 1]});
            --j;
        }
    }
    for (; i > 0; --i)
        edits.push_back(NoteEdit{kNoteRemove, i - 1, oldNotes[i - 1]});
    // Inserting the rest at the front, last note first, yields the right order.
    for (; j > 0; --j)
        edits.push_back(NoteEdit{kNoteInsert, 0, newNotes[j - 1]});
    return edits;
}

void diffAndApply(TrackSequence& track, const std::vector<SequenceNote>& newNotes)
{
    NoteEditList edits = diffNotes(track.notes, newNotes);

    // A new change ends the redo chain; recording then takes the very path
    // of a redo so that the two cannot drift apart.
    std::deque<NoteEditList>().swap(track.redoStack);
    track.redoStack.push_back(std::move(edits));
    applyRedo(track);
}

void applyRedo(TrackSequence& track)
{
    if (track.redoStack.empty())
        return;
    NoteEditList edits = std::move(track.redoStack.back());
    track.redoStack.pop_back();
    for (const NoteEdit& edit : edits) {
        if (edit.op == kNoteRemove)
            removeAt(track.notes, edit.index);
        else if (edit.op == kNoteInsert)
            insertAt(track.notes, edit.index, edit.note);
    }
    track.undoStack.push_back(std::move(edits));
    track.orderHash = hashSequence(track.notes);
}

void applyUndo(TrackSequence& track)
{
    if (track.undoStack.empty())
        return;
    NoteEditList edits = std::move(track.undoStack.back());
    track.undoStack.pop_back();
    for (auto it = edits.rbegin(); it != edits.rend(); ++it) {
        if (it->op == kNoteRemove)
            insertAt(track.notes, it->index, it->note);
        else if (it->op == kNoteInsert)
            removeAt(track.notes, it->index);
    }
    track.redoStack.push_back(std::move(edits));
    track.orderHash = hashSequence(track.notes);
}

} // namespace Zelmor
