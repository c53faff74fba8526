// Plain lyrics laid over a melody that has none (--lyrics, --lyrics-file).
#pragma once

#include "score/song.h"

#include <string>

namespace Score {

/**
 * Lays the words of `text` (separated by white space) over every track
 * without words of its own: each word on the next free note, taking as many
 * notes as the converter gives it elements, at least one. Words left when the
 * notes run out, and a song with words on every track, are said in its
 * warnings.
 */
void layLyrics (const std::string& text, Song& song);

} // namespace Score
