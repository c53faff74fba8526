// What each synthesiser received, as a table for people and JSON for programs.
#pragma once

#include "workbench/cli/session.h"

#include <string>

namespace Workbench {

/** "C4", "F#5", "A4+25": the nearest note and what is left over in cents. */
std::string pitchName (float cents);
std::string table (const std::string& song, const Outcome& outcome);
std::string json (const std::string& song, const Outcome& outcome);
std::string timingText (const Outcome& outcome);

} // namespace Workbench
