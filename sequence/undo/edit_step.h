// The one undo step of a project. The host's history holds this same object
// once per recorded change; each undo or redo moves the project's store by one
// change and brings the synthesiser of the affected track up to date.
#pragma once

#include "host/edit_step_interfaces.h"
#include "sequence/undo/undo_redo_listener.h"

#include <cstdint>
#include <memory>

namespace Steinberg {
class IHostProject;
class IProjectManager;
} // namespace Steinberg

namespace Zelmor {

struct SequenceStore;
struct SVSHostList;
class SequenceEditStep;

/** Sends the store's current track to its synthesiser; provided by the sync. */
using TrackSender = void (*) (SequenceEditStep& step);

class SequenceEditStep : public Steinberg::IEditStep
{
public:
    SequenceEditStep (SVSHostList* svsHosts, Steinberg::IHostProject* project,
                      Steinberg::IProjectManager* projectManager,
                      ISequenceEditStepUndoRedoListener* listener, TrackSender sender);
    virtual ~SequenceEditStep ();

    SequenceEditStep (const SequenceEditStep&) = delete;
    SequenceEditStep& operator= (const SequenceEditStep&) = delete;

    // FUnknown: plain counting for the host's books; the manager owns the step.
    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef () override;
    Steinberg::uint32 PLUGIN_API release () override;

    // IEditStep
    Steinberg::tresult PLUGIN_API getStepState () override;
    Steinberg::tresult PLUGIN_API undo () override;
    Steinberg::tresult PLUGIN_API redo () override;
    Steinberg::tresult PLUGIN_API reportChange (Steinberg::IStepChangeSink* sink) override;

    /** Takes the step off its project for a new one at a closed project's address. */
    void retire ();

    uint32_t refCount = 0;
    bool pending = false;
    std::unique_ptr<SequenceStore> store;
    SVSHostList* svsHosts;
    Steinberg::IHostProject* project;
    Steinberg::IProjectManager* projectManager; ///< one reference held
    bool closed = false;
    ISequenceEditStepUndoRedoListener* listener;

private:
    void sendCurrentTrack ();

    TrackSender sender;
};

} // namespace Zelmor
