// Minimal stand-ins for the synthesiser's side of the bridge.
#pragma once

#include "host/plugin_interfaces.h"
#include "svs/svs_interfaces.h"

#include <cstring>
#include <string>
#include <vector>

namespace svs_test {

using namespace Steinberg;

// Stack-held fakes: the COM plumbing does nothing.
#define SVS_TEST_UNKNOWN                                                                        \
    tresult PLUGIN_API queryInterface (const TUID, void** o) override { *o = nullptr; return kNoInterface; } \
    uint32 PLUGIN_API addRef () override { return 1; }                                          \
    uint32 PLUGIN_API release () override { return 1; }

struct TextSink : SVS::ISvsTextSink
{
    SVS_TEST_UNKNOWN
    tresult PLUGIN_API setText (const char* b, int64 n) override { texts.emplace_back (b, size_t (n)); return 0; }
    std::vector<std::string> texts;
};

// Logs "name+" for a host handed over and "name-" for a null one.
struct Plugin : ISvsPlugin
{
    Plugin (std::vector<std::string>* l, std::string n) : log (l), name (std::move (n)) {}
    SVS_TEST_UNKNOWN
    tresult PLUGIN_API setHost (FUnknown* h) override { log->push_back (name + (h ? "+" : "-")); return 0; }
    tresult PLUGIN_API attach () override { return 0; }
    int32 PLUGIN_API isAttached () override { return 1; }
    std::vector<std::string>* log;
    std::string name;
};

struct SequenceSink : ISvsSequenceSink
{
    SVS_TEST_UNKNOWN
    tresult PLUGIN_API sequenceChanged () override { ++calls; return 0; }
    int calls = 0;
};

// On read, checks the buffer is zeroed up to and including the spare terminator.
struct Message : SVS::ISvsMessage
{
    explicit Message (uint64 s) : size (s) {}
    SVS_TEST_UNKNOWN
    uint64 PLUGIN_API getSize () override { return size; }
    tresult PLUGIN_API read (void* buffer, uint64 n) override
    {
        ++reads;
        lastBuffer = buffer;
        if (buffer && n < 4096)
        {
            const std::vector<char> zeros (n + 1, 0);
            zeroFilled = std::memcmp (buffer, zeros.data (), n + 1) == 0;
            std::memset (buffer, 'm', n);
        }
        return 0;
    }
    uint64 size;
    int reads = 0;
    void* lastBuffer = nullptr;
    bool zeroFilled = false;
};

inline SVS::SVSNote recordAt (double start, double end)
{
    SVS::SVSNote note {};
    note.startTime = start, note.endTime = end;
    return note;
}

} // namespace svs_test
