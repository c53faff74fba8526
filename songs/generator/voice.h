// One MIDI track being written, note by note, with its words: what every
// generated song is made of.
#pragma once

#include "score/midi_file.h"

#include <string>
#include <vector>

namespace Songs {

constexpr int ppq = 480;

inline std::uint64_t ticks (double beats) { return static_cast<std::uint64_t> (beats * ppq + 0.5); }

/** One track being written: notes in beats, words as lyric or karaoke text events. */
class Voice
{
public:
    Voice (const std::string& name, int channel, Score::MidiEvent::Kind words = Score::MidiEvent::Lyric)
        : channel_ (channel), words_ (words)
    {
        meta (0, Score::MidiEvent::TrackName, name);
    }

    /** A note; `lead` places its word that many beats before the note. */
    Voice& note (double beat, double length, int pitch, const std::string& word = {}, double lead = 0.0)
    {
        if (!word.empty ())
            meta (beat - lead, words_, word);
        Score::MidiEvent on;
        on.tick = ticks (beat);
        on.kind = Score::MidiEvent::NoteOn;
        on.channel = channel_;
        on.pitch = pitch;
        on.velocity = 96;
        Score::MidiEvent off = on;
        off.tick = ticks (beat + length);
        off.kind = Score::MidiEvent::NoteOff;
        off.velocity = 0;
        // Offs before ons at the same tick, so that repeated pitches pair up in order.
        offs_.push_back (off);
        track_.events.push_back (on);
        return *this;
    }

    Voice& meta (double beat, Score::MidiEvent::Kind kind, const std::string& text)
    {
        Score::MidiEvent e;
        e.tick = ticks (beat);
        e.kind = kind;
        e.text = text;
        track_.events.push_back (e);
        return *this;
    }

    Score::MidiTrack done ()
    {
        std::vector<Score::MidiEvent> all = offs_;
        all.insert (all.end (), track_.events.begin (), track_.events.end ());
        track_.events = all;  // the writer sorts stably by tick: offs stay first
        return track_;
    }

private:
    int channel_;
    Score::MidiEvent::Kind words_;
    Score::MidiTrack track_;
    std::vector<Score::MidiEvent> offs_;
};

/** The first track of a format 1 file: the song's name and its tempo map. */
inline Score::MidiTrack conductor (const std::string& title, std::vector<std::pair<double, double>> tempi)
{
    Score::MidiTrack t;
    Score::MidiEvent name;
    name.kind = Score::MidiEvent::TrackName;
    name.text = title;
    t.events.push_back (name);
    for (auto [beat, bpm] : tempi)
    {
        Score::MidiEvent e;
        e.tick = ticks (beat);
        e.kind = Score::MidiEvent::Tempo;
        e.value = static_cast<std::uint32_t> (60000000.0 / bpm + 0.5);
        t.events.push_back (e);
    }
    return t;
}

inline Score::MidiFile file (std::vector<Score::MidiTrack> tracks)
{
    Score::MidiFile f;
    f.format = 1;
    f.division = ppq;
    f.tracks = std::move (tracks);
    return f;
}

enum Pitch
{
    C4 = 60, D4 = 62, E4 = 64, F4 = 65, G4 = 67, A4 = 69, B4 = 71, C5 = 72,
    A3 = 57, B3 = 59, G3 = 55, F3 = 53, E3 = 52, C3 = 48
};

} // namespace Songs
