// Stand-ins for the agent's side, just enough to drive the simulated host.
#pragma once

#include "host/agent_interfaces.h"
#include "host/edit_step_interfaces.h"
#include "host/project_interfaces.h"
#include "svs/svs_interfaces.h"

#include <string>
#include <vector>

namespace SimTest {

using namespace Steinberg;

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

/** An agent that only hears edits: it notes what it saw and may add a step. */
struct FakeHookAgent : Plain<IProjectEditHook>
{
    IEditStep* stepToAdd = nullptr;
    IHostProject* seenProject = nullptr;
    IProjectEditContext* seenContext = nullptr;
    tresult PLUGIN_API queryInterface (const TUID iid, void** obj) override
    {
        if (FUnknownPrivate::iidEqual (iid, IProjectEditHook::iid))
        {
            *obj = static_cast<IProjectEditHook*> (this);
            addRef ();
            return kResultOk;
        }
        *obj = nullptr;
        return kNoInterface;
    }
    tresult PLUGIN_API onProjectEdit (IHostProject* p, IProjectEditContext* c) override
    {
        seenProject = p;
        seenContext = c;
        if (stepToAdd && c)
            c->addEditStep (stepToAdd);
        return kResultOk;
    }
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
