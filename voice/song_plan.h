// From a note list to what the voice must do: a gapless list of timed phones
// and an F0 contour. Knows nothing of the engine that renders it.
#pragma once

#include "voice/voice_note.h"

#include <string>
#include <vector>

namespace Voice {

/** The range the voice follows well; notes outside it are sung whole octaves nearer. */
constexpr double lowestMidi = 36.0;
constexpr double highestMidi = 84.0;

struct TimedPhone
{
    std::string name;   ///< a phone of the voice's set
    double start = 0.0; ///< seconds on the song's timeline
    double end = 0.0;
    bool held = false;  ///< the syllable's held phone: it stretches at its centre, not at its edges
    bool onset = false; ///< before the held phone of its syllable
};

struct PitchPoint
{
    double time = 0.0;  ///< seconds
    double hz = 0.0;
};

struct PlanOptions
{
    bool onsetsBeforeNote = false;  ///< onset consonants end at the note's start, so the vowel lands on the beat
};

struct SongPlan
{
    std::vector<TimedPhone> phones;     ///< gapless, from a lead-in of silence before 0 to a tail after the end
    std::vector<PitchPoint> pitch;      ///< F0, linear between points and flat beyond the ends; never empty
    double duration = 0.0;              ///< seconds of sound from 0
    std::vector<std::string> warnings;  ///< what was sung differently from what was asked
};

/** `duration` is the song's length; shorter than the notes, the notes win. */
SongPlan planSong (const std::vector<Note>& notes, double duration, const PlanOptions& options = {});

double pitchAt (const std::vector<PitchPoint>& pitch, double time);

/** One mark per period of the contour, from `from` up to `to`. The marks fall on each of the
    sorted `onsets` too, so that a sound after silence starts with its first period, not up to a
    period late. */
std::vector<double> pitchMarks (const std::vector<PitchPoint>& pitch, double from, double to,
                                const std::vector<double>& onsets = {});

/** Where a moment `t` of a sung phone [t0, t1] falls in its recording [s0, s1]. Edges keep the
    recording's pace (attack and decay); a held phone longer than its recording stretches the centre. */
double sourceTime (double t, double t0, double t1, double s0, double s1, bool held);

} // namespace Voice
