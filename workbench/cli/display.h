// The X display the agent's window opens on, made ready as a desktop would be.
#pragma once

#include <string>

namespace Workbench {

/**
 * Opens a connection to $DISPLAY and interns the atoms that a desktop's window
 * manager creates long before any client starts: the toolkit only looks them
 * up, and on a bare X server (Xvfb, say) it would otherwise send requests that
 * name no atom, which ends the process. Null with a reason when there is no
 * display. Keep the connection open while the window lives.
 */
void* openDisplay (std::string& reason);
void closeDisplay (void* display);

} // namespace Workbench
