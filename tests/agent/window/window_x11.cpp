// The editor window on X: the idle call is the only thing that drives the toolkit, and
// the test's own connection looks at the server from outside. It makes no atom: its
// helpers only look atoms up, so the module meets the server as bare as xvfb-run gives it.
// Listed first in the build, so that its first case is the first of the process.
#include "tests/agent/window/editor_window.h"

// After gtest: Xlib's macros (None, Bool, Status) would break its templates.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

using namespace Steinberg;

namespace EditorWindowTest {
namespace {

Display* xserver ()
{
    static Display* const display = std::getenv ("DISPLAY") ? XOpenDisplay (nullptr) : nullptr;
    return display;
}

/** The title's bytes, whatever their type: the toolkit writes UTF8_STRING, which XFetchName refuses. */
std::string titleOf (Window window)
{
    XTextProperty name {};
    if (!XGetWMName (xserver (), window, &name) || !name.value)
        return {};
    std::string title (reinterpret_cast<char*> (name.value), name.nitems);
    XFree (name.value);
    return title;
}

// The test runs alone (RUN_SERIAL): every window with the title is this process's.
void collectTitled (Window window, std::vector<WindowId>& found)
{
    if (titleOf (window) == "Cantorela Beta Agent")
        found.push_back (window);
    Window root = 0, parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    if (!XQueryTree (xserver (), window, &root, &parent, &children, &count))
        return;
    for (unsigned int i = 0; i < count; ++i)
        collectTitled (children[i], found);
    if (children)
        XFree (children);
}

} // namespace

bool windowSystemPresent () { return xserver () != nullptr; }

void runHostMessages () {}

std::vector<WindowId> agentWindows ()
{
    std::vector<WindowId> found;
    XSync (xserver (), False);
    collectTitled (DefaultRootWindow (xserver ()), found);
    return found;
}

// Without a window manager the toolkit's window is a child of the root, so its place is the root's.
Placement placementOf (WindowId window)
{
    XWindowAttributes attributes {};
    if (!XGetWindowAttributes (xserver (), window, &attributes))
        return {};
    return {attributes.x, attributes.y, attributes.width, attributes.height, attributes.map_state == IsViewable};
}

/** The window manager's WM_DELETE_WINDOW, with the atoms the module made for its window. */
void pressCloseButton (WindowId window)
{
    XEvent event {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom (xserver (), "WM_PROTOCOLS", True);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long> (XInternAtom (xserver (), "WM_DELETE_WINDOW", True));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent (xserver (), window, False, NoEventMask, &event);
    XFlush (xserver ());
}

Shot grab (WindowId window)
{
    Shot shot;
    const Placement placement = placementOf (window);
    XImage* image = placement.visible ? XGetImage (xserver (), window, 0, 0, placement.width, placement.height,
                                                   AllPlanes, ZPixmap)
                                      : nullptr;
    if (!image)
        return shot;
    // The 24-bit screen that xvfb-run -s "-screen 0 1280x1024x24" gives: a pixel is 0xRRGGBB.
    EXPECT_EQ (image->red_mask, 0xFF0000ul);
    shot.width = placement.width;
    shot.height = placement.height;
    for (int y = 0; y < shot.height; ++y)
        for (int x = 0; x < shot.width; ++x)
            shot.rgb.push_back (static_cast<uint32_t> (XGetPixel (image, x, y) & 0xFFFFFF));
    XDestroyImage (image);
    return shot;
}

/** A PNG in the build tree, through ImageMagick fed a plain PPM. */
void keepShot (const Shot& shot, const char* name)
{
    const std::string path = std::string (CANTORELA_SHOT_DIR) + "/" + name + ".png";
    FILE* pipe = popen (("convert ppm:- png:'" + path + "'").c_str (), "w");
    ASSERT_NE (pipe, nullptr);
    std::fprintf (pipe, "P6\n%d %d\n255\n", shot.width, shot.height);
    for (uint32_t pixel : shot.rgb)
    {
        const unsigned char bytes[3] = {static_cast<unsigned char> (pixel >> 16),
                                        static_cast<unsigned char> (pixel >> 8), static_cast<unsigned char> (pixel)};
        std::fwrite (bytes, 1, 3, pipe);
    }
    EXPECT_EQ (pclose (pipe), 0) << path;
}

long openHandles ()
{
    const std::filesystem::directory_iterator descriptors ("/proc/self/fd");
    return std::distance (begin (descriptors), end (descriptors));
}

namespace {

/** The host's own X error handler: counts what reaches it from any connection but the test's. */
int foreignErrors = 0;
int countForeignErrors (Display* display, XErrorEvent*)
{
    foreignErrors += display != xserver ();
    return 0;
}

// The first case of the process, so that it meets the server as xvfb-run gives it: no window manager
// and no client that made the window manager's atoms. Until the host's handler goes in, Xlib's default
// handler ends the process on any X error that the module lets through.
TEST_F (EditorWindow, ABareServerAndTheHostsErrorHandlerOutliveTheWindow)
{
    EXPECT_EQ (showEditor (), kResultOk);
    const WindowId window = showAndWait ();
    ASSERT_NE (window, 0u) << "no shown window after Show Editor twice";

    // The window is pulled away behind the toolkit's back, so that every request on it fails: none of
    // that may reach the host's handler, which must be back in place after each call.
    XSetErrorHandler (countForeignErrors);
    XDestroyWindow (xserver (), window);
    XSync (xserver (), False);
    idleFor (300);
    EXPECT_EQ (showEditor (), kResultOk);
    idleFor (300);
    EXPECT_EQ (agent->terminate (), kResultOk);
    EXPECT_EQ (XSetErrorHandler (nullptr), &countForeignErrors) << "the host's handler was left replaced";
    EXPECT_EQ (foreignErrors, 0) << "X errors of the module's connection reached the host's handler";
}

} // namespace
} // namespace EditorWindowTest
