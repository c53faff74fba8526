// Times of the synthesisers' records as a musician reads them: quarter notes
// through the song's tempo map, and bar:beat through its time signatures.
#pragma once

#include "score/song.h"

#include <vector>

namespace Workbench {

/** Quarter notes from the start at `seconds`, through a tempo map whose first change is at beat 0. */
double beatsAt (const std::vector<Score::TempoChange>& tempi, double seconds);
/** Seconds from the start at `beats` quarter notes. */
double secondsAt (const std::vector<Score::TempoChange>& tempi, double beats);

/** Where a bar begins, in quarter notes, and its meter. */
struct Bar
{
    double beat = 0.0;
    int number = 1;
    int numerator = 4, denominator = 4;
};
/** The bars from the start up to `beats`, by the meters given (4/4 where none holds yet). */
std::vector<Bar> barsUpTo (const std::vector<Score::MeterChange>& meters, double beats);

} // namespace Workbench
