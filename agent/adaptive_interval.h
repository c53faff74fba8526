// Pacing of the idle pass: a pass at most once per interval, the interval
// growing while passes eat most of it and falling straight back when they don't.
#pragma once

#include <cstdint>

namespace Kt {

struct AdaptiveInterval
{
    int64_t lastRun = 0;          ///< steady clock, nanoseconds: when the last pass began
    int32_t baseIntervalMs = 1000;
    int32_t currentIntervalMs = 1000;
    bool started = false;         ///< whether lastRun is valid
    bool adaptive = false;
    double growThreshold = 0.7;
    double shrinkThreshold = 0.3;
    double maxFactor = 5.0;
};

/** The interval that follows a pass of `passMs` at `currentMs`; `currentMs` itself when nothing changes. */
int32_t nextIntervalMs (int32_t currentMs, int32_t baseMs, double passMs,
                        double growThreshold, double shrinkThreshold, double maxFactor);

/** Applies the rule to the record. */
void adaptInterval (AdaptiveInterval& interval, double passMs);

/** The steady clock in nanoseconds. */
int64_t steadyNanos ();

} // namespace Kt
