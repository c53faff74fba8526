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

std::string slot (const SVS::SVSNote& r, int i)
{
    return std::string (r.phonemes[i], strnlen (r.phonemes[i], 8));
}

void expectRest (const SVS::SVSNote& r, double start, double end, float cents)
{
    EXPECT_TRUE (r.isRest);
    EXPECT_FALSE (r.isContinuation);
    EXPECT_EQ (r.startTime, start);
    EXPECT_EQ (r.endTime, end);
    EXPECT_EQ (r.pitchCents, cents);
    EXPECT_EQ (r.fixedValueA, 4);
    EXPECT_EQ (r.fixedValueB, 4);
    EXPECT_EQ (r.phonemeCount, 1);
    EXPECT_EQ (slot (r, 0), "sil");
    EXPECT_EQ (r.phonemeParams[0], -1);
    EXPECT_EQ (r.phonemeParams[1], 0);
}

} // namespace

TEST (NoteListBuilder, OneNoteGetsLeadingAndClosingRests)
{
    const auto records = buildSvsNotes ({note (1.0, 2.0, 60, "k a")});
    ASSERT_EQ (records.size (), 3u);
    expectRest (records[0], 0.0, 1.0, -900.0f);
    expectRest (records[2], 2.0, 3.0, -900.0f);

    const SVS::SVSNote& sung = records[1];
    EXPECT_FALSE (sung.isRest);
    EXPECT_EQ (sung.startTime, 1.0);
    EXPECT_EQ (sung.endTime, 2.0);
    EXPECT_EQ (sung.pitchCents, -900.0f);
    EXPECT_EQ (sung.fixedValueA, 4);
    EXPECT_EQ (sung.phonemeCount, 2);
    EXPECT_EQ (slot (sung, 0), "k");
    EXPECT_EQ (slot (sung, 1), "a");
    EXPECT_EQ (sung.phonemeParams[1], -1);
    EXPECT_EQ (sung.phonemeParams[2], 0);
    for (int i = 2; i < 8; ++i)
        EXPECT_EQ (std::memcmp (sung.phonemes[i], "\0\0\0\0\0\0\0\0", 8), 0);
}

TEST (NoteListBuilder, GapsAreStretchedOrFilledWithRests)
{
    // At 0.0 there is no leading rest.
    auto records = buildSvsNotes ({note (0.0, 1.0)});
    ASSERT_EQ (records.size (), 2u);
    EXPECT_FALSE (records[0].isRest);

    // 0.05: the first note is stretched up to the second.
    records = buildSvsNotes ({note (0.0, 1.0), note (1.05, 2.0)});
    ASSERT_EQ (records.size (), 3u);
    EXPECT_EQ (records[0].endTime, 1.05);
    EXPECT_EQ (records[1].startTime, 1.05);

    // 0.2: a rest with the second note's pitch.
    records = buildSvsNotes ({note (0.0, 1.0, 60), note (1.2, 2.0, 72)});
    ASSERT_EQ (records.size (), 4u);
    EXPECT_EQ (records[0].endTime, 1.0);
    expectRest (records[1], 1.0, 1.2, 300.0f);
    expectRest (records[3], 2.0, 3.0, 300.0f);

    // Exactly 0.1 in single precision is not more than the limit.
    const double limit = 0.10000000149011612;
    records = buildSvsNotes ({note (0.0, 1.0), note (1.0 + limit, 2.0)});
    ASSERT_EQ (records.size (), 3u);
    EXPECT_EQ (records[0].endTime, 1.0 + limit);

    // Overlaps stay; a shorter note pulls the closing rest back.
    records = buildSvsNotes ({note (0.0, 3.0), note (1.0, 2.0)});
    ASSERT_EQ (records.size (), 3u);
    EXPECT_EQ (records[0].endTime, 3.0);
    expectRest (records[2], 2.0, 3.0, -900.0f);
}

TEST (NoteListBuilder, TimesAreTrackedInSinglePrecision)
{
    const double start = 100000.123456789;
    const auto records = buildSvsNotes ({note (start, start + 1.0)});
    ASSERT_EQ (records.size (), 3u);
    const float end = static_cast<float> (start + 1.0);
    EXPECT_EQ (records[0].endTime, start) << "the leading rest ends exactly at the note";
    EXPECT_EQ (records[2].startTime, static_cast<double> (end));
    EXPECT_EQ (records[2].endTime, static_cast<double> (end + 1.0f));
}

