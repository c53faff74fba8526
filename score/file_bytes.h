// The bytes of a file, whatever it holds, up to a size no song comes near.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

constexpr std::size_t largestFile = 64u << 20;  ///< bytes of a song file, or of a score inside a zip

/** Reads a whole file (at most `largestFile` bytes). On failure returns false and says why in `error`. */
bool readFileBytes (const std::string& path, std::vector<std::uint8_t>& data, std::string& error);

/** Reads standard input to its end, held to the same limit; the messages call it "standard input". */
bool readStandardInput (std::vector<std::uint8_t>& data, std::string& error);

} // namespace Score
