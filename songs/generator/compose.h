// Our own songs, composed in code. The generator writes them to this folder,
// and the workbench carries the English one as its built-in example.
#pragma once

#include "score/midi_file.h"

#include <string>
#include <vector>

namespace Songs {

struct Entry
{
    std::string file;  ///< e.g. "morning.mid"
    std::string about;
    Score::MidiFile (*compose) ();
    std::string (*score) () = nullptr;  ///< a MusicXML score instead, when `compose` is null
};

/** What the generator writes for an entry. */
std::vector<std::uint8_t> bytes (const Entry& entry);

/** English: hyphens that hold a syllable, a hint in brackets, a tempo change; lyric events. */
Score::MidiFile morning ();
/** Kana in karaoke text events: digraphs, a small tsu, long-vowel marks. */
Score::MidiFile ramen ();
/** English karaoke: syllables in text events, joined into words; held notes; a track description. */
Score::MidiFile evening ();
/** Two voices whose notes overlap in time, each on its own track. */
Score::MidiFile duet ();
/** One voice in two parts of one track (two MIDI tracks named alike) that overlap in time. */
Score::MidiFile overlap ();
/** About 400 notes with words, for timing a whole song. */
Score::MidiFile long400 ();
/** A MusicXML score: words in syllables, held notes, a tie, two verses, a tempo change, a piano part without words. */
std::string lantern ();
/** A MusicXML score of 2,000 notes of one voice, for timing: words of one to three syllables, held
    notes inside words and on extension lines. Not bundled; the benchmarks make it. */
std::string twoThousand ();

const std::vector<Entry>& all ();

} // namespace Songs
