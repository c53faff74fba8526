// Things the workbench tells the user beside its report: on standard error,
// in the JSON, and, for a note, as a mark on the piano roll.
#pragma once

#include <string>
#include <vector>

namespace Workbench {

struct Notice
{
    enum Kind
    {
        Note,           ///< anything worth saying that is no error: a reader's remark, an undo past the history
        NotSung,        ///< sounds of a word that no note sings
        NotUnderstood,  ///< text of a word that has no pronunciation
        NotTyped,       ///< sounds on notes without text, dealt from a word's own phonemes in brackets
    };
    Kind kind = Note;
    std::string message;  ///< as said on standard error, after the program's name

    // Where, for a word: its track and first note.
    std::size_t synthesiser = 0;  ///< which of the outcome's synthesisers
    std::string track;
    double seconds = -1.0, beats = -1.0;
    int pitch = -1;  ///< MIDI note
    std::string word;
    std::vector<std::string> sounds;  ///< NotSung: the phoneme strings left out; NotTyped: those sung, in order
    std::string text;                 ///< NotUnderstood: the characters without a pronunciation
    std::string sungAs;               ///< NotUnderstood: what the note sings instead
    double markStart = 0.0, markEnd = 0.0;  ///< the notes to mark on the piano roll, in seconds
    int markPitch = -1;                     ///< the row of the last of them
};

/** A remark of kind Note. */
inline Notice remark (std::string message)
{
    Notice n;
    n.message = std::move (message);
    return n;
}

/** "note", "not-sung", "not-understood", "not-typed": the kind as the JSON names it. */
const char* kindName (Notice::Kind kind);

} // namespace Workbench
