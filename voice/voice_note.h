// One record of a synthesiser's note list as the singing voice takes it:
// the fields of the host's note record that matter for sound, in plain units.
#pragma once

#include <string>
#include <vector>

namespace Voice {

enum class NoteKind
{
    note,          ///< a sung note that starts a syllable
    continuation,  ///< a further note of the syllable before it (a melisma)
    rest           ///< silence
};

struct Note
{
    double start = 0.0;                 ///< seconds on the song's timeline
    double end = 0.0;                   ///< seconds on the song's timeline
    double midi = 60.0;                 ///< pitch as a MIDI note number; a fraction is cents
    NoteKind kind = NoteKind::note;
    std::vector<std::string> phonemes;  ///< the converter's tokens; a continuation may begin with "-"
};

} // namespace Voice
