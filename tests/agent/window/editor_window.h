// The editor window as a host meets it, on either window system: the built module
// loaded through its entry points, "Show Editor" sent through the host's action
// registry, and the real window looked at from outside. The cases both systems run
// are in editor_window_test.cpp; each system gives the few calls declared here.
#pragma once

#include "pluginterfaces/base/ipluginbase.h"
#include "workbench/sim/host_services.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

namespace EditorWindowTest {

using WindowId = std::uintptr_t;

struct Placement
{
    int x = 0, y = 0, width = 0, height = 0;
    bool visible = false;
    bool operator== (const Placement& o) const
    {
        return x == o.x && y == o.y && width == o.width && height == o.height && visible == o.visible;
    }
};

/** The client area as drawn, 0xRRGGBB row by row. */
struct Shot
{
    int width = 0, height = 0;
    std::vector<uint32_t> rgb;
    uint32_t at (int x, int y) const { return rgb[static_cast<size_t> (y) * width + x]; }
};

// ---------------------------------------------------------------- what each window system gives

/** Whether windows can be made and looked at here (on X: whether a display is reachable). */
bool windowSystemPresent ();
/** Dispatches what the system's message loop holds, where the host's loop drives the toolkit. */
void runHostMessages ();
/** Every window of this process titled "Cantorela Beta Agent", shown or not. */
std::vector<WindowId> agentWindows ();
Placement placementOf (WindowId window);
/** What the window's own close button sends. */
void pressCloseButton (WindowId window);
/** Empty while the window is not shown. */
Shot grab (WindowId window);
/** Keeps a shot for people to look at, where the system has a place for it. */
void keepShot (const Shot& shot, const char* name);
/** The process's open descriptors or handles: a connection of the toolkit's is one of them. */
long openHandles ();

// ---------------------------------------------------------------- the host side, shared

/** One agent from the module, initialised with the simulated host's services, where windows
    can be made; no window of an earlier case is left. */
class EditorWindow : public ::testing::Test
{
protected:
    void SetUp () override;
    /** terminate and the last release, unless the case let the agent go; every host reference back. */
    void TearDown () override;

    Steinberg::tresult action (const char* category, const char* name, bool checkOnly = false);
    Steinberg::tresult showEditor () { return action ("Cantorela Beta Agent", "Show Editor"); }
    /** Turns of the host's main loop every few milliseconds until `done` holds or `ms` have passed. */
    bool idleUntil (const std::function<bool ()>& done, int ms);
    void idleFor (int ms) { idleUntil (nullptr, ms); }
    /** Shows the editor and waits until its one window is shown: that window, or 0. */
    WindowId showAndWait ();

    Sim::HostServices host;
    Steinberg::IPluginFactory* factory = nullptr;
    Steinberg::IPluginBase* agent = nullptr;
    long handlesBeforeAgent = 0;
    int idleCalls = 0;
    std::chrono::steady_clock::duration longestIdleCall {};
};

} // namespace EditorWindowTest
