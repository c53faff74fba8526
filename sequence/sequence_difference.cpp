#include "sequence/sequence_difference.h"

#include "sequence/common_subsequence.h"
#include "sequence/edit_application.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

namespace Zelmor {

namespace {

// The walk back, over counts T(i, j) of the whole lists that are kept only for
// the middles: the stretch between the common head (length `head`) and the
// common tail. Within the head the lists agree, so T(i, j) = min(i, j)
// wherever i <= head or j <= head; beyond it the head is part of some longest
// common subsequence, so T(i, j) = head + the middles' own count at
// (i - head, j - head). The tail needs no counts: the walk passes it by
// matches, which it takes without reading a count. So the script is, edit for
// edit, the one a table over the whole lists gives.
template <typename MiddleCounts>
NoteEditList walkBack(const std::vector<SequenceNote>& oldNotes, const std::vector<SequenceNote>& newNotes,
                      std::size_t head, std::size_t tail, const MiddleCounts& middle)
{
    auto cell = [&](std::size_t i, std::size_t j) -> uint64_t {
        if (i <= head || j <= head)
            return std::min(i, j);
        return head + middle(i - head, j - head);
    };

    NoteEditList edits;
    std::size_t i = oldNotes.size() - tail;
    std::size_t j = newNotes.size() - tail;
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

// The back of redoStack onto the notes and onto undoStack; the hash is the caller's.
void redoScript(TrackSequence& track)
{
    NoteEditList edits = std::move(track.redoStack.back());
    track.redoStack.pop_back();
    runEdits(track.notes, edits, EditDirection::forwards);
    track.undoStack.push_back(std::move(edits));
}

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
    const std::size_t oldMiddle = m - head - tail;
    const std::size_t newMiddle = n - head - tail;

    // The counters are 32-bit and so is the cell count: refuse a change whose
    // table would not fit rather than allocate a short one.
    const uint64_t cells = static_cast<uint64_t>(oldMiddle + 1) * static_cast<uint64_t>(newMiddle + 1);
    if (oldMiddle >= static_cast<std::size_t>(std::numeric_limits<int32_t>::max())
        || newMiddle >= static_cast<std::size_t>(std::numeric_limits<int32_t>::max())
        || cells > static_cast<uint64_t>(std::numeric_limits<int32_t>::max()))
        throw std::length_error("note table too large");

    // A middle empty on one side is never read beyond the head.
    if (oldMiddle == 0 || newMiddle == 0)
        return walkBack(oldNotes, newNotes, head, tail, [](std::size_t, std::size_t) { return uint64_t{0}; });

    // Changes few against the middle's size are counted by the edits that
    // reach each cell; many, by the whole table over the middles. The front
    // may take an eighth of the table's entries, or 64, before it gives way.
    const SequenceNote* a = oldNotes.data() + head;
    const SequenceNote* b = newNotes.data() + head;
    EditFront front(a, oldMiddle, b, newMiddle);
    if (front.build(std::max<std::size_t>(static_cast<std::size_t>(cells / 8), 64)))
        return walkBack(oldNotes, newNotes, head, tail, front);
    return walkBack(oldNotes, newNotes, head, tail, CountTable(a, oldMiddle, b, newMiddle));
}

void diffAndApply(TrackSequence& track, const std::vector<SequenceNote>& newNotes)
{
    diffAndApply(track, newNotes, hashSequence(newNotes));
}

void diffAndApply(TrackSequence& track, const std::vector<SequenceNote>& newNotes, uint64_t newHash)
{
    NoteEditList edits = diffNotes(track.notes, newNotes);

    // A new change ends the redo chain; recording then takes the very path
    // of a redo so that the two cannot drift apart.
    std::deque<NoteEditList>().swap(track.redoStack);
    track.redoStack.push_back(std::move(edits));
    redoScript(track);
    // The notes now equal `newNotes` in every field that the hash reads.
    track.orderHash = newHash;
}

void applyRedo(TrackSequence& track)
{
    if (track.redoStack.empty())
        return;
    redoScript(track);
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
