// The project's time line: seconds to musical position (quarter notes) and
// back, through a tempo map of piecewise-constant tempos.
#pragma once

#include "workbench/sim/object.h"

#include "host/project_interfaces.h"

#include <vector>

namespace Sim {

class TimeContext : public Object, public Steinberg::ITimeContext
{
public:
    explicit TimeContext (double bpm = 120.0);

    /** One tempo for the whole time line; drops every change. */
    void setTempo (double bpm);
    /** From `beat` on (quarter notes, > 0) the tempo is `bpm`; later changes keep their beats. */
    void addTempoChange (double beat, double bpm);

    double secondsToBeats (double seconds) const;
    double beatsToSeconds (double beats) const;

    double PLUGIN_API linearToMusical (double seconds) override;
    double PLUGIN_API musicalToLinear (double musical) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    struct Segment
    {
        double beat;     // where the segment starts, in beats
        double seconds;  // the same place in seconds
        double bpm;
    };
    void recompute ();

    // Ordered by beat; the first starts at 0 and reaches back before it.
    std::vector<Segment> segments_;
};

} // namespace Sim
