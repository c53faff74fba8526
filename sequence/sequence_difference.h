#pragma once

#include <vector>

#include "sequence/note_edit.h"
#include "sequence/sequence_note.h"
#include "sequence/track_sequence.h"

namespace Zelmor {

// Edit script from `oldNotes` to `newNotes` by a longest common subsequence:
// the walk back from the end takes a match as soon as two notes are equal,
// ties prefer a removal. Cells are kept only for the stretch between the
// common head and the common tail of the two lists, so an edit costs what it
// changes; the script is the one the whole table would give. Throws
// std::length_error("note table too large") when that stretch would need more
// than 2^31-1 cells.
NoteEditList diffNotes(const std::vector<SequenceNote>& oldNotes,
                       const std::vector<SequenceNote>& newNotes);

// Records the change to `newNotes` as one undoable script: ends the track's
// redo chain, then runs the script through applyRedo. Notes kept by the
// script stay the old records (old muted, transpose, soundStart, ...).
// On failure the track is left untouched.
void diffAndApply(TrackSequence& track, const std::vector<SequenceNote>& newNotes);
// The same, for a caller that has hashSequence(newNotes) at hand already: the
// track's hash is then not computed over the list a second time.
void diffAndApply(TrackSequence& track, const std::vector<SequenceNote>& newNotes, uint64_t newHash);

// Moves the back of redoStack onto the notes and onto undoStack.
void applyRedo(TrackSequence& track);

// Mirror of applyRedo: runs the back of undoStack backwards and moves it to
// redoStack. Nothing happens for an empty undoStack.
void applyUndo(TrackSequence& track);

} // namespace Zelmor
