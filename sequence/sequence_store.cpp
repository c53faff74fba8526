#include "sequence/sequence_store.h"

#include <stdexcept>

namespace Zelmor {

namespace {

// The text is part of the contract with the host side, so it does not
// depend on which standard library's map::at happens to be linked.
template <typename Map>
auto& entryAt(Map& map, int32_t key)
{
    auto it = map.find(key);
    if (it == map.end())
        throw std::out_of_range("map::at:  key not found");
    return it->second;
}

bool sameNotes(const TrackSequence& track, const std::vector<SequenceNote>& notes, uint64_t hash)
{
    // Cheapest first: length, then the hash, then the pairwise compare that
    // also settles a hash collision. No allocation on this path.
    if (track.notes.size() != notes.size())
        return false;
    if (hash != track.orderHash)
        return false;
    for (std::size_t i = 0; i < notes.size(); ++i) {
        if (!equals(track.notes[i], notes[i]))
            return false;
    }
    return true;
}

std::size_t historyIndex(const SequenceStore& store, int32_t cursor)
{
    if (cursor < 0 || static_cast<std::size_t>(cursor) >= store.history.size())
        throw std::out_of_range("sequence history cursor out of range");
    return static_cast<std::size_t>(cursor);
}

} // namespace

bool recordSequence(SequenceStore& store, bool& pending, int32_t trackId,
                    const std::string& stepName, const std::vector<SequenceNote>& notes)
{
    // One pass over the list: the test below and, on a change, the track's new hash.
    const uint64_t hash = hashSequence(notes);
    auto found = store.tracks.find(trackId);
    if (found != store.tracks.end() && sameNotes(found->second, notes, hash)) {
        pending = false;
        return false;
    }
    if (found == store.tracks.end())
        found = store.tracks.emplace(trackId, TrackSequence{}).first;

    diffAndApply(found->second, notes, hash);

    // A new change drops undone changes of every track from the history.
    // Other tracks' stale redo scripts stay until their own next change.
    const std::size_t keep = static_cast<std::size_t>(store.cursor + 1);
    if (keep < store.history.size())
        store.history.resize(keep);
    store.history.push_back(trackId);
    store.cursor += 1;
    store.currentTrackId = store.history[static_cast<std::size_t>(store.cursor)];

    TrackStepNames& names = store.stepNames[store.currentTrackId];
    const std::size_t keepNames = static_cast<std::size_t>(names.cursor + 1);
    if (keepNames < names.names.size())
        names.names.resize(keepNames);
    names.names.push_back(stepName);
    names.cursor += 1;

    pending = true;
    return true;
}

TrackSequence& currentSequence(SequenceStore& store)
{
    return entryAt(store.tracks, store.currentTrackId);
}

const TrackSequence& currentSequence(const SequenceStore& store)
{
    return entryAt(store.tracks, store.currentTrackId);
}

void undoStore(SequenceStore& store)
{
    store.currentTrackId = store.history[historyIndex(store, store.cursor)];
    applyUndo(entryAt(store.tracks, store.currentTrackId));
    entryAt(store.stepNames, store.currentTrackId).cursor -= 1;
    store.cursor -= 1;
}

void redoStore(SequenceStore& store)
{
    const std::size_t next = historyIndex(store, store.cursor + 1);
    store.cursor += 1;
    store.currentTrackId = store.history[next];
    applyRedo(entryAt(store.tracks, store.currentTrackId));
    entryAt(store.stepNames, store.currentTrackId).cursor += 1;
}

void resetStore(SequenceStore& store)
{
    store.history.clear();
    store.tracks.clear();
    store.stepNames.clear();
    store.cursor = -1;
    store.currentTrackId = -1;
}

} // namespace Zelmor
