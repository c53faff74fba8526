// The editor window as a host meets it: the built module loaded through its entry
// points, "Show Editor" sent through the action handler, the idle call as the only
// thing that drives the toolkit, and the real X window looked at from outside.
#include "host/agent_interfaces.h"
#include "host/service_interfaces.h"
#include "workbench/loader/module_loader.h"

#include <gtest/gtest.h>

// After gtest: Xlib's macros (None, Bool, Status) would break its templates.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using namespace Steinberg;

namespace {

const char* const kCategory = "Cantorela Beta Agent";
const char* const kShowEditor = "Show Editor";
const std::string kTitle = "Cantorela Beta Agent";
constexpr int kContentSize = 800;

using Clock = std::chrono::steady_clock;

// ---------------------------------------------------------------- the host side

/** A host that gives IHostServices and no service behind it: enough to initialise. */
class BareHost : public IHostServices
{
public:
    tresult PLUGIN_API queryInterface (const TUID iid, void** obj) override
    {
        if (FUnknownPrivate::iidEqual (iid, IHostServices::iid.toTUID ())
            || FUnknownPrivate::iidEqual (iid, FUnknown::iid.toTUID ()))
        {
            addRef ();
            *obj = this;
            return kResultOk;
        }
        *obj = nullptr;
        return kNoInterface;
    }
    uint32 PLUGIN_API addRef () override { return ++refs; }
    uint32 PLUGIN_API release () override { return --refs; }
    tresult PLUGIN_API getService (const char*, void** out) override
    {
        if (out)
            *out = nullptr;
        return kNoInterface;
    }

private:
    uint32 refs = 1;
};

Sim::LoadedModule* module = nullptr;
IPluginFactory* factory = nullptr;
Display* xserver = nullptr;

/** Loads the module once for the process. The test's own X connection makes no atom: its
    helpers only look atoms up, so the module meets the server as bare as xvfb-run gives it. */
class ModuleEnvironment : public ::testing::Environment
{
public:
    void SetUp () override
    {
        if (std::getenv ("DISPLAY"))
            xserver = XOpenDisplay (nullptr);
        module = new Sim::LoadedModule (CANTORELA_MODULE_PATH);
        ASSERT_TRUE (module->ok ()) << module->error ();
        ASSERT_TRUE (module->bundleEntry ());
        factory = module->getPluginFactory ();
        ASSERT_NE (factory, nullptr);
    }

    void TearDown () override
    {
        if (factory)
            factory->release ();
        if (module)
        {
            module->bundleExit ();
            module->unload ();
            delete module;
        }
        if (xserver)
            XCloseDisplay (xserver);
    }
};

[[maybe_unused]] const auto* environment = ::testing::AddGlobalTestEnvironment (new ModuleEnvironment);

/** One agent from the module, initialised with the bare host, reached through the
    faces a host uses: IPluginBase, IActionHandler, IIdleHandler. */
class Agent
{
public:
    Agent ()
    {
        base = module->createService (factory);
        if (!base)
            return;
        void* face = nullptr;
        if (base->queryInterface (IActionHandler::iid.toTUID (), &face) == kResultOk)
            actions = static_cast<IActionHandler*> (face);
        if (base->queryInterface (IIdleHandler::iid.toTUID (), &face) == kResultOk)
            idle = static_cast<IIdleHandler*> (face);
        base->initialize (&host);
    }

    ~Agent ()
    {
        if (!base || released)
            return;  // a case that let the last reference go has nothing left to release
        base->terminate ();
        releaseObject ();
    }

    bool ok () const { return base && actions && idle; }
    tresult action (const char* category, const char* name, bool checkOnly = false)
    {
        return actions->handleAction (category, name, checkOnly);
    }
    tresult showEditor () { return action (kCategory, kShowEditor); }
    tresult terminate () { return base->terminate (); }
    tresult initialize () { return base->initialize (&host); }

