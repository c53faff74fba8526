#include "workbench/cli/plain_lyrics.h"

#include "phoneme/dictionary_holder.h"
#include "phoneme/fallback.h"
#include "phoneme/phoneme_inventory.h"
#include "phoneme/pronouncing_dictionary.h"

#include <utf8.h>

#include <cctype>

namespace Workbench {

namespace {

/** The converter drops these from a word before it looks it up. */
bool dropped (char c) { return std::string_view (".,:;()\"!?/-").find (c) != std::string_view::npos; }

std::vector<std::string> pieces (const std::string& dotted)
{
    std::vector<std::string> out;
    std::string piece;
    for (char c : dotted + ".")
    {
        if (c == '.')
        {
            if (!piece.empty ())
                out.push_back (piece);
            piece.clear ();
        }
        else if (c != ' ')
            piece += c;
    }
    return out;
}

std::vector<std::string> kanaSyllables (const std::u32string& text)
{
    std::vector<std::string> out;
    for (std::size_t i = 0; i < text.size (); ++i)
    {
        std::u32string piece (1, text[i]);
        if (i + 1 < text.size () && Zelmor::foldKana (text[i]) && Zelmor::foldKana (text[i + 1])
            && Zelmor::findKanaDigraph (Zelmor::foldKana (text[i]), Zelmor::foldKana (text[i + 1])))
            piece += text[++i];
        std::string utf8;
        utf8::utf32to8 (piece.begin (), piece.end (), std::back_inserter (utf8));
        out.push_back (utf8);
    }
    return out;
}

std::vector<std::string> englishSyllables (const std::string& word)
{
    std::string key, unheld;
    for (char c : word)
    {
        if (c != '-')
            unheld += c;
        if (!dropped (c))
            key += static_cast<char> (std::tolower (static_cast<unsigned char> (c)));
    }
    std::vector<std::string> letters;
    const auto* dictionary = Zelmor::dictionaryHolderMap ();
    if (dictionary)
    {
        const auto row = Zelmor::findWord (*dictionary, key);
        if (row != Zelmor::noWord)
            letters = pieces (std::string (Zelmor::orthographyAt (*dictionary, row)));
    }
    std::string joined;
    for (const auto& l : letters)
        joined += l;
    if (joined != key)
    {
        letters = pieces (Zelmor::lettersToPhonemes (key).first);
        joined.clear ();
        for (const auto& l : letters)
            joined += l;
    }
    if (joined != key || letters.size () < 2)
        return {unheld};

    // The pieces in the word's own letters: what the converter drops goes with the letter before it.
    std::vector<std::string> out (1);
    std::size_t piece = 0, used = 0;
    for (char c : unheld)
    {
        if (!dropped (c))
        {
            if (used == letters[piece].size () && piece + 1 < letters.size ())
            {
                ++piece;
                used = 0;
                out.emplace_back ();
            }
            ++used;
        }
        out.back () += c;
    }
    return out;
}

} // namespace

std::vector<std::string> syllablesOf (const std::string& word, bool& kana)
{
    kana = false;
    std::u32string text;
    try
    {
        utf8::utf8to32 (word.begin (), word.end (), std::back_inserter (text));
    }
    catch (const std::exception&)
    {
        return {word};
    }
    bool allKana = !text.empty (), allAscii = true;
    for (char32_t c : text)
    {
        allKana = allKana && (Zelmor::foldKana (c) != 0 || c == Zelmor::longVowelMark);
        allAscii = allAscii && c > ' ' && c < 0x7F;
    }
    if (allKana)
    {
        kana = true;
        return kanaSyllables (text);
    }
    return allAscii ? englishSyllables (word) : std::vector<std::string> {word};
}

std::vector<std::string> plainLyrics (const std::vector<const HostNote*>& part)
{
    std::vector<std::string> out (part.size ());
    for (std::size_t i = 0; i < part.size (); ++i)
    {
        const std::string word = wordOf (part[i]->lyric);
        if (word.empty ())
            continue;
        // The word's notes: its own and those that carry its [hint]s; of them, the ones that begin a syllable.
        std::vector<std::size_t> begins {i}, notes {i};
        for (std::size_t j = i + 1; j < part.size () && wordOf (part[j]->lyric).empty () && !part[j]->lyric.empty (); ++j)
        {
            notes.push_back (j);
            if (hintOf (part[j]->lyric).rfind ('-', 0) != 0)
                begins.push_back (j);
        }
        bool kana = false;
        const auto syllables = syllablesOf (word, kana);
        // Kana go one to a note, the long-vowel mark on the note it holds; English syllables on the notes that begin one.
        const auto& onto = kana ? notes : begins;
        for (std::size_t k = 0; k < syllables.size (); ++k)
        {
            const std::size_t note = onto[std::min (k, onto.size () - 1)];
            const bool last = k + 1 == syllables.size ();
            out[note] += syllables[k] + (kana || last || k + 1 >= onto.size () ? "" : "-");
        }
        i = notes.back ();
    }
    return out;
}

} // namespace Workbench
