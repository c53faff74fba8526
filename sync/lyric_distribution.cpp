#include "sync/lyric_distribution.h"

#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"

namespace Zelmor {

LyricParts distribute (DistributionState& state, const NoteTextState& note)
{
    LyricParts result = note.current;

    // A word without a hint is converted on every pass until a write-back gives it one;
    // a word with a hint only when the word itself changed.
    const bool convert = !result.word.empty () && (result.hint.empty () || note.wordChanged);
    if (convert)
    {
        if (const auto* dictionary = dictionaryHolderMap ())
            state.elements = convertLyric (note.lyricText, *dictionary);
        else
            state.elements.clear ();
        state.index = 0;
        if (state.elements.empty ())
            return result;
    }
    else if (state.elements.empty ())
    {
        return result;
    }

    const std::string element = state.elements[static_cast<std::size_t> (state.index)];
    if (!note.wordChanged && !note.hintChanged && result.hint.empty ())
        result.word = note.lyricText;  // keeps empty brackets such as "ka[]" as part of the word

    if (!result.hint.empty () && state.index != 0)
    {
        // A following note of a running list: the list overrides what the note had.
        result.word.clear ();
        result.hint = utf8Trim (element);
    }
    else if (result.hint.empty ())
    {
        result.hint = utf8Trim (element);
    }
    // Otherwise this note began the list and its own hint stands; the first element goes unheard.

    if (++state.index >= static_cast<int32_t> (state.elements.size ()))
    {
        state.elements.clear ();
        state.index = -1;
    }
    return result;
}

} // namespace Zelmor
