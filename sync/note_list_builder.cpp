#include "sync/note_list_builder.h"

#include "phoneme/string_helpers.h"
#include "svs/svs_host.h"
#include "svs/svs_note_list.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace Zelmor {

namespace {

constexpr size_t kMaxPhonemes = 8;
// 0.1 as a float, widened: previousEnd is a float, so the test is on its grid.
constexpr double kLargestClosedGap = 0.10000000149011612;

float pitchCentsOf (const SequenceNote& note)
{
    // 64 bits so that hostile pitch/transpose values cannot overflow.
    int64_t n = static_cast<int64_t> (note.pitch) + note.transpose;
    if (n < 0)
    {
        // Fold up into 0..11, keeping the pitch class.
        const int64_t m = -n - 1;
        n = (m / 12) * 12 - m + 11;
    }
    if (n >= 128)
        n = ((n - 116) % 12) + 116;  // down into 116..127
    return static_cast<float> (static_cast<double> (n) * 100.0 - 6900.0);
}

// Phoneme names are meant to fit an 8-byte entry, but a user's hint can hold
// any token. Entries are written one after another like unbounded C string
// copies: a long token runs on into the following entries (and on into
// phonemeParams), and the next slot's own copy then overwrites the overrun
// from its start. Whatever the overrun left in entries or parameters that no
// later write covers stays, exactly as that sequence of writes leaves it.
// The one departure: nothing is written past the record. A copy is cut so
// that its terminator lands at the latest on the record's last byte, which
// thus holds 0 where an unbounded copy would have had a token byte and run on.
// As with a C string copy, a token stops at an embedded zero byte.
void copyPhoneme (SVS::SVSNote& record, size_t slot, const std::string& token)
{
    unsigned char* bytes = reinterpret_cast<unsigned char*> (&record);
    const size_t offset = offsetof (SVS::SVSNote, phonemes) + slot * sizeof (record.phonemes[0]);
    const size_t room = sizeof (SVS::SVSNote) - offset;  // always > 8 for slots 0..7
    const size_t length = std::min (std::strlen (token.c_str ()), room - 1);
    std::memcpy (bytes + offset, token.data (), length);
    bytes[offset + length] = 0;
}

SVS::SVSNote makeRest (double startTime, double endTime, float pitchCents)
{
    SVS::SVSNote rest {};
    rest.startTime = startTime;
    rest.endTime = endTime;
    rest.pitchCents = pitchCents;
    rest.fixedValueA = 4;
    rest.fixedValueB = 4;
    rest.isRest = true;
    rest.phonemeCount = 1;
    std::memcpy (rest.phonemes[0], "sil", 4);
    rest.phonemeParams[0] = -1;
    return rest;
}

SVS::SVSNote makeNote (const SequenceNote& note, std::string& lastPhoneme)
{
    SVS::SVSNote record {};
    record.startTime = note.soundStart;
    record.endTime = note.soundEnd;
    record.pitchCents = pitchCentsOf (note);
    record.fixedValueA = 4;
    record.fixedValueB = 4;
    record.isRest = false;
    record.isContinuation = !note.phoneme.empty () && note.phoneme[0] == '-';
    fillPhonemes (record, note.phoneme, lastPhoneme);
    return record;
}

} // namespace

void fillPhonemes (SVS::SVSNote& record, const std::string& phonemeText, std::string& lastPhoneme)
{
    std::vector<std::string> tokens;
    split (phonemeText, tokens);  // at runs of white space, no empty pieces
    if (tokens.empty ())
    {
        std::memcpy (record.phonemes[0], "ah", 3);
        record.phonemeParams[0] = -1;
        record.phonemeCount = 1;
        return;
    }
    const size_t taken = std::min (tokens.size (), kMaxPhonemes);
    for (size_t slot = 0; slot < taken; ++slot)
    {
        const std::string& token = tokens[slot];
        if (token == "-")
            copyPhoneme (record, slot, lastPhoneme);
        else
        {
            copyPhoneme (record, slot, token);
            lastPhoneme = token;
        }
        // Set after the copy, so a long token's run-on never hides this slot's -1.
        record.phonemeParams[slot] = -1;
    }
    record.phonemeCount = static_cast<SVS::int32> (taken);
}

std::vector<SVS::SVSNote> buildSvsNotes (const std::vector<SequenceNote>& notes)
{
    std::vector<const SequenceNote*> sung;
    sung.reserve (notes.size ());
    for (const SequenceNote& note : notes)
        if (!note.muted)
            sung.push_back (&note);

    // At most a rest before each note and one closing rest: room for all, so the records never move.
    std::vector<SVS::SVSNote> records;
    records.reserve (2 * sung.size () + 2);
    if (sung.empty ())
        return records;

    std::string lastPhoneme = "sil";
    // Deliberately single precision: gaps and rests work from the rounded value.
    float previousEnd = 0.0f;

    const SequenceNote& first = *sung.front ();
    if (first.soundStart > 0.0)
    {
        records.push_back (makeRest (0.0, first.soundStart, pitchCentsOf (first)));
        previousEnd = static_cast<float> (first.soundStart);
    }

    for (size_t i = 0; i < sung.size (); ++i)
    {
        const SequenceNote& note = *sung[i];
        const double gap = note.soundStart - static_cast<double> (previousEnd);
        if (gap > kLargestClosedGap)
            records.push_back (makeRest (previousEnd, note.soundStart, pitchCentsOf (note)));
        else if (i != 0 && note.soundStart > static_cast<double> (previousEnd))
            records.back ().endTime = note.soundStart;
        // Overlaps are left as they are; previousEnd may move backwards.
        records.push_back (makeNote (note, lastPhoneme));
        previousEnd = static_cast<float> (records.back ().endTime);
    }

    const float closingEnd = previousEnd + 1.0f;
    records.push_back (makeRest (previousEnd, closingEnd, records.back ().pitchCents));
    return records;
}

void sendNotes (const std::vector<SequenceNote>& notes, SVSHostImpl* host, bool hostFound)
{
    std::vector<SVS::SVSNote> records = buildSvsNotes (notes);
    SVSNoteListImpl list;  // on the stack, count 0: nobody may addRef/release it
    list.records () = std::move (records);
    if (hostFound && host)
        host->writeSequence (&list);
}

} // namespace Zelmor
