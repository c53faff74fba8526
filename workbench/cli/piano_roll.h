// Draws what each synthesiser received on a piano roll: one panel a
// synthesiser, notes labelled with their phonemes, rests shaded, the words
// that the agent wrote back under their notes.
#pragma once

#include "workbench/cli/session.h"

#include <string>

namespace Workbench {

struct RollSize
{
    int width = 0, height = 0;
};

/**
 * 100 pixels a second (fewer for songs past a minute, so that the image stays
 * within 6000 pixels of time), a 64-pixel margin left and right. A panel is a
 * 24-pixel title, an 18-pixel time ruler, 14 pixels a semitone over the
 * pitches used plus one on each side, two 14-pixel lines of words below with
 * 5 pixels above them (when the list has any word), and 8 pixels to spare.
 */
RollSize pianoRollSize (const Outcome& outcome);
/** Writes a PNG; false with a message if it cannot. */
bool writePianoRoll (const Outcome& outcome, const std::string& title, const std::string& path, std::string& error);

} // namespace Workbench
