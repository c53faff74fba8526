#include "sync/record_track.h"

#include "sequence/sequence_store.h"
#include "sequence/undo/edit_step_manager.h"
#include "sync/note_attributes.h"
#include "sync/project_walk.h"

using namespace Steinberg;

namespace Zelmor {

void recordTrack (const AgentState& agent, IHostProject* project, IProjectNode* root, ISvsPlugin* plugin,
                  const std::vector<SequenceNote>& notes, IProjectEditContext* context)
{
    const PluginLabels labels = readPluginLabels (project, plugin);
    const auto trackId = static_cast<int32_t> (trackIdOfPlugin (root, plugin));
    const std::string stepName = labels.projectName + labels.slotName + labels.trackName;

    // Once the project has a step, only a host edit records: that is what keeps undo in step with the host.
    SequenceEditStep* step = findStep (agent.stepManager, project);
    if (step && !context)
        return;
    if (step && step->closed)
        step->retire ();  // a new project at a closed one's address; the step now belongs to nobody
    if (!step)
        step = &addStep (agent.stepManager, &agent.svsHosts, project, agent.projectManager);
    const bool recorded = recordSequence (*step->store, step->pending, trackId, stepName, notes);

    if (!context || !recorded)
        return;
    // A retired step is not found again: the host is then handed null, as designed.
    context->addEditStep (findStep (agent.stepManager, project));
    for (const auto& note : notes)
        writeNoteText (note, context);
}

} // namespace Zelmor
