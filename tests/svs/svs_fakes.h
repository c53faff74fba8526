// Minimal stand-ins for the synthesiser's side of the bridge.
#pragma once

#include "svs/svs_interfaces.h"
#include "host/plugin_interfaces.h"

#include <cstring>
#include <string>
#include <vector>

namespace svs_test {

using Steinberg::int32;
using Steinberg::int64;
using Steinberg::tresult;
using Steinberg::uint32;
using Steinberg::uint64;

// Stack-held fakes: the COM plumbing does nothing.
#define SVS_TEST_UNKNOWN                                                               \
    tresult PLUGIN_API queryInterface (const Steinberg::TUID, void** obj) override    \
    {                                                                                  \
        *obj = nullptr;                                                                \
        return Steinberg::kNoInterface;                                                \
    }                                                                                  \
    uint32 PLUGIN_API addRef () override { return 1; }                                 \
    uint32 PLUGIN_API release () override { return 1; }

struct TextSink : SVS::ISvsTextSink
{
    SVS_TEST_UNKNOWN
    tresult PLUGIN_API setText (const char* bytes, int64 length) override
    {
        texts.emplace_back (bytes, static_cast<size_t> (length));
        return Steinberg::kResultOk;
    }
    std::vector<std::string> texts;
};

struct Plugin : Steinberg::ISvsPlugin
{
    explicit Plugin (std::vector<std::string>* log = nullptr, std::string name = {})
    : log (log), name (std::move (name)) {}
    SVS_TEST_UNKNOWN
    tresult PLUGIN_API setHost (Steinberg::FUnknown* host) override
    {
        hosts.push_back (host);
        if (log)
            log->push_back (name);
        return Steinberg::kResultOk;
    }
    tresult PLUGIN_API attach () override { return Steinberg::kResultOk; }
    int32 PLUGIN_API isAttached () override { return 1; }
    std::vector<Steinberg::FUnknown*> hosts;
    std::vector<std::string>* log;
    std::string name;
};

struct SequenceSink : Steinberg::ISvsSequenceSink
{
    SVS_TEST_UNKNOWN
    tresult PLUGIN_API sequenceChanged () override { ++calls; return Steinberg::kResultOk; }
    int calls = 0;
};

// Reports a size; on read checks what a well-behaved buffer must look like.
struct Message : SVS::ISvsMessage
{
    explicit Message (uint64 size) : size (size) {}
    SVS_TEST_UNKNOWN
    uint64 PLUGIN_API getSize () override { return size; }
    tresult PLUGIN_API read (void* buffer, uint64 n) override
    {
        ++reads;
        lastBuffer = buffer;
        lastSize = n;
        if (buffer && n < 4096)
        {
            const char* bytes = static_cast<const char*> (buffer);
            zeroFilled = true;
            for (uint64 i = 0; i <= n; ++i)  // the spare terminator byte too
                zeroFilled = zeroFilled && bytes[i] == 0;
            std::memset (buffer, 'm', static_cast<size_t> (n));
        }
        return Steinberg::kResultOk;
    }
    uint64 size;
    int reads = 0;
    void* lastBuffer = nullptr;
    uint64 lastSize = 0;
    bool zeroFilled = false;
};

inline SVS::SVSNote recordAt (double start, double end)
{
    SVS::SVSNote note {};
    note.startTime = start;
    note.endTime = end;
    note.phonemeCount = 1;
    std::memcpy (note.phonemes[0], "a", 2);
    return note;
}

} // namespace svs_test
