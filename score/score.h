// Songs from files: what the workbench needs to know of a score.
//
// A reader turns a file into notes with syllables. Each note of a song track
// carries its times, its pitch and the `Syllable` the file gives it: a word of
// one syllable, the first, a middle or the last syllable of a longer word, a
// note that holds the syllable before it (a melisma), a text to type exactly as
// written, or nothing. `readSong` (`readSongBytes` for bytes in memory) picks
// the reader by the file's content: Standard MIDI Files with their lyric or
// karaoke texts (`readMidiSong`), MusicXML (`readMusicXml`, parsed with
// pugixml) and compressed MusicXML (`unpackMxl`, a zip read by `ZipArchive`),
// each within limits a file from anywhere cannot stretch.
//
// The typing rule (`typedWords`) then makes of those syllables what a singer
// types in the host: each word whole on the note of its first syllable, with a
// hold mark for each note a syllable is held over, placed where the converter
// sings it; nothing on the notes of its later syllables. `layLyrics` lays plain
// words over a melody that has none.
#pragma once

#include "score/lay_lyrics.h"
#include "score/song.h"
#include "score/song_reader.h"
#include "score/typed_words.h"
