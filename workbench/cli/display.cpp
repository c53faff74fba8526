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
    return display;
}

void closeDisplay (void* display)
{
    if (display)
        XCloseDisplay (static_cast<Display*> (display));
}

} // namespace Workbench
