#include "workbench/sim/message.h"

#include <algorithm>
#include <cstring>

namespace Sim {

using namespace Steinberg;

Message::Message (std::string bytes)
: Object ("Message", "message", Side::Plugin), bytes_ (std::move (bytes)), reportedSize_ (bytes_.size ())
{
}

uint64 PLUGIN_API Message::getSize ()
{
    CallLog::record (Side::Plugin, "ISvsMessage::getSize", name ());
    return reportedSize_;
}

tresult PLUGIN_API Message::read (void* buffer, uint64 size)
{
    CallLog::record (Side::Plugin, "ISvsMessage::read", name ());
    ++readCalls_;
    lastReadSize_ = size;
    if (!buffer && size)
        return kInvalidArgument;
    std::memcpy (buffer, bytes_.data (), std::min<uint64> (size, bytes_.size ()));
    return kResultOk;
}

bool Message::query (const TUID iid, void** obj)
{
    return offerUnknown (iid, obj, static_cast<SVS::ISvsMessage*> (this));
}

} // namespace Sim
