#include "workbench/sim/call_log.h"

#include <array>
#include <atomic>
#include <cstring>
#include <mutex>
#include <unordered_map>

namespace Sim {
namespace {

// Counted on every host call, millions of times in a long song's life: a fixed
// table per side, keyed by the literal's address, found without a lock or an
// allocation. One name may sit at several addresses (one per translation
// unit); count() sums them.
constexpr std::size_t kCounters = 1024;  // a power of two, far more than there are call names
constexpr std::size_t kSides = 3;

struct Counter
{
    std::atomic<const char*> call {nullptr};
    std::atomic<int64_t> count {0};
};

// Constant-initialised: no guard to pass on the hot path.
std::array<Counter, kCounters> counters[kSides];
std::atomic<bool> recording {true};

struct Ordered
{
    std::mutex mutex;  // the ordered list, and the spill-over of a full table
    std::vector<CallEntry> entries;
    std::unordered_map<const char*, int64_t> spilled[kSides];
};

Ordered& ordered ()
{
    static Ordered o;
    return o;
}

std::size_t slotOf (const char* call)
{
    const auto bits = static_cast<uint64_t> (reinterpret_cast<uintptr_t> (call));
    return static_cast<std::size_t> ((bits * 0x9E3779B97F4A7C15ull) >> 54) & (kCounters - 1);
}

/** Past the first slot: probes on, claiming a free slot for a new name, or spills when the table is full. */
[[gnu::noinline]] void countFurther (std::array<Counter, kCounters>& table, std::size_t side, const char* call, std::size_t i)
{
    for (std::size_t probes = 0; probes < kCounters; ++probes, i = (i + 1) & (kCounters - 1))
    {
        const char* at = table[i].call.load (std::memory_order_acquire);
        if (at == nullptr)
        {
            const char* expected = nullptr;
            if (table[i].call.compare_exchange_strong (expected, call, std::memory_order_acq_rel))
                at = call;
            else
                at = expected;
        }
        if (at == call)
        {
            table[i].count.fetch_add (1, std::memory_order_relaxed);
            return;
        }
    }
    auto& o = ordered ();
    std::lock_guard<std::mutex> lock (o.mutex);
    ++o.spilled[side][call];
}

inline void countCall (Side side, const char* call)
{
    const auto s = static_cast<std::size_t> (side);
    const std::size_t i = slotOf (call);
    Counter& c = counters[s][i];
    if (c.call.load (std::memory_order_acquire) == call)
        c.count.fetch_add (1, std::memory_order_relaxed);
    else
        countFurther (counters[s], s, call, i);
}

// Out of line: the counting path then needs no frame of its own.
[[gnu::noinline]] void addEntry (Side side, const char* call, const std::string& object)
{
    auto& o = ordered ();
    std::lock_guard<std::mutex> lock (o.mutex);
    o.entries.push_back ({side, call, object});
}

int64_t sideTotal (Side side)
{
    const auto s = static_cast<std::size_t> (side);
    int64_t total = 0;
    for (auto& c : counters[s])
        total += c.count.load (std::memory_order_relaxed);
    auto& o = ordered ();
    std::lock_guard<std::mutex> lock (o.mutex);
    for (auto& [name, n] : o.spilled[s])
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
    auto& o = ordered ();
    std::lock_guard<std::mutex> lock (o.mutex);
    return o.entries;
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
    int64_t total = 0;
    for (auto& table : counters)
        for (auto& c : table)
            if (const char* name = c.call.load (std::memory_order_acquire); name && call == name)
                total += c.count.load (std::memory_order_relaxed);
    auto& o = ordered ();
    std::lock_guard<std::mutex> lock (o.mutex);
    for (auto& spilled : o.spilled)
        for (auto& [name, n] : spilled)
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
    auto& o = ordered ();
    std::lock_guard<std::mutex> lock (o.mutex);
    o.entries.clear ();
    // The names stay claimed: a counter at 0 counts as none.
    for (auto& table : counters)
        for (auto& c : table)
            c.count.store (0, std::memory_order_relaxed);
    for (auto& spilled : o.spilled)
        spilled.clear ();
}

void CallLog::setRecording (bool on)
{
    recording.store (on, std::memory_order_relaxed);
}

} // namespace Sim
