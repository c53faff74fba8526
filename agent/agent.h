// The one object of the module that the host holds on to. It owns the SVS host
// objects, the undo steps, the idle pacing, the editor window and the mutex
// that serialises all project-side work.
#pragma once

#include "agent/adaptive_interval.h"
#include "agent/edit_execution.h"
#include "base/source/fobject.h"
#include "host/agent_interfaces.h"
#include "host/service_interfaces.h"
#include "pluginterfaces/base/ipluginbase.h"
#include "sequence/undo/undo_redo_listener.h"

#include <cstdint>
#include <memory>
#include <mutex>

namespace Zelmor {
struct SVSHostList;
class SequenceEditStepManager;
struct AgentState;
} // namespace Zelmor

namespace Kt {

class DispatcherTimer;
class MainWindow;

class CantorelaBetaAgent : public Steinberg::FObject,
                           public Steinberg::IPluginBase,
                           public Steinberg::IActionHandler,
                           public Steinberg::IIdleHandler,
                           public Steinberg::IProjectNotification3,
                           public Steinberg::IProjectStorageNotification,
                           public Steinberg::IProjectEditHook,
                           public ISKIEditExecution,
                           public Zelmor::ISequenceEditStepUndoRedoListener
{
public:
    CantorelaBetaAgent ();
    ~CantorelaBetaAgent () override;

    OBJ_METHODS (CantorelaBetaAgent, FObject)
    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef () override { return FObject::addRef (); }
    Steinberg::uint32 PLUGIN_API release () override { return FObject::release (); }

    // IPluginBase
    Steinberg::tresult PLUGIN_API initialize (Steinberg::FUnknown* context) override;
    Steinberg::tresult PLUGIN_API terminate () override;

    // IActionHandler
    Steinberg::tresult PLUGIN_API handleAction (const char* category, const char* name,
                                                Steinberg::TBool checkOnly) override;
    // IIdleHandler
    void PLUGIN_API onIdle () override;

    // IProjectNotification3
    void PLUGIN_API onProjectActivated (Steinberg::IHostProject* project) override;
    void PLUGIN_API onProjectDeactivated () override;
    void PLUGIN_API onProjectAdded (Steinberg::IHostProject* project) override;
    void PLUGIN_API onProjectRemoved (Steinberg::IHostProject* project) override;
    Steinberg::int32 PLUGIN_API onProjectQuery () override { return 0; }
    void PLUGIN_API onProjectNoOp () override {}
    void PLUGIN_API onProjectRefresh (Steinberg::IHostProject* project) override;

    // IProjectStorageNotification: loading or saving changes nothing of ours by itself.
    void PLUGIN_API onProjectStorage () override {}

    // IProjectEditHook
    Steinberg::tresult PLUGIN_API onProjectEdit (Steinberg::IHostProject* project,
                                                 Steinberg::IProjectEditContext* context) override;

    // ISKIEditExecution
    juce::String editExecutionText1 () override { return {}; }
    juce::String editExecutionText2 () override { return {}; }
    juce::String editExecutionText3 () override { return {}; }
    juce::String editExecutionText4 () override { return {}; }
    juce::String editExecutionText5 () override { return {}; }

    // ISequenceEditStepUndoRedoListener: after the host moved a step, catch up at once if we can.
    void willUndo () override {}
    void didUndo () override { runIdlePass (); }
    void willRedo () override {}
    void didRedo () override { runIdlePass (); }

    /** Waits for the mutex, binds the plug-ins and runs a pass over `project`. */
    void runLockedPass (Steinberg::IHostProject* project, Steinberg::IProjectEditContext* context);
    /** How an idle pass ended: it ran, the mutex was taken, or there was nothing to do. */
    enum class IdleOutcome { ran, mutexTaken, nothingToDo };
    /** Tries the mutex; gives up if it is taken, if there is no active project or if it is busy. */
    IdleOutcome runIdlePass ();
    /** Creates the editor window on first use, shows it and brings it to the front. */
    void showEditor ();

    // Read by tests and the workbench.
    const AdaptiveInterval& interval () const { return *idleInterval; }
    AdaptiveInterval& interval () { return *idleInterval; }
    const Zelmor::SVSHostList& hosts () const { return *svsHosts; }
    Zelmor::SequenceEditStepManager& steps () { return *stepManager; }
    std::mutex& passMutex () { return mutex; }
    MainWindow* editorWindow () const { return mainWindow.get (); }
    bool hasHostServices () const { return hostServices != nullptr; }
    bool hasProjectManager () const { return projectManager != nullptr; }
    uint64_t peekNextTrackId () const { return *nextTrackId; }

private:
    Zelmor::AgentState agentState ();
    void detachAllHosts ();

    Steinberg::IHostServices* hostServices = nullptr;
    Steinberg::IProjectManager* projectManager = nullptr;
    std::unique_ptr<Zelmor::SVSHostList> svsHosts;
    std::unique_ptr<Zelmor::SequenceEditStepManager> stepManager;
    std::unique_ptr<uint64_t> nextTrackId;
    std::unique_ptr<AdaptiveInterval> idleInterval;
    std::unique_ptr<DispatcherTimer> dispatcherTimer;
    std::unique_ptr<MainWindow> mainWindow;
    std::mutex mutex;
};

/** The class creation function handed to the factory: the new agent's IPluginBase face, one reference. */
Steinberg::FUnknown* createAgentInstance (void* context);

} // namespace Kt
