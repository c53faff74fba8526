#include "workbench/sim/call_log.h"

#include <cstring>
#include <mutex>
#include <unordered_map>

namespace Sim {
namespace {

struct LogState
{
    std::mutex mutex;
    std::vector<CallEntry> entries;
    // Keyed by the literal's address: no allocation on the hot path. One name
    // may sit at several addresses (one per translation unit); count() sums them.
    std::unordered_map<const char*, int64_t> counts;
    int64_t hostCalls = 0;
    int64_t pluginCalls = 0;
    bool recording = true;
};

LogState& state ()
{
    static LogState s;
    return s;
}

void countLocked (LogState& s, Side side, const char* call)
{
    ++s.counts[call];
    if (side == Side::Host)
        ++s.hostCalls;
    else if (side == Side::Plugin)
        ++s.pluginCalls;
}

} // namespace

void CallLog::record (Side side, const char* call, const std::string& object)
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    countLocked (s, side, call);
    if (s.recording)
        s.entries.push_back ({side, call, object});
}

void CallLog::countOnly (Side side, const char* call)
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    countLocked (s, side, call);
}

std::vector<CallEntry> CallLog::entries ()
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    return s.entries;
}

std::vector<std::string> CallLog::calls ()
{
    std::vector<std::string> out;
    for (auto& e : entries ())
        out.push_back (e.call);
    return out;
}

namespace {

std::vector<std::string> restricted (std::initializer_list<const char*> names, bool withObject)
{
    std::vector<std::string> out;
    for (auto& e : CallLog::entries ())
        for (const char* n : names)
            if (e.call == n)
            {
                out.push_back (withObject ? e.call + " " + e.object : e.call);
                break;
            }
    return out;
}

} // namespace

std::vector<std::string> CallLog::only (std::initializer_list<const char*> names)
{
    return restricted (names, false);
}

std::vector<std::string> CallLog::trace (std::initializer_list<const char*> names)
{
    return restricted (names, true);
}

std::vector<std::string> CallLog::startingWith (std::initializer_list<const char*> prefixes)
{
    std::vector<std::string> out;
    for (auto& e : entries ())
        for (const char* p : prefixes)
            if (e.call.rfind (p, 0) == 0)
            {
                out.push_back (e.call);
                break;
            }
    return out;
}

int64_t CallLog::count (const std::string& call)
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    int64_t total = 0;
    for (auto& [name, n] : s.counts)
        if (call == name)
            total += n;
    return total;
}

int64_t CallLog::hostCalls ()
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    return s.hostCalls;
}

int64_t CallLog::pluginCalls ()
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    return s.pluginCalls;
}

void CallLog::clear ()
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    s.entries.clear ();
    s.counts.clear ();
    s.hostCalls = 0;
    s.pluginCalls = 0;
}

void CallLog::setRecording (bool on)
{
    auto& s = state ();
    std::lock_guard<std::mutex> lock (s.mutex);
    s.recording = on;
}

} // namespace Sim
