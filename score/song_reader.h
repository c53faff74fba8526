// Any song file the workbench knows, read by the reader its content calls for.
#pragma once

#include "score/song.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

/**
 * Reads a Standard MIDI File (.mid, .kar), a MusicXML score (.musicxml, .xml)
 * or a compressed one (.mxl). The content decides ("MThd", a zip, XML); a file
 * that shows none of them is read as its extension says. Errors name the file.
 */
bool readSong (const std::string& path, const ReadOptions& options, Song& out, std::string& error);

/** The same for bytes already in memory; `name` stands for the path, in messages and when the content tells nothing. */
bool readSongBytes (const std::string& name, std::vector<std::uint8_t> data, const ReadOptions& options, Song& out,
                    std::string& error);

} // namespace Score
