// A project tree as indented text: what the workbench shows and what a test
// can compare in one piece.
#pragma once

#include <string>

namespace Sim {

class Project;

/**
 * One line a node: kind, name, times, and for notes pitch, texts and
 * attributes; slots show their display name and whether they hold a plug-in.
 */
std::string dumpTree (Project& project);

} // namespace Sim
