// A timer that could drive the idle pass with the same adaptive pacing as the
// host's idle calls. It is built with the agent and never started: the host's
// onIdle is the only periodic driver.
#pragma once

#include <juce_events/juce_events.h>

namespace Kt {

class CantorelaBetaAgent;

class DispatcherTimer : public juce::Timer
{
public:
    explicit DispatcherTimer (CantorelaBetaAgent* agent);
    ~DispatcherTimer () override;

    void timerCallback () override;

    CantorelaBetaAgent* target;
    bool adaptive = false;
    double growThreshold = 0.7;
    double shrinkThreshold = 0.3;
    double maxFactor = 5.0;
    int baseIntervalMs = 1000;
};

} // namespace Kt
