// Turns a track's notes into the synthesiser's gapless list of SVSNote records
// and hands it to the plug-in's host object.
#pragma once

#include "sequence/sequence_note.h"
#include "svs/svs_interfaces.h"

#include <string>
#include <vector>

namespace Zelmor {

class SVSHostImpl;

// Fills phonemeCount, phonemes and phonemeParams of a sung note's record from
// its blank-separated phoneme text: no token gives "ah", at most 8 are taken,
// "-" repeats lastPhoneme, which every other token replaces. Writes stay
// within the record whatever the text holds.
void fillPhonemes (SVS::SVSNote& record, const std::string& phonemeText, std::string& lastPhoneme);

// Muted notes are dropped; rests fill the time from 0, gaps over a tenth of a
// second and one second past the end. Gaps up to a tenth are closed by
// stretching the record before them. An empty (or all-muted) input gives an
// empty list with no rests.
std::vector<SVS::SVSNote> buildSvsNotes (const std::vector<SequenceNote>& notes);

// Builds the list and, when hostFound is true and host is set, replaces the
// host's stored sequence with it (which tells the plug-in).
void sendNotes (const std::vector<SequenceNote>& notes, SVSHostImpl* host, bool hostFound);

} // namespace Zelmor
