#include "workbench/sim/node.h"

#include "workbench/sim/node_iterator.h"
#include "workbench/sim/project.h"
#include "workbench/sim/text.h"

#include <algorithm>

namespace Sim {

using namespace Steinberg;

Stranger::Stranger (const std::string& name, Project* project) : Node ("Stranger", name, {}, project) {}

bool Stranger::query (const TUID iid, void** obj)
{
    return offerUnknown (iid, obj, face ());
}

Node::Node (std::string kind, std::string name, std::vector<std::string> types, Project* project)
: Object (std::move (kind), name, Side::Host), types_ (std::move (types)), rawName_ (toU16 (name)),
  project_ (project)
{
}

Node::~Node () = default;

bool Node::hasType (const std::string& type) const
{
    return std::find (types_.begin (), types_.end (), type) != types_.end ();
}

void Node::rename (const std::string& name)
{
    setName (name);
    rawName_ = toU16 (name);
}

int64_t Node::attrInt (const std::string& key) const
{
    auto v = attr (key);
    return v ? v->asInt () : 0;
}

std::string Node::attrText (const std::string& key) const
{
    auto v = attr (key);
    return v ? v->toString () : std::string ();
}

void Node::setAttr (const std::string& key, const Value& value)
{
    change (attributes_, attributes_.place (texts (), key.c_str ()), texts ().hold (value), journaled ());
}

void Node::removeAttr (const std::string& key)
{
    change (attributes_, attributes_.place (texts (), key.c_str ()), Slot {}, journaled ());
}

std::optional<int32> Node::lastFlags (const std::string& key) const
{
    const uint32_t i = attributes_.find (key.c_str ());
    if (i == AttributeStore::kNone || !attributes_.at (i).flagged)
        return std::nullopt;
    return attributes_.at (i).flags;
}

TextPool& Node::texts () const
{
    return project_ ? project_->texts () : TextPool::unowned ();
}

void Node::change (AttributeStore& store, uint32_t entry, const Slot& value, bool journal)
{
    Slot& slot = store.at (entry).value;
    if (journal && project_)
        project_->journal ({&store, entry, slot, value});
    slot = value;
}

Node& Node::addNode (const std::string& name, std::vector<std::string> types)
{
    return adopt (std::make_unique<Node> ("Node", name, std::move (types), project_));
}

Node& Node::addStranger ()
{
    return adopt (std::make_unique<Stranger> (name () + " stranger", project_));
}

void Node::addNullChild ()
{
    children_.push_back ({nullptr, nullptr});
}

void Node::removeChild (Node& child)
{
    auto it = std::find_if (children_.begin (), children_.end (),
                            [&] (const Child& c) { return c.owned.get () == &child; });
    if (it == children_.end ())
        return;
    std::unique_ptr<Object> owned = std::move (it->owned);
    children_.erase (it);
    child.parent_ = nullptr;
    if (project_)
        project_->keepRemoved (std::move (owned));
}

std::vector<Node*> Node::childNodes () const
{
    std::vector<Node*> out;
    for (auto& c : children_)
        if (auto* n = dynamic_cast<Node*> (c.owned.get ()))
            out.push_back (n);
    return out;
}

int32 PLUGIN_API Node::isType (const char* typeName)
{
    CallLog::record (Side::Host, "IProjectNode::isType", name ());
    return typeName && hasType (typeName) ? 1 : 0;
}

tresult PLUGIN_API Node::setAttribute (const char* key, const FVariant* value, int32 flags)
{
    CallLog::record (Side::Host, "IProjectNode::setAttribute", name ());
    if (!key || !value)
        return kInvalidArgument;
    const uint32_t entry = attributes_.place (texts (), key);
    auto& e = attributes_.at (entry);
    e.flagged = true;
    e.flags = flags;
    change (attributes_, entry, texts ().hold (*value, e.value), journaled ());
    return kResultOk;
}

tresult PLUGIN_API Node::getAttribute (const char* key, FVariant* value)
{
    CallLog::record (Side::Host, "IProjectNode::getAttribute", name ());
    if (!key || !value)
        return kInvalidArgument;
    const Slot* held = attributes_.get (key);
    if (!held)
        return kResultFalse;
    held->toVariant (*value, borrowedStrings_);
    return kResultOk;
}

tresult PLUGIN_API Node::hasAttribute (const char* key)
{
    CallLog::record (Side::Host, "IProjectNode::hasAttribute", name ());
    if (key && attributes_.has (key))
        return kResultOk;
    if (missingResult_)
        return *missingResult_;
    return project_ ? project_->missingAttributeResult () : kResultFalse;
}

tresult PLUGIN_API Node::removeAttribute (const char* key)
{
    CallLog::record (Side::Host, "IProjectNode::removeAttribute", name ());
    if (!key)
        return kInvalidArgument;
    const uint32_t entry = attributes_.find (key);
    if (entry == AttributeStore::kNone || !attributes_.at (entry).value.present ())
        return kResultFalse;
    change (attributes_, entry, Slot {}, journaled ());
    return kResultOk;
}

const char16* PLUGIN_API Node::getName ()
{
    CallLog::record (Side::Host, "IProjectNode::getName", name ());
    return units (rawName_);
}

TBool PLUGIN_API Node::isMuted ()
{
    CallLog::record (Side::Host, "IProjectNode::isMuted", name ());
    return muted_;
}

double PLUGIN_API Node::getStart (ITimeContext*)
{
    CallLog::record (Side::Host, "IProjectNode::getStart", name ());
    return start_;
}

double PLUGIN_API Node::getEnd (ITimeContext*)
{
    CallLog::record (Side::Host, "IProjectNode::getEnd", name ());
    return end_;
}

double PLUGIN_API Node::getContentStart (ITimeContext*)
{
    CallLog::record (Side::Host, "IProjectNode::getContentStart", name ());
    return contentStart_;
}

INodeIterator* PLUGIN_API Node::getChildren ()
{
    CallLog::record (Side::Host, "IProjectNode::getChildren", name ());
    if (childrenNull_)
        return nullptr;
    std::vector<IProjectNode*> items;
    items.reserve (children_.size ());
    for (auto& c : children_)
        items.push_back (c.face);
    return new NodeIterator (name (), std::move (items));
}

bool Node::query (const TUID iid, void** obj)
{
    return offer<IProjectNode> (iid, obj, this)
           || offerUnknown (iid, obj, static_cast<IProjectNode*> (this));
}

} // namespace Sim
