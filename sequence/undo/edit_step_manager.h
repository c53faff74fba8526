// Owner of one edit step per project that the agent has seen, and relay of
// their undo and redo events to the agent.
#pragma once

#include "sequence/undo/edit_step.h"

#include <memory>
#include <vector>

namespace Zelmor {

class SequenceEditStepManager : public ISequenceEditStepUndoRedoListener
{
public:
    SequenceEditStepManager () = default;
    ~SequenceEditStepManager () override;

    void willUndo () override;
    void didUndo () override;
    void willRedo () override;
    void didRedo () override;

    /** In order of creation; never removed before the manager dies. */
    std::vector<std::unique_ptr<SequenceEditStep>> steps;
    ISequenceEditStepUndoRedoListener* listener = nullptr;
    /** Handed to every new step: how it brings a synthesiser up to date. */
    TrackSender trackSender = nullptr;
};

/** The first step of `project`, by pointer, or null. */
SequenceEditStep* findStep (SequenceEditStepManager& manager, Steinberg::IHostProject* project);

/** Appends a new step for `project`, holding a new reference to `projectManager`. */
SequenceEditStep& addStep (SequenceEditStepManager& manager, SVSHostList* svsHosts,
                           Steinberg::IHostProject* project, Steinberg::IProjectManager* projectManager);

} // namespace Zelmor
