// A note's lyric, phoneme text and our two marks on it: reading them into a
// pass, writing them back inside the host's edit, and clearing the marks.
#pragma once

#include "host/project_interfaces.h"
#include "sequence/lyric_text.h"
#include "sequence/sequence_note.h"

#include <string>

namespace Zelmor {

/** What one pass read of one note. */
struct NoteTextState
{
    bool seenMark = false;        ///< "svsn" present, an integer, not 0
    std::string lyricText;        ///< "lyrics", empty if unreadable
    std::string storedLyric;      ///< "lyph", empty if absent
    bool hasStoredLyric = false;
    LyricParts current;           ///< lyricText split
    LyricParts stored;            ///< storedLyric split
    bool wordChanged = false;
    bool hintChanged = false;
};

/** Reads the note; with `markSeen` an unmarked note gets "svsn" 1 (the state still says unseen). */
NoteTextState readNoteText (Steinberg::IProjectNode* node, Steinberg::INoteText* noteText, bool markSeen);

/** Writes "lyrics", "lyph", "phoneme" and "svsn" for the note, the texts through `context`. */
void writeNoteText (const SequenceNote& note, Steinberg::IProjectEditContext* context);

/** Removes "svsn" and then "lyph"; a note without "svsn" keeps its "lyph". */
void clearMarksOfNote (Steinberg::IProjectNode* node);

} // namespace Zelmor
