// The agent's life: construction, initialize, terminate, destruction, and the
// query table that hands out its faces.
#include "agent/agent.h"

#include "agent/dispatcher_timer.h"
#include "agent/main_window.h"
#include "agent/module_entry.h"
#include "agent/toolkit_display.h"
#include "sequence/undo/edit_step_manager.h"
#include "svs/svs_host.h"
#include "svs/svs_host_list.h"
#include "sync/plugin_binding.h"
#include "sync/sync_pass.h"
#include "sync/text_conversion.h"

#include <juce_gui_basics/juce_gui_basics.h>

using namespace Steinberg;

namespace Kt {
namespace {

/** A service of the host, with the reference that getService gave, or null. */
template <class I>
I* serviceOf (IHostServices* services)
{
    void* out = nullptr;
    if (services->getService (I::iid.toTUID (), &out) != kResultOk)
        return nullptr;
    return static_cast<I*> (out);
}

bool sameIid (const TUID a, const FUID& b) { return FUnknownPrivate::iidEqual (a, b.toTUID ()); }

} // namespace

CantorelaBetaAgent::CantorelaBetaAgent ()
{
    idleInterval = std::make_unique<AdaptiveInterval> ();
    svsHosts = std::make_unique<Zelmor::SVSHostList> ();
    stepManager = std::make_unique<Zelmor::SequenceEditStepManager> ();
    stepManager->listener = static_cast<Zelmor::ISequenceEditStepUndoRedoListener*> (this);
    stepManager->trackSender = &Zelmor::sendCurrentTrack;
    nextTrackId = std::make_unique<uint64_t> (1);

    // Not counted: the factory's cardinality of one is what keeps it to one start.
    juce::initialiseJuce_GUI ();

    dispatcherTimer = std::make_unique<DispatcherTimer> (this);
    dispatcherTimer->adaptive = true;

    // Armed at construction, so that the first idle pass waits a whole interval.
    idleInterval->lastRun = steadyNanos ();
    idleInterval->started = true;
    idleInterval->currentIntervalMs = idleInterval->baseIntervalMs;
    idleInterval->lastRun = steadyNanos ();
    idleInterval->started = true;
    idleInterval->adaptive = true;
}

CantorelaBetaAgent::~CantorelaBetaAgent ()
{
    if (dispatcherTimer && dispatcherTimer->isTimerRunning ())
        dispatcherTimer->stopTimer ();
    dispatcherTimer.reset ();

    // A window left by a host that never terminated goes while the toolkit can still take it down.
    {
        ToolkitErrorTrap trap;
        mainWindow.reset ();
    }
    juce::shutdownJuce_GUI ();

    for (auto& host : svsHosts->hosts)
        Zelmor::detachHost (*host);
    svsHosts.reset ();

    stepManager->listener = nullptr;
    stepManager.reset ();

    idleInterval.reset ();
    nextTrackId.reset ();

    if (projectManager)
        projectManager->release ();
    if (hostServices)
        hostServices->release ();
}

tresult PLUGIN_API CantorelaBetaAgent::queryInterface (const TUID iid, void** obj)
{
    void* face = nullptr;
    if (sameIid (iid, IPluginBase::iid))
        face = static_cast<IPluginBase*> (this);
    else if (sameIid (iid, IActionHandler::iid))
        face = static_cast<IActionHandler*> (this);
    else if (sameIid (iid, IIdleHandler::iid))
        face = static_cast<IIdleHandler*> (this);
    else if (sameIid (iid, IProjectNotification::iid) || sameIid (iid, IProjectNotification2::iid)
             || sameIid (iid, IProjectNotification3::iid))
        face = static_cast<IProjectNotification3*> (this);
    else if (sameIid (iid, IProjectStorageNotification::iid))
        face = static_cast<IProjectStorageNotification*> (this);
    else if (sameIid (iid, IProjectEditHook::iid))
        face = static_cast<IProjectEditHook*> (this);
    else
        return FObject::queryInterface (iid, obj);
    addRef ();
    *obj = face;
    return kResultOk;
}

tresult PLUGIN_API CantorelaBetaAgent::initialize (FUnknown* context)
{
    IHostServices* services = nullptr;
    if (context)
    {
        void* out = nullptr;
        if (context->queryInterface (IHostServices::iid.toTUID (), &out) == kResultOk)
            services = static_cast<IHostServices*> (out);
    }
    if (hostServices)
        hostServices->release ();
    hostServices = services;
    if (!hostServices)
        return kResultFalse;

    void* info = nullptr;
    if (hostServices->queryInterface (IHostProductInfo::iid.toTUID (), &info) == kResultOk && info)
    {
        // Two releases for the query's one reference, in this order: a host that serves this
        // agent keeps a reference of its own to its product information.
        auto* productInfo = static_cast<IHostProductInfo*> (info);
        productInfo->release ();
        std::string name = Zelmor::utf16ToUtf8 (productInfo->getProductString1 ());
        std::string version = Zelmor::utf16ToUtf8 (productInfo->getProductString2 ());
        std::string vendor = Zelmor::utf16ToUtf8 (productInfo->getProductString3 ());
        svsHosts->productName = std::move (name);
        svsHosts->productVersion = std::move (version);
        svsHosts->productVendor = std::move (vendor);
        productInfo->release ();
    }

    auto* unloadSink = serviceOf<IModuleUnloadSink> (hostServices);
    auto* actions = serviceOf<IActionHandlerRegistry> (hostServices);
    if (actions)
        actions->addHandler (static_cast<IActionHandler*> (this));
    auto* idle = serviceOf<IIdleHandlerRegistry> (hostServices);
    if (idle)
        idle->addHandler (static_cast<IIdleHandler*> (this));

    auto* manager = serviceOf<IProjectManager> (hostServices);
    if (projectManager && projectManager != manager)
        projectManager->release ();
    projectManager = manager;
    if (projectManager)
        projectManager->addNotification (static_cast<IProjectNotification3*> (this));

    if (idle)
        idle->release ();
    if (actions)
        actions->release ();
    if (unloadSink)
        unloadSink->release ();
    return kResultOk;
}

tresult PLUGIN_API CantorelaBetaAgent::terminate ()
{
    if (mainWindow)
    {
        ToolkitErrorTrap trap;
        auto window = std::move (mainWindow);
        window.reset ();
    }

    if (projectManager)
    {
        projectManager->removeNotification (static_cast<IProjectNotification3*> (this));
        for (int32 index = 0; index < projectManager->getProjectCount (); ++index)
            if (auto* project = projectManager->getProject (index))
                project->removeStorageNotification (static_cast<IProjectStorageNotification*> (this));
        projectManager->release ();
        projectManager = nullptr;
    }

    // Deliberately not the reverse of initialize.
    if (hostServices)
    {
        auto* idle = serviceOf<IIdleHandlerRegistry> (hostServices);
        if (idle)
            idle->removeHandler (static_cast<IIdleHandler*> (this));
        auto* unloadSink = serviceOf<IModuleUnloadSink> (hostServices);
        if (unloadSink)
            unloadSink->moduleTerminating (moduleState ().moduleHandle);
        if (auto* actions = serviceOf<IActionHandlerRegistry> (hostServices))
        {
            actions->removeHandler (static_cast<IActionHandler*> (this));
            actions->release ();
        }
        if (unloadSink)
            unloadSink->release ();
        if (idle)
            idle->release ();
        hostServices->release ();
        hostServices = nullptr;
    }
    return kResultOk;
}

Zelmor::AgentState CantorelaBetaAgent::agentState ()
{
    return {*svsHosts, *nextTrackId, *stepManager, projectManager};
}

void CantorelaBetaAgent::detachAllHosts () { Zelmor::detachAllHosts (*svsHosts); }

} // namespace Kt
