#include "sync/track_identity.h"

#include "sync/note_attributes.h"
#include "sync/project_walk.h"

#include <unordered_set>

using namespace Steinberg;

namespace Zelmor {
namespace {

constexpr int32 kAttributeFlags = 1;

void writeTrackId (IProjectNode* track, int64 id)
{
    const FVariant value (id);
    track->setAttribute (keys::trackId, &value, kAttributeFlags);
}

void clearMarksOfTrack (IHostProject* project, IProjectNode* track)
{
    if (!queryHost<ITrackNode> (track))
        return;
    // The context is only asked for whether there is one; it is let go before the parts are read.
    if (!adopt (project->getContext (track)))
        return;
    PartList parts;
    collectMidiParts (track, parts);
    for (IProjectNode* part : parts)
    {
        if (!part)
            continue;
        auto events = adopt (part->getChildren ());
        if (!events)
            continue;
        while (!(events->isDone () & 1))
        {
            IProjectNode* event = events->next ();
            if (!event || !queryHost<INoteText> (event))
                continue;
            clearMarksOfNote (event);
        }
    }
}

} // namespace

uint64_t takeNewTrackId (uint64_t& nextTrackId)
{
    uint64_t id = nextTrackId;
    if (id == 0x7FFFFFFFFFFFFFFFull)
        id = 1;
    nextTrackId = id + 1;
    return id;
}

void assignTrackIds (IProjectNode* root, uint64_t& nextTrackId)
{
    // At each track while the walk holds it: a host may keep a node alive only while it is referenced.
    forEachInstrumentTrack (root, [&] (IProjectNode* track) {
        if (track->hasAttribute (keys::trackId) != kResultOk)
            writeTrackId (track, static_cast<int64> (takeNewTrackId (nextTrackId)));
    });
}

void dedupeTrackIds (IProjectNode* root, uint64_t& nextTrackId)
{
    TrackList tracks;
    collectInstrumentTracks (root, tracks);
    std::unordered_set<int32_t> seen;
    seen.max_load_factor (1.0f);
    for (IProjectNode* track : tracks)
    {
        if (track->hasAttribute (keys::trackId) != kResultOk)
            continue;
        FVariant value;
        track->getAttribute (keys::trackId, &value);
        // Only the low 32 bits tell ids apart; the variant's type is not looked at.
        const auto id = static_cast<int32_t> (value.intValue);
        if (seen.insert (id).second)
            continue;
        const auto fresh = static_cast<int32_t> (takeNewTrackId (nextTrackId));
        writeTrackId (track, static_cast<int64> (fresh));
    }
}

void clearTrackIds (IHostProject* project)
{
    auto root = projectRoot (project);
    if (!root)
        return;
    TrackList tracks;
    collectInstrumentTracks (root.get (), tracks);
    for (IProjectNode* track : tracks)
        if (track->hasAttribute (keys::trackId) == kResultOk)
            track->removeAttribute (keys::trackId);
}

void clearNoteMarks (IHostProject* project, IProjectNode* node)
{
    if (!project || !node)
        return;
    PluginList plugins;
    collectSvsPlugins (node, plugins);

    auto children = adopt (node->getChildren ());
    if (!children)
        return;
    while (!(children->isDone () & 1))
    {
        auto child = queryHost<IProjectNode> (children->next ());
        if (!child)
            continue;
        if (child->isType (types::folder))
        {
            clearNoteMarks (project, child.get ());
            continue;
        }
        if (!child->isType (types::instrument) && !child->isType (types::midi))
            continue;
        bool servesSynthesiser = false;
        for (ISvsPlugin* plugin : plugins)
        {
            if (findTrackOfPlugin (node, plugin).get () == child.get ())
            {
                servesSynthesiser = true;
                break;
            }
        }
        if (!servesSynthesiser)
            clearMarksOfTrack (project, child.get ());
    }
}

} // namespace Zelmor
