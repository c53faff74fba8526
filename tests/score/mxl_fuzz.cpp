// libFuzzer target: any bytes as compressed MusicXML: the zip's directory, its
// entries' claims and data, the container, and the score it names.
#include "score/musicxml_reader.h"
#include "score/mxl_container.h"
#include "tests/score/score_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, std::size_t size)
{
    std::vector<std::uint8_t> score;
    std::string error;
    if (!Score::unpackMxl (std::vector<std::uint8_t> (data, data + size), score, error))
    {
        ScoreFuzz::check (false, {}, error);
        return 0;
    }
    Score::Song song;
    ScoreFuzz::check (Score::readMusicXml (score.data (), score.size (), {}, song, error), song, error);
    return 0;
}
