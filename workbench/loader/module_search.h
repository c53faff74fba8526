// Where the workbench finds the agent module when the user names none: beside the
// program in the installed layout, in the build tree when the program runs from there,
// then the folders where hosts look for VST3 modules.
#pragma once

#include <string>
#include <vector>

namespace Sim {

/** The bundles to try, in order. */
std::vector<std::string> defaultModulePlaces ();

/**
 * The first of defaultModulePlaces () that exists, in `path`. False when none does, with
 * a message in `error` that names every place looked at.
 */
bool findDefaultModule (std::string& path, std::string& error);

/** The folder of the running program; empty if the system won't say. */
std::string programFolder ();

/** The system's VST3 folders, the user's own first. */
std::vector<std::string> standardVst3Folders ();

} // namespace Sim
