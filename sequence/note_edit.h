#pragma once

#include <cstdint>
#include <vector>

#include "sequence/sequence_note.h"

namespace Zelmor {

constexpr int32_t kNoteInsert = 0;
constexpr int32_t kNoteRemove = 1;

// One step of an edit script. A removal carries a full copy of the removed
// note so that the script can be run backwards. Any other op is skipped.
struct NoteEdit {
    int32_t op = kNoteInsert;
    uint64_t index = 0; // position at the moment the edit is applied
    SequenceNote note;
};

// Produced from the end of the list towards its start, so applying it in
// order never shifts a position that a later edit still refers to.
using NoteEditList = std::vector<NoteEdit>;

} // namespace Zelmor
