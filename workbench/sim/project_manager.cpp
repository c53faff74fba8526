#include "workbench/sim/project_manager.h"

#include "workbench/sim/project.h"

#include <algorithm>

namespace Sim {

using namespace Steinberg;

ProjectManager::ProjectManager () : Object ("ProjectManager", "projects", Side::Host) {}

ProjectManager::~ProjectManager () = default;

Project& ProjectManager::createProject (const std::string& name)
{
    owned_.push_back (std::make_unique<Project> (name));
    return *owned_.back ();
}

void ProjectManager::addProject (Project& project)
{
    projects_.push_back (&project);
    const auto targets = receivers_;
    for (auto* r : targets)
    {
        CallLog::record (Side::Agent, "IProjectNotification::onProjectAdded");
        r->onProjectAdded (project.hostProject ());
    }
}

void ProjectManager::activate (Project& project)
{
    active_ = &project;
    const auto targets = receivers_;
    for (auto* r : targets)
    {
        CallLog::record (Side::Agent, "IProjectNotification::onProjectActivated");
        r->onProjectActivated (project.hostProject ());
    }
}

void ProjectManager::deactivate ()
{
    active_ = nullptr;
    const auto targets = receivers_;
    for (auto* r : targets)
    {
        CallLog::record (Side::Agent, "IProjectNotification::onProjectDeactivated");
        r->onProjectDeactivated ();
    }
}

void ProjectManager::removeProject (Project& project)
{
    const auto targets = receivers_;
    for (auto* r : targets)
    {
        CallLog::record (Side::Agent, "IProjectNotification::onProjectRemoved");
        r->onProjectRemoved (project.hostProject ());
    }
    projects_.erase (std::remove (projects_.begin (), projects_.end (), &project), projects_.end ());
    if (active_ == &project)
        active_ = nullptr;
}

void ProjectManager::refresh (Project& project)
{
    const auto targets = receivers_;
    for (auto* r : targets)
    {
        // Position 9 belongs to the third version of the table; ask for it as a host would.
        IProjectNotification3* v3 = nullptr;
        if (r->queryInterface (IProjectNotification3::iid, reinterpret_cast<void**> (&v3)) != kResultOk
            || !v3)
            continue;
        CallLog::record (Side::Agent, "IProjectNotification3::onProjectRefresh");
        v3->onProjectRefresh (project.hostProject ());
        v3->release ();
    }
}

void ProjectManager::clearHistories ()
{
    for (auto& p : owned_)
        p->clearHistory ();
    for (auto* p : projects_)
        p->clearHistory ();
}

int32 PLUGIN_API ProjectManager::getProjectCount ()
{
    CallLog::record (Side::Host, "IProjectManager::getProjectCount", label ());
    return static_cast<int32> (projects_.size ());
}

IHostProject* PLUGIN_API ProjectManager::getProject (int32 index)
{
    CallLog::record (Side::Host, "IProjectManager::getProject", label ());
    if (index < 0 || static_cast<size_t> (index) >= projects_.size ())
        return nullptr;
    return projects_[static_cast<size_t> (index)]->hostProject ();
}

IHostProject* PLUGIN_API ProjectManager::getActiveProject ()
{
    CallLog::record (Side::Host, "IProjectManager::getActiveProject", label ());
    return active_ ? active_->hostProject () : nullptr;
}

tresult PLUGIN_API ProjectManager::addNotification (IProjectNotification* receiver)
{
    CallLog::record (Side::Host, "IProjectManager::addNotification", label ());
    receivers_.push_back (receiver);
    return kResultOk;
}

tresult PLUGIN_API ProjectManager::removeNotification (IProjectNotification* receiver)
{
    CallLog::record (Side::Host, "IProjectManager::removeNotification", label ());
    auto it = std::find (receivers_.begin (), receivers_.end (), receiver);
    if (it != receivers_.end ())
        receivers_.erase (it);
    return kResultOk;
}

bool ProjectManager::query (const TUID iid, void** obj)
{
    return offer<IProjectManager> (iid, obj, this)
           || offerUnknown (iid, obj, static_cast<IProjectManager*> (this));
}

} // namespace Sim
