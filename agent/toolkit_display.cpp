#include "agent/toolkit_display.h"

// The toolkit's X declarations (its display, its atoms, its Xlib bindings) are wanted here only.
#define JUCE_GUI_BASICS_INCLUDE_XHEADERS 1
#include <juce_gui_basics/juce_gui_basics.h>

#if JUCE_LINUX
 #include <juce_events/native/juce_linux_EventLoopInternal.h>
#endif

namespace Kt {

#if JUCE_LINUX

namespace {

// A window manager makes these when it starts; the toolkit looks them up once, when it connects,
// and a request that names one it didn't find names atom 0.
constexpr const char* kWindowManagerAtoms[] = {"WM_PROTOCOLS",        "WM_TAKE_FOCUS",   "WM_DELETE_WINDOW",
                                               "_NET_WM_PING",        "WM_CHANGE_STATE", "WM_STATE",
                                               "_NET_WM_WINDOW_TYPE", "_NET_WM_STATE",   "_NET_WM_STATE_HIDDEN"};

/** XSetErrorHandler and XSync through a hold of our own on Xlib: the toolkit lets its hold go when
    it shuts down, and putting the host's handler back must never call into a library that has gone. */
struct Xlib
{
    using SetErrorHandler = XErrorHandler (*) (XErrorHandler);
    using Sync = int (*) (::Display*, Bool);

    juce::DynamicLibrary library;
    SetErrorHandler setErrorHandler = nullptr;
    Sync sync = nullptr;

    Xlib ()
    {
        if (!library.open ("libX11.so.6"))
            return;
        sync = reinterpret_cast<Sync> (library.getFunction ("XSync"));
        if (sync)
            setErrorHandler = reinterpret_cast<SetErrorHandler> (library.getFunction ("XSetErrorHandler"));
    }
};

/** Opened by the first trap that has a connection to guard, held until the module unloads. */
Xlib& xlib ()
{
    static Xlib lib;
    return lib;
}

// Message thread only, like every window call.
int trapDepth = 0;
XErrorHandler replacedHandler = nullptr;

::Display* toolkitDisplay ()
{
    auto* system = juce::XWindowSystem::getInstanceWithoutCreating ();
    return system != nullptr ? system->getDisplay () : nullptr;
}

int ignoreToolkitErrors (::Display* display, XErrorEvent* event)
{
    if (display == toolkitDisplay () || replacedHandler == nullptr)
        return 0;
    return replacedHandler (display, event);  // another connection of the process: not ours to judge
}

} // namespace

void prepareToolkitDisplay ()
{
    auto* system = juce::XWindowSystem::getInstance ();
    if (!system->isX11Available () || system->getAtoms ().protocols != None)
        return;
    ::Display* display = system->getDisplay ();
    auto* symbols = juce::X11Symbols::getInstance ();
    for (const char* name : kWindowManagerAtoms)
        symbols->xInternAtom (display, name, False);
    // The toolkit's record of them was taken when it connected and found none; it is read afresh.
    const_cast<juce::XWindowSystemUtilities::Atoms&> (system->getAtoms ()) =
        juce::XWindowSystemUtilities::Atoms (display);
}

bool runQueuedWindowEvents ()
{
    ::Display* display = toolkitDisplay ();
    if (display == nullptr)
        return false;
    auto* symbols = juce::X11Symbols::getInstance ();
    if (symbols->xEventsQueued (display, QueuedAlready) <= 0)
        return false;
    juce::LinuxEventLoopInternal::invokeEventLoopCallbackForFd (symbols->xConnectionNumber (display));
    return true;
}

ToolkitErrorTrap::ToolkitErrorTrap ()
{
    if (toolkitDisplay () == nullptr || xlib ().setErrorHandler == nullptr)
        return;
    active = true;
    if (trapDepth++ == 0)
        replacedHandler = xlib ().setErrorHandler (ignoreToolkitErrors);
}

ToolkitErrorTrap::~ToolkitErrorTrap ()
{
    if (!active || --trapDepth > 0)
        return;
    if (::Display* display = toolkitDisplay ())
        xlib ().sync (display, False);
    xlib ().setErrorHandler (replacedHandler);
    replacedHandler = nullptr;
}

#else

void prepareToolkitDisplay () {}
bool runQueuedWindowEvents () { return false; }
ToolkitErrorTrap::ToolkitErrorTrap () = default;
ToolkitErrorTrap::~ToolkitErrorTrap () = default;

#endif

} // namespace Kt
