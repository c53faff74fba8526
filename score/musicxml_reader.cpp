#include "score/musicxml_reader.h"

#include "score/text_encoding.h"
#include "score/typed_words.h"
#include "score/xml_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
#include <set>
#include <unordered_map>

namespace Score {

namespace {

using XmlElement = pugi::xml_node;

constexpr double same = 1e-6;  // quarter notes: far below any written duration
constexpr double ticksPerQuarter = 960.0;

/** One note or rest of a part, as written. */
struct ScoreNote
{
    double start = 0.0, end = 0.0;  // quarter notes from the start
    int pitch = -1;                 // -1 for a rest
    std::string voice;
    bool chord = false, tieStart = false, tieStop = false;
    bool anyWords = false;  // words of any verse: what picks the voice that sings
    bool hasText = false;   // the syllable of the verse asked for
    std::string text;
    bool begins = true, ends = true;
    bool elided = false;  // several syllables on this one note
    bool extend = false;  // the notes after it, up to the next syllable, hold it
    bool held = false;    // an extension line without a syllable
};

bool is (const XmlElement& e, const char* tag) { return std::strcmp (e.name (), tag) == 0; }

/** A number as written ("4", "-1", "0.5", "3.5" for an int reads 3); `fallback` for anything else. */
template <typename T>
T numberIn (const std::string& written, T fallback)
{
    const std::string t = trimBlanks (written);
    const char* begin = t.c_str () + (t.size () > 1 && t[0] == '+');
    T v = fallback;
    if (std::from_chars (begin, t.c_str () + t.size (), v).ec != std::errc ())
        return fallback;
    if constexpr (std::is_floating_point_v<T>)
        return std::isfinite (v) ? v : fallback;
    return v;
}

double number (const XmlElement& parent, const char* child, double fallback)
{
    return numberIn (textOf (parent.child (child)), fallback);
}

/** The text of a child element, or `fallback` when there is none. */
std::string childText (const XmlElement& parent, const char* child, const char* fallback = "")
{
    const XmlElement c = parent.child (child);
    return c ? textOf (c) : std::string (fallback);
}

int pitchOf (const XmlElement& note)
{
    XmlElement p = note.child ("pitch");
    const char* stepTag = "step";
    const char* octaveTag = "octave";
    if (!p && (p = note.child ("unpitched")))
    {
        stepTag = "display-step";
        octaveTag = "display-octave";
    }
    const std::string name = textOf (p.child (stepTag));
    if (name.size () != 1 || name[0] < 'A' || name[0] > 'G')
        return -1;
    static const int fromA[] = {9, 11, 0, 2, 4, 5, 7};
    const double midi = (number (p, octaveTag, 4.0) + 1.0) * 12.0 + fromA[name[0] - 'A'] + number (p, "alter", 0.0);
    return static_cast<int> (std::lround (std::clamp (midi, 0.0, 127.0)));
}

/** One <text> of a <lyric>, the <syllabic> before it, and whether an <elision> stands between it and the one before. */
struct LyricPart
{
    std::string syllabic, text;
    bool elided = false;
};

/**
 * What one <lyric> sings on its note. Syllables elided onto one note (and
 * texts that follow one another without an <elision>) are all sung there,
 * joined by the undertie; the first syllabic says whether the note begins a
 * word, the last whether it ends one.
 */
void takeParts (const std::vector<LyricPart>& parts, ScoreNote& n)
{
    std::string words;
    for (const auto& p : parts)
        words += (words.empty () ? "" : elisionMark) + p.text;
    const std::string first = parts.front ().syllabic, last = parts.back ().syllabic;
    n.hasText = true;
    n.text = toUtf8 (words);
    n.elided = parts.size () > 1;
    n.begins = first.empty () || first == "single" || first == "begin";
    n.ends = last.empty () || last == "single" || last == "end";
}

void readWords (const XmlElement& note, const std::string& verse, ScoreNote& n)
{
    for (const XmlElement& lyric : note.children ("lyric"))
    {
        std::vector<LyricPart> parts;
        std::string syllabic;
        bool elision = false;
        for (const XmlElement& c : lyric.children ())
        {
            if (is (c, "syllabic"))
                syllabic = textOf (c);
            else if (is (c, "elision"))
                elision = true;
            else if (is (c, "text") && !textOf (c).empty ())
            {
                parts.push_back ({syllabic, textOf (c), elision});
                syllabic.clear ();
                elision = false;
            }
        }
        const XmlElement extend = lyric.child ("extend");
        n.anyWords = n.anyWords || !parts.empty ();
        if (trimBlanks (lyric.attribute ("number").as_string ("1")) != verse)
            continue;
        if (parts.empty ())
            n.held = n.held || extend;
        else if (!n.hasText)
        {
            takeParts (parts, n);
            n.extend = extend && std::strcmp (extend.attribute ("type").value (), "stop") != 0;
        }
    }
}

void readTies (const XmlElement& note, ScoreNote& n)
{
    auto take = [&] (const XmlElement& parent, const char* tag) {
        for (const XmlElement& t : parent.children (tag))
        {
            n.tieStart = n.tieStart || std::strcmp (t.attribute ("type").value (), "start") == 0;
            n.tieStop = n.tieStop || std::strcmp (t.attribute ("type").value (), "stop") == 0;
        }
    };
    take (note, "tie");
    take (note.child ("notations"), "tied");
}

/** Walks a part's measures (or, timewise, its share of each measure) in time. */
class PartReader
{
public:
    PartReader (const std::string& id, const std::string& verse, std::map<double, double>& tempi,
                std::map<double, MeterChange>& meters, std::size_t& notesRead)
        : id_ (id), verse_ (verse), tempi_ (tempi), meters_ (meters), notesRead_ (notesRead)
    {
    }

