// What each synthesiser received, as a table for people and JSON for programs.
#pragma once

#include "workbench/cli/notice.h"
#include "workbench/cli/session.h"

#include <string>
#include <vector>

namespace Workbench {

/** The JSON's format: a program that reads it checks this first. Raised when a field changes meaning or goes. */
constexpr int jsonFormat = 2;

/** "C4", "F#5", "A4+25": the nearest note and what is left over in cents. */
std::string pitchName (float cents);
/**
 * One table a synthesiser, a row a record: its place as bar:beat where the
 * song has time signatures, start and end in seconds, the pitch as a name, a
 * MIDI note and cents from A4 (none on a rest), the kind, the lyric and the
 * phonemes.
 */
std::string table (const std::string& song, const Outcome& outcome);
/** The same for programs, with the notices; docs/workbench-output.schema.json describes it. */
std::string json (const std::string& song, const Outcome& outcome, const std::vector<Notice>& notices = {});
std::string timingText (const Outcome& outcome);

} // namespace Workbench
