#include "workbench/sim/agent_driver.h"

#include "pluginterfaces/base/ipluginbase.h"

namespace Sim {

using namespace Steinberg;

AgentDriver::AgentDriver (HostServices& host, FUnknown* agent) : host_ (host), agent_ (agent) {}

tresult AgentDriver::initialize ()
{
    return initializeWith (host_.context ());
}

tresult AgentDriver::initializeWith (FUnknown* context)
{
    IPluginBase* base = nullptr;
    if (!agent_ || agent_->queryInterface (IPluginBase::iid, reinterpret_cast<void**> (&base)) != kResultOk
        || !base)
        return kNoInterface;
    CallLog::record (Side::Agent, "IPluginBase::initialize");
    tresult r = base->initialize (context);
    base->release ();
    return r;
}

tresult AgentDriver::terminate ()
{
    IPluginBase* base = nullptr;
    if (!agent_ || agent_->queryInterface (IPluginBase::iid, reinterpret_cast<void**> (&base)) != kResultOk
        || !base)
        return kNoInterface;
    CallLog::record (Side::Agent, "IPluginBase::terminate");
    tresult r = base->terminate ();
    base->release ();
    return r;
}

void AgentDriver::idle (int turns)
{
    for (int i = 0; i < turns; ++i)
        host_.idleRegistry ().idle ();
}

std::vector<tresult> AgentDriver::action (const char* category, const char* name, bool checkOnly)
{
    return host_.actionRegistry ().send (category, name, checkOnly);
}

Project& AgentDriver::openProject (const std::string& name)
{
    auto& pm = host_.projectManager ();
    Project& p = pm.createProject (name);
    pm.addProject (p);
    pm.activate (p);
    return p;
}

void AgentDriver::closeProject (Project& project)
{
    auto& pm = host_.projectManager ();
    if (pm.activeProject () == &project)
        pm.deactivate ();
    pm.removeProject (project);
}

} // namespace Sim
