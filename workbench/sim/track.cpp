#include "workbench/sim/track.h"

#include "workbench/sim/part.h"

namespace Sim {

using namespace Steinberg;

Track::Track (const std::string& name, Project* project, Type type)
: Node (type == Instrument ? "InstrumentTrack" : "MidiTrack", name,
        {type == Instrument ? "instrument" : "midi"}, project),
  type_ (type), devices_ (name + " devices")
{
}

InsertSlot& Track::addSlot (const std::string& displayName, FUnknown* plugin)
{
    return devices_.addChild ("Slot").addInsert (displayName, plugin);
}

void Track::removeSlot (InsertSlot& slot)
{
    if (DeviceNode* entry = slot.entry ())
        devices_.removeChild (*entry);
}

Part& Track::addPart (double start, double end, double contentStart)
{
    auto& p = adopt (std::make_unique<Part> (name () + " part " + std::to_string (++partCount_), project ()));
    p.setTimes (start, end);
    p.setContentStart (contentStart < 0.0 ? start : contentStart);
    return p;
}

int32 PLUGIN_API Track::getTimeDomain ()
{
    CallLog::record (Side::Host, "ITrackNode::getTimeDomain", name ());
    return timeDomain_;
}

IDeviceNode* PLUGIN_API Track::getDeviceTree ()
{
    CallLog::record (Side::Host, "ITrackNode::getDeviceTree", name ());
    return deviceTreeNull_ ? nullptr : &devices_;
}

bool Track::query (const TUID iid, void** obj)
{
    return (trackNodeOn_ && offer<ITrackNode> (iid, obj, this)) || Node::query (iid, obj);
}

InsertSlot& movePlugin (Track& from, InsertSlot& slot, Track& to, const std::string& displayName)
{
    FUnknown* plugin = slot.plugin ();
    from.removeSlot (slot);
    return to.addSlot (displayName, plugin);
}

} // namespace Sim
