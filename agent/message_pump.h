// A loaded module has no run loop of its own on Linux: nothing polls the
// toolkit's message socket or the X connection unless the host hands us its
// thread. The host's idle call is that thread, so each one drains what the
// toolkit has ready, without ever waiting for more.
#pragma once

namespace Kt {

/** Runs the toolkit's ready work: posted messages, timer callbacks (the window's
    repaint), window-system events. Returns at once when nothing is ready. Does
    nothing off the message thread, before the toolkit has started, after it has
    stopped, or when reached from inside its own dispatch. Never throws. */
void dispatchPendingToolkitMessages () noexcept;

} // namespace Kt
