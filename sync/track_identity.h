// Our own ids on instrument tracks ("TrID"), and the clean-up of note marks on
// tracks that no synthesiser serves.
#pragma once

#include "host/project_interfaces.h"

#include <cstdint>

namespace Zelmor {

/** The next id of the agent's counter: wraps to 1 at the top of the signed range. */
uint64_t takeNewTrackId (uint64_t& nextTrackId);

/** Gives an id to every instrument track without one. */
void assignTrackIds (Steinberg::IProjectNode* root, uint64_t& nextTrackId);

/** Of tracks whose ids agree in their low 32 bits, the first in walk order keeps it; the others get new ones. */
void dedupeTrackIds (Steinberg::IProjectNode* root, uint64_t& nextTrackId);

/** Removes every id of the project: ids don't outlive the opening of a project. */
void clearTrackIds (Steinberg::IHostProject* project);

/** Removes our marks from the notes of every instrument or MIDI track that no synthesiser serves. */
void clearNoteMarks (Steinberg::IHostProject* project, Steinberg::IProjectNode* node);

} // namespace Zelmor
