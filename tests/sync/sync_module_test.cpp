// The built module, loaded as a host loads it, syncing a project end to end:
// what a synthesiser reads back after a lyric is typed, titles, track ids, and
// host objects that follow or leave their plug-ins.
#include "workbench/loader/module_loader.h"
#include "workbench/sim/device.h"
#include "workbench/sim/folder.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/note.h"
#include "workbench/sim/part.h"
#include "workbench/sim/project.h"
#include "workbench/sim/project_manager.h"
#include "workbench/sim/svs_plugin.h"
#include "workbench/sim/track.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace Steinberg;

namespace {

const TUID kAgentClass = INLINE_UID (0x13EA3FBB, 0xE8FB4FC5, 0xAF9D5329, 0xA091EB19);

struct Record
{
    bool rest;
    double start, end;
    float cents;
    std::vector<std::string> phonemes;
};

void expectRecord (const SVS::SVSNote& r, const Record& want, size_t index)
{
    SCOPED_TRACE (index);
    EXPECT_EQ (bool (r.isRest), want.rest);
    EXPECT_FALSE (r.isContinuation);
    EXPECT_EQ (r.startTime, want.start);
    EXPECT_EQ (r.endTime, want.end);
    EXPECT_EQ (r.pitchCents, want.cents);
    EXPECT_EQ (r.fixedValueA, 4);
    EXPECT_EQ (r.fixedValueB, 4);
    ASSERT_EQ (r.phonemeCount, static_cast<int> (want.phonemes.size ()));
    for (size_t i = 0; i < 8; ++i)
    {
        const std::string slot (r.phonemes[i], strnlen (r.phonemes[i], sizeof (r.phonemes[i])));
        EXPECT_EQ (slot, i < want.phonemes.size () ? want.phonemes[i] : "") << "slot " << i;
        EXPECT_EQ (r.phonemeParams[i], i < want.phonemes.size () ? -1 : 0) << "param " << i;
    }
}

TEST (SyncThroughTheModule, LyricsTitlesIdsAndHostObjects)
{
    Sim::LoadedModule module (CANTORELA_MODULE_PATH);
    ASSERT_TRUE (module.ok ()) << module.error ();
    ASSERT_TRUE (module.bundleEntry ());
    IPluginFactory* factory = module.getPluginFactory ();
    ASSERT_NE (factory, nullptr);
    Sim::Tracker::reset ();
    {
        Sim::SvsPlugin lead ("lead"), harmony ("harmony");
        Sim::HostServices host;
        auto& manager = host.projectManager ();
        Sim::Project& song = manager.createProject ("Song");
        auto& leadTrack = song.root ().addInstrumentTrack ("Lead");
        auto& leadSlot = leadTrack.addSlot ("Slot 1", lead.unknown ());
        auto& harmonyTrack = song.root ().addInstrumentTrack ("Harmony");
        auto& harmonySlot = harmonyTrack.addSlot ("Slot 2", harmony.unknown ());
        auto& piano = song.root ().addInstrumentTrack ("Piano");
        auto& part = leadTrack.addPart (0.0, 8.0);
        auto& first = part.addNote (1.0, 2.0, 60);
        part.addNote (2.0, 3.0, 62);
        part.addNote (3.0, 4.0, 64);
        harmonyTrack.addPart (0.0, 8.0).addNote (1.0, 2.0, 57);

        void* instance = nullptr;
        ASSERT_EQ (factory->createInstance (kAgentClass, IPluginBase::iid.toTUID (), &instance), kResultOk);
        auto* agent = static_cast<IPluginBase*> (instance);
        ASSERT_EQ (agent->initialize (host.context ()), kResultOk);
        manager.addProject (song);
        manager.activate (song);

        EXPECT_EQ (leadTrack.attrInt ("TrID"), 1);
        EXPECT_EQ (harmonyTrack.attrInt ("TrID"), 2);
        EXPECT_EQ (piano.attrInt ("TrID"), 3);
        EXPECT_EQ (lead.title (), "Cantorela Beta Agent: Song - Slot 1 - Lead");
        EXPECT_EQ (harmony.title (), "Cantorela Beta Agent: Song - Slot 2 - Harmony");

        ASSERT_EQ (song.typeLyric (first, "hello", agent), kResultOk);
        const auto& got = lead.notes ();
        ASSERT_EQ (got.size (), 5u);
        expectRecord (got[0], {true, 0.0, 1.0, -900.0f, {"sil"}}, 0);
        expectRecord (got[1], {false, 1.0, 2.0, -900.0f, {"hh", "ah"}}, 1);
        expectRecord (got[2], {false, 2.0, 3.0, -700.0f, {"l", "ow"}}, 2);
        expectRecord (got[3], {false, 3.0, 4.0, -500.0f, {"ah"}}, 3);
        expectRecord (got[4], {true, 4.0, 5.0, -500.0f, {"sil"}}, 4);
        ASSERT_EQ (harmony.notes ().size (), 3u);
        EXPECT_STREQ (harmony.notes ()[1].phonemes[0], "ah");

        // Moved: the same host object, a new title.
        FUnknown* leadHost = lead.host ();
        Sim::movePlugin (leadTrack, leadSlot, piano, "Slot 9");
        manager.refresh (song);
        EXPECT_EQ (lead.host (), leadHost);
        EXPECT_EQ (lead.setHostCalls (), 1);
        EXPECT_EQ (lead.title (), "Cantorela Beta Agent: Song - Slot 9 - Piano");
        EXPECT_EQ (lead.notes ().size (), 0u) << "the piano track has no notes";

        // Removed: the host object is destroyed without telling the plug-in; it holds a dangling pointer.
        harmonyTrack.removeSlot (harmonySlot);
        manager.refresh (song);
        const int titles = harmony.titleChangedCalls (), sequences = harmony.sequenceChangedCalls ();
        manager.refresh (song);
        EXPECT_EQ (harmony.titleChangedCalls (), titles);
        EXPECT_EQ (harmony.sequenceChangedCalls (), sequences);
        EXPECT_EQ (harmony.setHostCalls (), 1);
        harmonyTrack.addSlot ("Slot 3", harmony.unknown ());
        manager.refresh (song);
        EXPECT_EQ (harmony.setHostCalls (), 2) << "a new host object: the old one was gone";
        EXPECT_EQ (harmony.title (), "Cantorela Beta Agent: Song - Slot 3 - Harmony");
        EXPECT_EQ (harmonyTrack.attrInt ("TrID"), 2);

        EXPECT_EQ (agent->terminate (), kResultOk);
        manager.clearHistories ();
        EXPECT_EQ (agent->release (), 0u);
        EXPECT_EQ (lead.host (), nullptr);
    }
    factory->release ();
    EXPECT_TRUE (module.bundleExit ());
    EXPECT_EQ (Sim::Tracker::report (), "");
}

} // namespace
