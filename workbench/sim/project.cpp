#include "workbench/sim/project.h"

#include "workbench/sim/note.h"
#include "workbench/sim/part.h"
#include "workbench/sim/track.h"

#include <algorithm>

namespace Sim {

using namespace Steinberg;

Project::Project (const std::string& name)
: Object ("Project", name, Side::Host), stepChanges_ (name + " changes"), root_ (name, this, false)
{
    time_.setName (name + " tempo");
}

Project::~Project ()
{
    clearHistory ();
}

EditContext& Project::beginEdit (const std::string& name)
{
    if (open_)
        endEdit ();
    open_ = std::make_unique<Edit> ();
    open_->name = name;
    // The edit before is the likeliest to have journaled the same changes.
    if (cursor_ > 0)
        open_->journal = Journal (&history_[cursor_ - 1]->journal);
    open_->context = std::make_unique<EditContext> (name);
    return *open_->context;
}

void Project::endEdit ()
{
    if (!open_)
        return;
    std::unique_ptr<Edit> edit = std::move (open_);
    edit->journal.close ();
    if (edit->journal.empty () && edit->context->steps ().empty ())
        return;
    // A new edit makes the undone ones unreachable.
    history_.resize (cursor_);
    history_.push_back (std::move (edit));
    cursor_ = history_.size ();
}

tresult Project::edit (FUnknown* agent, const std::function<void ()>& change, const std::string& name)
{
    EditContext& context = beginEdit (name);
    if (change)
        change ();
    tresult result = kNoInterface;
    IProjectEditHook* hook = nullptr;
    if (agent && agent->queryInterface (IProjectEditHook::iid, reinterpret_cast<void**> (&hook)) == kResultOk
        && hook)
    {
        CallLog::record (Side::Agent, "IProjectEditHook::onProjectEdit");
        result = hook->onProjectEdit (this, &context);
        hook->release ();
    }
    endEdit ();
    return result;
}

tresult Project::typeLyric (Note& note, const std::string& lyric, FUnknown* agent)
{
    return edit (agent, [&] { note.setText ("lyrics", lyric); }, "type lyric");
}

bool Project::undo ()
{
    if (open_ || cursor_ == 0)
        return false;
    const Edit& e = *history_[--cursor_];
    e.revert ();
    const auto steps = e.context->steps ();
    for (auto it = steps.rbegin (); it != steps.rend (); ++it)
    {
        CallLog::record (Side::Agent, "IEditStep::undo");
        (*it)->undo ();
    }
    return true;
}

bool Project::redo ()
{
    if (open_ || cursor_ >= history_.size ())
        return false;
    const Edit& e = *history_[cursor_++];
    e.reapply ();
    const auto steps = e.context->steps ();
    for (auto* step : steps)
    {
        CallLog::record (Side::Agent, "IEditStep::redo");
        step->redo ();
    }
    return true;
}

const Edit* Project::historyEntry (std::size_t index) const
{
    return index < history_.size () ? history_[index].get () : nullptr;
}

void Project::clearHistory ()
{
    open_.reset ();
    history_.clear ();
    cursor_ = 0;
}

void Project::reportStepChanges ()
{
    if (cursor_ == 0)
        return;
    const auto steps = history_[cursor_ - 1]->context->steps ();
    for (auto* step : steps)
    {
        CallLog::record (Side::Agent, "IEditStep::reportChange");
        step->reportChange (&stepChanges_);
    }
}

void Project::notifyStorage ()
{
    const auto targets = storageReceivers_;
    for (auto* r : targets)
    {
        CallLog::record (Side::Agent, "IProjectStorageNotification::onProjectStorage");
        r->onProjectStorage ();
    }
}

FUnknown* PLUGIN_API Project::getContext (IProjectNode* node)
{
    CallLog::record (Side::Host, "IHostProject::getContext", name ());
    if (contextNull_ || !node)
        return nullptr;
    auto* n = dynamic_cast<Node*> (node);
    if (!n)
        return nullptr;
    if (auto* part = dynamic_cast<Part*> (n))
    {
        if (part->contextNull ())
            return nullptr;
        part->anchor ().retain ();
        return static_cast<IEditAnchor*> (&part->anchor ());
    }
    if (n == &root_ || dynamic_cast<Track*> (n))
    {
        time_.retain ();
        return static_cast<ITimeContext*> (&time_);
    }
    return nullptr;
}

TBool PLUGIN_API Project::isBusy ()
{
    CallLog::record (Side::Host, "IHostProject::isBusy", name ());
    return busy_;
}

tresult PLUGIN_API Project::addStorageNotification (IProjectStorageNotification* r)
{
    CallLog::record (Side::Host, "IHostProject::addStorageNotification", name ());
    storageReceivers_.push_back (r);
    return kResultOk;
}

tresult PLUGIN_API Project::removeStorageNotification (IProjectStorageNotification* r)
{
    CallLog::record (Side::Host, "IHostProject::removeStorageNotification", name ());
    auto it = std::find (storageReceivers_.begin (), storageReceivers_.end (), r);
    if (it != storageReceivers_.end ())
        storageReceivers_.erase (it);
    return kResultOk;
}

bool Project::query (const TUID iid, void** obj)
{
    // The project pointer leads to the tree's root.
    if (FUnknownPrivate::iidEqual (iid, IProjectNode::iid))
    {
        root_.retain ();
        *obj = root_.face ();
        return true;
    }
    return offerUnknown (iid, obj, static_cast<IHostProject*> (this));
}

} // namespace Sim
