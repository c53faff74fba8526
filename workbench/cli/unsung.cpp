#include "workbench/cli/unsung.h"

#include "workbench/cli/host_notes.h"
#include "workbench/cli/report.h"

#include "score/song_position.h"
#include "score/syllable.h"

#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"
#include "phoneme/phoneme_inventory.h"

#include <utf8.h>

#include <algorithm>
#include <sstream>

namespace Workbench {

namespace {

constexpr std::size_t soundsANote = 8;  // a record has eight phoneme entries

std::string trimmed (const std::string& s)
{
    const auto first = s.find_first_not_of (" \t");
    if (first == std::string::npos)
        return {};
    return s.substr (first, s.find_last_not_of (" \t") - first + 1);
}

std::vector<std::string> tokens (const std::string& s)
{
    std::istringstream in (s);
    std::vector<std::string> out;
    for (std::string t; in >> t;)
        out.push_back (t);
    return out;
}

std::vector<std::string> convert (const std::string& word)
{
    const auto* dictionary = Zelmor::dictionaryHolderMap ();
    if (!dictionary)
        return {};
    try
    {
        return Zelmor::convertLyric (word, *dictionary);
    }
    catch (const std::exception&)
    {
        return {};  // the agent took the word, so it is valid UTF-8; a reader of the outcome may not be so sure
    }
}

/** What the converter makes something of: letters, kana, blanks, and the marks it drops or holds by. */
bool understood (char32_t c)
{
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))
        return true;
    if (c < 0x80)
        return c <= ' ' || std::string_view ("'-.,:;()\"!?/").find (static_cast<char> (c)) != std::string_view::npos;
    // U+203F, the undertie, joins elided syllables sung on one note ("to‿a"): a joiner, not a word.
    return c == Zelmor::longVowelMark || c == 0x3000 || c == 0x203F || Zelmor::foldKana (c) != 0;
}

std::string quoted (const std::string& s) { return "\"" + s + "\""; }

std::string listed (const std::vector<std::string>& sounds)
{
    std::string out;
    for (std::size_t i = 0; i < sounds.size (); ++i)
        out += (i == 0 ? "" : i + 1 == sounds.size () ? " and " : ", ") + quoted (sounds[i]);
    return out;
}

/** "Voice, 3:2 (4.50 s), D4": the track, the place and the note, as every message about a note begins. */
std::string where (const Outcome& outcome, const Received& synth, const HostNote& note)
{
    return synth.track + ", " + Score::placeInSong (outcome.meters, note.startBeat, note.start) + ", "
           + pitchName (static_cast<float> ((note.pitch - 69) * 100));
}

Notice about (const Outcome& outcome, std::size_t s, const HostNote& note, const std::string& word)
{
    Notice n;
    n.synthesiser = s;
    n.track = outcome.synthesisers[s].track;
    n.seconds = note.start;
    n.beats = note.startBeat;
    n.pitch = note.pitch;
    n.word = word;
    n.markStart = note.start;
    n.markEnd = note.end;
    n.markPitch = note.pitch;
    return n;
}

} // namespace

std::string notUnderstood (const std::string& word)
{
    std::string out;
    if (word == "0")
        return out;  // the converter's word for silence
    try
    {
        for (auto it = word.begin (); it != word.end ();)
        {
            const auto start = it;
            const char32_t c = utf8::next (it, word.end ());
            const std::string character (start, it);
            if (!understood (c) && out.find (character) == std::string::npos)
                out += character;
        }
    }
    catch (const std::exception&)
    {
        return word;
    }
    return out;
}