TEST (NoteListBuilder, PhonemeTokens)
{
    auto records = buildSvsNotes ({note (0.0, 1.0, 60, "k a"), note (1.0, 2.0, 60, "- a")});
    ASSERT_EQ (records.size (), 3u);
    EXPECT_FALSE (records[0].isContinuation);
    EXPECT_TRUE (records[1].isContinuation);
    EXPECT_EQ (records[1].phonemeCount, 2);
    EXPECT_EQ (slot (records[1], 0), "a");
    EXPECT_EQ (slot (records[1], 1), "a");

    // "-" first in the list repeats the initial "sil"; rests do not change it.
    records = buildSvsNotes ({note (2.0, 3.0, 60, "-")});
    EXPECT_EQ (slot (records[1], 0), "sil");
    EXPECT_TRUE (records[1].isContinuation);

    // No tokens: the default vowel.
    for (const char* empty : {"", " \t "})
    {
        records = buildSvsNotes ({note (0.0, 1.0, 60, empty)});
        EXPECT_EQ (records[0].phonemeCount, 1);
        EXPECT_EQ (slot (records[0], 0), "ah");
        EXPECT_EQ (records[0].phonemeParams[0], -1);
        EXPECT_FALSE (records[0].isContinuation);
    }

    records = buildSvsNotes ({note (0.0, 1.0, 60, "a b c d e f g h i")});
    EXPECT_EQ (records[0].phonemeCount, 8);
    EXPECT_EQ (slot (records[0], 7), "h");
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ (records[0].phonemeParams[i], -1);

    // A dropped ninth token does not become the last phoneme.
    records = buildSvsNotes ({note (0.0, 1.0, 60, "a b c d e f g h i"), note (1.0, 2.0, 60, "-")});
    EXPECT_EQ (slot (records[1], 0), "h");
}

TEST (NoteListBuilder, PitchFoldingAndMuting)
{
    auto centsOf = [] (int pitch, int transpose) {
        SequenceNote n = note (0.0, 1.0, pitch);
        n.transpose = transpose;
        return buildSvsNotes ({n})[0].pitchCents;
    };
    EXPECT_EQ (centsOf (69, 0), 0.0f);
    EXPECT_EQ (centsOf (60, 70), 11800.0f - 6900.0f);  // 130 → 118
    EXPECT_EQ (centsOf (10, -11), 1100.0f - 6900.0f);   // -1 → 11
    EXPECT_EQ (centsOf (0, -12), -6900.0f);             // -12 → 0
    EXPECT_EQ (centsOf (0, -13), 1100.0f - 6900.0f);    // -13 → 11
    EXPECT_EQ (centsOf (127, 0), 12700.0f - 6900.0f);
    EXPECT_EQ (centsOf (128, 0), 11600.0f - 6900.0f);   // 128 → 116, same pitch class
    EXPECT_EQ (centsOf (139, 0), 12700.0f - 6900.0f);   // 139 → 127
    EXPECT_EQ (centsOf (INT32_MAX, INT32_MAX), centsOf (INT32_MAX, INT32_MAX));  // no overflow trap

    SequenceNote muted = note (0.5, 1.0);
    muted.muted = true;
    EXPECT_TRUE (buildSvsNotes ({muted}).empty ());
    EXPECT_TRUE (buildSvsNotes ({}).empty ());

    // A muted note between two sung ones leaves no trace of its own.
    SequenceNote mutedLong = note (0.0, 9.0, 60, "x");
    mutedLong.muted = true;
    const auto records = buildSvsNotes ({mutedLong, note (1.0, 2.0, 62, "o")});
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
    EXPECT_TRUE (host.storedNotes ().empty ());

    Zelmor::sendNotes ({note (1.0, 2.0)}, &host, true);
    EXPECT_EQ (sink.calls, 1);
    EXPECT_EQ (host.storedNotes ().size (), 3u);

    SequenceNote muted = note (0.0, 1.0);
    muted.muted = true;
    Zelmor::sendNotes ({muted}, &host, true);
    EXPECT_EQ (sink.calls, 2) << "an empty list is still sent";
    EXPECT_TRUE (host.storedNotes ().empty ());

    Zelmor::sendNotes ({note (1.0, 2.0)}, nullptr, true);  // no host object: nothing to do
}

// ---- hostile hints: long tokens must never write past the record ----

namespace {

struct Guarded
{
    unsigned char before[64];
    SVS::SVSNote record;
    unsigned char after[64];
};

bool untouched (const unsigned char (&guard)[64])
{
    for (unsigned char c : guard)
        if (c != 0xA5)
            return false;
    return true;
}

Guarded fillGuarded (const std::string& text, std::string& lastPhoneme)
{
    Guarded g;
    std::memset (&g, 0xA5, sizeof g);
    std::memset (&g.record, 0, sizeof g.record);
    Zelmor::fillPhonemes (g.record, text, lastPhoneme);
    return g;
}

const unsigned char* bytesOf (const SVS::SVSNote& r) { return reinterpret_cast<const unsigned char*> (&r); }

} // namespace

