// Finding out what a project holds: synthesiser plug-ins, instrument tracks,
// MIDI parts, and where a plug-in sits. Walked afresh on every pass; nothing is
// kept between passes.
#pragma once

#include "host/plugin_interfaces.h"
#include "host/project_interfaces.h"
#include "sync/host_ref.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Zelmor {

/** Plug-ins in walk order, one reference each, released from the last to the first. */
class PluginList
{
public:
    PluginList () = default;
    ~PluginList ();
    PluginList (const PluginList&) = delete;
    PluginList& operator= (const PluginList&) = delete;

    void append (Steinberg::ISvsPlugin* plugin);  ///< takes a new reference
    std::size_t size () const { return plugins.size (); }
    Steinberg::ISvsPlugin* operator[] (std::size_t index) const { return plugins[index]; }
    auto begin () const { return plugins.begin (); }
    auto end () const { return plugins.end (); }

private:
    std::vector<Steinberg::ISvsPlugin*> plugins;
};

/** Borrowed, alive for one pass. */
using TrackList = std::vector<Steinberg::IProjectNode*>;
using PartList = std::vector<Steinberg::IProjectNode*>;

/** The names that tell where one plug-in sits. */
struct PluginLabels
{
    HostRef<Steinberg::ISvsPlugin> plugin;
    std::string projectName;
    std::string slotName;
    std::string trackName;
    Steinberg::IHostProject* project = nullptr;  ///< borrowed
};

void collectSvsPlugins (Steinberg::IProjectNode* root, PluginList& out);
void collectInstrumentTracks (Steinberg::IProjectNode* root, TrackList& out);
/** Calls `atTrack` at every "instrument" track in walk order, while the walk still holds that track. */
void forEachInstrumentTrack (Steinberg::IProjectNode* root, const std::function<void (Steinberg::IProjectNode*)>& atTrack);
HostRef<Steinberg::IProjectNode> findTrackOfPlugin (Steinberg::IProjectNode* root, Steinberg::ISvsPlugin* plugin);
HostRef<Steinberg::IInsertSlot> findSlotOfPlugin (Steinberg::IProjectNode* root, Steinberg::ISvsPlugin* plugin);
/** The "TrID" of the plug-in's track, 0 for a non-integer value, -1 without a track or an id. */
int64_t trackIdOfPlugin (Steinberg::IProjectNode* root, Steinberg::ISvsPlugin* plugin);
void collectMidiParts (Steinberg::IProjectNode* node, PartList& out);
/** Raises utf8::invalid_utf16 for a malformed name. */
PluginLabels readPluginLabels (Steinberg::IHostProject* project, Steinberg::ISvsPlugin* plugin);

/** The root node of a project, or null. */
HostRef<Steinberg::IProjectNode> projectRoot (Steinberg::IHostProject* project);

/** Host attribute keys and node types. */
namespace keys {
inline constexpr const char* trackId = "TrID";
inline constexpr const char* seen = "svsn";
inline constexpr const char* storedLyric = "lyph";
inline constexpr const char* lyrics = "lyrics";
inline constexpr const char* phoneme = "phoneme";
} // namespace keys

namespace types {
inline constexpr const char* folder = "folder";
inline constexpr const char* instrument = "instrument";
inline constexpr const char* midi = "midi";
inline constexpr const char* part = "part";
} // namespace types

} // namespace Zelmor
