// The part of a host's main loop that belongs to the window system.
#pragma once

namespace Workbench {

/** On Windows, dispatches every window message waiting on this thread: the toolkit's
    windows, timers and posted calls live on the host's loop there. Elsewhere the
    agent's idle call does that work, and this does nothing. Never waits. */
void dispatchWindowMessages ();

} // namespace Workbench
