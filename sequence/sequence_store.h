#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "sequence/sequence_difference.h"
#include "sequence/sequence_note.h"
#include "sequence/track_sequence.h"

namespace Zelmor {

// Step names of one track's changes. Nothing reads the texts; they are kept
// and trimmed in step with the store's history.
struct TrackStepNames {
    std::vector<std::string> names;
    int32_t cursor = -1; // newest applied change, -1 for none
};

// A project's memory of every track plus the order in which tracks changed,
// which tells an undo or redo which track it concerns.
struct SequenceStore {
    std::vector<int32_t> history;  // track id per recorded change, oldest first
    int32_t cursor = -1;           // newest change in force; behind it: redoable
    int32_t currentTrackId = -1;   // track last recorded, undone or redone
    std::map<int32_t, TrackSequence> tracks;
    std::map<int32_t, TrackStepNames> stepNames;
};

// Records `notes` as the new state of the track when it differs from the
// stored one. An unknown track always counts as changed, even when empty.
// Sets `pending` to the result. Throws only std::length_error or
// std::bad_alloc from the difference.
bool recordSequence(SequenceStore& store, bool& pending, int32_t trackId,
                    const std::string& stepName, const std::vector<SequenceNote>& notes);

// Throws std::out_of_range("map::at:  key not found") when currentTrackId
// has no entry.
TrackSequence& currentSequence(SequenceStore& store);
const TrackSequence& currentSequence(const SequenceStore& store);

// Store side of the edit step's undo: makes history[cursor] current, runs
// that track's newest script backwards and moves both cursors back by one.
// An empty undo stack still moves the cursors. Throws std::out_of_range when
// there is nothing to undo (the host's error) or a map entry is missing.
void undoStore(SequenceStore& store);

// Store side of the edit step's redo: the mirror of undoStore.
void redoStore(SequenceStore& store);

// Back to a fresh store, for reuse with another project.
void resetStore(SequenceStore& store);

} // namespace Zelmor
