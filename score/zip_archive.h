// A zip archive in memory, as compressed MusicXML comes: its directory read
// and one entry unpacked at a time, each within limits a hostile file can't
// stretch.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace Score {

constexpr std::size_t mostZipEntries = 10000;

struct ZipEntry
{
    std::string name;
    std::uint16_t flags = 0, method = 0;
    std::uint32_t crc = 0;
    std::uint64_t packedSize = 0, size = 0;  ///< as the directory claims them
    std::uint64_t headerAt = 0;              ///< offset of the entry's local header
};

class ZipArchive
{
public:
    /**
     * Reads the directory of the zip in `data` (which must outlive this),
     * zip64 too. False with a message for bytes that are no zip, a directory
     * that runs past the file, and more than `mostZipEntries` entries.
     */
    bool open (const std::uint8_t* data, std::size_t size, std::string& error);

    /** The entry of that name, or null. */
    const ZipEntry* find (const std::string& name) const;

    /**
     * The bytes of an entry, stored or deflated. False with a message for an
     * entry larger than `limit`, encrypted or packed some other way, or
     * whose data runs past the file, is damaged, or holds more or less than
     * the directory claims.
     */
    bool extract (const ZipEntry& entry, std::size_t limit, std::vector<std::uint8_t>& out, std::string& error) const;

    std::size_t entryCount () const { return entries_.size (); }

private:
    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
    std::vector<ZipEntry> entries_;
    std::unordered_map<std::string, std::size_t> byName_;  // the first entry of each name
};

} // namespace Score
