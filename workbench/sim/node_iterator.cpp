#include "workbench/sim/node_iterator.h"

namespace Sim {

using namespace Steinberg;

NodeIterator::NodeIterator (const std::string& ownerName, std::vector<IProjectNode*> items)
: Object ("NodeIterator", ownerName, Side::Host, Ownership::Caller), items_ (std::move (items))
{
}

IProjectNode* PLUGIN_API NodeIterator::next ()
{
    CallLog::record (Side::Host, "INodeIterator::next", name ());
    if (index_ >= items_.size ())
        return nullptr;
    return items_[index_++];
}

TBool PLUGIN_API NodeIterator::isDone ()
{
    CallLog::record (Side::Host, "INodeIterator::isDone", name ());
    return index_ >= items_.size ();
}

void NodeIterator::onRetired ()
{
    // Husks are kept by the thousand; don't keep their child lists too.
    std::vector<IProjectNode*> ().swap (items_);
    index_ = 0;
}

bool NodeIterator::query (const TUID iid, void** obj)
{
    return offerUnknown (iid, obj, static_cast<INodeIterator*> (this));
}

} // namespace Sim
