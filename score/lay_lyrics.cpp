#include "score/lay_lyrics.h"

#include "score/text_encoding.h"
#include "score/typed_words.h"

#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"

#include <algorithm>
#include <cctype>

namespace Score {

namespace {

std::size_t notesFor (const std::string& word)
{
    const auto* dictionary = Zelmor::dictionaryHolderMap ();
    if (!dictionary)
        return 1;
    try
    {
        return std::max<std::size_t> (1, Zelmor::convertLyric (word, *dictionary).size ());
    }
    catch (const std::exception&)
    {
        return 1;  // malformed UTF-8: the word still takes its note
    }
}

bool blank (char c) { return std::isspace (static_cast<unsigned char> (c)) != 0; }

/** The sheet cut at white space, except inside brackets. */
std::vector<std::string> items (const std::string& sheet)
{
    std::vector<std::string> out;
    std::string item;
    bool bracket = false;
    for (char c : sheet)
    {
        if (!bracket && blank (c))
        {
            if (!item.empty ())
                out.push_back (item);
            item.clear ();
            continue;
        }
        bracket = c == '[' ? true : c == ']' ? false : bracket;
        item += c;
    }
    if (!item.empty ())
        out.push_back (item);
    return out;
}

/** Each underscore at the end of `piece` holds it one note more: they go, and are counted. */
int holdsOf (std::string& piece)
{
    int n = 0;
    while (!piece.empty () && piece.back () == '_')
    {
        piece.pop_back ();
        ++n;
    }
    return n;
}

} // namespace

std::vector<SheetSyllable> readLyricSheet (const std::string& sheet)
{
    std::vector<SheetSyllable> out;
    std::vector<std::string> word;  // the syllables of the word being read, with their holds
    std::vector<int> holds;
    std::size_t words = 0;
    bool goesOn = false;  // the last item ended in a hyphen
    auto finish = [&] {
        if (word.empty ())
            return;
        for (std::size_t i = 0; i < word.size (); ++i)
        {
            const bool alone = word.size () == 1;
            if (alone)
            {
                // No hyphen: the converter says how many notes the word takes.
                out.push_back ({{Syllable::Single, word[i]}, words});
                for (std::size_t more = notesFor (word[i]); more > 1; --more)
                    out.push_back ({{Syllable::Held, {}}, words});
            }
            else
                out.push_back ({{syllableKind (i == 0, i + 1 == word.size ()), word[i]}, words});
            for (int h = 0; h < holds[i]; ++h)
                out.push_back ({{Syllable::Held, {}}, words});
        }
        word.clear ();
        holds.clear ();
        ++words;
    };

    for (std::string item : items (toUtf8 (sheet)))
    {
        if (hasHint (item))
        {
            finish ();
            out.push_back ({{Syllable::AsWritten, item}, words++});
            goesOn = false;
            continue;
        }
        if (item.find_first_not_of ('_') == std::string::npos)
        {
            // A lone hold holds whatever came before, in this word or the last.
            for (std::size_t h = 0; h < item.size (); ++h)
            {
                if (!word.empty ())
                    ++holds.back ();
                else
                    out.push_back ({{Syllable::Held, {}}, words == 0 ? 0 : words - 1});
            }
            continue;
        }
        if (!goesOn && item[0] != '-')
            finish ();
        goesOn = item.back () == '-';
        std::size_t from = 0;
        while (from <= item.size ())
        {
            const auto hyphen = std::min (item.find ('-', from), item.size ());
            std::string piece = item.substr (from, hyphen - from);
            const int h = holdsOf (piece);
            if (!piece.empty ())
            {
                word.push_back (piece);
                holds.push_back (h);
            }
            else if (h > 0 && !holds.empty ())
                holds.back () += h;
            from = hyphen + 1;
        }
    }
    finish ();
    return out;
}

bool layLyrics (const std::string& sheet, Song& song, const std::string& track, std::string& error)
{
    const auto syllables = readLyricSheet (sheet);
    std::size_t words = syllables.empty () ? 0 : syllables.back ().word + 1;

    // The notes to lay over, each group in its own order: the named track's parts together, or each bare track.
    std::vector<std::vector<SongNote*>> groups;
    std::vector<std::string> names;
    for (auto& t : song.tracks)
    {
        const bool bare = std::all_of (t.notes.begin (), t.notes.end (), [] (const SongNote& n) { return n.lyric.empty (); });
        if (track.empty () ? !bare : t.name != track)
            continue;
        if (groups.empty () || track.empty ())
        {
            groups.emplace_back ();
            names.push_back (t.name);
        }
        for (auto& n : t.notes)
        {
            n.lyric.clear ();
            // Of a chord, the top note sings: it comes first.
            if (groups.back ().empty () || groups.back ().back ()->start != n.start)
                groups.back ().push_back (&n);
        }
    }
    if (groups.empty () && !track.empty ())
    {
        error = "the song has no track named \"" + track + "\"; its tracks:";
        for (std::size_t i = 0; i < song.tracks.size (); ++i)
            error += (i ? ", \"" : " \"") + song.tracks[i].name + "\"";
        return false;
    }
    if (groups.empty ())
    {
        song.warnings.push_back ("every track has words of its own; the lyrics given are laid over none "
                                 "(--lyrics-track NAME lays them over one)");
        return true;
    }
    for (std::size_t g = 0; g < groups.size (); ++g)
    {
        auto& notes = groups[g];
        std::vector<Syllable> onNotes (notes.size ());
        const std::size_t laid = std::min (notes.size (), syllables.size ());
        for (std::size_t i = 0; i < laid; ++i)
            onNotes[i] = syllables[i].syllable;
        const auto typed = typedWords (onNotes);
        for (std::size_t i = 0; i < notes.size (); ++i)
            notes[i]->lyric = typed[i];
        if (laid < notes.size () && !syllables.empty ())
            song.warnings.push_back (names[g] + ": the lyrics end before the notes do; the last "
                                     + std::to_string (notes.size () - laid) + " note(s) have no words");
        if (laid < syllables.size ())
        {
            // A word cut short counts as laid: its first notes sing.
            const bool cut = laid > 0 && syllables[laid].word == syllables[laid - 1].word;
            const std::size_t left = words - syllables[laid].word - (cut ? 1 : 0);
            song.warnings.push_back (names[g] + ": the notes ran out; "
                                     + (left > 0 ? std::to_string (left) + " word(s) of the lyrics are left out"
                                                 : std::string ("the last word is cut short")));
        }
    }
    return true;
}

void layLyrics (const std::string& sheet, Song& song)
{
    std::string ignored;
    layLyrics (sheet, song, {}, ignored);
}

} // namespace Score
