#include "score/song_reader.h"

#include "score/file_bytes.h"
#include "score/midi_song.h"
#include "score/musicxml_reader.h"
#include "score/mxl_container.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace Score {

namespace {

enum class Kind
{
    Midi,
    Xml,
    Zip
};

bool endsWith (const std::string& s, const char* tail)
{
    const std::size_t n = std::strlen (tail);
    if (s.size () < n)
        return false;
    for (std::size_t i = 0; i < n; ++i)
        if (std::tolower (static_cast<unsigned char> (s[s.size () - n + i])) != tail[i])
            return false;
    return true;
}

Kind kindOf (const std::string& path, const std::vector<std::uint8_t>& data)
{
    auto startsWith = [&] (std::initializer_list<std::uint8_t> head) {
        return data.size () >= head.size () && std::equal (head.begin (), head.end (), data.begin ());
    };
    if (startsWith ({'M', 'T', 'h', 'd'}))
        return Kind::Midi;
    if (startsWith ({'P', 'K', 3, 4}))
        return Kind::Zip;
    std::size_t i = startsWith ({0xEF, 0xBB, 0xBF}) ? 3 : 0;
    while (i < data.size () && std::isspace (data[i]))
        ++i;
    if ((i < data.size () && data[i] == '<') || startsWith ({0xFF, 0xFE}) || startsWith ({0xFE, 0xFF}))
        return Kind::Xml;
    if (endsWith (path, ".mxl"))
        return Kind::Zip;
    return endsWith (path, ".musicxml") || endsWith (path, ".xml") ? Kind::Xml : Kind::Midi;
}

} // namespace

bool readSong (const std::string& path, const ReadOptions& options, Song& out, std::string& error)
{
    std::vector<std::uint8_t> data;
    return readFileBytes (path, data, error) && readSongBytes (path, std::move (data), options, out, error);
}

bool readSongBytes (const std::string& name, std::vector<std::uint8_t> data, const ReadOptions& options, Song& out,
                    std::string& error)
{
    bool ok = false;
    switch (kindOf (name, data))
    {
    case Kind::Midi:
    {
        MidiFile file;
        ok = parseMidi (data.data (), data.size (), file, error);
        std::vector<std::uint8_t> ().swap (data);  // the events hold all that is read of it
        ok = ok && readMidiSong (std::move (file), out, error, options);
        break;
    }
    case Kind::Zip:
    {
        std::vector<std::uint8_t> score;
        ok = unpackMxl (data, score, error);
        std::vector<std::uint8_t> ().swap (data);  // the zip is done with; the score is parsed in its place
        ok = ok && readMusicXml (std::move (score), options, out, error);
        break;
    }
    case Kind::Xml:
        ok = readMusicXml (std::move (data), options, out, error);
        break;
    }
    if (!ok)
        error = name + ": " + error;
    return ok;
}

} // namespace Score
