// The toolkit's X connection, made safe to use inside a host's process. In a
// plug-in the toolkit installs no X error handler, so an error on its connection
// goes to whatever handler the process has, and Xlib's default one ends the
// process. Where there is no X, all of this does nothing.
#pragma once

namespace Kt {

/** Connects the toolkit to the display if it isn't yet, and makes sure that the window
    manager's atoms it looks up (without creating them) exist, so that a server without a
    window manager gets no request that names atom 0. Message thread only. */
void prepareToolkitDisplay ();

/** Runs the toolkit's handler of window events for those that wait in Xlib's queue: a round trip
    (such as the sync of a trap) reads them off the connection, where polling it no longer sees them.
    True if there were any. */
bool runQueuedWindowEvents ();

/** While alive, X errors on the toolkit's connection are swallowed, as the toolkit's own handler
    does in an application, and others go on to the handler that was installed before. On the way out the connection is synced, so that the
    errors of what ran inside arrive while the trap still holds, and the earlier handler is put
    back: the handler is process-wide and is never left replaced. Nests. Message thread only.
    Does nothing while the toolkit has no connection. */
class ToolkitErrorTrap
{
public:
    ToolkitErrorTrap ();
    ~ToolkitErrorTrap ();
    ToolkitErrorTrap (const ToolkitErrorTrap&) = delete;
    ToolkitErrorTrap& operator= (const ToolkitErrorTrap&) = delete;

private:
    [[maybe_unused]] bool active = false;
};

} // namespace Kt