    /** False, and why in `fault`, once the score passes a limit. */
    bool measure (const XmlElement& m)
    {
        pos_ = start_ = end_;
        for (const XmlElement& e : m.children ())
        {
            if (is (e, "attributes"))
                attributes (e);
            else if (is (e, "backup"))
                pos_ = std::max (start_, pos_ - length (e));
            else if (is (e, "forward"))
                pos_ += length (e);
            else if (is (e, "sound"))
                tempo (e);
            else if (is (e, "direction"))
                for (const XmlElement& s : e.children ("sound"))
                    tempo (s);
            else if (is (e, "note") && !e.child ("grace") && !note (e, m))
                return false;
            end_ = std::max (end_, pos_);
        }
        return true;
    }

    std::vector<ScoreNote> notes;
    std::string fault;

private:
    double length (const XmlElement& e) const
    {
        return std::clamp (number (e, "duration", 0.0) / divisions_, 0.0, 1e4);
    }

    void attributes (const XmlElement& e)
    {
        if (number (e, "divisions", 0.0) > 0.0)
            divisions_ = number (e, "divisions", 0.0);
        if (const XmlElement time = e.child ("time"))
        {
            // "3+2" beats are a bar of five; a beat type is a power of two.
            int beats = 0;
            const std::string written = childText (time, "beats");
            for (std::size_t a = 0, b = 0; a <= written.size (); a = b + 1)
            {
                b = std::min (written.find ('+', a), written.size ());
                beats += std::clamp (numberIn (written.substr (a, b - a), 0), 0, 1000);
            }
            const int type = numberIn (childText (time, "beat-type"), 0);
            if (beats > 0 && type > 0 && type <= 64 && (type & (type - 1)) == 0)
                meters_.emplace (pos_, MeterChange {pos_, beats, type});  // the first part to set one at a beat wins
        }
    }

    void tempo (const XmlElement& sound)
    {
        const double bpm = numberIn (sound.attribute ("tempo").value (), 0.0);
        if (bpm > 0.0)
            tempi_.emplace (pos_, std::clamp (bpm, 1.0, 1000.0));  // the first part to set one at a beat wins
    }

    bool note (const XmlElement& e, const XmlElement& measure)
    {
        if (++notesRead_ > mostScoreNotes)
        {
            fault = "a score of more than " + std::to_string (mostScoreNotes) + " notes";
            return false;
        }
        ScoreNote n;
        n.chord = e.child ("chord");
        n.start = n.chord ? lastStart_ : pos_;
        n.end = n.start + length (e);
        if (!n.chord)
        {
            lastStart_ = pos_;
            pos_ = n.end;
        }
        n.voice = childText (e, "voice", "1");
        if (!e.child ("rest") && !e.child ("cue"))
            n.pitch = pitchOf (e);
        readTies (e, n);
        readWords (e, verse_, n);
        if (n.text.size () > longestScoreText)
        {
            fault = "a lyric of " + std::to_string (n.text.size ()) + " bytes in measure "
                    + shortened (measure.attribute ("number").value ()) + " of part \"" + shortened (id_)
                    + "\" (at most " + std::to_string (longestScoreText) + ")";
            return false;
        }
        notes.push_back (std::move (n));
        return true;
    }

