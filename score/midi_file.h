// A Standard MIDI File, read into plain events, and written back from them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

struct MidiEvent
{
    enum Kind
    {
        NoteOn,     ///< velocity > 0
        NoteOff,    ///< a note-off, or a note-on with velocity 0
        Tempo,      ///< microseconds per quarter note in `value`
        Lyric,      ///< lyric meta event
        Text,       ///< text meta event (karaoke files carry their words here)
        TrackName,  ///< sequence or track name
        TimeSignature,  ///< numerator in `value` >> 8, denominator (a power of two) in `value` & 0xFF
        Other       ///< anything else that is well formed; kept for writing only
    };
    std::uint64_t tick = 0;  ///< absolute, from the start of the track
    Kind kind = Other;
    int channel = 0;
    int pitch = 0;
    int velocity = 0;
    std::uint32_t value = 0;
    std::string text;  ///< raw bytes of a text-like meta event
};

struct MidiTrack
{
    std::vector<MidiEvent> events;  ///< in file order
};

struct MidiFile
{
    int format = 1;
    /** Ticks per quarter note when positive; when negative, -frames per second (SMPTE). */
    int division = 480;
    int ticksPerFrame = 0;  ///< SMPTE only
    std::vector<MidiTrack> tracks;
};

/** Reads a whole file from memory. On failure returns false and says why in `error`. */
bool parseMidi (const std::uint8_t* data, std::size_t size, MidiFile& out, std::string& error);
/** Encodes notes, tempi and text events (NoteOn, NoteOff, Tempo, Lyric, Text, TrackName). */
std::vector<std::uint8_t> writeMidi (const MidiFile& file);

} // namespace Score