TEST (NoteListBuilderHostile, LongTokenRunsOnButStopsAtTheRecordEnd)
{
    std::string last = "sil";
    const std::string longToken (100, 'x');
    const Guarded g = fillGuarded (longToken, last);
    EXPECT_TRUE (untouched (g.before));
    EXPECT_TRUE (untouched (g.after));
    EXPECT_EQ (last, longToken) << "the last phoneme keeps the whole token";

    const unsigned char* b = bytesOf (g.record);
    EXPECT_EQ (g.record.phonemeCount, 1);
    EXPECT_EQ (g.record.phonemeParams[0], -1) << "set after the copy";
    for (size_t i = 56; i < 120; ++i)
        EXPECT_EQ (b[i], 'x') << "offset " << i;
    for (size_t i = 124; i < 151; ++i)
        EXPECT_EQ (b[i], 'x') << "offset " << i;
    EXPECT_EQ (b[151], 0) << "the terminator lands on the last byte";
}

TEST (NoteListBuilderHostile, NextTokenOverwritesTheOverrun)
{
    std::string last = "sil";
    const Guarded g = fillGuarded ("aaaaaaaaaaaa b", last);  // 12 bytes, then "b"
    const unsigned char* b = bytesOf (g.record);
    EXPECT_EQ (std::memcmp (b + 56, "aaaaaaaa", 8), 0);
    // "aaaaaaaaaaaa\0" covered 56..68; "b\0" then went over 64..65.
    EXPECT_EQ (std::memcmp (b + 64, "b\0aa\0\0\0\0", 8), 0);
    EXPECT_EQ (g.record.phonemeCount, 2);
    EXPECT_EQ (g.record.phonemeParams[1], -1);
    EXPECT_EQ (g.record.phonemeParams[2], 0);
    EXPECT_EQ (last, "b");
}

TEST (NoteListBuilderHostile, FiftyLongTokensAndRepeatsStayInside)
{
    std::string text;
    for (int i = 0; i < 50; ++i)
        text += std::string (100 + i, static_cast<char> ('A' + i % 26)) + (i % 3 ? " " : " - ");
    std::string last (300, 'z');
    const Guarded g = fillGuarded (text, last);
    EXPECT_TRUE (untouched (g.before));
    EXPECT_TRUE (untouched (g.after));
    EXPECT_EQ (g.record.phonemeCount, 8);
    // Taken: A.., -, B.., C.., D.., -, E.., F..; the last one runs on over the
    // earlier slots' parameters, and only its own -1 is written after it.
    const unsigned char* b = bytesOf (g.record);
    for (size_t i = 112; i < 148; ++i)
        EXPECT_EQ (b[i], 'F') << "offset " << i;
    EXPECT_EQ (g.record.phonemeParams[7], -1) << "covers the terminator on the last byte";
    EXPECT_EQ (std::memcmp (g.record.phonemes[1], std::string (8, 'A').data (), 8), 0)
        << "the first '-' repeats the long token just taken";
    EXPECT_EQ (last, std::string (105, 'F'));

    // Through the whole conversion: neighbouring records stay intact.
    SequenceNote hostile = note (1.0, 2.0, 60, text);
    SequenceNote hostileAgain = hostile;
    hostileAgain.soundStart = 3.0;
    hostileAgain.soundEnd = 4.0;
    std::vector<SequenceNote> notes {hostile, note (2.0, 3.0, 60, "- a"), hostileAgain};
    const auto records = buildSvsNotes (notes);
    ASSERT_EQ (records.size (), 5u);
    expectRest (records[0], 0.0, 1.0, -900.0f);
    expectRest (records[4], 4.0, 5.0, -900.0f);
    EXPECT_EQ (records[2].phonemeCount, 2);
    EXPECT_EQ (std::memcmp (records[2].phonemes[0], std::string (8, 'F').data (), 8), 0);
    EXPECT_EQ (slot (records[2], 1), "a");
    EXPECT_EQ (bytesOf (records[2])[151], 0);
}

TEST (NoteListBuilderHostile, EmbeddedZeroEndsTheCopy)
{
    std::string last = "sil";
    const Guarded g = fillGuarded (std::string ("ab\0cd", 5), last);
    EXPECT_EQ (std::memcmp (g.record.phonemes[0], "ab\0\0\0\0\0\0", 8), 0);
}
