// The undo step that the agent enters into the host's history.
#pragma once

#include "host/host_types.h"

namespace Steinberg {

class IHostProject;

/** The host's sink for reportChange(). */
class IStepChangeSink : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3) CANTORELA_RESERVED_SLOT (4)
    virtual tresult PLUGIN_API markChanged (IHostProject* project) = 0;  // 5
};

/** Handed over by pointer through IProjectEditContext::addEditStep; never queried. */
class IEditStep : public FUnknown
{
public:
    virtual tresult PLUGIN_API getStepState () = 0;                  // 3
    virtual tresult PLUGIN_API undo () = 0;                          // 4
    virtual tresult PLUGIN_API redo () = 0;                          // 5
    virtual tresult PLUGIN_API reportChange (IStepChangeSink* sink) = 0;  // 6
};

} // namespace Steinberg
