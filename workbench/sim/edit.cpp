#include "workbench/sim/edit.h"

#include "workbench/sim/note.h"

namespace Sim {

using namespace Steinberg;

EditContext::EditContext (const std::string& name) : Object ("EditContext", name, Side::Host) {}

EditContext::~EditContext ()
{
    releaseSteps ();
}

void EditContext::releaseSteps ()
{
    auto steps = std::move (steps_);
    steps_.clear ();
    for (auto* step : steps)
        step->release ();
}

tresult PLUGIN_API EditContext::addEditStep (IEditStep* step)
{
    CallLog::record (Side::Host, "IProjectEditContext::addEditStep", name ());
    if (!step)
        return kInvalidArgument;
    step->addRef ();
    steps_.push_back (step);
    return kResultOk;
}

bool EditContext::query (const TUID iid, void** obj)
{
    return offerUnknown (iid, obj, static_cast<IProjectEditContext*> (this));
}

StepChangeSink::StepChangeSink (const std::string& name) : Object ("StepChangeSink", name, Side::Host) {}

tresult PLUGIN_API StepChangeSink::markChanged (IHostProject* project)
{
    CallLog::record (Side::Host, "IStepChangeSink::markChanged", name ());
    marked_.push_back (project);
    return kResultOk;
}

bool StepChangeSink::query (const TUID iid, void** obj)
{
    return offerUnknown (iid, obj, static_cast<IStepChangeSink*> (this));
}

namespace {

void restore (const Change& c, const std::optional<Value>& value)
{
    if (c.kind == Change::Text)
    {
        if (auto* note = dynamic_cast<Note*> (c.node))
            note->restoreText (c.key, value);
    }
    else
        c.node->restoreAttr (c.key, value);
}

} // namespace

void Edit::revert () const
{
    for (auto it = journal.rbegin (); it != journal.rend (); ++it)
        restore (*it, it->before);
}

void Edit::reapply () const
{
    for (const auto& c : journal)
        restore (c, c.after);
}

} // namespace Sim
