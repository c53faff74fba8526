// What a score says about the words of one note: the unit every reader hands on.
#pragma once

#include <string>

namespace Score {

/** What a score says about the words of one note. Every reader fills one per note. */
struct Syllable
{
    enum Kind
    {
        Free,      ///< no syllable of its own and no part of a word: nothing is typed
        Single,    ///< a word of one syllable
        Begin,     ///< the first syllable of a longer word
        Middle,
        End,
        Held,      ///< a melisma note: it holds the syllable before it
        AsWritten, ///< typed exactly as written, never joined: raw lyrics and the host's own `word[hint]`
        Elided     ///< several syllables, all sung on this one note: a word apart, joined by `elisionMark`
    };
    Kind kind = Free;
    std::string text;  ///< UTF-8, for Single to End, AsWritten and Elided
};

/** The undertie that scores print between elided syllables, and that joins them in an `Elided` text. */
extern const char* const elisionMark;

/** The kind of a syllable that does or doesn't begin and end its word. */
Syllable::Kind syllableKind (bool beginsWord, bool endsWord);

/** A text in the host's own form: its phonemes stand in brackets behind the word. */
bool hasHint (const std::string& text);

} // namespace Score
