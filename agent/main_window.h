// The agent's one window: the local time of day, large and white, redrawn
// about sixty times a second. It shows nothing of the project.
#pragma once

#include "agent/edit_execution.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

namespace Kt {

extern const juce::String windowTitle;  ///< "Cantorela Beta Agent"

class MainComponent : public juce::Component, public juce::Timer
{
public:
    explicit MainComponent (ISKIEditExecution* editExecution);
    ~MainComponent () override;

    void paint (juce::Graphics& g) override;
    void resized () override;
    void timerCallback () override;

private:
    ISKIEditExecution* editExecution;  ///< borrowed, never called
};

class MainWindow : public juce::DocumentWindow
{
public:
    explicit MainWindow (ISKIEditExecution* editExecution);
    ~MainWindow () override;

    /** Closing only hides: the next "Show Editor" shows the same window. */
    void closeButtonPressed () override;

    juce::Viewport& contentViewport () { return *viewport; }
    MainComponent& clock () { return *mainComponent; }

private:
    std::unique_ptr<juce::Viewport> viewport;
    std::unique_ptr<MainComponent> mainComponent;
};

} // namespace Kt
