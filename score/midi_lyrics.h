// How MIDI files from other programs carry their words, and which of a
// track's texts are words at all: the conventions, decided per track from the
// texts themselves, and the texts read into syllables by the one that holds.
#pragma once

#include "score/syllable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

struct TimedText
{
    std::uint64_t tick = 0;
    std::string text;  ///< UTF-8
};

struct TimedSyllable
{
    std::uint64_t tick = 0;
    Syllable syllable;
};

/** How a track's texts are read. */
enum class WordsConvention
{
    None,        ///< no words: the track's texts, if any, are commentary
    Karaoke,     ///< "/" and "\" begin lines; a blank or line end ends a word, other texts go on with it
    BlankEnded,  ///< lyric events where a blank or line end ends a word and a text without one goes on into the next
    Hyphenated,  ///< lyric events of one word each, unless a hyphen joins syllables
    AsWritten    ///< `--raw-lyrics`: each text on its note as written
};

/** How a message names a convention: "read as karaoke (...)". */
std::string describe (WordsConvention convention);

/** One track's texts, as its events hold them. */
struct TrackTexts
{
    std::vector<TimedText> lyrics;  ///< lyric events
    std::vector<TimedText> texts;   ///< text events
};

struct TrackWords
{
    WordsConvention convention = WordsConvention::None;
    bool fromLyricEvents = false;
    std::vector<TimedSyllable> syllables;
    std::vector<std::string> notices;  ///< descriptions and commentary left out, said once each
};

/** Whether a track's lyric events hold words (anything but headers and blanks): then the file's text events don't. */
bool hasLyricWords (const TrackTexts& track);

/**
 * Reads one track's words. Its lyric events are words, read by the
 * convention their texts show: karaoke when they mark lines with "/" or "\",
 * blank-ended when at least a third of those that no hyphen joins end or begin
 * with a blank (line ends don't count: both kinds end lines), hyphenated otherwise. Its text events are words
 * only in the karaoke layout (they mark lines with "/" or "\") and only when
 * no track of the file (`lyricsInFile`) has lyric words; else they are
 * commentary. In every convention "@" texts are headers; the texts before the
 * first line mark of a karaoke track, and a first text of three words or
 * more where no other has as many, describe the track. Several words in one
 * text, or syllables joined by "_" or an undertie, are elided: all sung on
 * that text's note. A lone "-" or "_" holds the syllable before.
 * With `raw`, each text (lyric events if the file has any, else text events)
 * stays as written, headers, line marks and descriptions left out.
 */
TrackWords readTrackWords (const TrackTexts& track, bool lyricsInFile, bool raw);

} // namespace Score
