#include "agent/adaptive_interval.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace Kt {

int32_t nextIntervalMs (int32_t currentMs, int32_t baseMs, double passMs,
                        double growThreshold, double shrinkThreshold, double maxFactor)
{
    if (growThreshold * currentMs < passMs)
    {
        // The pass took too much of the interval: stretch it, at most maxFactor times the base.
        double grown = std::min (passMs / growThreshold, maxFactor * baseMs);
        grown = std::max (grown, 1.0);
        const auto rounded = static_cast<int32_t> (std::round (grown));
        return rounded;
    }
    if (shrinkThreshold * currentMs > passMs && currentMs > baseMs)
        return baseMs;
    return currentMs;
}

void adaptInterval (AdaptiveInterval& interval, double passMs)
{
    interval.currentIntervalMs = nextIntervalMs (interval.currentIntervalMs, interval.baseIntervalMs, passMs,
                                                 interval.growThreshold, interval.shrinkThreshold,
                                                 interval.maxFactor);
}

int64_t steadyNanos ()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds> (
               std::chrono::steady_clock::now ().time_since_epoch ())
        .count ();
}

} // namespace Kt
