// Whether the agent's window has an X display to open on.
#pragma once

#include <string>

namespace Workbench {

/**
 * Opens a connection to $DISPLAY, as a host with a user interface holds one, and
 * does nothing else with it: the module makes what it needs of the server itself,
 * a bare one (Xvfb, say) included. Null with a reason when there is no display.
 */
void* openDisplay (std::string& reason);
void closeDisplay (void* display);

} // namespace Workbench
