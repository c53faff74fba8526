// libFuzzer target: any bytes as a song file, through the dispatch by content:
// Standard MIDI Files with their lyric and karaoke texts, MusicXML, .mxl.
#include "score/song_reader.h"
#include "tests/score/score_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, std::size_t size)
{
    Score::Song song;
    std::string error;
    const bool read = Score::readSongBytes ("fuzz", std::vector<std::uint8_t> (data, data + size), {}, song, error);
    ScoreFuzz::check (read, song, error);
    return 0;
}
