// The pacing rule of the idle pass, at its edges.
#include "agent/adaptive_interval.h"

#include <gtest/gtest.h>

namespace {

int32_t next (int32_t current, double passMs) { return Kt::nextIntervalMs (current, 1000, passMs, 0.7, 0.3, 5.0); }

TEST (IntervalRule, GrowsOnlyBeyondSeventyPerCent)
{
    EXPECT_EQ (next (1000, 700.0), 1000);
    EXPECT_EQ (next (1000, 701.0), 1001);  // round (701 / 0.7)
    EXPECT_EQ (next (1000, 800.0), 1143);
}

TEST (IntervalRule, IsCappedAtFiveTimesTheBase)
{
    EXPECT_EQ (next (1000, 10000.0), 5000);
    // At the cap a long pass finds nothing new to grow to.
    EXPECT_EQ (next (5000, 3600.0), 5000);
}

TEST (IntervalRule, FallsStraightBackToTheBase)
{
    EXPECT_EQ (next (1143, 400.0), 1143);  // 0.3 * 1143 is below 400
    EXPECT_EQ (next (1143, 300.0), 1000);
    EXPECT_EQ (next (5000, 0.0), 1000);
    EXPECT_EQ (next (1000, 0.0), 1000);  // never below the base
}

TEST (IntervalRule, HalvesRoundAwayFromZeroAndTheLeastIsOne)
{
    // 0.35 / 0.7 is 0.5: with a base of 0 the lower bound of 1 decides.
    EXPECT_EQ (Kt::nextIntervalMs (0, 0, 0.35, 0.7, 0.3, 5.0), 1);
    // 1.05 / 0.7 = 1.5 rounds to 2.
    EXPECT_EQ (Kt::nextIntervalMs (1, 10, 1.05, 0.7, 0.3, 5.0), 2);
}

TEST (IntervalRule, AppliesToTheRecord)
{
    Kt::AdaptiveInterval interval;
    Kt::adaptInterval (interval, 800.0);
    EXPECT_EQ (interval.currentIntervalMs, 1143);
    Kt::adaptInterval (interval, 1.0);
    EXPECT_EQ (interval.currentIntervalMs, 1000);
}

} // namespace
