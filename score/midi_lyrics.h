// How MIDI files from other programs carry their words: karaoke text events,
// and the lyric events of notation programs, read into syllables.
#pragma once

#include "score/syllable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

struct TimedText
{
    std::uint64_t tick = 0;
    std::string text;  ///< UTF-8, as the event has it
};

struct TimedSyllable
{
    std::uint64_t tick = 0;
    Syllable syllable;
};

/**
 * One track's words, in the order of the file. The karaoke convention holds
 * for text events, and for lyric events that mark lines with "/" or "\": "@"
 * texts are headers; a text before the first line mark describes the track
 * and is no word (said in `notices`); "/" and "\" begin a line and a leading
 * or trailing blank separates words, and any other text goes on with the word
 * before it. Otherwise each text is a word, or a syllable that goes on into the
 * next when it ends in a hyphen or the next begins with one; a lone "-" or "_"
 * holds the syllable before.
 * A text with bracketed phonemes, the host's own form, stays as written; with
 * `raw` every text does.
 */
std::vector<TimedSyllable> readLyricTexts (const std::vector<TimedText>& texts, bool textEvents, bool raw,
                                           std::vector<std::string>& notices);

} // namespace Score
