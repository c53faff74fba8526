// The registries the agent joins in initialize and leaves in terminate, and
// the sink told of the module's end. They keep borrowed pointers: a handler
// stays the agent's own object.
#pragma once

#include "workbench/sim/object.h"

#include "host/agent_interfaces.h"
#include "host/service_interfaces.h"

#include <vector>

namespace Sim {

class ActionRegistry : public Object, public Steinberg::IActionHandlerRegistry
{
public:
    ActionRegistry ();

    Steinberg::tresult PLUGIN_API addHandler (Steinberg::IActionHandler* handler) override;
    Steinberg::tresult PLUGIN_API removeHandler (Steinberg::IActionHandler* handler) override;

    const std::vector<Steinberg::IActionHandler*>& handlers () const { return handlers_; }
    const std::vector<Steinberg::IActionHandler*>& added () const { return added_; }
    const std::vector<Steinberg::IActionHandler*>& removed () const { return removed_; }

    /** What the host's menu does: offers the action to each handler; the results in order. */
    std::vector<Steinberg::tresult> send (const char* category, const char* name, bool checkOnly);

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::vector<Steinberg::IActionHandler*> handlers_, added_, removed_;
};

class IdleRegistry : public Object, public Steinberg::IIdleHandlerRegistry
{
public:
    IdleRegistry ();

    Steinberg::tresult PLUGIN_API addHandler (Steinberg::IIdleHandler* handler) override;
    Steinberg::tresult PLUGIN_API removeHandler (Steinberg::IIdleHandler* handler) override;

    const std::vector<Steinberg::IIdleHandler*>& handlers () const { return handlers_; }
    const std::vector<Steinberg::IIdleHandler*>& added () const { return added_; }
    const std::vector<Steinberg::IIdleHandler*>& removed () const { return removed_; }

    /** One turn of the host's main loop: onIdle on every registered handler. */
    void idle ();

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::vector<Steinberg::IIdleHandler*> handlers_, added_, removed_;
};

class ModuleUnloadSink : public Object, public Steinberg::IModuleUnloadSink
{
public:
    ModuleUnloadSink ();

    Steinberg::tresult PLUGIN_API moduleTerminating (void* moduleHandle) override;

    const std::vector<void*>& handles () const { return handles_; }

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::vector<void*> handles_;
};

} // namespace Sim
