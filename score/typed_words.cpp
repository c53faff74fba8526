#include "score/typed_words.h"

#include "score/hold_places.h"
#include "score/song.h"

#include "phoneme/lyric_converter.h"

#include <algorithm>
#include <optional>

namespace Score {

namespace {

using Elements = std::vector<std::string>;

constexpr std::size_t longestWord = 256;  // bytes

/**
 * Puts `wanted[j]` holds on each syllable j. A hyphen's place among the
 * letters only roughly selects the syllable it holds, so the converter tells
 * which syllable each place holds; of the places that hold syllable j, the
 * one nearest `target[j]` wins. A syllable that no place reaches passes its
 * holds to the nearest one that can take them, earlier first.
 */
std::string placeHolds (const std::string& text, const Zelmor::LyricLayout& layout, const Elements& elements,
                        const std::vector<SungSyllable>& base, const std::vector<int>& wanted,
                        const std::vector<std::size_t>& target, bool withLongMarks)
{
    const std::size_t k = base.size ();
    const auto reach = holdPlaces (text, layout, elements, base, target, withLongMarks);
    std::vector<int> gained;
    std::vector<int> placed (k, 0);
    for (std::size_t j = 0; j < k; ++j)
        for (std::size_t d = 0; wanted[j] > 0 && d < k; ++d)
        {
            if (d <= j && reach[j - d].mark)
            {
                placed[j - d] += wanted[j];
                break;
            }
            if (j + d < k && reach[j + d].mark)
            {
                placed[j + d] += wanted[j];
                break;
            }
        }
    std::string typed = text;
    std::vector<std::size_t> order (k);
    for (std::size_t j = 0; j < k; ++j)
        order[j] = j;
    // From the back, so that earlier places keep their offsets.
    std::sort (order.begin (), order.end (), [&] (std::size_t a, std::size_t b) { return reach[a].at > reach[b].at; });
    for (std::size_t j : order)
        for (int i = 0; i < placed[j]; ++i)
            typed.insert (reach[j].at, reach[j].mark);
    return gainedHolds (convertText (typed), base, gained) && gained == placed ? typed : std::string ();
}

struct ScoreSyllable
{
    std::string text;
    int holds = 0;
};

/**
 * One word as a singer types it. The word's notes are the score's syllables
 * and their holds. When the converter finds as many syllables as the score,
 * each is held as the score holds it. When it finds another count, the word
 * still gets one element a note as long as it has at least as many notes as
 * elements: the missing holds are spread evenly over its syllables, any
 * remainder on the later ones. With fewer notes than elements nothing is
 * held, and the elements left over run on to the notes after the word until
 * the next word begins, as in the host. So no note is left without a sound of
 * the word and no syllable is made up. A word whose text holds its own marks
 * keeps them and only gains what it lacks.
 */
std::string typeWord (const std::vector<ScoreSyllable>& score)
{
    std::string text;
    std::vector<std::size_t> ends;
    std::size_t notes = 0;
    for (const auto& s : score)
    {
        text += s.text;
        ends.push_back (text.size ());
        notes += 1 + static_cast<std::size_t> (s.holds);
    }
    // Some places for a mark still cost a conversion of the whole text (inside a
    // word that only long-vowel marks hold): a run of syllables that never ends a
    // word (a karaoke song without blanks) is typed as it stands.
    if (text.size () > longestWord)
        return text;
    Zelmor::LyricLayout layout;
    const Elements base = convertText (text, &layout);
    std::vector<SungSyllable> sung;
    if (!sungSyllables (base, sung) || sung.empty ())
        return text;
    const std::size_t k = sung.size ();
    std::vector<int> wanted (k, 0);
    std::vector<std::size_t> target (k);
    for (std::size_t j = 0; j < k; ++j)
    {
        if (k == score.size ())
        {
            wanted[j] = std::max (0, score[j].holds - sung[j].holds);
            target[j] = ends[j];
        }
        else
        {
            const std::size_t extra = notes > base.size () ? notes - base.size () : 0;
            wanted[j] = static_cast<int> ((j + 1) * extra / k - j * extra / k);
            target[j] = text.size () * (j + 1) / k;
        }
    }
    if (std::all_of (wanted.begin (), wanted.end (), [] (int w) { return w == 0; }))
        return text;
    // Long-vowel marks and hyphens may disturb each other in a text that mixes
    // kana and letters; hyphens alone never do.
    for (const bool withLongMarks : {true, false})
    {
        const std::string typed = placeHolds (text, layout, base, sung, wanted, target, withLongMarks);
        if (!typed.empty ())
            return typed;
    }
    return text;
}

/**
 * Elided syllables and the notes that hold them, in the host's own form: the
 * syllables as written and in brackets every sound the converter gives them,
 * so that all are sung on the one note instead of running on to the notes
 * after it; each note that holds them "[-]", the last with the closing sounds
 * of the last syllable, as the converter deals a held word's.
 */
std::vector<std::string> typeElided (const std::string& text, std::size_t holds)
{
    std::vector<std::string> typed (1 + holds, "[-]");
    std::string spaced;
    const std::string mark = elisionMark;
    for (std::size_t i = 0; i < text.size ();)
        if (text.compare (i, mark.size (), mark) == 0)
        {
            spaced += ' ';
            i += mark.size ();
        }
        else
            spaced += text[i++];
    std::vector<std::string> sounds;
    std::size_t closing = 0;  // where the closing sounds of the last syllable begin
    for (const auto& element : convertText (spaced))
    {
        std::vector<std::string> parts;
        for (const auto& token : soundTokens (element))
            if (token != "-")
                parts.push_back (token);
        if (parts.empty ())
            continue;
        closing = sounds.size () + Zelmor::findNucleus (parts) + 1;
        sounds.insert (sounds.end (), parts.begin (), parts.end ());
    }
    typed[0] = text;
    if (sounds.empty ())
        return typed;
    if (holds == 0)
        closing = sounds.size ();
    std::string hint, tail;
    for (std::size_t k = 0; k < sounds.size (); ++k)
        (k < closing ? hint : tail) += (k < closing ? (hint.empty () ? "" : " ") : " ") + sounds[k];
    typed[0] += "[" + hint + "]";
    if (!tail.empty ())
        typed.back () = "[-" + tail + "]";
    return typed;
}

} // namespace

std::vector<std::string> typedWords (const std::vector<Syllable>& notes)
{
    struct Word
    {
        std::size_t first = 0;
        std::vector<ScoreSyllable> syllables;
        bool ended = false;  ///< takes holds still, but no more syllables
    };
    std::vector<std::string> typed (notes.size ());
    std::optional<Word> word;
    // After a note that brings its own phonemes, a held note says so itself: left
    // empty, it would take the next of the sounds the host finds in that text.
    bool afterOwnSounds = false;
    auto finish = [&] {
        if (word)
            typed[word->first] = typeWord (word->syllables);
        word.reset ();
    };
    for (std::size_t i = 0; i < notes.size (); ++i)
    {
        const Syllable& s = notes[i];
        switch (s.kind)
        {
        case Syllable::Held:
            if (word)
                ++word->syllables.back ().holds;
            else if (afterOwnSounds)
                typed[i] = "[-]";
            continue;
        case Syllable::Single:
        case Syllable::Begin:
        case Syllable::Middle:
        case Syllable::End:
            if (!word || word->ended || s.kind == Syllable::Single || s.kind == Syllable::Begin)
            {
                finish ();
                word = Word {i, {}, false};
            }
            word->syllables.push_back ({s.text, 0});
            word->ended = s.kind == Syllable::Single || s.kind == Syllable::End;
            break;
        case Syllable::AsWritten:
            finish ();
            typed[i] = s.text;
            afterOwnSounds = hasHint (s.text);
            continue;
        case Syllable::Elided:
        {
            finish ();
            std::size_t holds = 0;
            while (i + 1 + holds < notes.size () && notes[i + 1 + holds].kind == Syllable::Held)
                ++holds;
            if (s.text.size () > longestWord)
            {
                typed[i] = s.text;
                continue;
            }
            const auto elided = typeElided (s.text, holds);
            std::copy (elided.begin (), elided.end (), typed.begin () + static_cast<std::ptrdiff_t> (i));
            i += holds;
            continue;
        }
        case Syllable::Free:
            finish ();
            break;
        }
        afterOwnSounds = false;
    }
    finish ();
    return typed;
}

void typeLyrics (std::vector<SongNote>& notes)
{
    std::vector<Syllable> syllables;
    syllables.reserve (notes.size ());
    for (const auto& n : notes)
        syllables.push_back (n.syllable);
    const auto typed = typedWords (syllables);
    for (std::size_t i = 0; i < notes.size (); ++i)
        notes[i].lyric = typed[i];
}

} // namespace Score
