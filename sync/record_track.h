// Offering a freshly read track to the project's store and, inside a host
// edit, entering the step into the host's history and writing every note back.
#pragma once

#include "host/plugin_interfaces.h"
#include "host/project_interfaces.h"
#include "sequence/sequence_note.h"
#include "sync/sync_pass.h"

#include <vector>

namespace Zelmor {

void recordTrack (const AgentState& agent, Steinberg::IHostProject* project, Steinberg::IProjectNode* root,
                  Steinberg::ISvsPlugin* plugin, const std::vector<SequenceNote>& notes,
                  Steinberg::IProjectEditContext* context);

} // namespace Zelmor
