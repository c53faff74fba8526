#include "sequence/sequence_difference.h"

#include "sequence/edit_application.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

namespace Zelmor {

namespace {

// The longest-common-subsequence counts T(i, j) of the heads O[0, i) and
// N[0, j) of the two lists, with cells kept only where the lists differ.
// Within the common head of length p the heads agree, so T(i, j) = min(i, j)
// wherever i <= p or j <= p; beyond it the common head is part of a longest
// common subsequence, so T(i, j) = p + M(i - p, j - p), M being the table over
// the middles alone. The common tail needs no cells: the walk back passes it
// by matches, which it takes without reading the table.
class TrimmedTable {
public:
    TrimmedTable(const std::vector<SequenceNote>& oldNotes, const std::vector<SequenceNote>& newNotes,
                 std::size_t head, std::size_t oldMiddle, std::size_t newMiddle)
        : head(head), cols(newMiddle + 1)
    {
        // The counters are 32-bit and so is the cell count: refuse a table whose
        // size would not fit rather than allocate a short one.
        const uint64_t cells = static_cast<uint64_t>(oldMiddle + 1) * static_cast<uint64_t>(cols);
        if (oldMiddle >= static_cast<std::size_t>(std::numeric_limits<int32_t>::max())
            || newMiddle >= static_cast<std::size_t>(std::numeric_limits<int32_t>::max())
            || cells > static_cast<uint64_t>(std::numeric_limits<int32_t>::max()))
            throw std::length_error("note table too large");
        // Only a middle with notes on both sides is ever read beyond the head.
        if (oldMiddle == 0 || newMiddle == 0)
            return;
        middle.assign(static_cast<std::size_t>(cells), 0);
        const SequenceNote* o = oldNotes.data() + head;
        const SequenceNote* n = newNotes.data() + head;
        for (std::size_t i = 1; i <= oldMiddle; ++i) {
            int32_t* row = &middle[i * cols];
            const int32_t* above = row - cols;
            for (std::size_t j = 1; j < cols; ++j) {
                if (equals(o[i - 1], n[j - 1]))
                    row[j] = above[j - 1] + 1;
                else
                    row[j] = std::max(above[j], row[j - 1]);
            }
        }
    }

    uint64_t operator()(std::size_t i, std::size_t j) const
    {
        if (i <= head || j <= head)
            return std::min(i, j);
        return head + static_cast<uint64_t>(middle[(i - head) * cols + (j - head)]);
    }

private:
    std::size_t head;
    std::size_t cols;
    std::vector<int32_t> middle;
};

} // namespace

NoteEditList diffNotes(const std::vector<SequenceNote>& oldNotes,
                       const std::vector<SequenceNote>& newNotes)
{
    const std::size_t m = oldNotes.size();
    const std::size_t n = newNotes.size();

    std::size_t head = 0;
    while (head < m && head < n && equals(oldNotes[head], newNotes[head]))
        ++head;
    std::size_t tail = 0;
    while (tail < m - head && tail < n - head && equals(oldNotes[m - 1 - tail], newNotes[n - 1 - tail]))
        ++tail;
    const TrimmedTable cell(oldNotes, newNotes, head, m - head - tail, n - head - tail);

    // The walk back starts behind the common tail, which it would only pass
    // by matches.
    NoteEditList edits;
    std::size_t i = m - tail;
    std::size_t j = n - tail;
    while (i > 0 && j > 0) {
        // Within the common head on the diagonal nothing but matches is left.
        if (i == j && i <= head)
            return edits;
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
    runEdits(track.notes, edits, EditDirection::forwards);
    track.undoStack.push_back(std::move(edits));
    track.orderHash = hashSequence(track.notes);
}

void applyUndo(TrackSequence& track)
{
    if (track.undoStack.empty())
        return;
    NoteEditList edits = std::move(track.undoStack.back());
    track.undoStack.pop_back();
    runEdits(track.notes, edits, EditDirection::backwards);
    track.redoStack.push_back(std::move(edits));
    track.orderHash = hashSequence(track.notes);
}

} // namespace Zelmor
