#include "score/song.h"

#include <algorithm>

namespace Score {

double Song::length () const
{
    double end = 0.0;
    for (auto& t : tracks)
        for (auto& n : t.notes)
            end = std::max (end, n.end);
    return end;
}

std::size_t Song::noteCount () const
{
    std::size_t n = 0;
    for (auto& t : tracks)
        n += t.notes.size ();
    return n;
}

} // namespace Score
