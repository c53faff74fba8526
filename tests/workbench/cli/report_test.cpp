// Pitch names, the JSON a program reads, the bounds of the piano roll, and the
// MIDI file of what the host holds.
#include "score/midi_song.h"
#include "tests/workbench/sim/fakes.h"
#include "workbench/cli/file_output.h"
#include "workbench/cli/host_notes.h"
#include "workbench/cli/piano_roll.h"
#include "workbench/cli/report.h"
#include "workbench/cli/song_file.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>

namespace {

using SimTest::record;

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
    synth.notes.push_back (record (0.0, 1.0, -900.0f, false, {"k"}));
    std::memcpy (synth.notes[0].phonemes[0], "abcdefgh", 8);  // no terminating zero in its entry
    synth.notes.push_back (record (1.0, 2.0, -900.0f, true, {"sil"}));
    outcome.synthesisers.push_back (synth);
    const std::string json = Workbench::json ("s", outcome);
    EXPECT_NE (json.find ("\"track\": \"Say \\\"hi\\\"\\\\\\u000a\""), std::string::npos) << json;
    EXPECT_NE (json.find ("\"phonemes\": [\"abcdefgh\"]"), std::string::npos) << json;
    EXPECT_NE (json.find ("\"rest\": true, \"continuation\": false, \"lyric\": null, \"phonemes\": [\"sil\"]"), std::string::npos);

    outcome.synthesisers.clear ();
    EXPECT_EQ (Workbench::json ("s", outcome), "{\n  \"format\": 2,\n  \"song\": \"s\",\n  \"title\": null,\n"
                                               "  \"tempi\": [],\n  \"meters\": [],\n  \"synthesisers\": [],\n"
                                               "  \"notices\": []\n}\n");
}

TEST (Report, EachRecordShowsTheWordsOfTheHostNoteAtItsStartAndPitch)
{
    // Two notes that start together, a chord typed in the host: the record sung at C4 is the second's.
    const std::vector<Workbench::HostNote> notes = {{0.0, 1.0, 0.0, 2.0, 64, "hi", "", 0},
                                                             {0.0, 1.0, 0.0, 2.0, 60, "lo", "", 0}};
    const std::vector<SVS::SVSNote> records = {record (0.0, 1.0, -900.0f, false, {"l"}),
                                               record (1.0, 2.0, -900.0f, true, {"sil"})};
    EXPECT_EQ (Workbench::lyricsOfRecords (records, notes), (std::vector<std::string> {"lo", ""}));
}

TEST (Report, PianoRollPagesStayBoundedAndBreakAtBars)
{
    Workbench::Outcome outcome;
    outcome.tempi = {{0.0, 120.0}};
    Workbench::Received synth;
    synth.notes.push_back (record (0.0, 0.5, -900.0f, false, {"a"}));
    synth.notes.push_back (record (0.5, 1.0, 300.0f, false, {"a"}));  // C4 .. C5: 13 notes and two spare rows
    outcome.synthesisers.push_back (synth);
    auto pages = Workbench::pianoRollPages (outcome);
    ASSERT_EQ (pages.size (), 1u);
    EXPECT_EQ (pages[0].width, 128 + 100);
    EXPECT_EQ (pages[0].height, 24 + 14 + 18 + 15 * 14 + 8);  // no words: no lane for them

    // 100 s: pages of 30 s at most, the last up to 36; with bars of 7/4 at 120 bpm (3.5 s) they
    // break at the last bar line, 28 s in.
    outcome.synthesisers[0].notes.push_back (record (1.0, 100.0, 0.0f, false, {"a"}));
    pages = Workbench::pianoRollPages (outcome);
    ASSERT_EQ (pages.size (), 4u);
    EXPECT_EQ (pages[1].start, 30.0);
    EXPECT_EQ (pages[3].end, 100.0);
    EXPECT_EQ (pages[0].width, 128 + 3000);
    outcome.meters = {{0.0, 7, 4}};
    pages = Workbench::pianoRollPages (outcome);
    EXPECT_DOUBLE_EQ (pages[1].start, 28.0);
    EXPECT_DOUBLE_EQ (pages[2].start, 56.0);

    outcome.synthesisers[0].notes.push_back (record (100.0, 1e9, 0.0f, false, {"a"}));  // an absurd end
    EXPECT_LE (Workbench::pianoRollPages (outcome).back ().end, 7200.0);

    outcome.synthesisers[0].notes.clear ();  // nothing received: one empty panel
    pages = Workbench::pianoRollPages (outcome);
    ASSERT_EQ (pages.size (), 1u);
    EXPECT_EQ (pages[0].width, 128);
    EXPECT_EQ (pages[0].height, 24 + 14 + 18 + 3 * 14 + 8);

    EXPECT_EQ (Workbench::pageFiles ("out/roll.png", 1), (std::vector<std::string> {"out/roll.png"}));
    const auto files = Workbench::pageFiles ("a.b/roll.png", 12);
    EXPECT_EQ (files.front (), "a.b/roll-01.png");
    EXPECT_EQ (files.back (), "a.b/roll-12.png");
    EXPECT_EQ (Workbench::pageFiles ("a.b/roll", 2).back (), "a.b/roll-2");
}

