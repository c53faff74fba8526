#include "score/midi_song.h"

#include "score/midi_lyrics.h"
#include "score/song_position.h"
#include "score/text_encoding.h"
#include "score/typed_words.h"

#include <algorithm>
#include <deque>
#include <map>

namespace Score {

namespace {

struct Lyric
{
    std::uint64_t tick;
    Syllable syllable;
    int owner;  // index into the groups, or -1 for whichever track has a note there
};

struct Group
{
    std::string name;
    std::vector<SongNote> notes;
};

class Clock
{
public:
    Clock (const MidiFile& file, std::vector<TempoChange>& tempi, std::vector<MeterChange>& meters) : meters_ (meters)
    {
        if (file.division < 0)
        {
            // Frame-based time: ticks are seconds already; the tempo map is moot.
            const double fps = file.division == -29 ? 29.97 : -file.division;
            secondsPerTick_ = 1.0 / (fps * file.ticksPerFrame);
            tempi.push_back ({0.0, 120.0});
            return;
        }
        ppq_ = file.division;
        std::map<std::uint64_t, std::uint32_t> signatures;  // the last one at a tick wins
        for (const MidiTrack& t : file.tracks)
            for (const MidiEvent& e : t.events)
                if (e.kind == MidiEvent::TimeSignature)
                    signatures[e.tick] = e.value;
        for (const auto& [tick, value] : signatures)
            meters.push_back ({double (tick) / ppq_, int (value >> 8), int (value & 0xFF)});
        std::map<std::uint64_t, std::uint32_t> changes;  // the last one at a tick wins
        for (const MidiTrack& t : file.tracks)
            for (const MidiEvent& e : t.events)
                if (e.kind == MidiEvent::Tempo && e.value > 0)
                    changes[e.tick] = e.value;
        if (changes.empty () || changes.begin ()->first != 0)
            changes.emplace (0, 500000u);
        double seconds = 0.0;
        std::uint64_t lastTick = 0;
        std::uint32_t lastTempo = changes.begin ()->second;
        for (const auto& [tick, tempo] : changes)
        {
            seconds += double (tick - lastTick) * lastTempo / (1e6 * ppq_);
            segments_.push_back ({tick, seconds, tempo});
            if (tempi.empty () || tempi.back ().bpm != 6e7 / tempo)
                tempi.push_back ({double (tick) / ppq_, 6e7 / tempo});
            lastTick = tick;
            lastTempo = tempo;
        }
    }

    double seconds (std::uint64_t tick) const
    {
        if (ppq_ == 0)
            return double (tick) * secondsPerTick_;
        auto it = std::upper_bound (segments_.begin (), segments_.end (), tick,
                                    [] (std::uint64_t t, const Segment& s) { return t < s.tick; });
        const Segment& s = *(it - 1);
        return s.seconds + double (tick - s.tick) * s.tempo / (1e6 * ppq_);
    }

    /** The place of a tick as messages name it: bar:beat and seconds, or seconds alone in frame time. */
    std::string place (std::uint64_t tick) const
    {
        return placeInSong (meters_, ppq_ == 0 ? -1.0 : double (tick) / ppq_, seconds (tick));
    }

