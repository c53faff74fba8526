#include "workbench/sim/time_context.h"

#include <gtest/gtest.h>

namespace {

TEST (TimeContextTest, TempoChangesArePiecewiseAndInvertible)
{
    Sim::TimeContext t (120.0);
    t.addTempoChange (8.0, 60.0);   // beat 8 is at 4 s; from there 1 s a beat
    t.addTempoChange (4.0, 240.0);  // inserted earlier: beat 4 at 2 s, beat 8 now at 3 s
    EXPECT_DOUBLE_EQ (t.linearToMusical (-0.5), -1.0);
    EXPECT_DOUBLE_EQ (t.musicalToLinear (4.0), 2.0);
    EXPECT_DOUBLE_EQ (t.musicalToLinear (6.0), 2.5);
    EXPECT_DOUBLE_EQ (t.musicalToLinear (8.0), 3.0);
    EXPECT_DOUBLE_EQ (t.musicalToLinear (10.0), 5.0);
    EXPECT_DOUBLE_EQ (t.linearToMusical (2.75), 7.0);
    for (double s = -1.0; s < 12.0; s += 0.37)
        EXPECT_NEAR (t.musicalToLinear (t.linearToMusical (s)), s, 1e-12) << s;
    for (double b = -2.0; b < 20.0; b += 0.41)
        EXPECT_NEAR (t.linearToMusical (t.musicalToLinear (b)), b, 1e-12) << b;

    t.setTempo (90.0);
    EXPECT_DOUBLE_EQ (t.musicalToLinear (3.0), 2.0);
}

} // namespace
