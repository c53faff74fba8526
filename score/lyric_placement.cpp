#include "score/lyric_placement.h"

#include "score/text_encoding.h"

#include <algorithm>
#include <map>
#include <utility>

namespace Score {

namespace {

constexpr std::size_t saidPlaces = 5;      // messages of one kind that name their place; the rest are counted
constexpr std::size_t window = 32;         // note starts looked at for one text: chords of many voices end there
constexpr std::size_t longestElision = 256;  // bytes of texts sung together on one note

struct NoteStart
{
    std::uint64_t tick;
    int voice;
};

std::vector<NoteStart> noteStarts (const std::vector<MidiVoice>& voices)
{
    std::vector<NoteStart> starts;
    std::size_t count = 0;
    for (const auto& v : voices)
        count += v.notes.size ();
    starts.reserve (count);  // a long song's growing copies would take twice the list at their peak
    for (std::size_t v = 0; v < voices.size (); ++v)
        for (const auto& n : voices[v].notes)
            starts.push_back ({n.startTick, static_cast<int> (v)});
    std::stable_sort (starts.begin (), starts.end (),
                      [] (const NoteStart& a, const NoteStart& b) { return a.tick < b.tick; });
    return starts;
}

/** The voices with a note that a text at `tick` reaches, at most `window` note starts looked at. */
template <typename Visit>
void voicesReached (const std::vector<NoteStart>& starts, std::uint64_t tick, std::uint64_t tolerance, Visit visit)
{
    auto it = std::lower_bound (starts.begin (), starts.end (), tick,
                                [] (const NoteStart& s, std::uint64_t t) { return s.tick < t; });
    for (std::size_t k = 0; it != starts.end () && k < window && it->tick - tick <= tolerance; ++it, ++k)
        visit (it->voice);
}

bool beginsWord (Syllable::Kind k) { return k == Syllable::Single || k == Syllable::Begin || k == Syllable::Elided; }

std::string quoted (const std::string& text, std::size_t longest = 60)
{
    if (text.size () <= longest)
        return "\"" + text + "\"";
    std::size_t cut = longest;
    while (cut > 0 && (static_cast<unsigned char> (text[cut]) & 0xC0) == 0x80)
        --cut;
    return "\"" + text.substr (0, cut) + "...\"";
}

/** Says the first few of one kind of message in full, and how many more there were. */
class Said
{
public:
    Said (std::vector<std::string>& warnings, std::string more) : warnings_ (warnings), more_ (std::move (more)) {}
    ~Said ()
    {
        if (count_ > saidPlaces)
            warnings_.push_back (std::to_string (count_ - saidPlaces) + " more " + more_);
    }
    bool wanted () { return ++count_ <= saidPlaces; }
    void say (std::string message) { warnings_.push_back (std::move (message)); }

private:
    std::vector<std::string>& warnings_;
    std::string more_;
    std::size_t count_ = 0;
};

struct Placement
{
    std::vector<MidiVoice>& voices;
    const LyricTiming& timing;
    std::vector<std::vector<std::uint32_t>> texts;  // per voice and note: how many texts reached it
    Said& conflicts;
    std::size_t cutShort = 0;

