#include "workbench/sim/note_rows.h"

#include <cstdio>
#include <cstring>

namespace Sim {

bool NoteRow::operator== (const NoteRow& o) const
{
    return start == o.start && end == o.end && pitchCents == o.pitchCents && rest == o.rest
           && continuation == o.continuation && phonemes == o.phonemes;
}

NoteRow rowOf (const SVS::SVSNote& note)
{
    NoteRow row;
    row.start = note.startTime;
    row.end = note.endTime;
    row.pitchCents = note.pitchCents;
    row.rest = note.isRest;
    row.continuation = note.isContinuation;
    const int count = note.phonemeCount < 0 ? 0 : (note.phonemeCount > 8 ? 8 : note.phonemeCount);
    for (int i = 0; i < count; ++i)
    {
        // An entry may run on into the next one (a long token); read within the record only.
        const char* p = note.phonemes[i];
        const std::size_t room = sizeof (note.phonemes) - static_cast<std::size_t> (i) * 8;
        if (i > 0)
            row.phonemes += ' ';
        row.phonemes.append (p, strnlen (p, room));
    }
    return row;
}

std::vector<NoteRow> rowsOf (const std::vector<SVS::SVSNote>& notes)
{
    std::vector<NoteRow> rows;
    rows.reserve (notes.size ());
    for (auto& n : notes)
        rows.push_back (rowOf (n));
    return rows;
}

std::string formatRow (const NoteRow& row)
{
    char buf[96];
    std::snprintf (buf, sizeof buf, "%.3f-%.3f %+.0f %s [", row.start, row.end, static_cast<double> (row.pitchCents),
                   row.rest ? "r" : (row.continuation ? "~" : "-"));
    return buf + row.phonemes + "]";
}

std::string formatRows (const std::vector<NoteRow>& rows)
{
    std::string out;
    for (auto& r : rows)
        out += formatRow (r) + "\n";
    return out;
}

} // namespace Sim
