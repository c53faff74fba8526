// A Standard MIDI File made into a song: notes paired, the tempo map applied,
// the words of its lyric or karaoke texts placed on their notes and typed.
#pragma once

#include "score/midi_file.h"
#include "score/song.h"

#include <string>

namespace Score {

/**
 * Pairs note-ons with note-offs, applies the tempo map, and places each lyric
 * on the note that starts at or just after it (within a sixteenth). Lyric meta
 * events are used when the file has any; otherwise text events are, as
 * karaoke files carry their words there (see midi_lyrics.h). A note without
 * words holds the syllable before it inside a word, and after one when it
 * follows on without a rest. Format 0 files are split by channel.
 * Returns false with a message for a file without notes.
 */
bool readMidiSong (const MidiFile& file, Song& out, std::string& error, const ReadOptions& options = {});

} // namespace Score