    /** Idle calls every few milliseconds, as a host's main loop makes them, until
        `done` holds or `ms` have passed. */
    bool idleUntil (const std::function<bool ()>& done, int ms)
    {
        const auto end = Clock::now () + std::chrono::milliseconds (ms);
        while (Clock::now () < end)
        {
            idle->onIdle ();
            if (done && done ())
                return true;
            std::this_thread::sleep_for (std::chrono::milliseconds (5));
        }
        return done && done ();
    }
    void idleFor (int ms) { idleUntil (nullptr, ms); }
    IIdleHandler& idleHandler () { return *idle; }

    /** The last reference goes, without terminate before it. */
    void releaseObject ()
    {
        if (actions)
            actions->release ();
        if (idle)
            idle->release ();
        base->release ();
        actions = nullptr;
        idle = nullptr;
        released = true;
    }

private:
    BareHost host;
    IPluginBase* base = nullptr;
    IActionHandler* actions = nullptr;
    IIdleHandler* idle = nullptr;
    bool released = false;
};

// ---------------------------------------------------------------- the X side

/** The bytes of a text property, whatever its encoding: the toolkit writes
    UTF8_STRING, which XFetchName refuses. */
std::string textProperty (Window window, const char* name)
{
    Atom type = None;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char* data = nullptr;
    std::string text;
    const Atom property = XInternAtom (xserver, name, True);
    if (property != None
        && XGetWindowProperty (xserver, window, property, 0, 256, False, AnyPropertyType, &type, &format, &count,
                               &after, &data)
               == Success
        && data && format == 8)
        text.assign (reinterpret_cast<char*> (data), count);
    if (data)
        XFree (data);
    return text;
}

std::string titleOf (Window window)
{
    const std::string title = textProperty (window, "_NET_WM_NAME");
    return title.empty () ? textProperty (window, "WM_NAME") : title;
}

/** The process id a window claims, or -1 when it claims none. */
long pidOf (Window window)
{
    const Atom pidAtom = XInternAtom (xserver, "_NET_WM_PID", True);
    Atom type = None;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char* data = nullptr;
    long pid = -1;
    if (pidAtom != None
        && XGetWindowProperty (xserver, window, pidAtom, 0, 1, False, XA_CARDINAL, &type, &format, &count, &after,
                               &data)
               == Success
        && data && count == 1)
        pid = static_cast<long> (*reinterpret_cast<unsigned long*> (data));
    if (data)
        XFree (data);
    return pid;
}

void collectTitled (Window window, std::vector<Window>& found)
{
    const long pid = pidOf (window);
    if (titleOf (window) == kTitle && (pid == -1 || pid == static_cast<long> (getpid ())))
        found.push_back (window);
    Window root = 0, parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    if (!XQueryTree (xserver, window, &root, &parent, &children, &count))
        return;
    for (unsigned int i = 0; i < count; ++i)
        collectTitled (children[i], found);
    if (children)
        XFree (children);
}

/** Every X window of this process titled "Cantorela Beta Agent", mapped or not. */
std::vector<Window> agentWindows ()
{
    std::vector<Window> found;
    XSync (xserver, False);
    collectTitled (DefaultRootWindow (xserver), found);
    return found;
}

struct Placement
{
    int x = 0, y = 0, width = 0, height = 0;
    bool viewable = false;
    bool operator== (const Placement& o) const
    {
        return x == o.x && y == o.y && width == o.width && height == o.height && viewable == o.viewable;
    }
};

Placement placementOf (Window window)
{
    Placement placement;
    XWindowAttributes attributes {};
    if (!XGetWindowAttributes (xserver, window, &attributes))
        return placement;
    Window child = 0;
    XTranslateCoordinates (xserver, window, DefaultRootWindow (xserver), 0, 0, &placement.x, &placement.y, &child);
    placement.width = attributes.width;
    placement.height = attributes.height;
    placement.viewable = attributes.map_state == IsViewable;
    return placement;
}

/** What the native close button does: the window manager's WM_DELETE_WINDOW. The atoms are the
    ones the module made for its window. */
void pressCloseButton (Window window)
{
    const Atom protocols = XInternAtom (xserver, "WM_PROTOCOLS", True);
    const Atom deleteWindow = XInternAtom (xserver, "WM_DELETE_WINDOW", True);
    ASSERT_NE (protocols, static_cast<Atom> (None));
    ASSERT_NE (deleteWindow, static_cast<Atom> (None));
    XEvent event {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = protocols;
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long> (deleteWindow);
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent (xserver, window, False, NoEventMask, &event);
    XFlush (xserver);
}

struct Shot
{
    int width = 0, height = 0;
    std::vector<unsigned long> rgb;  ///< 0xRRGGBB, row by row
    unsigned long at (int x, int y) const { return rgb[static_cast<size_t> (y) * width + x]; }
};

bool isWhite (unsigned long pixel)
{
    return ((pixel >> 16) & 0xff) > 200 && ((pixel >> 8) & 0xff) > 200 && (pixel & 0xff) > 200;
}

/** The window's pixels as the X server holds them. */
Shot grab (Window window)
{
    Shot shot;
    const Placement placement = placementOf (window);
    if (!placement.viewable)
        return shot;
    XImage* image = XGetImage (xserver, window, 0, 0, placement.width, placement.height, AllPlanes, ZPixmap);
    if (!image)
        return shot;
    shot.width = placement.width;
    shot.height = placement.height;
    shot.rgb.reserve (static_cast<size_t> (shot.width) * shot.height);
    for (int y = 0; y < shot.height; ++y)
        for (int x = 0; x < shot.width; ++x)
        {
            const unsigned long pixel = XGetPixel (image, x, y);
            auto channel = [pixel] (unsigned long mask) {
                if (!mask)
                    return 0ul;
                unsigned long value = pixel & mask;
                while (!(mask & 1))
                {
                    mask >>= 1;
                    value >>= 1;
                }
                return value * 255 / mask;
            };
            shot.rgb.push_back ((channel (image->red_mask) << 16) | (channel (image->green_mask) << 8)
                                | channel (image->blue_mask));
        }
    XDestroyImage (image);
    return shot;
}

/** Writes the shot as PNG through ImageMagick, fed a plain PPM. */
bool savePng (const Shot& shot, const std::string& path)
{
    FILE* pipe = popen (("convert ppm:- png:'" + path + "'").c_str (), "w");
    if (!pipe)
        return false;
    std::fprintf (pipe, "P6\n%d %d\n255\n", shot.width, shot.height);
    for (unsigned long pixel : shot.rgb)
    {
        const unsigned char bytes[3] = {static_cast<unsigned char> (pixel >> 16),
                                        static_cast<unsigned char> (pixel >> 8), static_cast<unsigned char> (pixel)};
        std::fwrite (bytes, 1, 3, pipe);
    }
    return pclose (pipe) == 0;
}

struct Box
{
    int left = 1 << 30, top = 1 << 30, right = -1, bottom = -1;
    bool empty () const { return right < 0; }
};

/** The smallest rectangle that holds every white pixel: where the clock's text lies. */
Box whiteBox (const Shot& shot)
{
    Box box;
    for (int y = 0; y < shot.height; ++y)
        for (int x = 0; x < shot.width; ++x)
            if (isWhite (shot.at (x, y)))
            {
                box.left = std::min (box.left, x);
                box.right = std::max (box.right, x);
                box.top = std::min (box.top, y);
                box.bottom = std::max (box.bottom, y);
            }
    return box;
}

class EditorWindow : public ::testing::Test
{
protected:
    void SetUp () override
    {
        if (!xserver)
            GTEST_SKIP () << "no X display (DISPLAY unset or unreachable): the window cases need one; "
                             "scripts/run-tests.sh runs them under xvfb-run";
        ASSERT_TRUE (agent.ok ());
        ASSERT_TRUE (agentWindows ().empty ()) << "a window of an earlier case is still there";
    }

    /** Shows the editor and waits until its one window is mapped. */
    Window showAndWait ()
    {
        EXPECT_EQ (agent.showEditor (), kResultOk);
        Window window = 0;
        agent.idleUntil (
            [&] {
                const auto windows = agentWindows ();
                window = windows.size () == 1 && placementOf (windows[0]).viewable ? windows[0] : 0;
                return window != 0;
            },
            3000);
        return window;
    }

    Agent agent;
};

/** The host's own X error handler: counts what reaches it from any connection but the test's. */
int foreignErrors = 0;
int countForeignErrors (Display* display, XErrorEvent*)
{
    foreignErrors += display != xserver;
    return 0;
}

// ---------------------------------------------------------------- the cases

// The first case, so that it meets the server as xvfb-run gives it: no window manager and no client
// that made the window manager's atoms. Until the host's handler goes in, Xlib's default handler ends
// the process on any X error that the module lets through.
TEST_F (EditorWindow, ABareServerAndTheHostsErrorHandlerOutliveTheWindow)
{
    EXPECT_EQ (agent.showEditor (), kResultOk);
    const Window window = showAndWait ();
    ASSERT_NE (window, 0u) << "no mapped window after Show Editor twice";

    // The window is pulled away behind the toolkit's back, so that every request on it fails: none of
    // that may reach the host's handler, which must be back in place after each call.
    XSetErrorHandler (countForeignErrors);
    XDestroyWindow (xserver, window);
    XSync (xserver, False);
    agent.idleFor (300);
    EXPECT_EQ (agent.showEditor (), kResultOk);
    agent.idleFor (300);
    EXPECT_EQ (agent.terminate (), kResultOk);
    EXPECT_EQ (XSetErrorHandler (nullptr), &countForeignErrors) << "the host's handler was left replaced";
    EXPECT_EQ (foreignErrors, 0) << "X errors of the module's connection reached the host's handler";
}

TEST_F (EditorWindow, ShowsTheTickingClockCentredInAnEightHundredSquare)
{
    const Window window = showAndWait ();
    ASSERT_NE (window, 0u) << "no mapped window titled \"" << kTitle << "\" after Show Editor";

    const Placement placement = placementOf (window);
    EXPECT_EQ (placement.width, kContentSize);
    EXPECT_EQ (placement.height, kContentSize);

    // Idle calls alone must carry the first paint and every one after it.
    Shot first;
    ASSERT_TRUE (agent.idleUntil ([&] { return !whiteBox (first = grab (window)).empty (); }, 3000))
        << "the clock was never painted";
    ASSERT_TRUE (savePng (first, std::string (CANTORELA_SHOT_DIR) + "/clock-1.png"));
    agent.idleFor (2000);
    const Shot second = grab (window);
    ASSERT_TRUE (savePng (second, std::string (CANTORELA_SHOT_DIR) + "/clock-2.png"));
    ASSERT_EQ (second.width, first.width);

    int changed = 0;
    for (int y = kContentSize / 2 - 30; y < kContentSize / 2 + 30; ++y)
        for (int x = kContentSize / 2 - 100; x < kContentSize / 2 + 100; ++x)
            changed += first.at (x, y) != second.at (x, y);
    EXPECT_GT (changed, 10) << "the pixels around the centre didn't change in two seconds";

    // White text of height 24, centred in the component; nothing else is drawn.
    const Box text = whiteBox (second);
    ASSERT_FALSE (text.empty ());
    EXPECT_NEAR ((text.left + text.right) / 2.0, kContentSize / 2.0, 8.0);
    EXPECT_NEAR ((text.top + text.bottom) / 2.0, kContentSize / 2.0, 8.0);
    EXPECT_GE (text.bottom - text.top + 1, 10);
    EXPECT_LE (text.bottom - text.top + 1, 24);
    EXPECT_LE (text.right - text.left + 1, 200);
    const unsigned long background = second.at (0, 0);
    EXPECT_FALSE (isWhite (background));
    int foreign = 0;
    for (int y = 0; y < second.height; ++y)
        for (int x = 0; x < second.width; ++x)
        {
            const bool nearText = x >= text.left - 3 && x <= text.right + 3 && y >= text.top - 3 && y <= text.bottom + 3;
            foreign += !nearText && second.at (x, y) != background;
        }
    EXPECT_EQ (foreign, 0) << "pixels other than the background away from the clock";

    // A second Show Editor brings the same window forward and builds no other.
    EXPECT_EQ (agent.showEditor (), kResultOk);
    agent.idleFor (200);
    EXPECT_EQ (agentWindows (), std::vector<Window> {window});
}

TEST_F (EditorWindow, CloseButtonHidesAndShowBringsTheSameWindowBackInPlace)
{
    const Window window = showAndWait ();
    ASSERT_NE (window, 0u);
    const Placement before = placementOf (window);

    pressCloseButton (window);
    ASSERT_TRUE (agent.idleUntil ([&] { return !placementOf (window).viewable; }, 3000))
        << "the close button didn't hide the window";
    EXPECT_EQ (agentWindows (), std::vector<Window> {window}) << "closing must only hide";

    EXPECT_EQ (showAndWait (), window);
    EXPECT_EQ (placementOf (window), before);
}

TEST_F (EditorWindow, TerminateDestroysTheWindowInEveryState)
{
    // Absent: nothing to destroy.
    EXPECT_EQ (agent.terminate (), kResultOk);
    EXPECT_TRUE (agentWindows ().empty ());

    // Visible.
    agent.initialize ();
    ASSERT_NE (showAndWait (), 0u);
    EXPECT_EQ (agent.terminate (), kResultOk);
    EXPECT_TRUE (agentWindows ().empty ()) << "terminate left the visible window";

    // Hidden, after a new initialize: a new window, then closed.
    agent.initialize ();
    const Window window = showAndWait ();
    ASSERT_NE (window, 0u);
    pressCloseButton (window);
    ASSERT_TRUE (agent.idleUntil ([&] { return !placementOf (window).viewable; }, 3000));
    EXPECT_EQ (agent.terminate (), kResultOk);
    EXPECT_TRUE (agentWindows ().empty ()) << "terminate left the hidden window";

    // Released without terminate: the last reference takes the window down too.
    agent.initialize ();
    ASSERT_NE (showAndWait (), 0u);
    agent.releaseObject ();
    EXPECT_TRUE (agentWindows ().empty ());
}

TEST_F (EditorWindow, OnlyAnUncheckedShowEditorBuildsAWindow)
{
    EXPECT_EQ (agent.action (kCategory, kShowEditor, true), kResultOk);
    EXPECT_EQ (agent.action ("Cantorela Beta", kShowEditor), kResultFalse);
    EXPECT_EQ (agent.action (kCategory, "Show editor"), kResultFalse);
    EXPECT_EQ (agent.action (nullptr, kShowEditor), kResultFalse);
    EXPECT_EQ (agent.action (kCategory, nullptr), kResultFalse);
    agent.idleFor (300);
    EXPECT_TRUE (agentWindows ().empty ());
}

// Runs with or without a display. With one, the idle call must hand the thread
// straight back while a visible window repaints every 16 ms, never waiting for
// events; without one, "Show Editor" must leave the host standing.
TEST (EditorIdle, EveryIdleCallReturnsPromptly)
{
    Agent agent;
    ASSERT_TRUE (agent.ok ());
    ASSERT_EQ (agent.showEditor (), kResultOk);

    auto longest = Clock::duration::zero ();
    const auto end = Clock::now () + std::chrono::milliseconds (1500);
    int calls = 0;
    while (Clock::now () < end)
    {
        const auto start = Clock::now ();
        agent.idleHandler ().onIdle ();
        longest = std::max (longest, Clock::now () - start);
        ++calls;
        std::this_thread::sleep_for (std::chrono::milliseconds (2));
    }
    EXPECT_GT (calls, 100);
    EXPECT_LT (std::chrono::duration_cast<std::chrono::milliseconds> (longest).count (), 200)
        << "an idle call waited";
}

} // namespace
