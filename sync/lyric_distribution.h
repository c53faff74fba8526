// When a lyric is converted, and how its elements are dealt over the note it
// stands on and the notes that follow it within one part, one element a note.
#pragma once

#include "sequence/lyric_text.h"
#include "sync/note_attributes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zelmor {

/** Reset at the start of every part: no lyric reaches into the next part. */
struct DistributionState
{
    std::vector<std::string> elements;  ///< what the last conversion gave and is not used up
    int32_t index = -1;                 ///< the next element to deal out
};

/** The (word, hint) that the note is to have. May convert the note's lyric. */
LyricParts distribute (DistributionState& state, const NoteTextState& note);

} // namespace Zelmor
