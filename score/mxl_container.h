// Compressed MusicXML (.mxl): a zip whose META-INF/container.xml names the score.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

/**
 * The score inside a compressed MusicXML file: the first root file that its
 * container names. False with a message when the bytes are no zip, the
 * container is missing or broken, or it names a file the zip lacks.
 */
bool unpackMxl (const std::vector<std::uint8_t>& zip, std::vector<std::uint8_t>& score, std::string& error);

} // namespace Score
