// Tracks: "instrument" tracks with a device tree of slots, and plain "midi" tracks.
#pragma once

#include "workbench/sim/device.h"
#include "workbench/sim/node.h"

namespace Sim {

class Part;

class Track : public Node, public Steinberg::ITrackNode
{
public:
    enum Type
    {
        Instrument,
        Midi
    };
    Track (const std::string& name, Project* project, Type type);

    Type type () const { return type_; }
    void enableTrackNode (bool on) { trackNodeOn_ = on; }
    /** 0 musical, 1 linear; anything else is a domain the agent doesn't read. */
    void setTimeDomain (Steinberg::int32 domain) { timeDomain_ = domain; }

    /** The root of the device tree; its children are the "Slot" entries. */
    DeviceNode& devices () { return devices_; }
    /** getDeviceTree returns null. */
    void setDeviceTreeNull (bool on) { deviceTreeNull_ = on; }
    /** A "Slot" entry with one insert that shows `displayName` and holds `plugin`. */
    InsertSlot& addSlot (const std::string& displayName, Steinberg::FUnknown* plugin);
    /** Takes a slot's "Slot" entry out of the device tree. */
    void removeSlot (InsertSlot& slot);
    /** A MIDI part; times in seconds. */
    Part& addPart (double start, double end, double contentStart = -1.0 /* = start */);

    Steinberg::int32 PLUGIN_API getTimeDomain () override;
    Steinberg::IDeviceNode* PLUGIN_API getDeviceTree () override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    Type type_;
    bool trackNodeOn_ = true;
    bool deviceTreeNull_ = false;
    Steinberg::int32 timeDomain_ = 0;
    DeviceNode devices_;
    int partCount_ = 0;
};

/** Moves a plug-in: its slot leaves `from`, and `to` gets a new slot holding it. */
InsertSlot& movePlugin (Track& from, InsertSlot& slot, Track& to, const std::string& displayName);

} // namespace Sim
