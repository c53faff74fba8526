// Where a run will write, checked before it starts: a long run must not end
// in a message that the folder is missing, and no output may take the place
// of a file the run reads.
#pragma once

#include <string>
#include <vector>

namespace Workbench {

struct PlannedOutput
{
    std::string path;
    std::string what;       ///< "the piano roll of morning.mid": how messages name it
    std::string extension;  ///< what it holds: ".png", ".mid"; empty for anything
};

/**
 * False with the first fault: an output that is a folder, lies in a folder
 * that is missing or not writable, is the same file as one of `inputs`
 * (through any name or link), or is named for two outputs. An extension
 * other than the output's own is only a warning, since the file is still
 * written as asked.
 */
bool checkOutputs (const std::vector<PlannedOutput>& outputs, const std::vector<std::string>& inputs,
                   std::vector<std::string>& warnings, std::string& error);

} // namespace Workbench
