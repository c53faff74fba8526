#include "score/song_position.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Score {

namespace {

constexpr double slack = 1e-6;  // positions from ticks or divisions are not exact in binary

double barLength (const MeterChange& m) { return 4.0 * m.numerator / m.denominator; }

} // namespace

std::string barBeat (const std::vector<MeterChange>& meters, double quarters)
{
    std::vector<MeterChange> changes;
    for (const auto& m : meters)
        if (m.numerator > 0 && m.denominator > 0 && std::isfinite (m.beat) && m.beat >= 0.0)
            changes.push_back (m);
    std::stable_sort (changes.begin (), changes.end (),
                      [] (const MeterChange& a, const MeterChange& b) { return a.beat < b.beat; });
    if (changes.empty () || changes.front ().beat > slack)
        changes.insert (changes.begin (), MeterChange {});
    quarters = std::max (0.0, quarters);

    double bars = 0.0;  // whole bars before the meter that holds at `quarters`
    std::size_t i = 0;
    for (; i + 1 < changes.size () && changes[i + 1].beat <= quarters + slack; ++i)
        bars += std::ceil ((changes[i + 1].beat - changes[i].beat) / barLength (changes[i]) - slack);
    const MeterChange& m = changes[i];
    const double into = quarters - m.beat;
    const double inBar = std::floor (into / barLength (m) + slack);
    const double beatLength = 4.0 / m.denominator;
    double beat = std::max (0.0, (into - inBar * barLength (m)) / beatLength) + 1.0;
    if (std::abs (beat - std::round (beat)) < 1e-3)
        beat = std::round (beat);

    char text[64];
    std::snprintf (text, sizeof text, "%.0f:%.2f", bars + inBar + 1.0, beat);
    std::string out = text;
    while (out.back () == '0')
        out.pop_back ();
    if (out.back () == '.')
        out.pop_back ();
    return out;
}

std::string placeInSong (const std::vector<MeterChange>& meters, double quarters, double seconds)
{
    char time[32];
    std::snprintf (time, sizeof time, "%.2f s", seconds);
    if (quarters < 0.0 || !std::isfinite (quarters))
        return time;
    return barBeat (meters, quarters) + " (" + time + ")";
}

} // namespace Score
