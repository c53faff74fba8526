#include "score/lay_lyrics.h"

#include "score/text_encoding.h"

#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"

#include <algorithm>
#include <sstream>

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

} // namespace

void layLyrics (const std::string& text, Song& song)
{
    std::vector<std::string> words;
    std::istringstream in (toUtf8 (text));
    for (std::string w; in >> w;)
        words.push_back (w);
    bool laid = false;
    for (auto& track : song.tracks)
    {
        bool hasWords = false;
        for (const auto& n : track.notes)
            hasWords = hasWords || !n.lyric.empty ();
        if (hasWords)
            continue;
        laid = true;
        std::size_t note = 0, word = 0;
        for (; word < words.size () && note < track.notes.size (); ++word)
        {
            track.notes[note].lyric = words[word];
            note += notesFor (words[word]);
        }
        if (word < words.size ())
            song.warnings.push_back (track.name + ": the notes ran out; " + std::to_string (words.size () - word)
                                     + " word(s) of the lyrics are left out");
    }
    if (!laid)
        song.warnings.push_back ("every track has words of its own; the lyrics given are laid over none");
}

} // namespace Score
