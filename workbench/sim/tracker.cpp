#include "workbench/sim/tracker.h"

#include "workbench/sim/object.h"

#include <deque>
#include <map>
#include <memory>
#include <mutex>

namespace Sim {
namespace {

// Released hand-outs are kept a while rather than freed, so that a release
// after the last one is recorded instead of touching freed memory.
constexpr std::size_t kRetiredKept = 4096;

struct TrackerState
{
    std::mutex mutex;
    uint64_t nextSerial = 1;
    std::map<uint64_t, Object*> live;
    std::deque<Object*> retired;
    std::vector<ObjectState> events;
};

TrackerState& state ()
{
    // Never destroyed: objects that die during exit still find it, and the husks
    // it keeps stay reachable instead of turning into leaks at exit.
    static TrackerState* s = new TrackerState;
    return *s;
}

ObjectState stateOf (const Object& o, bool alive)
{
    ObjectState st;
    st.kind = o.kind ();
    st.name = o.name ();
    st.count = o.refCount ();
    st.expected = o.expectedCount ();
    st.overReleases = o.overReleases ();
    st.alive = alive;
    return st;
}

bool unbalanced (const ObjectState& st)
{
    return st.count != st.expected || st.overReleases > 0;
}

} // namespace

std::string ObjectState::describe () const
{
    std::string s = kind + " '" + name + "': count " + std::to_string (count) + ", expected "
                    + std::to_string (expected);
    // An over-release is held at the owner's share, so the count alone would read as a leak.
    if (overReleases > 0)
        s += " (over-released " + std::to_string (overReleases) + ")";
    else if (count > expected)
        s += " (leaked " + std::to_string (count - expected) + ")";
    else if (count < expected)
        s += " (" + std::to_string (expected - count) + " missing)";
    if (!alive)
        s += " [gone]";
    return s;
}

std::vector<ObjectState> Tracker::live ()
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    std::vector<ObjectState> out;
    for (auto& [serial, o] : s.live)
        out.push_back (stateOf (*o, true));
    return out;
}

std::size_t Tracker::liveCount ()
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    return s.live.size ();
}

std::vector<ObjectState> Tracker::imbalances ()
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    std::vector<ObjectState> out = s.events;
    for (auto& [serial, o] : s.live)
        if (auto st = stateOf (*o, true); unbalanced (st))
            out.push_back (st);
    for (Object* o : s.retired)
        if (auto st = stateOf (*o, false); unbalanced (st))
            out.push_back (st);
    return out;
}

std::string Tracker::report ()
{
    std::string out;
    for (auto& st : imbalances ())
        out += st.describe () + "\n";
    return out;
}

void Tracker::reset ()
{
    std::deque<Object*> doomed;
    {
        auto& s = state ();
        std::lock_guard<std::mutex> lock (s.mutex);
        s.events.clear ();
        doomed.swap (s.retired);
    }
    for (Object* o : doomed)
        delete o;
    std::lock_guard<std::mutex> lock (state ().mutex);
    state ().events.clear ();
}

void Tracker::enter (Object* object)
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    object->serial_ = s.nextSerial++;
    s.live.emplace (object->serial_, object);
}

void Tracker::leave (Object* object)
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    auto st = stateOf (*object, false);
    if (unbalanced (st))
        s.events.push_back (st);
    if (object->retired_)
    {
        for (auto it = s.retired.begin (); it != s.retired.end (); ++it)
            if (*it == object)
            {
                s.retired.erase (it);
                break;
            }
    }
    else
        s.live.erase (object->serial_);
}

void Tracker::retire (Object* object)
{
    Object* evicted = nullptr;
    {
        auto& s = state ();
        std::lock_guard<std::mutex> lock (s.mutex);
        if (object->retired_)
            return;
        object->retired_ = true;
        s.live.erase (object->serial_);
        s.retired.push_back (object);
        if (s.retired.size () > kRetiredKept)
        {
            evicted = s.retired.front ();
            s.retired.pop_front ();
            evicted->retired_ = false;  // its destructor must not look for it again
            evicted->serial_ = 0;
        }
    }
    delete evicted;
}

} // namespace Sim
