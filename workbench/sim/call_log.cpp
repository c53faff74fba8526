#include "workbench/sim/call_log.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <unordered_map>

namespace Sim {
namespace {

// Counted on every host call, millions of times in a long song's life. Each
// thread counts into tables of its own, keyed by the literal's address: no
// lock, no locked instruction, no allocation. Readers sum every thread's
// tables under the registry's mutex. One name may sit at several addresses
// (one per translation unit); count() sums them.
constexpr std::size_t kCounters = 1024;  // a power of two, far more than there are call names
constexpr std::size_t kSides = 3;

struct Counter
{
    std::atomic<const char*> call {nullptr};  ///< set by the owning thread only
    std::atomic<int64_t> count {0};           ///< written by the owning thread only
    std::atomic<int64_t> cleared {0};         ///< `count` at the last clear(), written under the mutex
};

struct Tables
{
    Counter counters[kSides][kCounters];
};

struct Registry
{
    std::mutex mutex;
    std::vector<Tables*> inUse;
    std::vector<Tables*> spare;  ///< of threads that ended, for the next thread
    /** Counts of threads that ended, and of calls that found their thread's table full. */
    std::unordered_map<const char*, int64_t> settled[kSides];
    std::vector<CallEntry> entries;
};

Registry& registry ()
{
    // Never destroyed: threads that end during exit still settle their counts.
    static Registry* r = new Registry;
    return *r;
}

std::atomic<bool> recording {true};
thread_local Tables* mine = nullptr;

/** Settles the thread's counts when it ends and hands its tables on. */
struct Leaving
{
    ~Leaving ()
    {
        if (!mine)
            return;
        auto& r = registry ();
        std::lock_guard<std::mutex> lock (r.mutex);
        for (std::size_t side = 0; side < kSides; ++side)
            for (auto& c : mine->counters[side])
            {
                if (const char* call = c.call.load (std::memory_order_relaxed))
                    r.settled[side][call] += c.count.load (std::memory_order_relaxed)
                                             - c.cleared.load (std::memory_order_relaxed);
                c.call.store (nullptr, std::memory_order_relaxed);
                c.count.store (0, std::memory_order_relaxed);
                c.cleared.store (0, std::memory_order_relaxed);
            }
        r.inUse.erase (std::find (r.inUse.begin (), r.inUse.end (), mine));
        r.spare.push_back (mine);
        mine = nullptr;
    }
};
thread_local Leaving leaving;

[[gnu::noinline]] Tables* join ()
{
    auto& r = registry ();
    {
        std::lock_guard<std::mutex> lock (r.mutex);
        if (r.spare.empty ())
            mine = new Tables;
        else
        {
            mine = r.spare.back ();
            r.spare.pop_back ();
        }
        r.inUse.push_back (mine);
    }
    (void) &leaving;  // its first use arranges for its end
    return mine;
}

std::size_t slotOf (const char* call)
{
    const auto bits = static_cast<uint64_t> (reinterpret_cast<uintptr_t> (call));
    return static_cast<std::size_t> ((bits * 0x9E3779B97F4A7C15ull) >> 54) & (kCounters - 1);
}

void bump (Counter& c)
{
    // Only this thread writes it: a plain increment that readers may load at any time.
    c.count.store (c.count.load (std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

/** Past the first slot: probes on, claiming a free slot for a new name, or settles at once when full. */
[[gnu::noinline]] void countFurther (Counter* table, std::size_t side, const char* call, std::size_t i)
{
    for (std::size_t probes = 0; probes < kCounters; ++probes, i = (i + 1) & (kCounters - 1))
    {
        const char* at = table[i].call.load (std::memory_order_relaxed);
        if (at == nullptr)
        {
            table[i].call.store (call, std::memory_order_release);
            at = call;
        }
        if (at == call)
        {
            bump (table[i]);
            return;
        }
    }
    auto& r = registry ();
    std::lock_guard<std::mutex> lock (r.mutex);
    ++r.settled[side][call];
}

inline void countCall (Side side, const char* call)
{
    Tables* t = mine ? mine : join ();
    const auto s = static_cast<std::size_t> (side);
    const std::size_t i = slotOf (call);
    Counter& c = t->counters[s][i];
    if (c.call.load (std::memory_order_relaxed) == call)
        bump (c);
    else
        countFurther (t->counters[s], s, call, i);
}

int64_t since (const Counter& c)
{
    return c.count.load (std::memory_order_relaxed) - c.cleared.load (std::memory_order_relaxed);
}

// Out of line: the counting path then needs no frame of its own.
[[gnu::noinline]] void addEntry (Side side, const char* call, const std::string& object)
{
    auto& r = registry ();
    std::lock_guard<std::mutex> lock (r.mutex);
    r.entries.push_back ({side, call, object});
}

int64_t sideTotal (Side side)
{
    const auto s = static_cast<std::size_t> (side);
    auto& r = registry ();
    std::lock_guard<std::mutex> lock (r.mutex);
    int64_t total = 0;
    for (Tables* t : r.inUse)
        for (auto& c : t->counters[s])
            total += since (c);
    for (auto& [name, n] : r.settled[s])
        total += n;
    return total;
}

} // namespace

void CallLog::record (Side side, const char* call, const std::string& object)
{
    countCall (side, call);
    if (recording.load (std::memory_order_relaxed))
        addEntry (side, call, object);
}

void CallLog::countOnly (Side side, const char* call)
{
    countCall (side, call);
}

std::vector<CallEntry> CallLog::entries ()
{
    auto& r = registry ();
    std::lock_guard<std::mutex> lock (r.mutex);
    return r.entries;
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
    auto& r = registry ();
    std::lock_guard<std::mutex> lock (r.mutex);
    int64_t total = 0;
    for (Tables* t : r.inUse)
        for (auto& table : t->counters)
            for (auto& c : table)
                if (const char* name = c.call.load (std::memory_order_acquire); name && call == name)
                    total += since (c);
    for (auto& settled : r.settled)
        for (auto& [name, n] : settled)
            if (call == name)
                total += n;
    return total;
}

int64_t CallLog::hostCalls ()
{
    return sideTotal (Side::Host);
}

int64_t CallLog::pluginCalls ()
{
    return sideTotal (Side::Plugin);
}

void CallLog::clear ()
{
    auto& r = registry ();
    std::lock_guard<std::mutex> lock (r.mutex);
    r.entries.clear ();
    // Other threads may be counting: what they had so far is set aside, not overwritten.
    for (Tables* t : r.inUse)
        for (auto& table : t->counters)
            for (auto& c : table)
                c.cleared.store (c.count.load (std::memory_order_relaxed), std::memory_order_relaxed);
    for (auto& settled : r.settled)
        settled.clear ();
}

void CallLog::setRecording (bool on)
{
    recording.store (on, std::memory_order_relaxed);
}

} // namespace Sim
