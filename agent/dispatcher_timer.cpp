#include "agent/dispatcher_timer.h"

#include "agent/adaptive_interval.h"
#include "agent/agent.h"

#include <algorithm>

namespace Kt {

DispatcherTimer::DispatcherTimer (CantorelaBetaAgent* agent) : target (agent) {}

DispatcherTimer::~DispatcherTimer () { stopTimer (); }

void DispatcherTimer::timerCallback ()
{
    const auto before = juce::Time::getHighResolutionTicks ();
    target->runIdlePass ();
    const auto after = juce::Time::getHighResolutionTicks ();
    if (!adaptive)
        return;
    const double passMs = juce::Time::highResolutionTicksToSeconds (after - before) * 1000.0;
    const int current = getTimerInterval ();
    const int next = nextIntervalMs (current, baseIntervalMs, passMs, growThreshold, shrinkThreshold, maxFactor);
    if (next != current)
        startTimer (std::max (next, 1));
}

} // namespace Kt
