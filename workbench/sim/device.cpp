#include "workbench/sim/device.h"

#include "workbench/sim/text.h"

#include <algorithm>

namespace Sim {

using namespace Steinberg;

DeviceNode::DeviceNode (std::string deviceName, std::string kind)
: Object (std::move (kind), deviceName, Side::Host), deviceName_ (std::move (deviceName))
{
}

DeviceNode::~DeviceNode () = default;

DeviceNode& DeviceNode::addChild (const std::string& deviceName)
{
    children_.push_back (std::make_unique<DeviceNode> (deviceName));
    return *children_.back ();
}

InsertSlot& DeviceNode::addInsert (const std::string& displayName, FUnknown* plugin)
{
    auto slot = std::make_unique<InsertSlot> (displayName, plugin);
    InsertSlot& ref = *slot;
    ref.entry_ = this;
    children_.push_back (std::move (slot));
    return ref;
}

void DeviceNode::addNullChild ()
{
    children_.push_back (nullptr);
}

void DeviceNode::removeChild (DeviceNode& child)
{
    auto it = std::find_if (children_.begin (), children_.end (),
                            [&] (const std::unique_ptr<DeviceNode>& c) { return c.get () == &child; });
    if (it != children_.end ())
        children_.erase (it);
}

DeviceNode* DeviceNode::child (std::size_t index) const
{
    return index < children_.size () ? children_[index].get () : nullptr;
}

const char* PLUGIN_API DeviceNode::getName ()
{
    CallLog::record (Side::Host, "IDeviceNode::getName", name ());
    return deviceName_.c_str ();
}

int32 PLUGIN_API DeviceNode::getChildCount ()
{
    CallLog::record (Side::Host, "IDeviceNode::getChildCount", name ());
    return countOverride_ ? *countOverride_ : static_cast<int32> (children_.size ());
}

IDeviceNode* PLUGIN_API DeviceNode::getChild (int32 index)
{
    CallLog::record (Side::Host, "IDeviceNode::getChild", name ());
    if (index < 0 || static_cast<std::size_t> (index) >= children_.size ())
        return nullptr;
    return children_[static_cast<std::size_t> (index)].get ();
}

bool DeviceNode::query (const TUID iid, void** obj)
{
    // Reached by position only; no identifier of its own.
    return offerUnknown (iid, obj, static_cast<IDeviceNode*> (this));
}

InsertSlot::InsertSlot (const std::string& displayName, FUnknown* plugin)
: DeviceNode ("Insert", "InsertSlot"), displayName_ (toU16 (displayName)), plugin_ (plugin)
{
    setName (displayName);
}

void InsertSlot::setDisplayName (const std::string& name)
{
    displayName_ = toU16 (name);
    setName (name);
}

const char16* PLUGIN_API InsertSlot::getDisplayName ()
{
    CallLog::record (Side::Host, "IInsertSlot::getDisplayName", name ());
    return units (displayName_);
}

FUnknown* PLUGIN_API InsertSlot::getPlugin ()
{
    CallLog::record (Side::Host, "IPluginHolder::getPlugin", name ());
    return plugin_;
}

bool InsertSlot::query (const TUID iid, void** obj)
{
    return (insertOn_ && offer<IInsertSlot> (iid, obj, this))
           || (holderOn_ && offer<IPluginHolder> (iid, obj, this))
           || offerUnknown (iid, obj, static_cast<IDeviceNode*> (this));
}

} // namespace Sim
