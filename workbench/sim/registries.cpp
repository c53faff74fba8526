#include "workbench/sim/registries.h"

#include <algorithm>

namespace Sim {

using namespace Steinberg;

namespace {

template <class T>
void eraseFirst (std::vector<T*>& list, T* item)
{
    auto it = std::find (list.begin (), list.end (), item);
    if (it != list.end ())
        list.erase (it);
}

} // namespace

ActionRegistry::ActionRegistry () : Object ("ActionRegistry", "actions", Side::Host) {}

tresult PLUGIN_API ActionRegistry::addHandler (IActionHandler* handler)
{
    CallLog::record (Side::Host, "IActionHandlerRegistry::addHandler", label ());
    handlers_.push_back (handler);
    added_.push_back (handler);
    return kResultOk;
}

tresult PLUGIN_API ActionRegistry::removeHandler (IActionHandler* handler)
{
    CallLog::record (Side::Host, "IActionHandlerRegistry::removeHandler", label ());
    removed_.push_back (handler);
    eraseFirst (handlers_, handler);
    return kResultOk;
}

std::vector<tresult> ActionRegistry::send (const char* category, const char* name, bool checkOnly)
{
    std::vector<tresult> results;
    const auto targets = handlers_;
    for (auto* h : targets)
    {
        CallLog::record (Side::Agent, "IActionHandler::handleAction");
        results.push_back (h->handleAction (category, name, checkOnly));
    }
    return results;
}

bool ActionRegistry::query (const TUID iid, void** obj)
{
    return offer<IActionHandlerRegistry> (iid, obj, this)
           || offerUnknown (iid, obj, static_cast<IActionHandlerRegistry*> (this));
}

IdleRegistry::IdleRegistry () : Object ("IdleRegistry", "idle", Side::Host) {}

tresult PLUGIN_API IdleRegistry::addHandler (IIdleHandler* handler)
{
    CallLog::record (Side::Host, "IIdleHandlerRegistry::addHandler", label ());
    handlers_.push_back (handler);
    added_.push_back (handler);
    return kResultOk;
}

tresult PLUGIN_API IdleRegistry::removeHandler (IIdleHandler* handler)
{
    CallLog::record (Side::Host, "IIdleHandlerRegistry::removeHandler", label ());
    removed_.push_back (handler);
    eraseFirst (handlers_, handler);
    return kResultOk;
}

void IdleRegistry::idle ()
{
    // A handler may leave the registry from within its own call.
    const auto targets = handlers_;
    for (auto* h : targets)
    {
        CallLog::record (Side::Agent, "IIdleHandler::onIdle");
        h->onIdle ();
    }
}

bool IdleRegistry::query (const TUID iid, void** obj)
{
    return offer<IIdleHandlerRegistry> (iid, obj, this)
           || offerUnknown (iid, obj, static_cast<IIdleHandlerRegistry*> (this));
}

ModuleUnloadSink::ModuleUnloadSink () : Object ("ModuleUnloadSink", "unload", Side::Host) {}

tresult PLUGIN_API ModuleUnloadSink::moduleTerminating (void* moduleHandle)
{
    CallLog::record (Side::Host, "IModuleUnloadSink::moduleTerminating", label ());
    handles_.push_back (moduleHandle);
    return kResultOk;
}

bool ModuleUnloadSink::query (const TUID iid, void** obj)
{
    return offer<IModuleUnloadSink> (iid, obj, this)
           || offerUnknown (iid, obj, static_cast<IModuleUnloadSink*> (this));
}

} // namespace Sim
