#pragma once

#include <vector>

#include "sequence/note_edit.h"
#include "sequence/sequence_note.h"

namespace Zelmor {

// Which way a script runs: as recorded (a redo), or from its last edit to its
// first with every insert taken as a remove and every remove as an insert (an undo).
enum class EditDirection { forwards, backwards };

// Carries `edits` out on `notes`. The outcome is exactly that of one vector
// insert or erase per edit, an edit whose index doesn't fit the list at its
// turn being skipped. Our own scripts keep their positions moving one way, so
// they are carried out in one pass over the list instead of one shift of the
// list's tail per edit; a script that can't be, only a hand-built one, still
// is, edit by edit.
void runEdits(std::vector<SequenceNote>& notes, const NoteEditList& edits, EditDirection direction);

} // namespace Zelmor