    std::string id_, verse_;
    std::map<double, double>& tempi_;
    std::map<double, MeterChange>& meters_;
    std::size_t& notesRead_;
    double divisions_ = 1.0, pos_ = 0.0, start_ = 0.0, end_ = 0.0, lastStart_ = 0.0;
};

/** The voice that sings, its top notes, its ties merged. Rests stay, as they end extension lines. */
std::vector<ScoreNote> sungLine (const std::vector<ScoreNote>& all)
{
    std::string voice;
    for (const auto& n : all)
        if (n.anyWords && voice.empty ())
            voice = n.voice;
    for (const auto& n : all)
        if (n.pitch >= 0 && voice.empty ())
            voice = n.voice;
    std::vector<ScoreNote> line;
    std::map<int, std::size_t> tied;  // pitch -> the note of `line` whose tie waits
    for (const auto& n : all)
    {
        if (n.voice != voice)
            continue;
        auto waiting = tied.find (n.pitch);
        std::size_t at = line.size () - 1;  // the note of `line` that this one became part of
        if (n.chord && !line.empty () && line.back ().pitch >= 0 && n.pitch >= 0)
        {
            ScoreNote& top = line.back ();
            if (!top.hasText && n.hasText)
            {
                const int pitch = top.pitch;
                top = n;
                top.pitch = pitch;
            }
            if (n.pitch > top.pitch)
            {
                top.pitch = n.pitch;
                top.tieStart = n.tieStart;
            }
        }
        else if (n.tieStop && !n.hasText && waiting != tied.end ()
                 && std::abs (line[waiting->second].end - n.start) < same)
        {
            at = waiting->second;
            ScoreNote& first = line[at];
            first.end = n.end;
            first.tieStart = n.tieStart;
            first.held = first.held || n.held;
        }
        else
        {
            at = line.size ();
            line.push_back (n);
        }
        if (line[at].pitch >= 0 && line[at].tieStart)
            tied[line[at].pitch] = at;
    }
    return line;
}

class TempoMap
{
public:
    explicit TempoMap (const std::map<double, double>& marks)
    {
        if (marks.empty () || marks.begin ()->first > same)
            tempi.push_back ({0.0, 120.0});
        for (const auto& [beat, bpm] : marks)
            if (tempi.empty () || tempi.back ().bpm != bpm)
                tempi.push_back ({tempi.empty () ? 0.0 : beat, bpm});
        double seconds = 0.0;
        for (std::size_t i = 0; i < tempi.size (); ++i)
        {
            if (i > 0)
                seconds += (tempi[i].beat - tempi[i - 1].beat) * 60.0 / tempi[i - 1].bpm;
            at_.push_back (seconds);
        }
    }

    double seconds (double beat) const
    {
        auto it = std::upper_bound (tempi.begin (), tempi.end (), beat,
                                    [] (double b, const TempoChange& t) { return b < t.beat; });
        const auto i = static_cast<std::size_t> (std::max<std::ptrdiff_t> (0, it - tempi.begin () - 1));
        return at_[i] + (beat - tempi[i].beat) * 60.0 / tempi[i].bpm;
    }

