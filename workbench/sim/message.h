// A synthesiser's free-form message, for sending to the agent's host object.
#pragma once

#include "workbench/sim/object.h"

#include "svs/svs_interfaces.h"

#include <string>

namespace Sim {

class Message : public Object, public SVS::ISvsMessage
{
public:
    explicit Message (std::string bytes);

    /** What getSize reports, if not the real size (all ones, say). */
    void setReportedSize (Steinberg::uint64 size) { reportedSize_ = size; }
    int readCalls () const { return readCalls_; }
    Steinberg::uint64 lastReadSize () const { return lastReadSize_; }

    Steinberg::uint64 PLUGIN_API getSize () override;
    Steinberg::tresult PLUGIN_API read (void* buffer, Steinberg::uint64 size) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::string bytes_;
    Steinberg::uint64 reportedSize_;
    int readCalls_ = 0;
    Steinberg::uint64 lastReadSize_ = 0;
};

} // namespace Sim
