// A project: its tree, its time line, its storage receivers and the host's
// own undo history of edits.
#pragma once

#include "workbench/sim/edit.h"
#include "workbench/sim/folder.h"
#include "workbench/sim/note.h"
#include "workbench/sim/object.h"
#include "workbench/sim/part.h"
#include "workbench/sim/time_context.h"
#include "workbench/sim/track.h"

#include "host/agent_interfaces.h"
#include "host/project_interfaces.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Sim {

class Project : public Object, public Steinberg::IHostProject
{
public:
    explicit Project (const std::string& name);
    /**
     * Lets the history go, which releases the agent's steps: destroy projects
     * (or call clearHistory) while the agent still lives.
     */
    ~Project () override;

    Steinberg::IHostProject* hostProject () { return this; }
    Folder& root () { return root_; }
    TimeContext& time () { return time_; }

    void setBusy (bool busy) { busy_ = busy; }
    /** getContext returns null for every node. */
    void setContextNull (bool on) { contextNull_ = on; }
    /** What hasAttribute answers for a missing key (default kResultFalse). */
    void setMissingAttributeResult (Steinberg::tresult r) { missingResult_ = r; }
    Steinberg::tresult missingAttributeResult () const { return missingResult_; }
    const std::vector<Steinberg::IProjectStorageNotification*>& storageReceivers () const
    {
        return storageReceivers_;
    }

    // Edits and the host's own history.
    /** Opens an edit; until endEdit every change to a note is journaled in it. */
    EditContext& beginEdit (const std::string& name = "edit");
    bool editOpen () const { return open_ != nullptr; }
    EditContext* openContext () const { return open_ ? open_->context.get () : nullptr; }
    /**
     * Closes the open edit into the history, cutting off whatever could have
     * been redone. An edit that changed nothing and holds no step is dropped.
     */
    void endEdit ();
    /**
     * A whole host edit: opens it, runs `change`, asks `agent` for its
     * IProjectEditHook and calls onProjectEdit with this project and the
     * edit's context, then closes it. Returns the hook's result, or
     * kNoInterface when the agent has no hook.
     */
    Steinberg::tresult edit (Steinberg::FUnknown* agent, const std::function<void ()>& change,
                             const std::string& name = "edit");
    /** The user types a lyric on a note: an edit that sets "lyrics". */
    Steinberg::tresult typeLyric (Note& note, const std::string& lyric, Steinberg::FUnknown* agent);
    /** Reverts the newest edit's journal, then undoes its steps newest first. False if none. */
    bool undo ();
    /** Re-applies the next edit's journal, then redoes its steps in order. False if none. */
    bool redo ();
    std::size_t historySize () const { return history_.size (); }
    std::size_t historyCursor () const { return cursor_; }
    const Edit* historyEntry (std::size_t index) const;
    /** Drops every edit of the history, releasing the steps in them. */
    void clearHistory ();
    /** Asks each step of the newest done edit to reportChange into stepChanges(). */
    void reportStepChanges ();
    StepChangeSink& stepChanges () { return stepChanges_; }

    /** The project was saved or loaded: onProjectStorage on every storage receiver. */
    void notifyStorage ();

    // For nodes.
    /** Where the texts of this project's nodes and history are kept. */
    TextPool& texts () { return texts_; }
    /** Adds `change` to the open edit, if there is one. */
    void journal (const Change& change)
    {
        if (open_)
            open_->journal.add (change);
    }
    void keepRemoved (std::unique_ptr<Object> node) { removed_.push_back (std::move (node)); }

    // IHostProject
    Steinberg::FUnknown* PLUGIN_API getContext (Steinberg::IProjectNode* node) override;
    Steinberg::TBool PLUGIN_API isBusy () override;
    Steinberg::tresult PLUGIN_API addStorageNotification (Steinberg::IProjectStorageNotification* r) override;
    Steinberg::tresult PLUGIN_API removeStorageNotification (Steinberg::IProjectStorageNotification* r) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    TextPool texts_;  // first: the nodes and the history point into it
    TimeContext time_;
    StepChangeSink stepChanges_;
    std::vector<std::unique_ptr<Edit>> history_;
    std::unique_ptr<Edit> open_;
    std::size_t cursor_ = 0;  // edits below it are done, those from it on are undone
    bool busy_ = false;
    bool contextNull_ = false;
    Steinberg::tresult missingResult_ = Steinberg::kResultFalse;
    std::vector<Steinberg::IProjectStorageNotification*> storageReceivers_;
    std::vector<std::unique_ptr<Object>> removed_;
    Folder root_;  // last: nodes keep a pointer to the project
};

} // namespace Sim