    /** How far before a note its lyric may stand: a sixteenth note, or an eighth of a second. */
    std::uint64_t tolerance () const
    {
        if (ppq_ == 0)
            return static_cast<std::uint64_t> (0.125 / secondsPerTick_);
        return static_cast<std::uint64_t> (ppq_ / 4);
    }

private:
    struct Segment
    {
        std::uint64_t tick;
        double seconds;
        std::uint32_t tempo;
    };
    std::vector<Segment> segments_;
    const std::vector<MeterChange>& meters_;
    int ppq_ = 0;
    double secondsPerTick_ = 0.0;
};

/** Pairs each note-off with the earliest open note of its channel and pitch. */
void collectNotes (const std::vector<const MidiEvent*>& events, std::uint64_t trackEnd, std::vector<SongNote>& notes,
                   std::vector<std::string>& warnings, const std::string& name)
{
    std::map<int, std::deque<std::size_t>> open;  // channel * 128 + pitch -> indices into notes
    for (const MidiEvent* e : events)
    {
        const int key = e->channel * 128 + e->pitch;
        if (e->kind == MidiEvent::NoteOn)
        {
            SongNote n;
            n.startTick = e->tick;
            n.pitch = e->pitch;
            open[key].push_back (notes.size ());
            notes.push_back (n);
        }
        else if (e->kind == MidiEvent::NoteOff)
        {
            auto it = open.find (key);
            if (it == open.end () || it->second.empty ())
                continue;  // a stray note-off
            notes[it->second.front ()].endTick = e->tick;
            it->second.pop_front ();
        }
    }
    int unclosed = 0;
    for (auto& [key, indices] : open)
        for (std::size_t i : indices)
        {
            notes[i].endTick = trackEnd;
            ++unclosed;
        }
    if (unclosed)
        warnings.push_back (name + ": " + std::to_string (unclosed) + " note(s) never end; they end with the track");
    const auto before = notes.size ();
    notes.erase (std::remove_if (notes.begin (), notes.end (),
                                 [] (const SongNote& n) { return n.endTick <= n.startTick; }),
                 notes.end ());
    if (notes.size () != before)
        warnings.push_back (name + ": " + std::to_string (before - notes.size ()) + " note(s) of no length dropped");
}

/** Two texts that reach one note are sung together, unless one is to stay as written. */
bool attach (Group& group, const Lyric& lyric, const Clock& clock, std::vector<std::string>& warnings)
{
    auto& notes = group.notes;
    auto it = std::lower_bound (notes.begin (), notes.end (), lyric.tick,
                                [] (const SongNote& n, std::uint64_t t) { return n.startTick < t; });
    if (it == notes.end () || it->startTick - lyric.tick > clock.tolerance ())
        return false;
    Syllable& s = it->syllable;
    const Syllable& add = lyric.syllable;
    const std::string where = group.name + ": the note at " + clock.place (it->startTick);
    if (s.kind == Syllable::Free || s.kind == Syllable::Held)
        s = add;
    else if (add.kind == Syllable::AsWritten || s.kind == Syllable::AsWritten)
        warnings.push_back (where + " has \"" + s.text + "\" already; \"" + add.text + "\" is left out");
    else if (add.kind != Syllable::Held)
    {
        const bool apart = add.kind == Syllable::Single || add.kind == Syllable::Begin;
        s.text += (apart ? " " : "") + add.text;
        s.kind = syllableKind (s.kind == Syllable::Single || s.kind == Syllable::Begin,
                               add.kind == Syllable::Single || add.kind == Syllable::End);
        warnings.push_back (where + " is reached by two texts; it sings them together: \"" + s.text + "\"");
    }
    return true;
}

/**
 * A MIDI file cannot say that a note holds a syllable, so a note without words
 * does inside a word, and after one when it follows on without a rest.
 */
void markHeldNotes (std::vector<SongNote>& notes, std::uint64_t slack)
{
    bool inWord = false, sung = false;
    std::uint64_t lastEnd = 0;
    for (auto& n : notes)
    {
        Syllable& s = n.syllable;
        if (s.kind == Syllable::Free && (inWord || (sung && n.startTick <= lastEnd + slack)))
            s.kind = Syllable::Held;
        else if (s.kind == Syllable::Free)
            sung = false;
        else if (s.kind != Syllable::Held)
        {
            inWord = s.kind == Syllable::Begin || s.kind == Syllable::Middle;
            sung = s.kind != Syllable::AsWritten;
        }
        lastEnd = n.endTick;
    }
}

} // namespace

bool readMidiSong (const MidiFile& file, Song& out, std::string& error, const ReadOptions& options)
{
    out = Song {};
    Clock clock (file, out.tempi, out.meters);

    bool anyLyricMeta = false;
    for (const MidiTrack& t : file.tracks)
        for (const MidiEvent& e : t.events)
            anyLyricMeta = anyLyricMeta || e.kind == MidiEvent::Lyric;

    std::vector<Group> groups;
    std::vector<Lyric> lyrics;
    for (std::size_t ti = 0; ti < file.tracks.size (); ++ti)
    {
        const MidiTrack& t = file.tracks[ti];
        std::string name;
        std::uint64_t trackEnd = 0;
        std::map<int, std::vector<const MidiEvent*>> byChannel;
        std::vector<TimedText> texts;
        for (const MidiEvent& e : t.events)
        {
            trackEnd = std::max (trackEnd, e.tick);
            if (e.kind == MidiEvent::TrackName && name.empty ())
                name = trimBlanks (toUtf8 (e.text));
            else if (e.kind == MidiEvent::NoteOn || e.kind == MidiEvent::NoteOff)
                byChannel[file.format == 0 ? e.channel : 0].push_back (&e);
            else if (e.kind == (anyLyricMeta ? MidiEvent::Lyric : MidiEvent::Text))
                texts.push_back ({e.tick, toUtf8 (e.text)});
        }
        // A format 0 file's one name, or the name of a format 1 file's first track
        // when it holds no notes (the conductor track), names the song.
        if (ti == 0 && (file.format == 0 || byChannel.empty ()))
            out.title = name;
        if (name.empty ())
            name = "Track " + std::to_string (ti + 1);
        std::vector<std::string> notices;
        const auto syllables = readLyricTexts (texts, !anyLyricMeta, options.rawLyrics, notices);
        for (const auto& n : notices)
            out.warnings.push_back (name + ": " + n);
        const std::size_t firstGroup = groups.size ();
        for (auto& [channel, events] : byChannel)
        {
            Group g;
            g.name = byChannel.size () > 1 ? name + " ch " + std::to_string (channel + 1) : name;
            collectNotes (events, trackEnd, g.notes, out.warnings, g.name);
            if (g.notes.empty ())
                continue;
            std::stable_sort (g.notes.begin (), g.notes.end (), [] (const SongNote& a, const SongNote& b) {
                return a.startTick != b.startTick ? a.startTick < b.startTick : a.pitch > b.pitch;
            });
            groups.push_back (std::move (g));
        }
        // Words of a track that sings go to its own notes; a channel split or a
        // words-only track leaves them to whichever track has a note there.
        const int owner = groups.size () == firstGroup + 1 ? static_cast<int> (firstGroup) : -1;
        for (const auto& s : syllables)
            lyrics.push_back ({s.tick, s.syllable, owner});
    }
    if (groups.empty ())
    {
        error = "the file holds no notes";
        return false;
    }

    std::stable_sort (lyrics.begin (), lyrics.end (), [] (const Lyric& a, const Lyric& b) { return a.tick < b.tick; });
    int unplaced = 0;
    for (const Lyric& l : lyrics)
    {
        bool placed = false;
        if (l.owner >= 0)
            placed = attach (groups[static_cast<std::size_t> (l.owner)], l, clock, out.warnings);
        else
            for (auto& g : groups)
                if ((placed = attach (g, l, clock, out.warnings)))
                    break;
        if (!placed && l.syllable.kind != Syllable::Held && ++unplaced <= 5)
            out.warnings.push_back ("lyric \"" + l.syllable.text + "\" at " + clock.place (l.tick)
                                    + " stands on no note and is left out");
    }
    if (unplaced > 5)
        out.warnings.push_back (std::to_string (unplaced - 5) + " more lyric(s) left out");

    for (auto& g : groups)
    {
        SongTrack t;
        t.name = g.name;
        t.notes = std::move (g.notes);
        markHeldNotes (t.notes, clock.tolerance ());
        typeLyrics (t.notes);
        for (auto& n : t.notes)
        {
            n.start = clock.seconds (n.startTick);
            n.end = clock.seconds (n.endTick);
        }
        out.tracks.push_back (std::move (t));
    }
    return true;
}

} // namespace Score