    std::vector<TempoChange> tempi;

private:
    std::vector<double> at_;
};

SongTrack track (const std::string& name, const std::vector<ScoreNote>& line, bool raw)
{
    SongTrack t;
    t.name = name;
    bool inWord = false, extending = false;
    for (const auto& n : line)
    {
        if (n.pitch < 0)
        {
            extending = false;
            continue;
        }
        SongNote s;
        s.startTick = static_cast<std::uint64_t> (std::llround (n.start * ticksPerQuarter));
        s.endTick = static_cast<std::uint64_t> (std::llround (n.end * ticksPerQuarter));
        s.start = n.start;  // beats until the tempo map is known
        s.end = n.end;
        s.pitch = n.pitch;
        if (n.hasText)
        {
            s.syllable.text = n.text;
            s.syllable.kind = raw || hasHint (n.text) ? Syllable::AsWritten
                              : n.elided                   ? Syllable::Elided
                                                           : syllableKind (n.begins, n.ends);
            inWord = s.syllable.kind != Syllable::AsWritten && !n.ends;
            extending = s.syllable.kind != Syllable::AsWritten && n.extend;
        }
        else if (!raw && (n.held || extending || inWord))
            s.syllable.kind = Syllable::Held;
        if (s.end > s.start)
            t.notes.push_back (s);
    }
    return t;
}

} // namespace

bool readMusicXml (const std::uint8_t* data, std::size_t size, const ReadOptions& options, Song& out,
                   std::string& error)
{
    return readMusicXml (std::vector<std::uint8_t> (data, data + size), options, out, error);
}

bool readMusicXml (std::vector<std::uint8_t>&& data, const ReadOptions& options, Song& out, std::string& error)
{
    out = Song {};
    std::vector<std::uint8_t> bytes = std::move (data);  // the tree points into them
    pugi::xml_document document;
    if (!parseXmlInPlace (bytes, document, error))
        return false;
    const XmlElement root = document.document_element ();
    const bool timewise = is (root, "score-timewise");
    if (!timewise && !is (root, "score-partwise"))
    {
        error = "XML, but not a MusicXML score (its root element is <" + shortened (root.name ()) + ">)";
        return false;
    }
    auto tooLong = [&] (const char* what, const std::string& text) {
        if (text.size () <= longestScoreText)
            return false;
        error = std::string ("a ") + what + " of " + std::to_string (text.size ()) + " bytes (at most "
                + std::to_string (longestScoreText) + ")";
        return true;
    };

    out.title = toUtf8 (childText (root.child ("work"), "work-title"));
    if (out.title.empty ())
        out.title = toUtf8 (childText (root, "movement-title"));
    if (tooLong ("title", out.title))
        return false;

    std::unordered_map<std::string, std::string> names;
    for (const XmlElement& part : root.child ("part-list").children ("score-part"))
        if (const XmlElement name = part.child ("part-name"))
            if (tooLong ("part name", names[part.attribute ("id").value ()] = toUtf8 (textOf (name))))
                return false;

    // Each part's measures in order: partwise they are its children, timewise its share of each measure.
    std::vector<std::pair<std::string, std::vector<XmlElement>>> parts;
    std::unordered_map<std::string, std::size_t> partIndex;  // a score may have parts by the thousand
    auto partNamed = [&] (const std::string& id) -> std::vector<XmlElement>& {
        const auto [at, added] = partIndex.emplace (id, parts.size ());
        if (added)
            parts.push_back ({id, {}});
        return parts[at->second].second;
    };
    for (const XmlElement& outer : root.children (timewise ? "measure" : "part"))
        for (const XmlElement& inner : outer.children (timewise ? "part" : "measure"))
            partNamed ((timewise ? inner : outer).attribute ("id").value ()).push_back (inner);

    const std::string verse = std::to_string (options.verse);
    std::map<double, double> marks;
    std::map<double, MeterChange> meters;
    bool anyWords = false, verseWords = false;
    std::vector<SongTrack> tracks;
    std::set<std::string> trackNames;
    std::size_t notesRead = 0;
    for (const auto& [id, measures] : parts)
    {
        if (tooLong ("part id", id))
            return false;
        PartReader reader (id, verse, marks, meters, notesRead);
        for (const XmlElement& m : measures)
            if (!reader.measure (m))
            {
                error = reader.fault;
                return false;
            }
        for (const auto& n : reader.notes)
        {
            anyWords = anyWords || n.anyWords;
            verseWords = verseWords || n.hasText;
        }
        const auto named = names.find (id);
        std::string name = named != names.end () && !named->second.empty () ? named->second : toUtf8 (id);
        if (name.empty ())
            name = "Part " + std::to_string (tracks.size () + 1);
        if (trackNames.count (name))
            name += " (" + std::to_string (tracks.size () + 1) + ")";  // parts are instruments of their own
        SongTrack t = track (name, sungLine (reader.notes), options.rawLyrics);
        if (!t.notes.empty ())
        {
            trackNames.insert (t.name);
            tracks.push_back (std::move (t));
        }
    }
    if (tracks.empty ())
    {
        error = "the score holds no notes";
        return false;
    }
    if (anyWords && !verseWords)
        out.warnings.push_back ("the score has no lyrics of verse " + verse);

    const TempoMap time (marks);
    out.tempi = time.tempi;
    for (const auto& [beat, meter] : meters)
        if (out.meters.empty () || out.meters.back ().numerator != meter.numerator
            || out.meters.back ().denominator != meter.denominator)
            out.meters.push_back (meter);
    for (auto& t : tracks)
    {
        for (auto& n : t.notes)
        {
            n.start = time.seconds (n.start);
            n.end = time.seconds (n.end);
        }
        typeLyrics (t.notes);
        out.tracks.push_back (std::move (t));
    }
    return true;
}

} // namespace Score
