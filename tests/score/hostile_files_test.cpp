// Files from anywhere: each fault once found in our readers, the limits, and a
// zip that says one thing and holds another. Every input that ever broke a
// reader stays in regressions/ and is read again here.
#include "score/musicxml_reader.h"
#include "score/song_reader.h"
#include "score/zip_archive.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytes (const std::string& s) { return Bytes (s.begin (), s.end ()); }

/** One entry of a zip as a test writes it: its bytes, and what the zip may say of them instead. */
struct Entry
{
    std::string name, data;
    bool deflate = true;
    std::int64_t claim = -1;  // the size the directory gives, when not the true one
    std::uint16_t flags = 0, method = 0xFFFF;
    bool zip64 = false, badChecksum = false;
};

Bytes zip (const std::vector<Entry>& entries)
{
    Bytes out, directory;
    auto put = [] (Bytes& b, std::uint64_t v, int n) {
        for (int i = 0; i < n; ++i)
            b.push_back (static_cast<std::uint8_t> (v >> (8 * i)));
    };
    for (const auto& e : entries)
    {
        std::string packed = e.data;
        if (e.deflate)
        {
            z_stream z {};
            deflateInit2 (&z, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
            packed.resize (deflateBound (&z, e.data.size ()));
            z.next_in = reinterpret_cast<Bytef*> (const_cast<char*> (e.data.data ()));
            z.avail_in = static_cast<uInt> (e.data.size ());
            z.next_out = reinterpret_cast<Bytef*> (packed.data ());
            z.avail_out = static_cast<uInt> (packed.size ());
            deflate (&z, Z_FINISH);
            packed.resize (z.total_out);
            deflateEnd (&z);
        }
        const std::uint64_t size = e.claim >= 0 ? static_cast<std::uint64_t> (e.claim) : e.data.size ();
        const auto crc = crc32 (0, reinterpret_cast<const Bytef*> (e.data.data ()), static_cast<uInt> (e.data.size ()))
                         ^ (e.badChecksum ? 1u : 0u);
        const std::uint16_t method = e.method != 0xFFFF ? e.method : e.deflate ? 8 : 0;
        const std::uint64_t at = out.size ();
        put (out, 0x04034b50, 4), put (out, 20, 2), put (out, e.flags, 2), put (out, method, 2), put (out, 0, 4);
        put (out, crc, 4), put (out, packed.size (), 4), put (out, size, 4), put (out, e.name.size (), 2);
        put (out, 0, 2);
        out.insert (out.end (), e.name.begin (), e.name.end ());
        out.insert (out.end (), packed.begin (), packed.end ());
        const std::uint64_t big = 0xFFFFFFFF;
        put (directory, 0x02014b50, 4), put (directory, 45, 2), put (directory, 45, 2), put (directory, e.flags, 2);
        put (directory, method, 2), put (directory, 0, 4), put (directory, crc, 4);
        put (directory, e.zip64 ? big : packed.size (), 4), put (directory, e.zip64 ? big : size, 4);
        put (directory, e.name.size (), 2), put (directory, e.zip64 ? 28 : 0, 2), put (directory, 0, 6);
        put (directory, 0, 4);
        put (directory, e.zip64 ? big : at, 4);
        directory.insert (directory.end (), e.name.begin (), e.name.end ());
        if (e.zip64)
            put (directory, 1, 2), put (directory, 24, 2), put (directory, size, 8), put (directory, packed.size (), 8),
                put (directory, at, 8);
    }
    const std::uint64_t dirAt = out.size ();
    out.insert (out.end (), directory.begin (), directory.end ());
    put (out, 0x06054b50, 4), put (out, 0, 4), put (out, entries.size (), 2), put (out, entries.size (), 2);
    put (out, directory.size (), 4), put (out, dirAt, 4), put (out, 0, 2);
    return out;
}

const std::string container =
    "<container><rootfiles><rootfile full-path=\"s/l.musicxml\"/></rootfiles></container>";
const std::string oneNote = "<score-partwise><part id=\"P1\"><measure><note><pitch><step>C</step><octave>4</octave>"
                            "</pitch><duration>1</duration></note></measure></part></score-partwise>";

Bytes mxl (const Entry& score) { return zip ({{"META-INF/container.xml", container}, score}); }

std::string nested (int levels, const std::string& open)
{
    std::string xml = "<score-partwise>";
    for (int i = 0; i < levels; ++i)
        xml += open;
    for (int i = 0; i < levels; ++i)
        xml += "</a>";
    return xml + "</score-partwise>";
}

/** "read" for a song read, else the message. */
std::string outcome (const std::string& name, const Bytes& data)
{
    Score::Song song;
    std::string error;
    return Score::readSongBytes (name, data, {}, song, error) ? "read" : error;
}

TEST (HostileFiles, KnownFaultsAreRefusedWithTheirReason)
{
    const std::string deep = nested (100000, "<a b=\"/>\" c='/>'>");  // a count of "/>" took these for empty elements
    Bytes cut = mxl ({"s/l.musicxml", oneNote});
    cut.resize (cut.size () - 30);
    const struct
    {
        const char* name;
        Bytes data;
        const char* says;
    } cases[] = {
        // Each of these once ended the process with a stack overflow, or hung it.
        {"entity.musicxml", bytes ("<!DOCTYPE a [<!ENTITY e \"x&e;x\">]><a>&e;</a>"), "declares entities"},
        {"deep.musicxml", bytes (deep), "nested deeper than 256 levels"},
        {"deep.mxl", mxl ({"s/l.musicxml", deep}), "deep.mxl: XML nested deeper than 256 levels"},
        {"pi.xml", bytes ("<a><?b?>c"), "pi.xml: broken XML"},
        // A zip said "does not hold the score" of a score it held, too large or in zip64.
        {"large.mxl", mxl ({"s/l.musicxml", oneNote, true, 64 << 20 | 1}),
         "s/l.musicxml in the zip is larger than 64 MiB (the zip says 67108865 bytes)"},
        {"zip64.mxl", mxl ({"s/l.musicxml", oneNote, true, -1, 0, 0xFFFF, true}), "read"},
        {"huge64.mxl", mxl ({"s/l.musicxml", oneNote, true, 5ll << 30, 0, 0xFFFF, true}), "larger than 64 MiB"},
        // What a zip claims against what it holds.
        {"more.mxl", mxl ({"s/l.musicxml", oneNote, true, 10}), "holds more than the 10 bytes the zip says"},
        {"less.mxl", mxl ({"s/l.musicxml", oneNote, true, 999}), "holds 155 bytes, not the 999"},
        {"stored.mxl", mxl ({"s/l.musicxml", oneNote, false, 999}), "stored in 155 bytes, but the zip says it holds 999"},
        {"crc.mxl", mxl ({"s/l.musicxml", oneNote, false, -1, 0, 0xFFFF, false, true}), "checksum does not match"},
        {"locked.mxl", mxl ({"s/l.musicxml", oneNote, true, -1, 1}), "s/l.musicxml in the zip is encrypted"},
        {"lzma.mxl", mxl ({"s/l.musicxml", oneNote, false, -1, 0, 14}), "packed by method 14"},
        {"raw.mxl", mxl ({"s/l.musicxml", oneNote, false, -1, 0, 8}), "deflated data is broken"},
        {"none.mxl", mxl ({"other.musicxml", oneNote}), "points to s/l.musicxml, which the zip does not hold"},
        {"cut.mxl", cut, "not a compressed MusicXML score: not a zip"},
        // Limits.
        {"long.musicxml",
         bytes ("<score-partwise><part id=\"P1\"><measure number=\"7\"><note><pitch><step>C</step></pitch><duration>1"
                "</duration><lyric><text>" + std::string (4097, 'a') + "</text></lyric></note></measure></part>"
                "</score-partwise>"),
         "a lyric of 4097 bytes in measure 7 of part \"P1\" (at most 4096)"},
        {"title.musicxml", bytes ("<score-partwise><movement-title>" + std::string (5000, 't') + "</movement-title></score-partwise>"),
         "a title of 5000 bytes"},
    };
    for (const auto& c : cases)
    {
        const std::string said = outcome (c.name, c.data);
        EXPECT_NE (said.find (c.says), std::string::npos) << c.name << ": " << said;
    }

    std::vector<Entry> many (Score::mostZipEntries + 1, {"x", "", false});
    EXPECT_EQ (outcome ("many.mxl", zip (many)), "many.mxl: not a compressed MusicXML score: a zip of 10001 entries "
                                                 "(at most 10000)");
    std::string rests = "<score-partwise><part id=\"P1\"><measure>";
    for (std::size_t i = 0; i <= Score::mostScoreNotes; ++i)
        rests += "<note/>";
    EXPECT_EQ (outcome ("rests.musicxml", bytes (rests + "</measure></part></score-partwise>")),
               "rests.musicxml: a score of more than 1000000 notes");
}

TEST (HostileFiles, ReadingTimeGrowsWithTheFileNotFaster)
{
#ifdef _WIN32
    GTEST_SKIP () << "std::clock is wall time on Windows, and under Wine too uneven to compare";
#endif
    // Parts by the thousand, each once looked up by a search through all before it: 100,000 took 21 s.
    // Four times the parts must take about four times as long, not sixteen; processor time, which
    // other programs on the machine and the sanitizers stretch alike for both.
    auto seconds = [] (int count) {
        std::string list, parts;
        for (int i = 0; i < count; ++i)
        {
            list += "<score-part id=\"P" + std::to_string (i) + "\"><part-name>Voice</part-name></score-part>";
            parts += "<part id=\"P" + std::to_string (i) + "\"><measure><note><pitch><step>C</step></pitch>"
                     "<duration>1</duration></note></measure></part>";
        }
        const Bytes file = mxl ({"s/l.musicxml", "<score-partwise><part-list>" + list + "</part-list>" + parts
                                                     + "</score-partwise>", false});
        const std::clock_t started = std::clock ();
        EXPECT_EQ (outcome ("parts.mxl", file), "read");
        return double (std::clock () - started) / CLOCKS_PER_SEC;
    };
    // The least of a few tries, since a busy machine only ever adds; a search per part gives 16 times.
    seconds (100000);  // memory taken from the system once, for both to reuse
    const double few = std::min ({seconds (25000), seconds (25000), seconds (25000)});
    const double many = std::min (seconds (100000), seconds (100000));
    EXPECT_LT (many, 10 * few) << few << " s, then " << many << " s";
}

TEST (HostileFiles, EveryInputThatOnceFailedIsReadOrRefused)
{
    std::size_t files = 0;
    for (const auto& f : std::filesystem::directory_iterator (REGRESSIONS_DIR))
    {
        std::ifstream in (f.path (), std::ios::binary);
        const std::string said = outcome (f.path ().filename ().string (), Bytes (std::istreambuf_iterator<char> (in), {}));
        EXPECT_TRUE (said == "read" || said.rfind (f.path ().filename ().string () + ": ", 0) == 0) << said;
        ++files;
    }
    EXPECT_GT (files, 0u);
}

} // namespace
