#include "sync/sync_pass.h"

#include "sequence/sequence_store.h"
#include "sequence/undo/edit_step_manager.h"
#include "svs/svs_host.h"
#include "svs/svs_host_list.h"
#include "sync/host_index.h"
#include "sync/note_collection.h"
#include "sync/note_list_builder.h"
#include "sync/plugin_binding.h"
#include "sync/project_walk.h"
#include "sync/record_track.h"
#include "sync/track_identity.h"

using namespace Steinberg;

namespace Zelmor {

void syncPass (const AgentState& agent, IHostProject* project, IProjectEditContext* context, bool markSeen)
{
    // 1. The project's root; a project without one is left alone.
    if (!project)
        return;
    auto root = projectRoot (project);
    if (!root)
        return;

    // 2. The synthesisers, in walk order.
    PluginList plugins;
    collectSvsPlugins (root.get (), plugins);

    // 3.-5. Tracks in order: every instrument track has an id, no two share one,
    //       and notes that left a synthesiser's track lose our marks.
    assignTrackIds (root.get (), agent.nextTrackId);
    dedupeTrackIds (root.get (), agent.nextTrackId);
    clearNoteMarks (project, root.get ());

    // 6. Each synthesiser in turn: read its track, tell it first, then record and write back.
    const HostIndex hosts (agent.svsHosts);
    for (ISvsPlugin* plugin : plugins)
    {
        const TrackNotes track = collectTrackNotes (project, root.get (), plugin, markSeen);
        SVSHostImpl* host = hosts.find (plugin);
        sendNotes (track.notes, host, host != nullptr);
        recordTrack (agent, project, root.get (), plugin, track.notes, context);
    }
}

void sendCurrentTrack (SequenceEditStep& step)
{
    // Only the active project's synthesisers hear of it now; the others when theirs is synced.
    if (!step.project || !step.projectManager || step.projectManager->getActiveProject () != step.project)
        return;
    if (step.svsHosts)
        bindPlugins (step.project, *step.svsHosts);
    auto root = projectRoot (step.project);
    if (!root)
        return;
    PluginList plugins;
    collectSvsPlugins (root.get (), plugins);

    const int32_t trackId = step.store->currentTrackId;
    if (trackId == -1)
        return;
    ISvsPlugin* served = nullptr;
    for (ISvsPlugin* plugin : plugins)
    {
        if (static_cast<int32_t> (trackIdOfPlugin (root.get (), plugin)) == trackId)
        {
            served = plugin;
            break;
        }
    }
    if (!served)
        return;

    const std::vector<SequenceNote> notes = currentSequence (*step.store).notes;
    SVSHostImpl* host = step.svsHosts ? findHost (*step.svsHosts, served) : nullptr;
    clearNoteMarks (step.project, root.get ());
    sendNotes (notes, host, host != nullptr);
}

} // namespace Zelmor
