#include "fakes.h"

#include "workbench/sim/note_rows.h"
#include "workbench/sim/svs_plugin.h"
#include "workbench/sim/tracker.h"

#include <cstring>

#include <gtest/gtest.h>

namespace {

using namespace Steinberg;

SVS::SVSNote record (double start, double end, float cents, bool rest, std::vector<const char*> phonemes)
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

TEST (SvsPluginTest, ReadsTitleAndSequenceBackAndGivesTheQueriesBack)
{
    Sim::Tracker::reset ();
    Sim::CallLog::clear ();
    Sim::SvsPlugin synth ("synth");
    SimTest::FakeSvsHost host;
    host.stored = {record (0, 1, 0, true, {"sil"}), record (1, 1.5, 300, false, {"k", "a"})};

    synth.setHost (static_cast<SVS::IHost*> (&host));
    EXPECT_EQ (synth.title (), host.title);
    synth.sequenceChanged ();
    EXPECT_EQ (host.refs, 1);
    ASSERT_EQ (synth.notes ().size (), 2u);
    EXPECT_EQ (Sim::formatRows (Sim::rowsOf (synth.notes ())),
               "0.000-1.000 +0 r [sil]\n1.000-1.500 +300 - [k a]\n");

    host.title = "renamed";
    synth.titleChanged ();
    EXPECT_EQ (synth.title (), "renamed");
    synth.setHost (nullptr);
    synth.sequenceChanged ();  // no host: nothing to read, nothing kept from before lost
    EXPECT_EQ (synth.notes ().size (), 2u);
    EXPECT_EQ (Sim::CallLog::startingWith ({"ISvsPlugin::setHost"}),
               (std::vector<std::string> {"ISvsPlugin::setHost", "ISvsPlugin::setHost(null)"}));
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();
}

TEST (SvsPluginTest, FacesCanBeSwitchedOffAndAttachIsRecorded)
{
    Sim::SvsPlugin synth ("synth");
    synth.enableTitleSink (false);
    void* face = nullptr;
    EXPECT_NE (synth.unknown ()->queryInterface (ISvsTitleSink::iid, &face), kResultOk);
    ASSERT_EQ (synth.unknown ()->queryInterface (ISvsSequenceSink::iid, &face), kResultOk);
    static_cast<ISvsSequenceSink*> (face)->release ();

    synth.setAttached (0);
    EXPECT_EQ (synth.isAttached (), 0);
    synth.attach ();
    EXPECT_EQ (synth.isAttached (), 1);
    synth.setAttached (0, true);
    synth.attach ();
    EXPECT_EQ (synth.isAttached (), 0);
    EXPECT_EQ (synth.attachCalls (), 2);
}

TEST (NoteRowsTest, LongPhonemeRunningIntoTheNextEntryStaysWithinTheRecord)
{
    SVS::SVSNote n = record (0, 1, -100, false, {"-"});
    std::memset (n.phonemes, 'x', sizeof n.phonemes);  // no terminator anywhere
    n.phonemeCount = 8;
    auto row = Sim::rowOf (n);
    EXPECT_TRUE (row.continuation);
    EXPECT_EQ (row.phonemes.substr (0, 64), std::string (64, 'x'));
}

} // namespace
