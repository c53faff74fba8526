#include "workbench/sim/time_context.h"

#include <algorithm>

namespace Sim {

using namespace Steinberg;

TimeContext::TimeContext (double bpm) : Object ("TimeContext", "tempo", Side::Host)
{
    setTempo (bpm);
}

void TimeContext::setTempo (double bpm)
{
    segments_ = {{0.0, 0.0, bpm}};
}

void TimeContext::addTempoChange (double beat, double bpm)
{
    if (beat <= 0.0)
    {
        segments_.front ().bpm = bpm;
    }
    else
    {
        auto it = std::find_if (segments_.begin (), segments_.end (),
                                [&] (const Segment& s) { return s.beat >= beat; });
        if (it != segments_.end () && it->beat == beat)
            it->bpm = bpm;
        else
            segments_.insert (it, {beat, 0.0, bpm});
    }
    recompute ();
}

void TimeContext::recompute ()
{
    for (std::size_t i = 1; i < segments_.size (); ++i)
    {
        const auto& prev = segments_[i - 1];
        segments_[i].seconds = prev.seconds + (segments_[i].beat - prev.beat) * 60.0 / prev.bpm;
    }
}

double TimeContext::secondsToBeats (double seconds) const
{
    // The last segment that starts at or before the position; the first one
    // also covers negative positions.
    auto it = std::upper_bound (segments_.begin (), segments_.end (), seconds,
                                [] (double s, const Segment& seg) { return s < seg.seconds; });
    const Segment& seg = it == segments_.begin () ? *it : *(it - 1);
    return seg.beat + (seconds - seg.seconds) * seg.bpm / 60.0;
}

double TimeContext::beatsToSeconds (double beats) const
{
    auto it = std::upper_bound (segments_.begin (), segments_.end (), beats,
                                [] (double b, const Segment& seg) { return b < seg.beat; });
    const Segment& seg = it == segments_.begin () ? *it : *(it - 1);
    return seg.seconds + (beats - seg.beat) * 60.0 / seg.bpm;
}

double PLUGIN_API TimeContext::linearToMusical (double seconds)
{
    CallLog::record (Side::Host, "ITimeContext::linearToMusical", name ());
    return secondsToBeats (seconds);
}

double PLUGIN_API TimeContext::musicalToLinear (double musical)
{
    CallLog::record (Side::Host, "ITimeContext::musicalToLinear", name ());
    return beatsToSeconds (musical);
}

bool TimeContext::query (const TUID iid, void** obj)
{
    // Never queried by identifier (it has none); only FUnknown is known.
    return offerUnknown (iid, obj, static_cast<ITimeContext*> (this));
}

} // namespace Sim
