#include "sequence/undo/edit_step.h"

#include "host/service_interfaces.h"
#include "sequence/sequence_store.h"

#include <cstddef>

namespace Zelmor {

SequenceEditStep::SequenceEditStep (SVSHostList* hosts, Steinberg::IHostProject* stepProject,
                                    Steinberg::IProjectManager* manager,
                                    ISequenceEditStepUndoRedoListener* stepListener, TrackSender trackSender)
    : store (std::make_unique<SequenceStore> ()),
      svsHosts (hosts),
      project (stepProject),
      projectManager (manager),
      listener (stepListener),
      sender (trackSender)
{
    if (projectManager)
        projectManager->addRef ();
}

SequenceEditStep::~SequenceEditStep ()
{
    if (projectManager)
        projectManager->release ();
}

// The host never learns anything from asking: success, and nothing written.
Steinberg::tresult PLUGIN_API SequenceEditStep::queryInterface (const Steinberg::TUID, void**)
{
    return Steinberg::kResultOk;
}

Steinberg::uint32 PLUGIN_API SequenceEditStep::addRef () { return ++refCount; }

Steinberg::uint32 PLUGIN_API SequenceEditStep::release () { return --refCount; }

Steinberg::tresult PLUGIN_API SequenceEditStep::getStepState () { return Steinberg::kResultOk; }

// The host calling undo or redo beyond our history (say on a retired step it
// still holds) must not throw through its frames: there is nothing to move.
Steinberg::tresult PLUGIN_API SequenceEditStep::undo ()
{
    if (store->cursor < 0 || static_cast<std::size_t> (store->cursor) >= store->history.size ())
        return Steinberg::kResultOk;
    if (listener)
        listener->willUndo ();
    undoStore (*store);
    sendCurrentTrack ();
    if (listener)
        listener->didUndo ();
    return Steinberg::kResultOk;
}

Steinberg::tresult PLUGIN_API SequenceEditStep::redo ()
{
    if (static_cast<std::size_t> (store->cursor + 1) >= store->history.size ())
        return Steinberg::kResultOk;
    if (listener)
        listener->willRedo ();
    redoStore (*store);
    sendCurrentTrack ();
    if (listener)
        listener->didRedo ();
    return Steinberg::kResultOk;
}

Steinberg::tresult PLUGIN_API SequenceEditStep::reportChange (Steinberg::IStepChangeSink* sink)
{
    if (pending)
    {
        if (sink)
            sink->markChanged (project);
        pending = false;
    }
    return Steinberg::kResultOk;
}

void SequenceEditStep::retire ()
{
    refCount = 0;
    pending = false;
    svsHosts = nullptr;
    project = nullptr;
    resetStore (*store);
}

void SequenceEditStep::sendCurrentTrack ()
{
    if (sender)
        sender (*this);
}

} // namespace Zelmor
