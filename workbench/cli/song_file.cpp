#include "workbench/cli/song_file.h"

#include "workbench/cli/file_output.h"
#include "workbench/cli/plain_lyrics.h"

#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Workbench {

namespace {

constexpr double maxTick = 0x0FFFFFFF;  // what four bytes of a variable-length number hold

/**
 * The first of a few common resolutions that places every position on a
 * tick, so that the file reads back to the same times; the finest of them
 * where none does.
 */
int division (const Outcome& outcome)
{
    std::vector<double> beats;
    for (const auto& t : outcome.tempi)
        beats.push_back (t.beat);
    for (const auto& m : outcome.meters)
        beats.push_back (m.beat);
    for (const auto& synth : outcome.synthesisers)
        for (const auto& n : synth.hostNotes)
        {
            beats.push_back (n.startBeat);
            beats.push_back (n.endBeat);
        }
    for (int d : {480, 960, 3840})
        if (std::all_of (beats.begin (), beats.end (), [d] (double b) {
                const double t = b * d;
                return std::fabs (t - std::round (t)) < 1e-6;
            }))
            return d;
    return 10080;
}

Score::MidiEvent event (std::uint64_t tick, Score::MidiEvent::Kind kind, std::string text = {})
{
    Score::MidiEvent e;
    e.tick = tick;
    e.kind = kind;
    e.text = std::move (text);
    return e;
}

/** One part's notes and lyric events. */
template <class TickOf>
Score::MidiTrack partTrack (const std::string& name, const std::vector<const HostNote*>& part,
                            const std::vector<std::string>& texts, TickOf& tickOf)
{
    struct Placed
    {
        std::uint64_t start, end;
        const HostNote* note;
        const std::string* text;
    };
    std::vector<Placed> notes;
    for (std::size_t i = 0; i < part.size (); ++i)
    {
        const std::uint64_t start = tickOf (part[i]->startBeat);
        notes.push_back ({start, std::max (start + 1, tickOf (part[i]->endBeat)), part[i], &texts[i]});
    }
    std::stable_sort (notes.begin (), notes.end (), [] (const Placed& a, const Placed& b) {
        return a.start != b.start ? a.start < b.start : a.note->pitch > b.note->pitch;
    });

    // A reader pairs a note-off with the earliest open note of its channel and pitch, so a
    // note that starts while another of its pitch still sounds goes on a channel of its own.
    std::vector<std::array<std::uint64_t, 16>> busy (128);
    std::vector<Score::MidiEvent> offs, ons;
    for (const auto& p : notes)
    {
        const int pitch = std::clamp (p.note->pitch, 0, 127);
        int channel = 0;
        for (int c = 0; c < 16; ++c)
            if (c != 9 && busy[static_cast<std::size_t> (pitch)][static_cast<std::size_t> (c)] <= p.start)
            {
                channel = c;
                break;
            }
        busy[static_cast<std::size_t> (pitch)][static_cast<std::size_t> (channel)] = p.end;
        if (!p.text->empty ())
            ons.push_back (event (p.start, Score::MidiEvent::Lyric, *p.text));
        Score::MidiEvent on = event (p.start, Score::MidiEvent::NoteOn);
        on.channel = channel;
        on.pitch = pitch;
        on.velocity = 100;
        ons.push_back (on);
        on.tick = p.end;
        on.kind = Score::MidiEvent::NoteOff;
        on.velocity = 0;
        offs.push_back (on);
    }
    // The writer sorts stably by tick: a note ends before the next one at the same tick begins.
    Score::MidiTrack track;
    track.events.push_back (event (0, Score::MidiEvent::TrackName, name));
    track.events.insert (track.events.end (), offs.begin (), offs.end ());
    track.events.insert (track.events.end (), ons.begin (), ons.end ());
    return track;
}

std::size_t elementsOf (const std::string& text)
{
    const auto* dictionary = Zelmor::dictionaryHolderMap ();
    try
    {
        return dictionary ? Zelmor::convertLyric (text, *dictionary).size () : 0;
    }
    catch (const std::exception&)
    {
        return 0;
    }
}

/**
 * The texts of one part's notes as the host holds them. Typed back in order,
 * each word's bracketed text deals what the converter makes of it over the
 * notes after it until the next word; those with a `[hint]` take their own
 * back when they are typed, those without text would keep it.
 */
std::vector<std::string> hostLyrics (const std::vector<const HostNote*>& part)
{
    std::vector<std::string> out;
    std::size_t reach = 0;
    for (const HostNote* n : part)
    {
        out.push_back (n->lyric);
        if (!wordOf (n->lyric).empty ())
        {
            const std::size_t elements = elementsOf (n->lyric);
            reach = elements > 0 ? elements - 1 : 0;
            continue;
        }
        if (reach > 0 && n->lyric.empty ())
            out.back () = "[ah]";
        reach = reach > 0 ? reach - 1 : 0;
    }
    return out;
}

} // namespace

