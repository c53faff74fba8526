#include "agent/main_window.h"

namespace Kt {

const juce::String windowTitle ("Cantorela Beta Agent");

namespace {
constexpr int kContentSize = 800;
constexpr int kRepaintPeriodMs = 16;
constexpr float kTextHeight = 24.0f;
} // namespace

MainComponent::MainComponent (ISKIEditExecution* execution) : editExecution (execution)
{
    // Process-wide and not undone: the look-and-feel belongs to the whole toolkit.
    // Only a family the toolkit can load is asked for: on Linux a missing one draws
    // no glyphs at all, so there the toolkit's own sans-serif stays in force.
    const juce::String typeface ("Arial Unicode MS");
    if (juce::Font::findAllTypefaceNames ().contains (typeface))
        juce::Desktop::getInstance ().getDefaultLookAndFeel ().setDefaultSansSerifTypefaceName (typeface);
    startTimer (kRepaintPeriodMs);
}

MainComponent::~MainComponent () { stopTimer (); }

void MainComponent::paint (juce::Graphics& g)
{
    g.fillAll (getLookAndFeel ().findColour (juce::ResizableWindow::backgroundColourId));
    const juce::String now = juce::Time::getCurrentTime ().formatted ("%H:%M:%S");
    g.setColour (juce::Colours::white);
    g.setFont (juce::Font (kTextHeight));
    g.drawText (now, 0, 0, getWidth (), getHeight (), juce::Justification::centred, true);
}

void MainComponent::resized () { repaint (); }

void MainComponent::timerCallback () { repaint (); }

MainWindow::MainWindow (ISKIEditExecution* editExecution)
    : juce::DocumentWindow (windowTitle,
                            juce::Desktop::getInstance ().getDefaultLookAndFeel ().findColour (
                                juce::ResizableWindow::backgroundColourId),
                            juce::DocumentWindow::closeButton | juce::DocumentWindow::minimiseButton, true)
{
    mainComponent = std::make_unique<MainComponent> (editExecution);
    mainComponent->setSize (kContentSize, kContentSize);

    viewport = std::make_unique<juce::Viewport> (juce::String ());
    viewport->setViewedComponent (mainComponent.get (), false);
    viewport->setSize (kContentSize, kContentSize);

    setUsingNativeTitleBar (true);
    setContentNonOwned (viewport.get (), true);
    setResizable (true, true);
    // Without a display there is no monitor to centre on, and asking for one would
    // bring the host down; the window then simply stays unplaced.
    if (juce::Desktop::getInstance ().getDisplays ().getPrimaryDisplay () != nullptr)
        centreWithSize (getWidth (), getHeight ());
}

MainWindow::~MainWindow ()
{
    // The viewport lets go of the component while both still exist.
    viewport.reset ();
    mainComponent.reset ();
}

void MainWindow::closeButtonPressed () { setVisible (false); }

} // namespace Kt
