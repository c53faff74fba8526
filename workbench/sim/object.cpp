#include "workbench/sim/object.h"

#include "workbench/sim/tracker.h"

namespace Sim {

using namespace Steinberg;

Object::Object (std::string kind, std::string name, Side side, Ownership ownership)
: kind_ (std::move (kind)), name_ (std::move (name)), side_ (side), ownership_ (ownership),
  expected_ (ownership == Ownership::Owner ? 1 : 0)
{
    Tracker::enter (this);
}

Object::~Object ()
{
    Tracker::leave (this);
}

std::string Object::label () const
{
    return kind_ + " '" + name_ + "'";
}

uint32 Object::retain ()
{
    return static_cast<uint32> (++count_);
}

uint32 Object::drop ()
{
    // The owner's reference is the floor: going below it would have freed an
    // object that somebody still owns. Note it and keep the object whole.
    const int32_t floor = ownership_ == Ownership::Owner ? 1 : 0;
    int32_t now = count_.load ();
    if (now <= floor)
    {
        ++overReleases_;
        return static_cast<uint32> (now);
    }
    now = --count_;
    if (now == 0 && ownership_ == Ownership::Caller)
    {
        onRetired ();
        Tracker::retire (this);
    }
    return static_cast<uint32> (now);
}

bool Object::offerUnknown (const TUID iid, void** obj, FUnknown* face)
{
    if (!FUnknownPrivate::iidEqual (iid, FUnknown::iid))
        return false;
    *obj = face;
    retain ();
    return true;
}

tresult Object::comQuery (const TUID iid, void** obj)
{
    CallLog::countOnly (side_, "FUnknown::queryInterface");
    if (!obj)
        return kInvalidArgument;
    if (query (iid, obj))
        return kResultOk;
    *obj = nullptr;
    return kNoInterface;
}

uint32 Object::comAddRef ()
{
    CallLog::countOnly (side_, "FUnknown::addRef");
    return retain ();
}

uint32 Object::comRelease ()
{
    if (logReleases_)
        CallLog::record (side_, "FUnknown::release", name_);
    else
        CallLog::countOnly (side_, "FUnknown::release");
    return drop ();
}

} // namespace Sim
