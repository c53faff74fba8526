// libFuzzer target: any bytes as a MusicXML score, read raw and as words.
#include "score/musicxml_reader.h"
#include "tests/score/score_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, std::size_t size)
{
    for (const bool raw : {false, true})
    {
        Score::Song song;
        std::string error;
        const bool read = Score::readMusicXml (data, size, {1, raw}, song, error);
        ScoreFuzz::check (read, song, error);
    }
    return 0;
}
