// The pass that brings the host's project, the synthesisers and the store
// together. Read it top to bottom in sync_pass.cpp: it is the order it runs in.
#pragma once

#include "host/project_interfaces.h"
#include "host/service_interfaces.h"

#include <cstdint>

namespace Zelmor {

struct SVSHostList;
class SequenceEditStepManager;
class SequenceEditStep;

/** What a pass works on, all of it owned by the agent. */
struct AgentState
{
    SVSHostList& svsHosts;
    uint64_t& nextTrackId;
    SequenceEditStepManager& stepManager;
    Steinberg::IProjectManager* projectManager;
};

/** One whole pass over `project`. The caller holds the agent's mutex and has just bound the plug-ins.
    `context` is the host's edit in progress (edit hook only); `markSeen` marks unmarked notes. */
void syncPass (const AgentState& agent, Steinberg::IHostProject* project, Steinberg::IProjectEditContext* context,
               bool markSeen);

/** Brings the synthesiser of the step's current track up to date from the store, after an undo or redo. */
void sendCurrentTrack (SequenceEditStep& step);

} // namespace Zelmor
