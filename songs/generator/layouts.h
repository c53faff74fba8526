// Songs in the layouts that other programs write their words in, made by our
// own code for the readers' tests: not bundled, `generate_songs DIR --layouts`
// writes them for a user to try.
#pragma once

#include "songs/generator/compose.h"

namespace Songs {

/** A converter's karaoke: a header track of "@" headers and a description, words as text events in the melody's track, a leading blank beginning a word. */
Score::MidiFile converterKaraoke ();
/** A library's .kar: a words track apart in lyric events, opening with a sentence before its first line mark; a piano of chords, then the melody. */
Score::MidiFile libraryKaraoke ();
/** Lyric events as the recommended practice has them: a blank or line end ends a word, "Test" and "ing " are one. */
Score::MidiFile blankEnded ();
/** A notation program's lyric events: hyphenated syllables, an elision "the_old", a hold, a chord in the voice. */
Score::MidiFile notation ();
/** Text events that are only commentary: a copyright line and a note to players. */
Score::MidiFile commentary ();
/** Two singers, each with a words track apart, their texts in Latin-1. */
Score::MidiFile twoSingers ();
/** Kana karaoke in Shift-JIS text events, one byte in them no character. */
Score::MidiFile shiftJis ();

const std::vector<Entry>& layouts ();

} // namespace Songs