namespace {

/** Text of the word on note `i` that has no pronunciation. */
void checkUnderstood (const Outcome& outcome, std::size_t s, std::size_t i, std::vector<Notice>& out)
{
    const auto& synth = outcome.synthesisers[s];
    const HostNote& note = synth.hostNotes[i];
    const std::string word = wordOf (note.lyric), hint = hintOf (note.lyric);
    const std::string bad = notUnderstood (word);
    const bool silent = convert (word).empty ();
    if (bad.empty () && !silent)
        return;
    Notice n = about (outcome, s, note, word);
    n.kind = Notice::NotUnderstood;
    n.text = bad.empty () ? word : bad;
    n.sungAs = hint.empty () ? "ah" : hint;
    n.message = "not understood: " + where (outcome, synth, note) + ": "
                + (n.text == word ? quoted (word) : quoted (n.text) + " in " + quoted (word))
                + (silent ? " has no pronunciation; the note sings the default " + quoted (n.sungAs)
                          : " has no pronunciation and is left out; the note sings " + quoted (n.sungAs));
    out.push_back (std::move (n));
}

/**
 * The sounds the converter gives the word on note `i` that no note sings:
 * each following note of the part without a word of its own sings the next
 * one, as long as it does. Marks the notes that sing the word in `covered`.
 */
void checkWord (const Outcome& outcome, std::size_t s, std::size_t i, std::vector<bool>& covered,
                std::vector<Notice>& out)
{
    const auto& synth = outcome.synthesisers[s];
    const auto& notes = synth.hostNotes;
    const std::string word = wordOf (notes[i].lyric);
    const auto elements = convert (word);
    if (elements.empty () || trimmed (elements[0]) != hintOf (notes[i].lyric))
        return;
    std::size_t k = 1, j = i + 1;
    while (k < elements.size () && j < notes.size () && notes[j].part == notes[i].part
           && wordOf (notes[j].lyric).empty () && hintOf (notes[j].lyric) == trimmed (elements[k]))
        ++k, ++j;
    std::fill (covered.begin () + static_cast<std::ptrdiff_t> (i), covered.begin () + static_cast<std::ptrdiff_t> (j), true);
    if (k < elements.size ())
    {
        Notice n = about (outcome, s, notes[i], word);
        n.kind = Notice::NotSung;
        for (std::size_t m = k; m < elements.size (); ++m)
            n.sounds.push_back (trimmed (elements[m]));
        n.markStart = notes[j - 1].start;
        n.markEnd = notes[j - 1].end;
        n.markPitch = notes[j - 1].pitch;
        n.message = "not sung: " + where (outcome, synth, notes[i]) + ": " + quoted (word) + " needs "
                    + std::to_string (elements.size ()) + " notes and has " + std::to_string (k) + "; "
                    + listed (n.sounds) + (n.sounds.size () == 1 ? " is" : " are") + " left out";
        out.push_back (std::move (n));
    }
    for (std::size_t m = 0; m < k; ++m)
    {
        const auto sounds = tokens (elements[m]);
        if (sounds.size () <= soundsANote)
            continue;
        const HostNote& sung = notes[i + m];
        Notice n = about (outcome, s, sung, word);
        n.kind = Notice::NotSung;
        n.sounds.assign (sounds.begin () + soundsANote, sounds.end ());
        n.message = "not sung: " + where (outcome, synth, sung) + ": a note of " + quoted (word)
                    + " takes only its first eight sounds; " + listed (n.sounds)
                    + (n.sounds.size () == 1 ? " is" : " are") + " left out";
        out.push_back (std::move (n));
    }
}

/**
 * A word typed with its own phonemes sings them; but the agent converts the
 * whole text, brackets and all, and deals what it makes of it over the notes
 * after the word, as it stood when the word was typed. What is left of that on
 * notes that nobody typed and no later word reached is sung all the same.
 */
void checkBrackets (const Outcome& outcome, std::size_t s, std::size_t i, const std::vector<bool>& covered,
                    std::vector<Notice>& out)
{
    const auto& synth = outcome.synthesisers[s];
    const auto& notes = synth.hostNotes;
    const auto dealt = convert (notes[i].typed);
    std::vector<std::size_t> reached;
    std::vector<std::string> sounds;
    for (std::size_t k = 1; k < dealt.size () && i + k < notes.size () && notes[i + k].part == notes[i].part; ++k)
    {
        const HostNote& n = notes[i + k];
        if (!covered[i + k] && n.typed.empty () && wordOf (n.lyric).empty () && hintOf (n.lyric) == trimmed (dealt[k]))
        {
            reached.push_back (i + k);
            sounds.push_back (trimmed (dealt[k]));
        }
    }
    if (reached.empty ())
        return;
    const HostNote& first = notes[reached.front ()];
    const HostNote& last = notes[reached.back ()];
    Notice n = about (outcome, s, first, wordOf (notes[i].lyric));
    n.kind = Notice::NotTyped;
    n.sounds = sounds;
    n.markStart = last.start;
    n.markEnd = last.end;
    n.markPitch = last.pitch;
    n.message = "not typed: " + where (outcome, synth, first) + ": " + listed (sounds)
                + (reached.size () == 1 ? ", on a note" : ", on " + std::to_string (reached.size ()) + " notes")
                + " that nobody typed, come" + (reached.size () == 1 ? "s" : "") + " from the converter reading all of "
                + quoted (notes[i].typed) + ", brackets and all";
    out.push_back (std::move (n));
}

} // namespace

std::vector<Notice> unsungSounds (const Outcome& outcome)
{
    std::vector<Notice> out;
    for (std::size_t s = 0; s < outcome.synthesisers.size (); ++s)
    {
        const auto& notes = outcome.synthesisers[s].hostNotes;
        std::vector<Notice> found;
        std::vector<bool> covered (notes.size (), false);
        for (std::size_t i = 0; i < notes.size (); ++i)
            if (!wordOf (notes[i].lyric).empty ())
            {
                checkUnderstood (outcome, s, i, found);
                if (!Score::hasHint (notes[i].typed))
                    checkWord (outcome, s, i, covered, found);
            }
        for (std::size_t i = 0; i < notes.size (); ++i)
            if (!wordOf (notes[i].lyric).empty () && Score::hasHint (notes[i].typed))
                checkBrackets (outcome, s, i, covered, found);
        std::stable_sort (found.begin (), found.end (),
                          [] (const Notice& a, const Notice& b) { return a.seconds < b.seconds; });
        out.insert (out.end (), found.begin (), found.end ());
    }
    return out;
}

const char* kindName (Notice::Kind kind)
{
    switch (kind)
    {
    case Notice::NotSung:
        return "not-sung";
    case Notice::NotUnderstood:
        return "not-understood";
    case Notice::NotTyped:
        return "not-typed";
    case Notice::Note:
        break;
    }
    return "note";
}

} // namespace Workbench
