#include "score/midi_song.h"

#include "score/lyric_placement.h"
#include "score/midi_lyrics.h"
#include "score/song_position.h"
#include "score/text_encoding.h"
#include "score/typed_words.h"

#include <algorithm>
#include <deque>
#include <map>

namespace Score {

namespace {

constexpr std::size_t maxNotes = 1000000;  // a song's worth many times over; past it memory, not music, is the limit
constexpr std::size_t repairsSaid = 8;     // a file of many faulty tracks is said in a few lines
constexpr std::size_t tracksSaid = 16;     // and how the texts of a file of many tracks are read

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
    notes.reserve (events.size () / 2);
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
            notes.push_back (std::move (n));
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
            sung = s.kind != Syllable::AsWritten;  // the host's own form names every note it sings
        }
        lastEnd = n.endTick;
    }
}

/** Of each chord of a voice that sings words, the top note, as a singer sings one note at a time. */
void topNotesOnly (MidiVoice& voice, std::vector<std::string>& warnings)
{
    auto& notes = voice.notes;  // by start, then from the top
    const auto before = notes.size ();
    notes.erase (std::unique (notes.begin (), notes.end (),
                              [] (const SongNote& a, const SongNote& b) { return a.startTick == b.startTick; }),
                 notes.end ());
    if (notes.size () != before)
        warnings.push_back (voice.name + ": " + std::to_string (before - notes.size ())
                            + " note(s) under the top note of a chord left out: a voice sings one note at a time");
}

/** The file's texts as UTF-8, in the one encoding that reads them best; said when it isn't UTF-8. */
class Decoder
{
public:
    explicit Decoder (const MidiFile& file)
    {
        std::vector<const std::string*> texts;
        for (const MidiTrack& t : file.tracks)
            for (const MidiEvent& e : t.events)
                if (e.kind == MidiEvent::Lyric || e.kind == MidiEvent::Text || e.kind == MidiEvent::TrackName)
                    texts.push_back (&e.text);
        encoding_ = guessEncoding (texts);
    }
    std::string operator() (const std::string& bytes) { return decodeText (bytes, encoding_, unreadable_); }
    void say (std::vector<std::string>& warnings) const
    {
        if (encoding_ == TextEncoding::Utf8)
            return;
        std::string what = std::string ("texts that are not UTF-8 are read as ") + encodingName (encoding_);
        if (unreadable_ > 0)
            what += "; " + std::to_string (unreadable_) + " byte(s) that are no " + encodingName (encoding_)
                    + " character stand as U+FFFD";
        warnings.push_back (what);
    }

private:
    TextEncoding encoding_ = TextEncoding::Utf8;
    std::size_t unreadable_ = 0;
};

} // namespace

