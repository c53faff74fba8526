// A Standard MIDI File made into a song: notes paired, the tempo map applied,
// the words of its lyric or karaoke texts placed on their notes and typed.
#pragma once

#include "score/midi_file.h"
#include "score/song.h"

#include <string>

namespace Score {

/**
 * Pairs note-ons with note-offs, applies the tempo map, reads each track's
 * texts by the convention they show (midi_lyrics.h), and places the words on
 * the notes of the voice that sings them (lyric_placement.h); a voice that
 * sings words sings the top note of each chord. A note without words holds
 * the syllable before it inside a word, and after one when it follows on
 * without a rest. Format 0 files are split by channel. The file's repairs,
 * its texts' encoding and each track's convention are said in the song's
 * warnings. Returns false with a message for a file without notes or with
 * more than a million.
 */
bool readMidiSong (const MidiFile& file, Song& out, std::string& error, const ReadOptions& options = {});
/** The same, letting go of the file's events as it goes: a long file takes a fraction of the memory. */
bool readMidiSong (MidiFile&& file, Song& out, std::string& error, const ReadOptions& options = {});

} // namespace Score