bool songFile (const std::string& title, const Outcome& outcome, MidiLyrics lyrics, Score::MidiFile& out,
               std::string& error)
{
    out = Score::MidiFile {};
    out.format = 1;
    out.division = division (outcome);
    bool fits = true;
    auto tickOf = [&] (double beat) {
        const double t = std::round (std::max (0.0, beat) * out.division);
        fits = fits && std::isfinite (t) && t <= maxTick;
        return fits ? static_cast<std::uint64_t> (t) : std::uint64_t {0};
    };

    Score::MidiTrack conductor;
    conductor.events.push_back (event (0, Score::MidiEvent::TrackName, title));
    for (const auto& t : outcome.tempi)
    {
        Score::MidiEvent e = event (tickOf (t.beat), Score::MidiEvent::Tempo);
        e.value = static_cast<std::uint32_t> (std::clamp (std::lround (6e7 / t.bpm), 1L, 0xFFFFFFL));
        conductor.events.push_back (e);
    }
    out.tracks.push_back (std::move (conductor));

    for (const auto& m : outcome.meters)
    {
        Score::MidiEvent e = event (tickOf (m.beat), Score::MidiEvent::TimeSignature);
        e.value = static_cast<std::uint32_t> ((std::clamp (m.numerator, 1, 255) << 8) | std::clamp (m.denominator, 1, 64));
        out.tracks.front ().events.push_back (e);
    }
    std::stable_sort (out.tracks.front ().events.begin (), out.tracks.front ().events.end (),
                      [] (const Score::MidiEvent& a, const Score::MidiEvent& b) { return a.tick < b.tick; });

    for (const auto& synth : outcome.synthesisers)
    {
        // A track of its own for each part, so that a reader makes the same parts of one track of them.
        std::vector<std::vector<const HostNote*>> parts;
        for (const auto& n : synth.hostNotes)
        {
            const auto p = static_cast<std::size_t> (std::max (0, n.part));
            if (parts.size () <= p)
                parts.resize (p + 1);
            parts[p].push_back (&n);
        }
        for (auto& part : parts)
        {
            // In the order a reader gives them back, in which the texts are typed again.
            std::stable_sort (part.begin (), part.end (), [] (const HostNote* a, const HostNote* b) {
                return a->startBeat != b->startBeat ? a->startBeat < b->startBeat : a->pitch > b->pitch;
            });
            if (!part.empty ())
                out.tracks.push_back (partTrack (synth.track, part,
                                                 lyrics == MidiLyrics::Plain ? plainLyrics (part) : hostLyrics (part),
                                                 tickOf));
        }
    }
    if (!fits)
        error = "the song reaches past what a MIDI file's ticks can hold at " + std::to_string (out.division)
                + " a quarter note";
    return fits;
}

bool writeSongFile (const std::string& title, const Outcome& outcome, MidiLyrics lyrics, const std::string& path,
                    std::string& error)
{
    Score::MidiFile file;
    if (!songFile (title, outcome, lyrics, file, error))
    {
        error = "cannot write " + path + ": " + error;
        return false;
    }
    return replaceFile (path, Score::writeMidi (file), error);
}

} // namespace Workbench
