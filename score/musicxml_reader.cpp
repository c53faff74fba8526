#include "score/musicxml_reader.h"

#include "score/text_encoding.h"
#include "score/typed_words.h"
#include "score/xml_text.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace Score {

namespace {

using juce::XmlElement;

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

std::string textOf (const XmlElement& e) { return trimBlanks (e.getAllSubText ().toStdString ()); }

double number (const XmlElement& parent, const char* child, double fallback)
{
    const XmlElement* c = parent.getChildByName (child);
    const std::string t = c ? textOf (*c) : std::string ();
    const double v = t.empty () ? fallback : juce::String (t).getDoubleValue ();
    return std::isfinite (v) ? v : fallback;
}

int pitchOf (const XmlElement& note)
{
    const XmlElement* p = note.getChildByName ("pitch");
    const char* stepTag = "step";
    const char* octaveTag = "octave";
    if (!p && (p = note.getChildByName ("unpitched")))
    {
        stepTag = "display-step";
        octaveTag = "display-octave";
    }
    const XmlElement* step = p ? p->getChildByName (stepTag) : nullptr;
    const std::string name = step ? textOf (*step) : std::string ();
    if (name.size () != 1 || name[0] < 'A' || name[0] > 'G')
        return -1;
    static const int fromA[] = {9, 11, 0, 2, 4, 5, 7};
    const double midi = (number (*p, octaveTag, 4.0) + 1.0) * 12.0 + fromA[name[0] - 'A'] + number (*p, "alter", 0.0);
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
    for (auto* lyric : note.getChildWithTagNameIterator ("lyric"))
    {
        std::vector<LyricPart> parts;
        std::string syllabic;
        bool elision = false;
        for (auto* c : lyric->getChildIterator ())
        {
            if (c->hasTagName ("syllabic"))
                syllabic = textOf (*c);
            else if (c->hasTagName ("elision"))
                elision = true;
            else if (c->hasTagName ("text") && !textOf (*c).empty ())
            {
                parts.push_back ({syllabic, textOf (*c), elision});
                syllabic.clear ();
                elision = false;
            }
        }
        const XmlElement* extend = lyric->getChildByName ("extend");
        n.anyWords = n.anyWords || !parts.empty ();
        if (lyric->getStringAttribute ("number", "1").trim ().toStdString () != verse)
            continue;
        if (parts.empty ())
            n.held = n.held || extend;
        else if (!n.hasText)
        {
            takeParts (parts, n);
            n.extend = extend && extend->getStringAttribute ("type") != "stop";
        }
    }
}

void readTies (const XmlElement& note, ScoreNote& n)
{
    auto take = [&] (const XmlElement& parent, const char* tag) {
        for (auto* t : parent.getChildWithTagNameIterator (tag))
        {
            n.tieStart = n.tieStart || t->getStringAttribute ("type") == "start";
            n.tieStop = n.tieStop || t->getStringAttribute ("type") == "stop";
        }
    };
    take (note, "tie");
    if (const XmlElement* notations = note.getChildByName ("notations"))
        take (*notations, "tied");
}

/** Walks a part's measures (or, timewise, its share of each measure) in time. */
class PartReader
{
public:
    PartReader (const std::string& verse, std::map<double, double>& tempi, std::map<double, MeterChange>& meters)
        : verse_ (verse), tempi_ (tempi), meters_ (meters)
    {
    }

    void measure (const XmlElement& m)
    {
        pos_ = start_ = end_;
        for (auto* e : m.getChildIterator ())
        {
            if (e->hasTagName ("attributes"))
                attributes (*e);
            else if (e->hasTagName ("backup"))
                pos_ = std::max (start_, pos_ - length (*e));
            else if (e->hasTagName ("forward"))
                pos_ += length (*e);
            else if (e->hasTagName ("sound"))
                tempo (*e);
            else if (e->hasTagName ("direction"))
                for (auto* s : e->getChildWithTagNameIterator ("sound"))
                    tempo (*s);
            else if (e->hasTagName ("note") && !e->getChildByName ("grace"))
                note (*e);
            end_ = std::max (end_, pos_);
        }
    }

    std::vector<ScoreNote> notes;

private:
    double length (const XmlElement& e) const
    {
        return std::clamp (number (e, "duration", 0.0) / divisions_, 0.0, 1e4);
    }

