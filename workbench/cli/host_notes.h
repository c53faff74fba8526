// A track's notes as the host holds them at the end of a run, and which of
// them each of the synthesiser's records was made from.
#pragma once

#include "svs/svs_interfaces.h"

#include <string>
#include <vector>

namespace Workbench {

struct HostNote
{
    double start = 0.0, end = 0.0;          ///< seconds
    double startBeat = 0.0, endBeat = 0.0;  ///< quarter notes, through the project's tempo map
    int pitch = 60;
    std::string lyric;  ///< its "lyrics" text: `word[hint]`, `[hint]` or empty
    std::string typed;  ///< what the user typed on it, if anything
    int part = 0;       ///< which part of its track it lies in; a word never reaches into the next
};

/**
 * For each record, the "lyrics" of the host note it was made from: the note
 * that starts where the record starts, at the record's pitch. A continuation
 * is a note of its own in the host (the one that holds the syllable on), so
 * it shows that note's `[hint]`. Rests come from no note and get an empty text.
 */
std::vector<std::string> lyricsOfRecords (const std::vector<SVS::SVSNote>& records,
                                          const std::vector<HostNote>& notes);

/** The word of a lyric as the host holds it: the text before its `[hint]`. */
std::string wordOf (const std::string& lyric);
/** The hint of a lyric as the host holds it: the text in its last brackets, trimmed; empty when none. */
std::string hintOf (const std::string& lyric);

} // namespace Workbench
