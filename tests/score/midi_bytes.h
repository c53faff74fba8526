// Hand-made MIDI bytes and the song read from them, for the reader tests.
#pragma once

#include "score/midi_song.h"

#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

inline Bytes header (int format, int tracks, int division)
{
    return {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, std::uint8_t (format), 0, std::uint8_t (tracks),
            std::uint8_t (division >> 8), std::uint8_t (division)};
}

inline Bytes withTrack (Bytes file, const Bytes& body)
{
    const Bytes head = {'M', 'T', 'r', 'k', std::uint8_t (body.size () >> 24), std::uint8_t (body.size () >> 16),
                        std::uint8_t (body.size () >> 8), std::uint8_t (body.size ())};
    file.insert (file.end (), head.begin (), head.end ());
    file.insert (file.end (), body.begin (), body.end ());
    return file;
}

inline bool song (const Bytes& bytes, Score::Song& out, std::string& error, const Score::ReadOptions& options = {})
{
    Score::MidiFile file;
    return Score::parseMidi (bytes.data (), bytes.size (), file, error) && Score::readMidiSong (file, out, error, options);
}

/** The notes of a track, one a line: "startTick-endTick pitch lyric". */
inline std::string notesOf (const Score::Song& s, std::size_t track = 0)
{
    std::string out;
    for (const auto& n : s.tracks.at (track).notes)
        out += std::to_string (n.startTick) + "-" + std::to_string (n.endTick) + " " + std::to_string (n.pitch) + " "
               + n.lyric + "\n";
    return out;
}

inline std::vector<std::string> lyrics (const Score::Song& s, std::size_t track = 0)
{
    std::vector<std::string> out;
    for (const auto& n : s.tracks.at (track).notes)
        out.push_back (n.lyric);
    return out;
}

} // namespace
