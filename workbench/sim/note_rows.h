// The synthesiser's records as readable rows, for tests and the workbench.
#pragma once

#include "svs/svs_interfaces.h"

#include <string>
#include <vector>

namespace Sim {

struct NoteRow
{
    double start = 0.0;
    double end = 0.0;
    float pitchCents = 0.0f;
    bool rest = false;
    bool continuation = false;
    std::string phonemes;  ///< the used entries, one blank between them

    bool operator== (const NoteRow& o) const;
};

NoteRow rowOf (const SVS::SVSNote& note);
std::vector<NoteRow> rowsOf (const std::vector<SVS::SVSNote>& notes);
/** "1.000-1.500 +300 ~ [k a]": times, cents, "r" for rest / "~" for continuation, phonemes. */
std::string formatRow (const NoteRow& row);
/** One formatted row a line. */
std::string formatRows (const std::vector<NoteRow>& rows);

} // namespace Sim
