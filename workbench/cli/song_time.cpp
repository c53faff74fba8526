#include "workbench/cli/song_time.h"

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

double bpmOf (const Score::TempoChange& t) { return t.bpm > 0.0 && std::isfinite (t.bpm) ? t.bpm : 120.0; }

} // namespace

double beatsAt (const std::vector<Score::TempoChange>& tempi, double seconds)
{
    double beat = 0.0, at = 0.0, bpm = tempi.empty () ? 120.0 : bpmOf (tempi.front ());
    for (std::size_t i = 1; i < tempi.size (); ++i)
    {
        const double next = at + (tempi[i].beat - beat) * 60.0 / bpm;
        if (next > seconds)
            break;
        beat = tempi[i].beat;
        at = next;
        bpm = bpmOf (tempi[i]);
    }
    return beat + (seconds - at) * bpm / 60.0;
}

double secondsAt (const std::vector<Score::TempoChange>& tempi, double beats)
{
    double beat = 0.0, at = 0.0, bpm = tempi.empty () ? 120.0 : bpmOf (tempi.front ());
    for (std::size_t i = 1; i < tempi.size () && tempi[i].beat <= beats; ++i)
    {
        at += (tempi[i].beat - beat) * 60.0 / bpm;
        beat = tempi[i].beat;
        bpm = bpmOf (tempi[i]);
    }
    return at + (beats - beat) * 60.0 / bpm;
}

std::vector<Bar> barsUpTo (const std::vector<Score::MeterChange>& meters, double beats)
{
    std::vector<Score::MeterChange> changes;
    for (const auto& m : meters)
        if (m.numerator > 0 && m.denominator > 0 && std::isfinite (m.beat) && m.beat >= 0.0)
            changes.push_back (m);
    std::stable_sort (changes.begin (), changes.end (),
                      [] (const Score::MeterChange& a, const Score::MeterChange& b) { return a.beat < b.beat; });
    if (changes.empty () || changes.front ().beat > 1e-6)
        changes.insert (changes.begin (), Score::MeterChange {});

    std::vector<Bar> bars;
    constexpr std::size_t most = 100000;  // a song of absurd length still ends
    for (std::size_t i = 0; i < changes.size () && bars.size () < most; ++i)
    {
        const auto& m = changes[i];
        const double length = 4.0 * m.numerator / m.denominator;
        const double until = i + 1 < changes.size () ? changes[i + 1].beat : beats;
        // A meter that changes inside a bar starts a new bar.
        for (double b = m.beat; b < until - 1e-6 && b <= beats && bars.size () < most; b += length)
            bars.push_back ({b, static_cast<int> (bars.size ()) + 1, m.numerator, m.denominator});
    }
    return bars;
}

} // namespace Workbench
