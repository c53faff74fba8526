// What the workbench can tell from the words typed and the notes that sing
// them: the sounds of a word that no note sings, and text that has no
// pronunciation. The converter gives each word its sounds, one string a note;
// the host's notes show, after the agent's write-back, which of them each note
// got.
#pragma once

#include "workbench/cli/notice.h"
#include "workbench/cli/session.h"

#include <vector>

namespace Workbench {

/**
 * For each word on a note, in the order of the tracks and their notes: a
 * NotUnderstood notice where some of its text has no pronunciation (digits,
 * kanji, letters outside a-z, symbols), and a NotSung notice where sounds the
 * converter gives it reach no note: the part ends, a note with its own word
 * comes first, or a note takes more than eight sounds. A word that carries
 * its user's own phonemes in brackets sings those and is left alone.
 */
std::vector<Notice> unsungSounds (const Outcome& outcome);

/** The characters of `word` that the converter cannot pronounce, each once, in order. */
std::string notUnderstood (const std::string& word);

} // namespace Workbench
