// The children of a node as the host walks them: a snapshot taken when the
// iterator is made, handed to the caller with one reference.
#pragma once

#include "workbench/sim/object.h"

#include "host/project_interfaces.h"

#include <vector>

namespace Sim {

class NodeIterator : public Object, public Steinberg::INodeIterator
{
public:
    /** `items` are borrowed from the tree, nulls and strangers included. */
    NodeIterator (const std::string& ownerName, std::vector<Steinberg::IProjectNode*> items);

    Steinberg::IProjectNode* PLUGIN_API next () override;
    Steinberg::TBool PLUGIN_API isDone () override;

    SIM_FUNKNOWN

protected:
    void onRetired () override;
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::vector<Steinberg::IProjectNode*> items_;
    std::size_t index_ = 0;
};

} // namespace Sim
