#include "score/zip_archive.h"

#include <zlib.h>

#include <algorithm>

namespace Score {

namespace {

std::uint64_t le (const std::uint8_t* p, int bytes)
{
    std::uint64_t v = 0;
    for (int i = bytes - 1; i >= 0; --i)
        v = (v << 8) | p[i];
    return v;
}

constexpr std::uint32_t endSignature = 0x06054b50, end64Signature = 0x06064b50, locator64Signature = 0x07064b50,
                        entrySignature = 0x02014b50, headerSignature = 0x04034b50;
constexpr std::uint32_t in64 = 0xFFFFFFFF;  // a size or offset that the zip64 field holds instead

std::string bytesOf (std::uint64_t n)
{
    return n % (1u << 20) == 0 ? std::to_string (n >> 20) + " MiB" : std::to_string (n) + " bytes";
}

/** A directory entry's sizes and offset from its zip64 field, where the entry says that they are there. */
void readZip64Field (const std::uint8_t* extra, std::size_t length, ZipEntry& e)
{
    for (std::size_t at = 0; at + 4 <= length;)
    {
        const auto id = le (extra + at, 2), size = le (extra + at + 2, 2);
        const std::uint8_t* field = extra + at + 4;
        const std::size_t end = std::min<std::size_t> (length, at + 4 + size);
        at += 4 + size;
        if (id != 1)
            continue;
        std::size_t p = static_cast<std::size_t> (field - extra);
        for (std::uint64_t* v : {&e.size, &e.packedSize, &e.headerAt})
            if (*v == in64 && p + 8 <= end)
            {
                *v = le (extra + p, 8);
                p += 8;
            }
        return;
    }
}

} // namespace

bool ZipArchive::open (const std::uint8_t* data, std::size_t size, std::string& error)
{
    data_ = data;
    size_ = size;
    entries_.clear ();
    byName_.clear ();
    // The end record closes the file, before a comment of at most 64 KiB.
    std::size_t end = size;  // none yet
    if (size >= 22)
        for (std::size_t at = size - 22 + 1, lowest = size - 22 > 0xFFFF ? size - 22 - 0xFFFF : 0; at-- > lowest;)
            if (le (data + at, 4) == endSignature)
            {
                end = at;
                break;
            }
    if (end == size)
    {
        error = "not a zip (no zip directory)";
        return false;
    }
    std::uint64_t count = le (data + end + 10, 2), dirSize = le (data + end + 12, 4), dirAt = le (data + end + 16, 4);
    if (end >= 20 && le (data + end - 20, 4) == locator64Signature)
    {
        const std::uint64_t at = le (data + end - 12, 8);
        if (at > size || size - at < 56 || le (data + at, 4) != end64Signature)
        {
            error = "a damaged zip (its zip64 end record is not where it says)";
            return false;
        }
        count = le (data + at + 32, 8);
        dirSize = le (data + at + 40, 8);
        dirAt = le (data + at + 48, 8);
    }
    if (count > mostZipEntries)
    {
        error = "a zip of " + std::to_string (count) + " entries (at most " + std::to_string (mostZipEntries) + ")";
        return false;
    }
    if (dirAt > size || dirSize > size - dirAt)
    {
        error = "a damaged zip (its directory runs past the end of the file)";
        return false;
    }
    entries_.reserve (static_cast<std::size_t> (count));
    for (std::size_t at = static_cast<std::size_t> (dirAt), stop = at + static_cast<std::size_t> (dirSize);
         entries_.size () < count; )
    {
        if (stop - at < 46 || le (data + at, 4) != entrySignature)
        {
            error = "a damaged zip (its directory is cut short)";
            return false;
        }
        const std::uint8_t* p = data + at;
        const std::size_t nameLength = le (p + 28, 2), extraLength = le (p + 30, 2), commentLength = le (p + 32, 2);
        if (stop - at - 46 < nameLength + extraLength + commentLength)
        {
            error = "a damaged zip (its directory is cut short)";
            return false;
        }
        ZipEntry e;
        e.flags = static_cast<std::uint16_t> (le (p + 8, 2));
        e.method = static_cast<std::uint16_t> (le (p + 10, 2));
        e.crc = static_cast<std::uint32_t> (le (p + 16, 4));
        e.packedSize = le (p + 20, 4);
        e.size = le (p + 24, 4);
        e.headerAt = le (p + 42, 4);
        e.name.assign (reinterpret_cast<const char*> (p + 46), nameLength);
        readZip64Field (p + 46 + nameLength, extraLength, e);
        byName_.emplace (e.name, entries_.size ());
        entries_.push_back (std::move (e));
        at += 46 + nameLength + extraLength + commentLength;
    }
    return true;
}

const ZipEntry* ZipArchive::find (const std::string& name) const
{
    const auto it = byName_.find (name);
    return it == byName_.end () ? nullptr : &entries_[it->second];
}

bool ZipArchive::extract (const ZipEntry& e, std::size_t limit, std::vector<std::uint8_t>& out,
                          std::string& error) const
{
    out.clear ();
    if (e.flags & 1)
    {
        error = "is encrypted";
        return false;
    }
    if (e.size > limit)
    {
        error = "is larger than " + bytesOf (limit) + " (the zip says " + std::to_string (e.size) + " bytes)";
        return false;
    }
    if (e.method != 0 && e.method != 8)
    {
        error = "is packed by method " + std::to_string (e.method)
                + ", which this reader does not read (only stored and deflated)";
        return false;
    }
    if (e.headerAt > size_ || size_ - e.headerAt < 30 || le (data_ + e.headerAt, 4) != headerSignature)
    {
        error = "is damaged (its header is not where the zip's directory says)";
        return false;
    }
    const std::uint8_t* header = data_ + e.headerAt;
    const std::uint64_t start = e.headerAt + 30 + le (header + 26, 2) + le (header + 28, 2);
    if (start > size_ || e.packedSize > size_ - start)
    {
        error = "runs past the end of the file";
        return false;
    }
    const std::uint8_t* packed = data_ + start;
    const auto claimed = static_cast<std::size_t> (e.size);
    if (e.method == 0)
    {
        if (e.packedSize != e.size)
        {
            error = "is stored in " + std::to_string (e.packedSize) + " bytes, but the zip says it holds "
                    + std::to_string (e.size);
            return false;
        }
        out.assign (packed, packed + claimed);
    }
    else
    {
        // Unpacked a piece at a time, never past one byte more than the zip claims: a claim too small
        // is told, not believed, and a claim too large costs no memory the data doesn't fill.
        z_stream z {};
        if (inflateInit2 (&z, -MAX_WBITS) != Z_OK)
        {
            error = "could not be unpacked (no memory)";
            return false;
        }
        z.next_in = const_cast<Bytef*> (packed);
        z.avail_in = static_cast<uInt> (e.packedSize);
        std::uint8_t piece[65536];
        int status = Z_OK;
        while (status == Z_OK && out.size () <= claimed)
        {
            z.next_out = piece;
            z.avail_out = static_cast<uInt> (std::min<std::size_t> (sizeof piece, claimed + 1 - out.size ()));
            status = inflate (&z, Z_NO_FLUSH);
            out.insert (out.end (), piece, z.next_out);
        }
        inflateEnd (&z);
        if (out.size () > claimed)
        {
            error = "holds more than the " + std::to_string (claimed) + " bytes the zip says it has";
            return false;
        }
        if (status != Z_STREAM_END)
        {
            // Without input left, inflate can go no further: the data ends before its end mark.
            error = status == Z_BUF_ERROR ? "is cut short" : "is damaged (its deflated data is broken)";
            return false;
        }
        if (out.size () != claimed)
        {
            error = "holds " + std::to_string (out.size ()) + " bytes, not the " + std::to_string (claimed)
                    + " the zip says it has";
            return false;
        }
    }
    if (crc32 (0L, out.data (), static_cast<uInt> (out.size ())) != e.crc)
    {
        error = "is damaged (its checksum does not match)";
        return false;
    }
    return true;
}

} // namespace Score
