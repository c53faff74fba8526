// A track's device tree: "Slot" entries whose one child is the insert that
// holds a plug-in. Wrong shapes are easy to build on purpose.
#pragma once

#include "workbench/sim/object.h"

#include "host/project_interfaces.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Sim {

class InsertSlot;

class DeviceNode : public Object, public Steinberg::IDeviceNode
{
public:
    explicit DeviceNode (std::string deviceName, std::string kind = "Device");
    ~DeviceNode () override;

    const std::string& deviceName () const { return deviceName_; }
    void setDeviceName (std::string name) { deviceName_ = std::move (name); }

    DeviceNode& addChild (const std::string& deviceName);
    InsertSlot& addInsert (const std::string& displayName, Steinberg::FUnknown* plugin);
    void addNullChild ();
    void removeChild (DeviceNode& child);
    /** getChildCount reports this instead of the real number. */
    void setChildCountOverride (std::optional<Steinberg::int32> count) { countOverride_ = count; }
    std::size_t childCount () const { return children_.size (); }
    DeviceNode* child (std::size_t index) const;

    const char* PLUGIN_API getName () override;
    Steinberg::int32 PLUGIN_API getChildCount () override;
    Steinberg::IDeviceNode* PLUGIN_API getChild (Steinberg::int32 index) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::string deviceName_;
    std::vector<std::unique_ptr<DeviceNode>> children_;
    std::optional<Steinberg::int32> countOverride_;
};

/** The one child of a "Slot": shows a display name and holds the plug-in (borrowed). */
class InsertSlot : public DeviceNode, public Steinberg::IInsertSlot, public Steinberg::IPluginHolder
{
public:
    InsertSlot (const std::string& displayName, Steinberg::FUnknown* plugin);

    void setDisplayName (const std::string& name);
    /** A display name that need not be valid UTF-16. */
    void setRawDisplayName (std::u16string name) { displayName_ = std::move (name); }
    void setPlugin (Steinberg::FUnknown* plugin) { plugin_ = plugin; }
    Steinberg::FUnknown* plugin () const { return plugin_; }
    void enableInsertSlot (bool on) { insertOn_ = on; }
    void enablePluginHolder (bool on) { holderOn_ = on; }
    /** The "Slot" entry that holds this insert. */
    DeviceNode* entry () const { return entry_; }

    const Steinberg::char16* PLUGIN_API getDisplayName () override;
    Steinberg::FUnknown* PLUGIN_API getPlugin () override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    friend class DeviceNode;
    std::u16string displayName_;
    Steinberg::FUnknown* plugin_;
    bool insertOn_ = true, holderOn_ = true;
    DeviceNode* entry_ = nullptr;
};

} // namespace Sim
