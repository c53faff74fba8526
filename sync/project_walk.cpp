#include "sync/project_walk.h"

#include "sync/text_conversion.h"

#include <cstring>

using namespace Steinberg;

namespace Zelmor {

PluginList::~PluginList ()
{
    for (auto it = plugins.rbegin (); it != plugins.rend (); ++it)
        (*it)->release ();
}

void PluginList::append (ISvsPlugin* plugin)
{
    plugin->addRef ();
    plugins.push_back (plugin);
}

namespace {

/** The walk over tracks: depth first, folders in place of their contents.
    `atTrack` returns true to stop; the result tells whether the walk was stopped. */
template <class AtTrack>
bool walkTracks (IProjectNode* node, AtTrack&& atTrack)
{
    if (!node)
        return false;
    auto children = adopt (node->getChildren ());
    if (!children)
        return false;
    while (!(children->isDone () & 1))
    {
        auto child = queryHost<IProjectNode> (children->next ());
        if (!child)
            continue;
        if (child->isType (types::folder))
        {
            if (walkTracks (child.get (), atTrack))
                return true;
        }
        else if (child->isType (types::instrument))
        {
            if (atTrack (child.get ()))
                return true;
        }
    }
    return false;
}

enum class HolderRoute { direct, throughInsertSlot };

/** Every plug-in in a "Slot" of the track's device tree. `atPlugin (plugin, slot)` returns true to stop;
    `slot` is set only on the insert-slot route. */
template <class AtPlugin>
bool scanSlots (IProjectNode* track, HolderRoute route, AtPlugin&& atPlugin)
{
    auto trackNode = queryHost<ITrackNode> (track);
    if (!trackNode)
        return false;
    auto tree = share (trackNode->getDeviceTree ());
    if (!tree)
        return false;
    const int32 count = tree->getChildCount ();
    if (count < 1)
        return false;
    for (int32 index = 0; index < count; ++index)
    {
        IDeviceNode* slot = tree->getChild (index);
        if (!slot)
            continue;
        const char* name = slot->getName ();
        if (!name || std::strcmp (name, "Slot") != 0)
            continue;
        if (slot->getChildCount () != 1)
            continue;
        IDeviceNode* content = slot->getChild (0);
        if (!content)
            continue;

        HostRef<IInsertSlot> insertSlot;
        HostRef<IPluginHolder> holder;
        if (route == HolderRoute::throughInsertSlot)
        {
            insertSlot = queryHost<IInsertSlot> (content);
            if (!insertSlot)
                continue;
            holder = queryHost<IPluginHolder> (insertSlot.get ());
        }
        else
        {
            holder = queryHost<IPluginHolder> (content);
        }
        if (!holder)
            continue;
        auto plugin = queryHost<ISvsPlugin> (holder->getPlugin ());
        if (!plugin)
            continue;
        if (atPlugin (plugin.get (), insertSlot.get ()))
            return true;
    }
    return false;
}

} // namespace

HostRef<IProjectNode> projectRoot (IHostProject* project) { return queryHost<IProjectNode> (project); }

void collectSvsPlugins (IProjectNode* root, PluginList& out)
{
    walkTracks (root, [&] (IProjectNode* track) {
        scanSlots (track, HolderRoute::direct, [&] (ISvsPlugin* plugin, IInsertSlot*) {
            if (plugin->isAttached () == 0)
                plugin->attach ();
            out.append (plugin);
            return false;
        });
        return false;
    });
}

void collectInstrumentTracks (IProjectNode* root, TrackList& out)
{
    walkTracks (root, [&] (IProjectNode* track) {
        out.push_back (track);
        return false;
    });
}

void forEachInstrumentTrack (IProjectNode* root, const std::function<void (IProjectNode*)>& atTrack)
{
    walkTracks (root, [&] (IProjectNode* track) {
        atTrack (track);
        return false;
    });
}

HostRef<IProjectNode> findTrackOfPlugin (IProjectNode* root, ISvsPlugin* wanted)
{
    HostRef<IProjectNode> found;
    walkTracks (root, [&] (IProjectNode* track) {
        return scanSlots (track, HolderRoute::throughInsertSlot, [&] (ISvsPlugin* plugin, IInsertSlot*) {
            if (plugin != wanted)
                return false;
            found = share (track);
            return true;
        });
    });
    return found;
}

HostRef<IInsertSlot> findSlotOfPlugin (IProjectNode* root, ISvsPlugin* wanted)
{
    HostRef<IInsertSlot> found;
    walkTracks (root, [&] (IProjectNode* track) {
        return scanSlots (track, HolderRoute::throughInsertSlot, [&] (ISvsPlugin* plugin, IInsertSlot* slot) {
            if (plugin != wanted)
                return false;
            found = share (slot);
            return true;
        });
    });
    return found;
}

int64_t trackIdOfPlugin (IProjectNode* root, ISvsPlugin* wanted)
{
    int64_t id = -1;
    walkTracks (root, [&] (IProjectNode* track) {
        return scanSlots (track, HolderRoute::direct, [&] (ISvsPlugin* plugin, IInsertSlot*) {
            if (plugin != wanted)
                return false;
            if (track->hasAttribute (keys::trackId) == kResultOk)
            {
                FVariant value;
                track->getAttribute (keys::trackId, &value);
                id = (value.getType () & FVariant::kInteger) ? value.getInt () : 0;
            }
            return true;
        });
    });
    return id;
}

void collectMidiParts (IProjectNode* node, PartList& out)
{
    // The objects below a track are taken as the iterator gives them, without a query:
    // only a part is recognised, and anything else is descended into.
    if (!node)
        return;
    if (node->isType (types::midi) && node->isType (types::part))
    {
        out.push_back (node);
        return;
    }
    auto children = adopt (node->getChildren ());
    if (!children)
        return;
    while (!(children->isDone () & 1))
        collectMidiParts (children->next (), out);
}

PluginLabels readPluginLabels (IHostProject* project, ISvsPlugin* plugin)
{
    PluginLabels labels;
    auto root = projectRoot (project);
    if (!root)
        return labels;
    labels.plugin = share (plugin);
    labels.projectName = utf16ToUtf8 (root->getName ());
    if (auto slot = findSlotOfPlugin (root.get (), plugin))
        labels.slotName = utf16ToUtf8 (slot->getDisplayName ());
    if (auto track = findTrackOfPlugin (root.get (), plugin))
        labels.trackName = utf16ToUtf8 (track->getName ());
    labels.project = project;
    return labels;
}

} // namespace Zelmor
