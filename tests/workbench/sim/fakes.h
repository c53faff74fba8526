// Stand-ins for the agent's side, just enough to drive the simulated host, and
// what every test of it shares.
#pragma once

#include "host/agent_interfaces.h"
#include "host/edit_step_interfaces.h"
#include "host/project_interfaces.h"
#include "svs/svs_interfaces.h"
#include "workbench/sim/tracker.h"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace SimTest {

using namespace Steinberg;

/** Each test starts with no imbalance left from another and frees what it leaves. */
class Fixture : public ::testing::Test
{
protected:
    void SetUp () override { Sim::Tracker::reset (); }
    void TearDown () override { Sim::Tracker::reset (); }
};

/** A synthesiser's note record; a first phoneme "-" makes it a continuation. */
inline SVS::SVSNote record (double start, double end, float cents, bool rest, std::vector<const char*> phonemes)
{
    SVS::SVSNote n {};
    n.startTime = start;
    n.endTime = end;
    n.pitchCents = cents;
    n.isRest = rest;
    n.isContinuation = !phonemes.empty () && std::strcmp (phonemes[0], "-") == 0;
    n.phonemeCount = static_cast<int32> (phonemes.size ());
    for (std::size_t i = 0; i < phonemes.size (); ++i)
        std::strcpy (n.phonemes[i], phonemes[i]);
    return n;
}

/** Counts like a plain COM object that never deletes itself. */
template <class... I>
struct Plain : I...
{
    int refs = 1;
    uint32 PLUGIN_API addRef () override { return ++refs; }
    uint32 PLUGIN_API release () override { return --refs; }
};

struct FakeStep : Plain<IEditStep>
{
    std::vector<std::string>* trace;
    std::string name;
    FakeStep (std::vector<std::string>* t, std::string n) : trace (t), name (std::move (n)) {}
    tresult PLUGIN_API queryInterface (const TUID, void**) override { return kNoInterface; }
    tresult PLUGIN_API getStepState () override { return 0; }
    tresult PLUGIN_API undo () override { trace->push_back ("undo " + name); return 0; }
    tresult PLUGIN_API redo () override { trace->push_back ("redo " + name); return 0; }
    tresult PLUGIN_API reportChange (IStepChangeSink*) override { return 0; }
};

/** The agent's host object as a synthesiser sees it: a title and a stored sequence. */
struct FakeSvsHost : Plain<SVS::IHost, SVS::ISequenceStorage>
{
    std::string title = "Agent: Song - Slot 1 - Vocals";
    std::vector<SVS::SVSNote> stored;
    tresult PLUGIN_API queryInterface (const TUID iid, void** obj) override
    {
        if (FUnknownPrivate::iidEqual (iid, SVS::IHost::iid))
            *obj = static_cast<SVS::IHost*> (this);
        else if (FUnknownPrivate::iidEqual (iid, SVS::ISequenceStorage::iid))
            *obj = static_cast<SVS::ISequenceStorage*> (this);
        else
        {
            *obj = nullptr;
            return kNoInterface;
        }
        ++refs;
        return kResultOk;
    }
    tresult PLUGIN_API getTitle (SVS::ISvsTextSink* sink) override
    {
        return sink->setText (title.data (), static_cast<int64> (title.size ()));
    }
    tresult PLUGIN_API readSequence (SVS::INoteList* target) override
    {
        for (auto& n : stored)
            target->addNote (&n);
        return kResultOk;
    }
    tresult PLUGIN_API writeSequence (SVS::INoteList*) override { return kResultOk; }
};

} // namespace SimTest
