#include "fakes.h"

#include "workbench/sim/note_rows.h"
#include "workbench/sim/svs_plugin.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

namespace {

using namespace Steinberg;
using SimTest::record;

TEST (SvsPluginTest, ReadsTitleAndSequenceBackAndGivesTheQueriesBack)
{
    Sim::Tracker::reset ();
    Sim::SvsPlugin synth ("synth");
    SimTest::FakeSvsHost host;
    host.stored = {record (0, 1, 0, true, {"sil"}), record (1, 1.5, 300, false, {"k", "a"})};

    synth.setHost (static_cast<SVS::IHost*> (&host));
    EXPECT_EQ (synth.title (), host.title);
    synth.sequenceChanged ();
    // Every face it queried goes back: a host object whose query forgets its reference dies of it.
    EXPECT_EQ (host.refs, 1);
    EXPECT_EQ (Sim::formatRows (Sim::rowsOf (synth.notes ())),
               "0.000-1.000 +0 r [sil]\n1.000-1.500 +300 - [k a]\n");
    synth.setHost (nullptr);
    synth.sequenceChanged ();  // no host: nothing to read, nothing kept from before lost
    EXPECT_EQ (synth.notes ().size (), 2u);
    EXPECT_TRUE (Sim::Tracker::imbalances ().empty ()) << Sim::Tracker::report ();
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
