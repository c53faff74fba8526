// The host's side of an agent's life, in the order a DAW goes through it:
// initialize, projects coming and going, idle turns, actions, terminate.
#pragma once

#include "workbench/sim/host_services.h"
#include "workbench/sim/project.h"

#include <string>
#include <vector>

namespace Sim {

class AgentDriver
{
public:
    /** `agent` is borrowed: the test keeps the reference from createInstance. */
    AgentDriver (HostServices& host, Steinberg::FUnknown* agent);

    HostServices& host () { return host_; }
    Steinberg::FUnknown* agent () const { return agent_; }

    /** IPluginBase::initialize with the services as context; kNoInterface without IPluginBase. */
    Steinberg::tresult initialize ();
    /** The same with another context (null, or one without IHostServices). */
    Steinberg::tresult initializeWith (Steinberg::FUnknown* context);
    Steinberg::tresult terminate ();

    /** Turns of the main loop: each calls onIdle on every registered idle handler. */
    void idle (int turns = 1);
    std::vector<Steinberg::tresult> action (const char* category, const char* name, bool checkOnly = false);

    /** A new project, added and made active, as when the user opens one. */
    Project& openProject (const std::string& name);
    /** Deactivated (if active) and removed, as when the user closes it. */
    void closeProject (Project& project);

private:
    HostServices& host_;
    Steinberg::FUnknown* agent_;
};

} // namespace Sim
