// A Standard MIDI File, read into plain events, and written back from them.
// Our own parser rather than the toolkit's MIDI file class: it says what is
// wrong and where, reads past the faults that players read past (and says so),
// and keeps the events plain values; the word conventions sit on these events.
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
        Other       ///< anything else: as read, the end of the track; never written (the writer ends each track itself)
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

/** Something wrong in a file that common players read past, and so do we; the song reader says it. */
struct MidiRepair
{
    int track = 0;           ///< counted from 0
    std::uint64_t tick = 0;  ///< where it first happens
    bool placed = true;      ///< false when it happens at no place in the song (a chunk's length)
    std::string what;        ///< what was wrong and how it was read, without the place
};

/** Past these a file is refused: reading it would take memory out of all proportion to a song. */
struct MidiLimits
{
    static constexpr std::size_t events = 2000000;  ///< notes, tempi, texts and names kept, the whole file
    static constexpr std::size_t textBytes = 65536;  ///< one text, lyric or name event
    static constexpr std::size_t overrun = 64;       ///< bytes a last track chunk may claim past the file's end
};

struct MidiFile
{
    int format = 1;
    /** Ticks per quarter note when positive; when negative, -frames per second (SMPTE). */
    int division = 480;
    int ticksPerFrame = 0;  ///< SMPTE only
    std::vector<MidiTrack> tracks;
    std::vector<MidiRepair> repairs;  ///< filled by `parseMidi`, not written
};

/**
 * Reads a whole file from memory. On failure returns false and says why in
 * `error`. As players do, it reads running status that goes on after a meta
 * or system-exclusive event, a track without its end-of-track event, and a
 * last track chunk that claims a few bytes more than the file holds (see
 * `MidiLimits`), and lists each in `repairs`.
 */
bool parseMidi (const std::uint8_t* data, std::size_t size, MidiFile& out, std::string& error);
/** Encodes notes, tempi and text events (NoteOn, NoteOff, Tempo, Lyric, Text, TrackName). */
std::vector<std::uint8_t> writeMidi (const MidiFile& file);

} // namespace Score
