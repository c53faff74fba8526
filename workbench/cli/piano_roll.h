// Draws what each synthesiser received on a piano roll: one panel a
// synthesiser, notes labelled with their phonemes, rests shaded, the words
// that the agent wrote back under their notes, bars and beats where the song
// has them, and what is not sung marked in red. A long song takes several
// pages, one image each.
#pragma once

#include "workbench/cli/notice.h"
#include "workbench/cli/session.h"

#include <string>
#include <vector>

namespace Workbench {

/** One image: the stretch of the song it shows, and its size. */
struct RollPage
{
    double start = 0.0, end = 0.0;  ///< seconds
    int width = 0, height = 0;
};

/**
 * 100 pixels a second, a 64-pixel margin left and right, at most 30 seconds a
 * page (up to 36 when that ends the song), broken at a bar line where the
 * song has bars. A panel is a 24-pixel title, a 14-pixel lane for tempo and
 * time signatures, an 18-pixel ruler, 14 pixels a semitone over the pitches
 * used plus one on each side, two 14-pixel lines of words below with 5 pixels
 * above them (when the list has any word), and 8 pixels to spare.
 */
std::vector<RollPage> pianoRollPages (const Outcome& outcome);

/** The file of each page: `path` itself for one, else "roll-1.png", "roll-2.png", ... (numbers padded to sort). */
std::vector<std::string> pageFiles (const std::string& path, std::size_t pages);

/** Writes every page as a PNG, each whole or not at all; false with a message if one cannot be. */
bool writePianoRoll (const Outcome& outcome, const std::vector<Notice>& notices, const std::string& title,
                     const std::string& path, std::string& error);

} // namespace Workbench