TEST (Report, SongFileKeepsOverlapsOfOnePitchAndPositionsOffTheUsualGrid)
{
    Workbench::Outcome outcome;
    outcome.tempi = {{0.0, 120.0}};
    Workbench::Received synth;
    synth.track = "Voice";
    // A note that enters while another of its pitch sounds, and one a seventh of a beat in.
    synth.hostNotes = {{0.0, 2.0, 0.0, 4.0, 60, "la[l aa]", "", 0},
                       {0.5, 1.0, 1.0, 2.0, 60, "", "", 0},
                       {1.0 / 14, 0.5, 1.0 / 7, 1.0, 64, "[-]", "", 0}};
    outcome.synthesisers.push_back (synth);
    Score::MidiFile file;
    Score::Song song;
    std::string error;
    ASSERT_TRUE (Workbench::songFile ("s", outcome, Workbench::MidiLyrics::Host, file, error)) << error;
    const auto bytes = Score::writeMidi (file);
    ASSERT_TRUE (Score::parseMidi (bytes.data (), bytes.size (), file, error) && Score::readMidiSong (file, song, error));
    ASSERT_EQ (song.tracks.size (), 1u);
    std::string notes;
    char buf[64];
    for (const auto& n : song.tracks[0].notes)
        notes += (std::snprintf (buf, sizeof buf, "%.9f-%.9f %d ", n.start, n.end, n.pitch), buf) + n.lyric + "\n";
    // "la[l aa]" typed again deals three elements, the last onto the note without text: it says its "ah".
    EXPECT_EQ (notes, "0.000000000-2.000000000 60 la[l aa]\n0.071428571-0.500000000 64 [-]\n"
                      "0.500000000-1.000000000 60 [ah]\n");

    outcome.synthesisers[0].hostNotes[1].endBeat = 1e12;  // past what the ticks hold
    EXPECT_FALSE (Workbench::songFile ("s", outcome, Workbench::MidiLyrics::Host, file, error));
    EXPECT_NE (error.find ("past what a MIDI file"), std::string::npos) << error;
}

TEST (Report, AFailedWriteLeavesNothingBehind)
{
    // The rename over a folder fails after the temporary file is written: it must go again.
    namespace fs = std::filesystem;
    const fs::path dir = fs::path (::testing::TempDir ()) / ("replace-" + std::to_string (::getpid ()));
    fs::remove_all (dir);
    fs::create_directories (dir / "target.png");
    std::string error;
    EXPECT_FALSE (Workbench::replaceFile ((dir / "target.png").string (), {1, 2, 3}, error));
    EXPECT_NE (error.find ("cannot write " + (dir / "target.png").string ()), std::string::npos) << error;
    EXPECT_EQ (std::distance (fs::directory_iterator (dir), {}), 1);
    fs::remove_all (dir);
}

} // namespace
