// Places in a song as a musician names them: bar and beat, and the time.
#pragma once

#include "score/song.h"

#include <string>
#include <vector>

namespace Score {

/**
 * "bar:beat" of a position given in quarter notes from the start, both counted
 * from 1, the beat in the unit of the meter that holds there ("12:3", "12:3.5"
 * off the beat). Without meters the bar is 4/4, as a MIDI file's is by default.
 * A meter that changes inside a bar starts a new bar.
 */
std::string barBeat (const std::vector<MeterChange>& meters, double quarters);

/** How messages name a place: "bar:beat (seconds s)", or the seconds alone where beats aren't known (negative `quarters`). */
std::string placeInSong (const std::vector<MeterChange>& meters, double quarters, double seconds);

} // namespace Score