    void attributes (const XmlElement& e)
    {
        if (number (e, "divisions", 0.0) > 0.0)
            divisions_ = number (e, "divisions", 0.0);
        if (const XmlElement* time = e.getChildByName ("time"))
        {
            // "3+2" beats are a bar of five; a beat type is a power of two.
            int beats = 0;
            for (const auto& part : juce::StringArray::fromTokens (time->getChildElementAllSubText ("beats", {}), "+", {}))
                beats += std::clamp (part.trim ().getIntValue (), 0, 1000);
            const int type = time->getChildElementAllSubText ("beat-type", {}).trim ().getIntValue ();
            if (beats > 0 && type > 0 && type <= 64 && (type & (type - 1)) == 0)
                meters_.emplace (pos_, MeterChange {pos_, beats, type});  // the first part to set one at a beat wins
        }
    }

    void tempo (const XmlElement& sound)
    {
        const double bpm = sound.getDoubleAttribute ("tempo", 0.0);
        if (std::isfinite (bpm) && bpm > 0.0)
            tempi_.emplace (pos_, std::clamp (bpm, 1.0, 1000.0));  // the first part to set one at a beat wins
    }

    void note (const XmlElement& e)
    {
        ScoreNote n;
        n.chord = e.getChildByName ("chord") != nullptr;
        n.start = n.chord ? lastStart_ : pos_;
        n.end = n.start + length (e);
        if (!n.chord)
        {
            lastStart_ = pos_;
            pos_ = n.end;
        }
        n.voice = e.getChildElementAllSubText ("voice", "1").trim ().toStdString ();
        if (!e.getChildByName ("rest") && !e.getChildByName ("cue"))
            n.pitch = pitchOf (e);
        readTies (e, n);
        readWords (e, verse_, n);
        notes.push_back (n);
    }

    std::string verse_;
    std::map<double, double>& tempi_;
    std::map<double, MeterChange>& meters_;
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
    out = Song {};
    const std::unique_ptr<XmlElement> root = parseXml (data, size, error);
    if (!root)
        return false;
    const bool timewise = root->hasTagName ("score-timewise");
    if (!timewise && !root->hasTagName ("score-partwise"))
    {
        error = "XML, but not a MusicXML score (its root element is <" + root->getTagName ().toStdString () + ">)";
        return false;
    }

    if (const XmlElement* work = root->getChildByName ("work"))
        out.title = toUtf8 (trimBlanks (work->getChildElementAllSubText ("work-title", {}).toStdString ()));
    if (out.title.empty ())
        out.title = toUtf8 (trimBlanks (root->getChildElementAllSubText ("movement-title", {}).toStdString ()));

    std::map<std::string, std::string> names;
    if (const XmlElement* list = root->getChildByName ("part-list"))
        for (auto* part : list->getChildWithTagNameIterator ("score-part"))
            if (const XmlElement* name = part->getChildByName ("part-name"))
                names[part->getStringAttribute ("id").toStdString ()] = toUtf8 (textOf (*name));

    // Each part's measures in order: partwise they are its children, timewise its share of each measure.
    std::vector<std::pair<std::string, std::vector<const XmlElement*>>> parts;
    auto partNamed = [&] (const std::string& id) -> std::vector<const XmlElement*>& {
        for (auto& p : parts)
            if (p.first == id)
                return p.second;
        parts.push_back ({id, {}});
        return parts.back ().second;
    };
    for (auto* outer : root->getChildWithTagNameIterator (timewise ? "measure" : "part"))
        for (auto* inner : outer->getChildWithTagNameIterator (timewise ? "part" : "measure"))
            partNamed ((timewise ? inner : outer)->getStringAttribute ("id").toStdString ()).push_back (inner);

    const std::string verse = std::to_string (options.verse);
    std::map<double, double> marks;
    std::map<double, MeterChange> meters;
    bool anyWords = false, verseWords = false;
    std::vector<SongTrack> tracks;
    for (const auto& [id, measures] : parts)
    {
        PartReader reader (verse, marks, meters);
        for (const XmlElement* m : measures)
            reader.measure (*m);
        for (const auto& n : reader.notes)
        {
            anyWords = anyWords || n.anyWords;
            verseWords = verseWords || n.hasText;
        }
        std::string name = names.count (id) && !names[id].empty () ? names[id] : id;
        if (name.empty ())
            name = "Part " + std::to_string (tracks.size () + 1);
        for (const auto& t : tracks)
            if (t.name == name)
                name += " (" + std::to_string (tracks.size () + 1) + ")";  // parts are instruments of their own
        SongTrack t = track (name, sungLine (reader.notes), options.rawLyrics);
        if (!t.notes.empty ())
            tracks.push_back (std::move (t));
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