    /** Puts a syllable on the note that starts at or just after `tick`; false when the voice has none there. */
    bool attach (int voice, std::uint64_t tick, const Syllable& add)
    {
        auto& notes = voices[static_cast<std::size_t> (voice)].notes;
        auto it = std::lower_bound (notes.begin (), notes.end (), tick,
                                    [] (const SongNote& n, std::uint64_t t) { return n.startTick < t; });
        if (it == notes.end () || it->startTick - tick > timing.tolerance)
            return false;
        Syllable& s = it->syllable;
        auto& count = texts[static_cast<std::size_t> (voice)][static_cast<std::size_t> (it - notes.begin ())];
        if (add.kind == Syllable::Held)
            return true;
        ++count;
        if (s.kind == Syllable::Free || s.kind == Syllable::Held)
            s = add;
        else if (add.kind == Syllable::AsWritten || s.kind == Syllable::AsWritten)
        {
            --count;
            if (conflicts.wanted ())
                conflicts.say (voices[static_cast<std::size_t> (voice)].name + ": the note at "
                               + timing.place (it->startTick) + " has " + quoted (s.text) + " already; "
                               + quoted (add.text) + " is left out");
        }
        else if (s.text.size () >= longestElision)
            ++cutShort;
        else
        {
            s.text += (beginsWord (add.kind) ? elisionMark : "") + add.text;
            s.kind = Syllable::Elided;
        }
        return true;
    }
};

} // namespace

std::vector<int> chooseSingers (const std::vector<MidiVoice>& voices, const std::vector<TrackLyrics>& words,
                                const LyricTiming& timing)
{
    std::map<int, std::vector<int>> voicesOfTrack;
    for (std::size_t v = 0; v < voices.size (); ++v)
        voicesOfTrack[voices[v].track].push_back (static_cast<int> (v));
    const std::vector<NoteStart> starts = noteStarts (voices);
    std::vector<int> singers;
    std::vector<std::size_t> counted (voices.size (), 0);  // the last text each voice was counted for, from 1
    std::size_t text = 0;
    for (const auto& w : words)
    {
        const auto own = voicesOfTrack.find (w.track);
        if (own != voicesOfTrack.end () && own->second.size () == 1)
        {
            singers.push_back (own->second.front ());
            continue;
        }
        std::map<int, std::size_t> landed;
        for (const auto& s : w.syllables)
        {
            if (s.syllable.kind == Syllable::Held)
                continue;
            ++text;
            voicesReached (starts, s.tick, timing.tolerance, [&] (int v) {
                if (std::exchange (counted[static_cast<std::size_t> (v)], text) != text)
                    ++landed[v];
            });
        }
        int best = -1;
        std::size_t most = 0;
        for (const auto& [voice, count] : landed)
            if (count > most)
            {
                best = voice;
                most = count;
            }
        singers.push_back (best);
    }
    return singers;
}

void placeLyrics (std::vector<MidiVoice>& voices, const std::vector<TrackLyrics>& words, const std::vector<int>& singers,
                  const LyricTiming& timing, std::vector<std::string>& warnings)
{
    struct Lyric
    {
        std::uint64_t tick;
        const Syllable* syllable;
        std::size_t words;  // index into `words`
    };
    std::vector<Lyric> lyrics;
    std::size_t count = 0;
    for (const auto& w : words)
        count += w.syllables.size ();
    lyrics.reserve (count);
    for (std::size_t w = 0; w < words.size (); ++w)
        for (const auto& s : words[w].syllables)
            lyrics.push_back ({s.tick, &s.syllable, w});
    std::stable_sort (lyrics.begin (), lyrics.end (), [] (const Lyric& a, const Lyric& b) { return a.tick < b.tick; });

    const std::vector<NoteStart> starts = noteStarts (voices);
    Said conflicts (warnings, "texts left out where a note had one to type as written");
    Placement placement {voices, timing, {}, conflicts};
    for (const auto& v : voices)
        placement.texts.emplace_back (v.notes.size (), 0u);
    {
        Said unplaced (warnings, "lyrics stand on no note and are left out");
        for (const Lyric& l : lyrics)
        {
            const int singer = singers[l.words];
            bool placed = singer >= 0 && placement.attach (singer, l.tick, *l.syllable);
            if (!placed)
            {
                int first = -1;
                voicesReached (starts, l.tick, timing.tolerance, [&] (int v) {
                    if (first < 0 || v < first)
                        first = v;
                });
                placed = first >= 0 && placement.attach (first, l.tick, *l.syllable);
            }
            if (!placed && l.syllable->kind != Syllable::Held && unplaced.wanted ())
                unplaced.say (words[l.words].name + ": lyric " + quoted (l.syllable->text) + " at "
                              + timing.place (l.tick) + " stands on no note and is left out");
        }
    }

    Said together (warnings, "notes are reached by several texts and sing them together");
    for (std::size_t v = 0; v < voices.size (); ++v)
        for (std::size_t i = 0; i < voices[v].notes.size (); ++i)
            if (placement.texts[v][i] > 1 && together.wanted ())
                together.say (voices[v].name + ": the note at " + timing.place (voices[v].notes[i].startTick)
                              + " is reached by " + std::to_string (placement.texts[v][i])
                              + " texts; it sings them together: " + quoted (voices[v].notes[i].syllable.text));
    if (placement.cutShort > 0)
        warnings.push_back (std::to_string (placement.cutShort) + " text(s) left out where a note had "
                            + std::to_string (longestElision) + " bytes of texts to sing together already");
}

} // namespace Score
