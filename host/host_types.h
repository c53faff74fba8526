// Common ground of the host's closed interfaces: the SDK's base types and the
// placeholder for table positions whose meaning we don't know.
#pragma once

#include "pluginterfaces/base/funknown.h"
#include "pluginterfaces/base/fvariant.h"

// A position of a host table that the agent never calls. It must exist so that
// every later operation keeps its place; the body only serves implementations
// written on our side of the border (the simulated host, tests).
#define CANTORELA_RESERVED_SLOT(n) \
    virtual ::Steinberg::tresult PLUGIN_API reservedSlot##n () { return ::Steinberg::kNotImplemented; }
