// The entry to the host: the context handed to the agent's initialize.
#pragma once

#include "workbench/sim/object.h"
#include "workbench/sim/product_info.h"
#include "workbench/sim/project_manager.h"
#include "workbench/sim/registries.h"

#include "host/service_interfaces.h"

namespace Sim {

/**
 * Owns the services and hands them out by getService; each can be switched
 * off to build a host that offers less. The product strings come through
 * queryInterface.
 *
 * The agent releases the product strings twice for the one reference that
 * its query gave, so this host keeps references of its own on them, one per
 * query it is prepared to serve (setProductInfoReserve). Each query that
 * hands them out lowers the product object's expected count by one, so a
 * correct agent leaves it balanced and one that releases once leaks.
 */
class HostServices : public Object, public Steinberg::IHostServices
{
public:
    HostServices ();
    ~HostServices () override;

    ProductInfo& productInfo () { return productInfo_; }
    ActionRegistry& actionRegistry () { return actions_; }
    IdleRegistry& idleRegistry () { return idle_; }
    ModuleUnloadSink& unloadSink () { return unload_; }
    ProjectManager& projectManager () { return projects_; }

    void enableProductInfo (bool on) { productInfoOn_ = on; }
    void enableActionRegistry (bool on) { actionsOn_ = on; }
    void enableIdleRegistry (bool on) { idleOn_ = on; }
    void enableUnloadSink (bool on) { unloadOn_ = on; }
    void enableProjectManager (bool on) { projectsOn_ = on; }
    /** Switches off every service and the product strings: IHostServices alone. */
    void servicesOnly ();
    /** How many product-string queries the host's own references cover (default 1). */
    void setProductInfoReserve (int references);

    /** The pointer to hand to IPluginBase::initialize. */
    Steinberg::FUnknown* context () { return static_cast<Steinberg::IHostServices*> (this); }

    Steinberg::tresult PLUGIN_API getService (const char* iid, void** out) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    ProductInfo productInfo_;
    ActionRegistry actions_;
    IdleRegistry idle_;
    ModuleUnloadSink unload_;
    ProjectManager projects_;
    bool productInfoOn_ = true, actionsOn_ = true, idleOn_ = true, unloadOn_ = true, projectsOn_ = true;
    int productInfoHeld_ = 0;  // our own references on productInfo_ not yet given up
};

} // namespace Sim
