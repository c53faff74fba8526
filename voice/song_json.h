// The sing worker's input: a note list as JSON (see docs/singing.md).
#pragma once

#include "voice/voice_note.h"

#include <string>
#include <vector>

namespace Voice {

/** The longest song the voice takes, in seconds. */
constexpr double longestSong = 30.0 * 60.0;

struct SongInput
{
    std::vector<Note> notes;
    double duration = 0.0;  ///< seconds the sound lasts at least; 0 when not given
};

/** Reads {"notes": [...], "duration": seconds} or, from a workbench report, the notes of its
    `synthesiser`-th synthesiser (counted from 1). Throws std::invalid_argument saying where the
    fault lies. */
SongInput readSongJson (const std::string& text, int synthesiser = 1);

} // namespace Voice
