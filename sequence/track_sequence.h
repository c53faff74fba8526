#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "sequence/note_edit.h"
#include "sequence/sequence_note.h"

namespace Zelmor {

// A track as last recorded, with the scripts that lead back and forth.
struct TrackSequence {
    std::vector<SequenceNote> notes;
    std::deque<NoteEditList> undoStack; // back = newest change
    std::deque<NoteEditList> redoStack; // back = next to redo
    uint64_t orderHash = 0;             // always hashSequence(notes)
};

} // namespace Zelmor
