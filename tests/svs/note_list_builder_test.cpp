#include "sync/note_list_builder.h"
#include "svs/svs_host.h"
#include "svs_fakes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using Zelmor::buildSvsNotes;
using Zelmor::SequenceNote;

namespace {

SequenceNote note (double start, double end, int pitch = 60, std::string phoneme = "k a")
{
    SequenceNote n;
    n.start = n.soundStart = start;
    n.end = n.soundEnd = end;
    n.pitch = pitch;
    n.phoneme = std::move (phoneme);
    return n;
}

std::string slot (const SVS::SVSNote& r, int i) { return std::string (r.phonemes[i], strnlen (r.phonemes[i], 8)); }

void expectRest (const SVS::SVSNote& r, double start, double end, float cents)
{
    EXPECT_TRUE (r.isRest && !r.isContinuation && r.fixedValueA == 4 && r.fixedValueB == 4);
    EXPECT_TRUE (r.startTime == start && r.endTime == end && r.pitchCents == cents) << r.startTime << ".." << r.endTime;
    EXPECT_TRUE (r.phonemeCount == 1 && slot (r, 0) == "sil" && r.phonemeParams[0] == -1);
}

} // namespace

TEST (NoteListBuilder, OneNoteGetsLeadingAndClosingRests)
{
    const auto records = buildSvsNotes ({note (1.0, 2.0, 60, "k a")});
    ASSERT_EQ (records.size (), 3u);
    expectRest (records[0], 0.0, 1.0, -900.0f);
    expectRest (records[2], 2.0, 3.0, -900.0f);
    const SVS::SVSNote& sung = records[1];
    EXPECT_TRUE (!sung.isRest && sung.pitchCents == -900.0f && sung.phonemeCount == 2);
    EXPECT_EQ (slot (sung, 0) + slot (sung, 1), "ka");
    EXPECT_TRUE (sung.phonemeParams[1] == -1 && sung.phonemeParams[2] == 0 && sung.phonemes[2][0] == 0);
}

TEST (NoteListBuilder, GapsAreStretchedOrFilledWithRests)
{
    auto records = buildSvsNotes ({note (0.0, 1.0)});
    EXPECT_EQ (records.size (), 2u) << "no leading rest at 0.0";

    records = buildSvsNotes ({note (0.0, 1.0), note (1.05, 2.0)});
    ASSERT_EQ (records.size (), 3u);
    EXPECT_EQ (records[0].endTime, 1.05);

    records = buildSvsNotes ({note (0.0, 1.0, 60), note (1.2, 2.0, 72)});
    ASSERT_EQ (records.size (), 4u);
    expectRest (records[1], 1.0, 1.2, 300.0f);

    const double limit = 0.10000000149011612;  // 0.1 in single precision: not over
    records = buildSvsNotes ({note (0.0, 1.0), note (1.0 + limit, 2.0)});
    ASSERT_EQ (records.size (), 3u);
    EXPECT_EQ (records[0].endTime, 1.0 + limit);

    // Overlaps stay; a shorter note pulls the closing rest back.
    records = buildSvsNotes ({note (0.0, 3.0), note (1.0, 2.0)});
    ASSERT_EQ (records.size (), 3u);
    EXPECT_EQ (records[0].endTime, 3.0);
    expectRest (records[2], 2.0, 3.0, -900.0f);

    // Ends are tracked in single precision; the closing rest adds in float.
    const double start = 100000.123456789;
    records = buildSvsNotes ({note (start, start + 1.0)});
    const float end = static_cast<float> (start + 1.0);
    EXPECT_EQ (records[0].endTime, start);
    EXPECT_EQ (records[2].startTime, double (end));
    EXPECT_EQ (records[2].endTime, double (end + 1.0f));
}

TEST (NoteListBuilder, PhonemeTokens)
{
    auto records = buildSvsNotes ({note (0.0, 1.0, 60, "k a"), note (1.0, 2.0, 60, "- a")});
    EXPECT_TRUE (records[1].isContinuation);
    EXPECT_EQ (slot (records[1], 0) + slot (records[1], 1), "aa");

    records = buildSvsNotes ({note (2.0, 3.0, 60, "-")});
    EXPECT_EQ (slot (records[1], 0), "sil") << "rests leave the initial last phoneme";

    records = buildSvsNotes ({note (0.0, 1.0, 60, " \t ")});
    EXPECT_EQ (slot (records[0], 0), "ah");

    records = buildSvsNotes ({note (0.0, 1.0, 60, "a b c d e f g h i"), note (1.0, 2.0, 60, "-")});
    EXPECT_EQ (records[0].phonemeCount, 8);
    EXPECT_EQ (records[0].phonemeParams[7], -1);
    EXPECT_EQ (slot (records[1], 0), "h") << "a dropped token does not become the last phoneme";
}

