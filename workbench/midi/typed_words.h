// The rule that turns a score's syllables into what a singer types in the
// host: each word whole on the note of its first syllable, with hold marks
// where the score holds a syllable over more notes. The agent deals the rest.
#pragma once

#include <string>
#include <vector>

namespace Midi {

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
        AsWritten  ///< typed exactly as written, never joined: raw lyrics and the host's own `word[hint]`
    };
    Kind kind = Free;
    std::string text;  ///< UTF-8, for Single to End and AsWritten
};

/** The kind of a syllable that does or doesn't begin and end its word. */
Syllable::Kind syllableKind (bool beginsWord, bool endsWord);

/** A text in the host's own form: its phonemes stand in brackets behind the word. */
bool hasHint (const std::string& text);

/**
 * The text to type on each note, in the notes' order: each word on the note of
 * its first syllable, nothing on the notes of its later syllables and holds.
 * Hyphens (or, after kana and open vowels, long-vowel marks) hold a syllable
 * over its melisma notes; where they go is chosen by asking the converter.
 */
std::vector<std::string> typedWords (const std::vector<Syllable>& notes);

} // namespace Midi
