// Everything the host asks of the agent between initialize and terminate. Almost
// all of it ends in one of two passes: the locked pass waits for the mutex, the
// idle pass only tries it.
#include "agent/agent.h"

#include "agent/dispatcher_timer.h"
#include "agent/main_window.h"
#include "agent/message_pump.h"
#include "agent/toolkit_display.h"
#include "sequence/undo/edit_step_manager.h"
#include "svs/svs_host_list.h"
#include "sync/plugin_binding.h"
#include "sync/sync_pass.h"
#include "sync/track_identity.h"

#include <cstring>

using namespace Steinberg;

namespace Kt {
namespace {

/** Runs `after` on every way out of the scope, exceptions included. */
template <class F>
struct OnExit
{
    F after;
    ~OnExit () { after (); }
};
template <class F>
OnExit (F) -> OnExit<F>;

} // namespace

void CantorelaBetaAgent::runLockedPass (IHostProject* project, IProjectEditContext* context)
{
    std::lock_guard<std::mutex> lock (mutex);
    Zelmor::bindPlugins (project, *svsHosts);
    Zelmor::syncPass (agentState (), project, context, true);
}

CantorelaBetaAgent::IdleOutcome CantorelaBetaAgent::runIdlePass ()
{
    std::unique_lock<std::mutex> lock (mutex, std::try_to_lock);
    if (!lock.owns_lock ())
        return IdleOutcome::mutexTaken;  // a pass is under way: nothing is queued, the next idle call catches up
    if (!projectManager)
        return IdleOutcome::nothingToDo;
    IHostProject* project = projectManager->getActiveProject ();
    if (!project)
        return IdleOutcome::nothingToDo;
    if (project->isBusy () & 1)
        return IdleOutcome::nothingToDo;
    Zelmor::bindPlugins (project, *svsHosts);
    Zelmor::syncPass (agentState (), project, nullptr, false);
    return IdleOutcome::ran;
}

void PLUGIN_API CantorelaBetaAgent::onIdle ()
{
    dispatchPendingToolkitMessages ();  // every call, paced or not: the window lives on these
    AdaptiveInterval& pace = *idleInterval;
    const int64_t now = steadyNanos ();
    if (!pace.started)
    {
        pace.lastRun = now;
        pace.started = true;
        return;
    }
    if ((now - pace.lastRun) / 1000000 < pace.currentIntervalMs)
        return;
    pace.lastRun = now;

    const int64_t before = steadyNanos ();
    OnExit adapt {[&] {
        if (pace.adaptive)
            adaptInterval (pace, static_cast<double> (steadyNanos () - before) * 1e-6);
    }};
    runIdlePass ();
}

void PLUGIN_API CantorelaBetaAgent::onProjectActivated (IHostProject* project) { runLockedPass (project, nullptr); }

void PLUGIN_API CantorelaBetaAgent::onProjectRefresh (IHostProject* project) { runLockedPass (project, nullptr); }

tresult PLUGIN_API CantorelaBetaAgent::onProjectEdit (IHostProject* project, IProjectEditContext* context)
{
    runLockedPass (project, context);
    return kResultOk;
}

void PLUGIN_API CantorelaBetaAgent::onProjectDeactivated ()
{
    std::lock_guard<std::mutex> lock (mutex);
    if (dispatcherTimer && dispatcherTimer->isTimerRunning ())
        dispatcherTimer->stopTimer ();
    detachAllHosts ();
}

void PLUGIN_API CantorelaBetaAgent::onProjectAdded (IHostProject* project)
{
    std::lock_guard<std::mutex> lock (mutex);
    // Ids that the project brought along are dropped: each run numbers the tracks itself.
    Zelmor::clearTrackIds (project);
    if (project)
        project->addStorageNotification (static_cast<IProjectStorageNotification*> (this));
}

void PLUGIN_API CantorelaBetaAgent::onProjectRemoved (IHostProject* project)
{
    std::lock_guard<std::mutex> lock (mutex);
    if (project)
        project->removeStorageNotification (static_cast<IProjectStorageNotification*> (this));
    detachAllHosts ();
    if (auto* step = Zelmor::findStep (*stepManager, project))
        step->closed = true;
}

tresult PLUGIN_API CantorelaBetaAgent::handleAction (const char* category, const char* name, TBool checkOnly)
{
    if (!category || !name)
        return kResultFalse;
    if (std::strcmp (category, "Cantorela Beta Agent") != 0)
        return kResultFalse;
    if (std::strcmp (name, "Show Editor") != 0)
        return kResultFalse;
    if (checkOnly & 1)
        return kResultOk;
    showEditor ();
    return kResultOk;
}

void CantorelaBetaAgent::showEditor ()
{
    prepareToolkitDisplay ();
    ToolkitErrorTrap trap;  // from here on the toolkit's connection exists, and its errors are ours
    if (!mainWindow)
        mainWindow = std::make_unique<MainWindow> (static_cast<ISKIEditExecution*> (this));
    mainWindow->setVisible (true);
    mainWindow->toFront (true);
}

} // namespace Kt
