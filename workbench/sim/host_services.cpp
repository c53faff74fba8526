#include "workbench/sim/host_services.h"

#include "workbench/sim/heap.h"

namespace Sim {

using namespace Steinberg;

HostServices::HostServices () : Object ("HostServices", "services", Side::Host)
{
    keepHeap ();
    setProductInfoReserve (1);
}

HostServices::~HostServices ()
{
    // Give up what the agent's double release did not already take.
    setProductInfoReserve (0);
}

void HostServices::servicesOnly ()
{
    productInfoOn_ = actionsOn_ = idleOn_ = unloadOn_ = projectsOn_ = false;
}

void HostServices::setProductInfoReserve (int references)
{
    for (; productInfoHeld_ < references; ++productInfoHeld_)
    {
        productInfo_.retain ();
        productInfo_.adjustExpectedCount (+1);
    }
    for (; productInfoHeld_ > references; --productInfoHeld_)
    {
        productInfo_.drop ();
        productInfo_.adjustExpectedCount (-1);
    }
}

tresult PLUGIN_API HostServices::getService (const char* iid, void** out)
{
    CallLog::record (Side::Host, "IHostServices::getService", label ());
    if (!out)
        return kInvalidArgument;
    *out = nullptr;
    if (!iid)
        return kInvalidArgument;
    auto give = [&] (Object& o, FUnknown* face) {
        o.retain ();
        *out = face;
        return kResultOk;
    };
    if (actionsOn_ && FUnknownPrivate::iidEqual (iid, IActionHandlerRegistry::iid))
        return give (actions_, static_cast<IActionHandlerRegistry*> (&actions_));
    if (idleOn_ && FUnknownPrivate::iidEqual (iid, IIdleHandlerRegistry::iid))
        return give (idle_, static_cast<IIdleHandlerRegistry*> (&idle_));
    if (unloadOn_ && FUnknownPrivate::iidEqual (iid, IModuleUnloadSink::iid))
        return give (unload_, static_cast<IModuleUnloadSink*> (&unload_));
    if (projectsOn_ && FUnknownPrivate::iidEqual (iid, IProjectManager::iid))
        return give (projects_, static_cast<IProjectManager*> (&projects_));
    return kNoInterface;
}

bool HostServices::query (const TUID iid, void** obj)
{
    if (productInfoOn_ && FUnknownPrivate::iidEqual (iid, IHostProductInfo::iid))
    {
        *obj = static_cast<IHostProductInfo*> (&productInfo_);
        productInfo_.retain ();
        // This reference comes back twice; the second release takes one of ours.
        if (productInfoHeld_ > 0)
            --productInfoHeld_;
        productInfo_.adjustExpectedCount (-1);
        return true;
    }
    return offer<IHostServices> (iid, obj, this)
           || offerUnknown (iid, obj, static_cast<IHostServices*> (this));
}

} // namespace Sim
