#include "sequence/undo/edit_step_manager.h"

namespace Zelmor {

SequenceEditStepManager::~SequenceEditStepManager ()
{
    // In list order, as they were made.
    for (auto& step : steps)
        step.reset ();
}

void SequenceEditStepManager::willUndo ()
{
    if (listener)
        listener->willUndo ();
}

void SequenceEditStepManager::didUndo ()
{
    if (listener)
        listener->didUndo ();
}

void SequenceEditStepManager::willRedo ()
{
    if (listener)
        listener->willRedo ();
}

void SequenceEditStepManager::didRedo ()
{
    if (listener)
        listener->didRedo ();
}

SequenceEditStep* findStep (SequenceEditStepManager& manager, Steinberg::IHostProject* project)
{
    for (auto& step : manager.steps)
        if (step->project == project)
            return step.get ();
    return nullptr;
}

SequenceEditStep& addStep (SequenceEditStepManager& manager, SVSHostList* svsHosts,
                           Steinberg::IHostProject* project, Steinberg::IProjectManager* projectManager)
{
    manager.steps.push_back (
        std::make_unique<SequenceEditStep> (svsHosts, project, projectManager, &manager, manager.trackSender));
    return *manager.steps.back ();
}

} // namespace Zelmor
