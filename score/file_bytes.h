// The bytes of a file, whatever it holds, up to a size no song comes near.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

/** Reads a whole file (at most 64 MiB). On failure returns false and says why in `error`. */
bool readFileBytes (const std::string& path, std::vector<std::uint8_t>& data, std::string& error);

} // namespace Score
