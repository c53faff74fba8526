// The host's edits: the context handed to the agent, the journal of what
// changed, and the steps the agent entered.
#pragma once

#include "workbench/sim/journal.h"
#include "workbench/sim/object.h"

#include "host/edit_step_interfaces.h"
#include "host/project_interfaces.h"

#include <memory>
#include <string>
#include <vector>

namespace Sim {

/**
 * What the agent sees of an edit. The steps it adds belong to the agent: we
 * take a reference on each and give it back when the history lets the edit go.
 */
class EditContext : public Object, public Steinberg::IProjectEditContext
{
public:
    explicit EditContext (const std::string& name);
    ~EditContext () override;

    const std::vector<Steinberg::IEditStep*>& steps () const { return steps_; }
    /** Gives back our references to the steps and forgets them. */
    void releaseSteps ();

    Steinberg::tresult PLUGIN_API addEditStep (Steinberg::IEditStep* step) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::vector<Steinberg::IEditStep*> steps_;
};

/** Where a step reports that it changed the project. */
class StepChangeSink : public Object, public Steinberg::IStepChangeSink
{
public:
    explicit StepChangeSink (const std::string& name);

    const std::vector<Steinberg::IHostProject*>& marked () const { return marked_; }

    Steinberg::tresult PLUGIN_API markChanged (Steinberg::IHostProject* project) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::vector<Steinberg::IHostProject*> marked_;
};

struct Edit
{
    std::string name;
    std::unique_ptr<EditContext> context;
    Journal journal;

    void revert () const;   ///< journal backwards, restoring what was before
    void reapply () const;  ///< journal forwards, setting what came after
};

} // namespace Sim