TEST (NoteListBuilder, PitchFoldingAndMuting)
{
    auto semitones = [] (int pitch, int transpose) {
        SequenceNote n = note (0.0, 1.0, pitch);
        n.transpose = transpose;
        return (buildSvsNotes ({n})[0].pitchCents + 6900.0f) / 100.0f;
    };
    EXPECT_EQ (semitones (60, 70), 118.0f);
    EXPECT_EQ (semitones (0, -13), 11.0f);
    EXPECT_EQ (semitones (128, 0), 116.0f);
    EXPECT_EQ (semitones (INT32_MAX, INT32_MAX), 122.0f) << "no overflow on hostile values";

    SequenceNote muted = note (0.0, 9.0, 50);
    muted.muted = true;
    EXPECT_TRUE (buildSvsNotes ({muted}).empty ());
    const auto records = buildSvsNotes ({muted, note (1.0, 2.0, 62)});
    ASSERT_EQ (records.size (), 3u);
    expectRest (records[0], 0.0, 1.0, -700.0f);
}

TEST (NoteListBuilder, SendNotesWritesOnlyWhenTheHostWasFound)
{
    svs_test::SequenceSink sink;
    Zelmor::SVSHostImpl host;
    host.setSequenceSink (&sink);
    Zelmor::sendNotes ({note (1.0, 2.0)}, &host, false);
    EXPECT_EQ (sink.calls, 0);
    Zelmor::sendNotes ({note (1.0, 2.0)}, &host, true);
    EXPECT_EQ (sink.calls, 1);
    EXPECT_EQ (host.storedNotes ().size (), 3u);
}

// Hostile hints: long tokens run on inside the record but never past it.
namespace {

struct Guarded
{
    unsigned char before[64];
    SVS::SVSNote record;
    unsigned char after[64];
};

Guarded fillGuarded (const std::string& text, std::string& lastPhoneme)
{
    Guarded g;
    std::memset (&g, 0xA5, sizeof g);
    g.record = SVS::SVSNote {};
    Zelmor::fillPhonemes (g.record, text, lastPhoneme);
    for (int i = 0; i < 64; ++i)
        EXPECT_TRUE (g.before[i] == 0xA5 && g.after[i] == 0xA5) << "guard byte " << i;
    return g;
}

const unsigned char* bytesOf (const SVS::SVSNote& r) { return reinterpret_cast<const unsigned char*> (&r); }

} // namespace

TEST (NoteListBuilderHostile, LongTokenRunsOnAndTheNextOverwritesIt)
{
    std::string last = "sil";
    const std::string longToken (100, 'x');
    Guarded g = fillGuarded (longToken, last);
    const unsigned char* b = bytesOf (g.record);
    EXPECT_EQ (last, longToken);
    EXPECT_EQ (g.record.phonemeParams[0], -1) << "written after the copy";
    EXPECT_EQ (std::string (reinterpret_cast<const char*> (b + 124), 27), std::string (27, 'x'));
    EXPECT_EQ (b[151], 0) << "the terminator lands on the last byte";

    g = fillGuarded ("aaaaaaaaaaaa b", last);  // "aaaaaaaaaaaa\0" over 56..68, then "b\0" at 64
    EXPECT_EQ (std::memcmp (bytesOf (g.record) + 56, "aaaaaaaab\0aa\0\0\0\0", 16), 0);
    EXPECT_EQ (g.record.phonemeParams[2], 0);
}

TEST (NoteListBuilderHostile, FiftyLongTokensStayInside)
{
    std::string text;  // taken: A, -, B, C, D, -, E, F; each 100+ bytes
    for (int i = 0; i < 50; ++i)
        text += std::string (100 + i, char ('A' + i % 26)) + (i % 3 ? " " : " - ");
    std::string last (300, 'z');
    const Guarded g = fillGuarded (text, last);
    EXPECT_EQ (g.record.phonemeCount, 8);
    EXPECT_EQ (std::memcmp (g.record.phonemes[1], "AAAAAAAA", 8), 0);
    EXPECT_EQ (std::string (reinterpret_cast<const char*> (bytesOf (g.record) + 112), 36), std::string (36, 'F'));
    EXPECT_EQ (g.record.phonemeParams[7], -1) << "the last slot's -1 covers the terminator";

    // Through the whole conversion, neighbouring records stay intact.
    SequenceNote later = note (3.0, 4.0, 60, text);
    const auto records = buildSvsNotes ({note (1.0, 2.0, 60, text), note (2.0, 3.0, 60, "- a"), later});
    ASSERT_EQ (records.size (), 5u);
    expectRest (records[0], 0.0, 1.0, -900.0f);
    expectRest (records[4], 4.0, 5.0, -900.0f);
    EXPECT_EQ (std::memcmp (records[2].phonemes[0], "FFFFFFFFa\0", 10), 0);
}
