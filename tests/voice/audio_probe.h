// Measurements of rendered sound for the voice's tests: level in dBFS and F0
// by a YIN-style difference function, median over short frames.
#pragma once

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace VoiceTest {

struct Sound
{
    std::vector<float> samples;
    int rate = 0;
    double seconds () const { return rate ? static_cast<double> (samples.size ()) / rate : 0.0; }
};

inline Sound readWav (const std::string& path)
{
    Sound sound;
    SF_INFO info {};
    if (SNDFILE* f = sf_open (path.c_str (), SFM_READ, &info); f != nullptr)
    {
        sound.samples.resize (static_cast<std::size_t> (info.frames * info.channels));
        sf_readf_float (f, sound.samples.data (), info.frames);
        sound.rate = info.channels == 1 ? info.samplerate : 0;
        sf_close (f);
    }
    return sound;
}

inline std::size_t at (const Sound& s, double t)
{
    return std::min (s.samples.size (), static_cast<std::size_t> (std::max (0.0, t) * s.rate));
}

/** RMS of [from, to) in dB below full scale; -200 for digital silence. */
inline double levelDb (const Sound& s, double from, double to)
{
    double sum = 0.0;
    const std::size_t a = at (s, from), b = at (s, to);
    for (std::size_t i = a; i < b; ++i)
        sum += static_cast<double> (s.samples[i]) * s.samples[i];
    return b > a && sum > 0.0 ? 10.0 * std::log10 (sum / static_cast<double> (b - a)) : -200.0;
}

/** F0 of one frame, searched from `low` to `high` Hz; 0 when it is not periodic. */
inline double framePitch (const float* x, std::size_t window, int rate, double low, double high)
{
    const auto minLag = static_cast<std::size_t> (rate / high), maxLag = static_cast<std::size_t> (rate / low) + 1;
    std::vector<double> d (maxLag + 2, 0.0);
    double running = 0.0;
    for (std::size_t tau = 1; tau <= maxLag + 1; ++tau)
    {
        for (std::size_t j = 0; j < window; ++j)
            d[tau] += (x[j] - x[j + tau]) * static_cast<double> (x[j] - x[j + tau]);
        running += d[tau];
        d[tau] = running > 0.0 ? d[tau] * static_cast<double> (tau) / running : 1.0;  // cumulative mean normalised
    }
    // The first dip near the deepest: a strong second harmonic dips at half the period too,
    // but far less deeply than the period itself.
    const std::size_t from = std::max<std::size_t> (minLag, 2);
    const double deepest = *std::min_element (d.begin () + static_cast<long> (from), d.begin () + static_cast<long> (maxLag) + 1);
    for (std::size_t tau = from; tau <= maxLag; ++tau)
        if (d[tau] < 0.2 && d[tau] <= 2.0 * deepest + 0.02)
        {
            while (tau + 1 <= maxLag && d[tau + 1] < d[tau])
                ++tau;
            const double a = d[tau - 1], b = d[tau], c = d[tau + 1];
            const double shift = (a - 2.0 * b + c) != 0.0 ? 0.5 * (a - c) / (a - 2.0 * b + c) : 0.0;
            return rate / (static_cast<double> (tau) + shift);
        }
    return 0.0;
}

/** Median F0 over 40 ms frames of [from, to) near `expected` Hz; 0 when fewer than half are periodic. */
inline double pitchHz (const Sound& s, double from, double to, double expected)
{
    const double low = expected / 2.2, high = expected * 2.2;
    const auto window = static_cast<std::size_t> (0.04 * s.rate), reach = window + static_cast<std::size_t> (s.rate / low) + 2;
    std::vector<double> found;
    int frames = 0;
    for (std::size_t i = at (s, from); i + reach < at (s, to); i += static_cast<std::size_t> (0.01 * s.rate), ++frames)
        if (const double hz = framePitch (&s.samples[i], window, s.rate, low, high); hz > 0.0)
            found.push_back (hz);
    if (found.empty () || static_cast<int> (found.size ()) * 2 < frames)
        return 0.0;
    std::nth_element (found.begin (), found.begin () + static_cast<long> (found.size () / 2), found.end ());
    return found[found.size () / 2];
}

inline double hz (double midi) { return 440.0 * std::pow (2.0, (midi - 69.0) / 12.0); }
inline double centsOff (double measured, double midi) { return 1200.0 * std::log2 (measured / hz (midi)); }

} // namespace VoiceTest
