// Pitch names, the JSON a program reads, and the bounds of the piano roll.
#include "workbench/cli/piano_roll.h"
#include "workbench/cli/report.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

SVS::SVSNote record (double start, double end, float cents, const char* phoneme, bool rest = false)
{
    SVS::SVSNote n {};
    n.startTime = start;
    n.endTime = end;
    n.pitchCents = cents;
    n.isRest = rest;
    n.phonemeCount = 1;
    std::strncpy (n.phonemes[0], phoneme, 7);
    return n;
}

TEST (Report, PitchNamesAreTheNearestNoteAndTheCentsLeftOver)
{
    const struct
    {
        float cents;
        const char* name;
    } cases[] = {{0.0f, "A4"},      {-900.0f, "C4"},   {-1000.0f, "B3"}, {-6900.0f, "C-1"}, {5800.0f, "G9"},
                 {250.0f, "C5-50"}, {-875.0f, "C4+25"}, {140.0f, "A#4+40"}};
    for (const auto& c : cases)
        EXPECT_EQ (Workbench::pitchName (c.cents), c.name) << c.cents;
}

TEST (Report, JsonEscapesNamesAndReadsAtMostEightBytesAnEntry)
{
    Workbench::Outcome outcome;
    Workbench::Received synth;
    synth.track = "Say \"hi\"\\\n";
    synth.slot = "Slot 1";
    synth.notes.push_back (record (0.0, 1.0, -900.0f, "k"));
    std::memcpy (synth.notes[0].phonemes[0], "abcdefgh", 8);  // no terminating zero in its entry
    synth.notes.push_back (record (1.0, 2.0, -900.0f, "sil", true));
    outcome.synthesisers.push_back (synth);
    const std::string json = Workbench::json ("s", outcome);
    EXPECT_NE (json.find ("\"track\": \"Say \\\"hi\\\"\\\\\\u000a\""), std::string::npos) << json;
    EXPECT_NE (json.find ("\"phonemes\": [\"abcdefgh\"]"), std::string::npos) << json;
    EXPECT_NE (json.find ("\"rest\": true, \"continuation\": false, \"phonemes\": [\"sil\"]"), std::string::npos);

    outcome.synthesisers.clear ();
    EXPECT_EQ (Workbench::json ("s", outcome), "{\n  \"song\": \"s\",\n  \"synthesisers\": []\n}\n");
}

TEST (Report, PianoRollStaysBoundedForLongOrEmptyLists)
{
    Workbench::Outcome outcome;
    Workbench::Received synth;
    synth.notes.push_back (record (0.0, 0.5, -900.0f, "a"));
    synth.notes.push_back (record (0.5, 1.0, 300.0f, "a"));  // C4 .. C5: 13 notes and two spare rows
    outcome.synthesisers.push_back (synth);
    auto size = Workbench::pianoRollSize (outcome);
    EXPECT_EQ (size.width, 128 + 100);
    EXPECT_EQ (size.height, 24 + 15 * 14 + 8);

    outcome.synthesisers[0].notes.push_back (record (1.0, 1e9, 0.0f, "a"));  // an absurd end
    size = Workbench::pianoRollSize (outcome);
    EXPECT_EQ (size.width, 128 + 6000);

    outcome.synthesisers[0].notes.clear ();  // nothing received: one empty panel
    size = Workbench::pianoRollSize (outcome);
    EXPECT_EQ (size.width, 128);
    EXPECT_EQ (size.height, 24 + 3 * 14 + 8);
}

} // namespace
