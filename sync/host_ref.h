// Holding host objects for the length of a call: every reference that a query
// or an owning getter gives is released on every way out.
#pragma once

#include "pluginterfaces/base/smartpointer.h"
#include "host/host_types.h"

namespace Zelmor {

template <class I>
using HostRef = Steinberg::IPtr<I>;

/** Asks `object` for I. A failed query, or a successful one with a null pointer, gives null. */
template <class I>
HostRef<I> queryHost (Steinberg::FUnknown* object)
{
    if (!object)
        return {};
    void* out = nullptr;
    if (object->queryInterface (I::iid, &out) != Steinberg::kResultOk || !out)
        return {};
    return Steinberg::owned (static_cast<I*> (out));
}

/** Adopts a reference that an owning getter handed out. */
template <class I>
HostRef<I> adopt (I* object)
{
    return Steinberg::owned (object);
}

/** Takes an own reference to a borrowed pointer. */
template <class I>
HostRef<I> share (I* object)
{
    return HostRef<I> (object);
}

} // namespace Zelmor
