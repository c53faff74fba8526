// The pacing rule of the idle pass, at its edges.
#include "agent/adaptive_interval.h"

#include <gtest/gtest.h>

namespace {

TEST (IntervalRule, GrowsBeyondSeventyPerCentUpToFiveTimesTheBaseAndFallsStraightBack)
{
    const struct
    {
        int32_t current, base;
        double passMs;
        int32_t next;
    } rows[] = {
        {1000, 1000, 700.0, 1000},
        {1000, 1000, 701.0, 1001},  // round (701 / 0.7)
        {1000, 1000, 800.0, 1143},
        {1000, 1000, 10000.0, 5000},
        {5000, 1000, 3600.0, 5000},  // at the cap a long pass finds nothing new to grow to
        {1143, 1000, 400.0, 1143},   // 0.3 * 1143 is below 400
        {1143, 1000, 300.0, 1000},
        {5000, 1000, 0.0, 1000},
        {1000, 1000, 0.0, 1000},     // never below the base
        {0, 0, 0.35, 1},             // 0.35 / 0.7 is 0.5: with a base of 0 the lower bound of 1 decides
        {1, 10, 1.05, 2},            // 1.05 / 0.7 = 1.5 rounds away from zero
    };
    for (const auto& row : rows)
        EXPECT_EQ (Kt::nextIntervalMs (row.current, row.base, row.passMs, 0.7, 0.3, 5.0), row.next)
            << row.current << " ms, a pass of " << row.passMs << " ms";

    // The record carries the same rule.
    Kt::AdaptiveInterval interval;
    Kt::adaptInterval (interval, 800.0);
    EXPECT_EQ (interval.currentIntervalMs, 1143);
    Kt::adaptInterval (interval, 1.0);
    EXPECT_EQ (interval.currentIntervalMs, 1000);
}

} // namespace
