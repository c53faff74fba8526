// What every score fuzz target asks of a reader's result: a song that makes
// sense, or a message. A crash, a hang or a sanitizer's report is a finding too.
#pragma once

#include "score/song.h"

#include <cstdlib>
#include <string>

namespace ScoreFuzz {

inline void check (bool read, const Score::Song& song, const std::string& error)
{
    if (!read)
    {
        if (error.empty ())
            std::abort ();
        return;
    }
    if (song.tracks.empty () || song.tempi.empty ())
        std::abort ();
    for (const auto& t : song.tracks)
        for (const auto& n : t.notes)
            if (n.pitch < 0 || n.pitch > 127 || !(n.end >= n.start) || n.endTick < n.startTick)
                std::abort ();
}

} // namespace ScoreFuzz
