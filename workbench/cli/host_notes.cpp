#include "workbench/cli/host_notes.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Workbench {

std::vector<std::string> lyricsOfRecords (const std::vector<SVS::SVSNote>& records,
                                          const std::vector<HostNote>& notes)
{
    // The agent moves a note through the tempo map and back, so its start may
    // differ from the host's in the last bits.
    constexpr double tolerance = 1e-6;
    std::vector<std::size_t> byStart (notes.size ());
    std::iota (byStart.begin (), byStart.end (), std::size_t {0});
    std::stable_sort (byStart.begin (), byStart.end (),
                      [&] (std::size_t a, std::size_t b) { return notes[a].start < notes[b].start; });
    std::vector<bool> used (notes.size (), false);

    std::vector<std::string> out (records.size ());
    for (std::size_t i = 0; i < records.size (); ++i)
    {
        const SVS::SVSNote& r = records[i];
        if (r.isRest || !std::isfinite (r.startTime))
            continue;
        const long pitch = std::lround (69.0 + static_cast<double> (r.pitchCents) / 100.0);
        auto it = std::lower_bound (byStart.begin (), byStart.end (), r.startTime - tolerance,
                                    [&] (std::size_t n, double t) { return notes[n].start < t; });
        for (; it != byStart.end () && notes[*it].start <= r.startTime + tolerance; ++it)
            if (!used[*it] && notes[*it].pitch == pitch)
            {
                used[*it] = true;
                out[i] = notes[*it].lyric;
                break;
            }
    }
    return out;
}

std::string wordOf (const std::string& lyric)
{
    // The agent writes `word`, or `word[hint]` with a hint that holds no "[".
    if (lyric.empty () || lyric.back () != ']')
        return lyric;
    const auto open = lyric.rfind ('[');
    return open == std::string::npos ? lyric : lyric.substr (0, open);
}

std::string hintOf (const std::string& lyric)
{
    if (lyric.empty () || lyric.back () != ']')
        return {};
    const auto open = lyric.rfind ('[');
    if (open == std::string::npos)
        return {};
    const auto first = lyric.find_first_not_of (" \t", open + 1);
    const auto last = lyric.find_last_not_of (" \t", lyric.size () - 2);
    return first == std::string::npos || last == std::string::npos || last < first ? std::string ()
                                                                                      : lyric.substr (first, last - first + 1);
}

} // namespace Workbench