namespace {

/**
 * The song of `file`. With `owned` (the same file, which the caller gives up)
 * each track's events are let go as soon as its notes and texts are taken:
 * a long file's events take more memory than its song. Texts and words go
 * as soon as they are placed.
 */
bool readSong (const MidiFile& file, MidiFile* owned, Song& out, std::string& error, const ReadOptions& options)
{
    out = Song {};
    Clock clock (file, out.tempi, out.meters);
    const LyricTiming timing {clock.tolerance (), [&] (std::uint64_t tick) { return clock.place (tick); }};
    Decoder decode (file);

    std::vector<MidiVoice> voices;
    std::vector<TrackTexts> texts (file.tracks.size ());
    std::vector<std::string> names;
    std::size_t noteCount = 0;
    for (std::size_t ti = 0; ti < file.tracks.size (); ++ti)
    {
        const MidiTrack& t = file.tracks[ti];
        std::string name;
        std::uint64_t trackEnd = 0;
        std::map<int, std::vector<const MidiEvent*>> byChannel;
        std::size_t lyricCount = 0, textCount = 0;
        for (const MidiEvent& e : t.events)
        {
            lyricCount += e.kind == MidiEvent::Lyric;
            textCount += e.kind == MidiEvent::Text;
        }
        texts[ti].lyrics.reserve (lyricCount);
        texts[ti].texts.reserve (textCount);
        for (const MidiEvent& e : t.events)
        {
            trackEnd = std::max (trackEnd, e.tick);
            if (e.kind == MidiEvent::TrackName && name.empty ())
                name = trimBlanks (decode (e.text));
            else if (e.kind == MidiEvent::NoteOn || e.kind == MidiEvent::NoteOff)
                byChannel[file.format == 0 ? e.channel : 0].push_back (&e);
            else if (e.kind == MidiEvent::Lyric)
                texts[ti].lyrics.push_back ({e.tick, decode (e.text)});
            else if (e.kind == MidiEvent::Text)
                texts[ti].texts.push_back ({e.tick, decode (e.text)});
        }
        // A format 0 file's one name, or the name of a format 1 file's first track
        // when it holds no notes (the conductor track), names the song.
        if (ti == 0 && (file.format == 0 || byChannel.empty ()))
            out.title = name;
        if (name.empty ())
            name = "Track " + std::to_string (ti + 1);
        names.push_back (name);
        for (auto& [channel, events] : byChannel)
        {
            MidiVoice v;
            v.name = byChannel.size () > 1 ? name + " ch " + std::to_string (channel + 1) : name;
            v.track = static_cast<int> (ti);
            collectNotes (events, trackEnd, v.notes, out.warnings, v.name);
            if (v.notes.empty ())
                continue;
            if ((noteCount += v.notes.size ()) > maxNotes)
            {
                error = "more than " + std::to_string (maxNotes) + " notes in the file";
                return false;
            }
            const auto order = [] (const SongNote& a, const SongNote& b) {
                return a.startTick != b.startTick ? a.startTick < b.startTick : a.pitch > b.pitch;
            };
            if (!std::is_sorted (v.notes.begin (), v.notes.end (), order))  // as they mostly are: spare the copies
                std::stable_sort (v.notes.begin (), v.notes.end (), order);
            voices.push_back (std::move (v));
        }
        if (owned)
            std::vector<MidiEvent> ().swap (owned->tracks[ti].events);
    }
    for (std::size_t i = 0; i < file.repairs.size (); ++i)
    {
        const MidiRepair& r = file.repairs[i];
        if (i == repairsSaid)
        {
            out.warnings.push_back (std::to_string (file.repairs.size () - i) + " more repairs of the same kinds in "
                                    "later tracks");
            break;
        }
        const auto track = static_cast<std::size_t> (r.track);
        const std::string name = track < names.size () ? names[track] : "track " + std::to_string (r.track + 1);
        out.warnings.push_back (name + " (track " + std::to_string (r.track + 1) + "): " + r.what
                                + (r.placed ? ", at " + clock.place (r.tick) : std::string ()));
    }
    decode.say (out.warnings);
    if (voices.empty ())
    {
        error = "the file holds no notes";
        return false;
    }

    bool lyricsInFile = false;
    for (const auto& t : texts)
        lyricsInFile = lyricsInFile || hasLyricWords (t);
    std::vector<TrackLyrics> words;
    std::vector<std::vector<std::string>> notices (texts.size ());  // what is said of each track's texts
    for (std::size_t ti = 0; ti < texts.size (); ++ti)
    {
        TrackWords w = readTrackWords (texts[ti], lyricsInFile, options.rawLyrics);
        notices[ti] = std::move (w.notices);
        texts[ti] = TrackTexts {};  // placed from here on as syllables
        if (w.syllables.empty ())
            continue;
        notices[ti].push_back (std::string ("words from its ") + (w.fromLyricEvents ? "lyric" : "text") + " events, "
                               + describe (w.convention));
        words.push_back ({names[ti], static_cast<int> (ti), std::move (w.syllables)});
    }

    const std::vector<int> singers = chooseSingers (voices, words, timing);
    std::vector<bool> sings (voices.size (), false);
    for (std::size_t w = 0; w < words.size (); ++w)
        if (singers[w] >= 0)
        {
            const MidiVoice& singer = voices[static_cast<std::size_t> (singers[w])];
            sings[static_cast<std::size_t> (singers[w])] = true;
            if (singer.track != words[w].track)
                notices[static_cast<std::size_t> (words[w].track)].push_back ("its words are sung by " + singer.name);
        }
    // A file of thousands of tracks is said of a few of them.
    std::size_t said = 0, unsaid = 0;
    for (std::size_t ti = 0; ti < notices.size (); ++ti)
        if (!notices[ti].empty () && ++said > tracksSaid)
            ++unsaid;
        else
            for (const auto& n : notices[ti])
                out.warnings.push_back (names[ti] + ": " + n);
    if (unsaid > 0)
        out.warnings.push_back (std::to_string (unsaid) + " more tracks with texts, not told one by one");
    for (std::size_t v = 0; v < voices.size (); ++v)
        if (sings[v])
            topNotesOnly (voices[v], out.warnings);
    placeLyrics (voices, words, singers, timing, out.warnings);
    std::vector<TrackLyrics> ().swap (words);

    for (auto& v : voices)
    {
        SongTrack t;
        t.name = v.name;
        t.notes = std::move (v.notes);
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

} // namespace

bool readMidiSong (const MidiFile& file, Song& out, std::string& error, const ReadOptions& options)
{
    return readSong (file, nullptr, out, error, options);
}

bool readMidiSong (MidiFile&& file, Song& out, std::string& error, const ReadOptions& options)
{
    return readSong (file, &file, out, error, options);
}

} // namespace Score
