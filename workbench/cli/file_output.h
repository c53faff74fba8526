// Files the workbench writes appear whole or not at all.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Workbench {

/**
 * Writes `bytes` to a temporary file beside `path` and renames it over
 * `path`, so that a reader never meets half a file and a failure leaves what
 * was there. False with a message that names the file and the fault.
 */
bool replaceFile (const std::string& path, const std::vector<std::uint8_t>& bytes, std::string& error);

/** Whether files may be made in `folder`, as far as the system tells before trying. */
bool folderWritable (const std::string& folder);

/** A new file in the system's temporary folder holding `bytes`; empty with a message if it cannot be made. */
std::string temporaryCopy (const std::vector<std::uint8_t>& bytes, std::string& error);

} // namespace Workbench
