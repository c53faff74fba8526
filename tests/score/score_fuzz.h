// What every score fuzz target asks of a reader's result: a song that makes
// sense, its texts in UTF-8 (the host takes no other), or a message. A crash, a
// hang or a sanitizer's report is a finding too.
#pragma once

#include "score/song.h"

#include <utf8.h>

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
    auto text = [] (const std::string& s) {
        if (!utf8::is_valid (s.begin (), s.end ()))
            std::abort ();
    };
    if (song.tracks.empty () || song.tempi.empty ())
        std::abort ();
    text (song.title);
    for (const auto& w : song.warnings)
        text (w);
    for (const auto& t : song.tracks)
    {
        text (t.name);
        for (const auto& n : t.notes)
        {
            if (n.pitch < 0 || n.pitch > 127 || !(n.end >= n.start) || n.endTick < n.startTick)
                std::abort ();
            text (n.lyric);
            text (n.syllable.text);
        }
    }
}

} // namespace ScoreFuzz
