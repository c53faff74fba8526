#include "workbench/cli/display.h"

#include <X11/Xlib.h>

#include <cstdlib>

namespace Workbench {

void* openDisplay (std::string& reason)
{
    const char* name = std::getenv ("DISPLAY");
    if (!name || !*name)
    {
        reason = "no display: the editor window is not shown";
        return nullptr;
    }
    Display* display = XOpenDisplay (nullptr);
    if (!display)
    {
        reason = std::string ("cannot reach the display ") + name + ": the editor window is not shown";
        return nullptr;
    }
    for (const char* atom : {"WM_PROTOCOLS", "WM_DELETE_WINDOW", "WM_TAKE_FOCUS", "_NET_WM_PING", "WM_CHANGE_STATE",
                             "WM_STATE", "_NET_WM_WINDOW_TYPE", "_NET_WM_STATE", "_NET_WM_STATE_HIDDEN"})
        XInternAtom (display, atom, False);
    XSync (display, False);
    return display;
}

void closeDisplay (void* display)
{
    if (display)
        XCloseDisplay (static_cast<Display*> (display));
}

} // namespace Workbench
