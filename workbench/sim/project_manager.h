// The host's list of open projects and the receivers of project notifications,
// with helpers that do what the DAW does when projects come and go.
#pragma once

#include "workbench/sim/object.h"

#include "host/agent_interfaces.h"
#include "host/service_interfaces.h"

#include <memory>
#include <string>
#include <vector>

namespace Sim {

class Project;

class ProjectManager : public Object, public Steinberg::IProjectManager
{
public:
    ProjectManager ();
    ~ProjectManager () override;

    /** A new project owned by the manager, not yet announced to anyone. */
    Project& createProject (const std::string& name);

    // What the DAW does; each tells every registered receiver.
    /** Lists the project and calls onProjectAdded. */
    void addProject (Project& project);
    /** Makes it the active project and calls onProjectActivated. */
    void activate (Project& project);
    /** Clears the active project and calls onProjectDeactivated. */
    void deactivate ();
    /**
     * Calls onProjectRemoved, then takes the project off the list. The object
     * itself lives on with the manager, as the agent's undo step may still
     * point at it.
     */
    void removeProject (Project& project);
    /** Calls onProjectRefresh. */
    void refresh (Project& project);
    /**
     * Lets every project's history go, releasing the agent's steps. The steps
     * die with the agent, so a host does this before it lets the agent go.
     */
    void clearHistories ();

    const std::vector<Project*>& projects () const { return projects_; }
    Project* activeProject () const { return active_; }
    const std::vector<Steinberg::IProjectNotification*>& receivers () const { return receivers_; }

    Steinberg::int32 PLUGIN_API getProjectCount () override;
    Steinberg::IHostProject* PLUGIN_API getProject (Steinberg::int32 index) override;
    Steinberg::IHostProject* PLUGIN_API getActiveProject () override;
    Steinberg::tresult PLUGIN_API addNotification (Steinberg::IProjectNotification* receiver) override;
    Steinberg::tresult PLUGIN_API removeNotification (Steinberg::IProjectNotification* receiver) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::vector<std::unique_ptr<Project>> owned_;
    std::vector<Project*> projects_;
    Project* active_ = nullptr;
    std::vector<Steinberg::IProjectNotification*> receivers_;
};

} // namespace Sim
