#include "agent/message_pump.h"

#include "agent/toolkit_display.h"

#include <juce_events/juce_events.h>

#if JUCE_LINUX
 #include <juce_events/native/juce_linux_EventLoopInternal.h>
 #include <poll.h>
 #include <vector>
#endif

namespace Kt {
namespace {

// A repaint can make the X connection readable again, and its events can post
// messages: a few rounds settle that, a fixed cap hands the thread back however
// busy the toolkit is.
constexpr int kMaxRounds = 8;

// Message thread only (checked before it is touched), so a plain flag serves.
bool dispatching = false;

#if JUCE_LINUX
/** One round: poll every descriptor that the toolkit watches, without a timeout,
    and run the callbacks of those that are ready. True if any ran. */
bool dispatchReadyDescriptors ()
{
    // Empty before the toolkit has started and after it has stopped: then there is
    // nothing to poll and nothing to call.
    const std::vector<int> fds = juce::LinuxEventLoopInternal::getRegisteredFds ();
    if (fds.empty ())
        return false;

    std::vector<pollfd> watched;
    watched.reserve (fds.size ());
    for (int fd : fds)
        watched.push_back ({fd, POLLIN, 0});
    if (::poll (watched.data (), static_cast<nfds_t> (watched.size ()), 0) <= 0)
        return false;

    bool ran = false;
    for (const pollfd& entry : watched)
    {
        // A descriptor closed under us has no callback worth calling.
        if (entry.revents == 0 || (entry.revents & POLLNVAL) != 0)
            continue;
        // Looked up anew: an earlier callback of this round may have removed it.
        juce::LinuxEventLoopInternal::invokeEventLoopCallbackForFd (entry.fd);
        ran = true;
    }
    return ran;
}
#endif

} // namespace

void dispatchPendingToolkitMessages () noexcept
{
    auto* manager = juce::MessageManager::getInstanceWithoutCreating ();
    if (manager == nullptr || !manager->isThisTheMessageThread () || dispatching)
        return;

    dispatching = true;
    try
    {
#if JUCE_LINUX
        ToolkitErrorTrap trap;  // repaints and window events talk to the X server
        for (int round = 0; round < kMaxRounds; ++round)
        {
            const bool queued = runQueuedWindowEvents ();
            if (!dispatchReadyDescriptors () && !queued)
                break;
        }
#endif
    }
    catch (...)
    {
        // A failing toolkit callback must not unwind into the host's idle call.
    }
    dispatching = false;
}

} // namespace Kt
