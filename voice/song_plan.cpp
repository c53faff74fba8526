#include "voice/song_plan.h"

#include "voice/phone_map.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Voice {

namespace {

const double leadIn = 0.1;       // silence before 0, so the first phone has a neighbour on its left
const double tailOut = 0.1;      // and after the end for the last one
const double shortestNote = 0.005;
const double joinedGap = 0.001;  // notes closer than this are sung legato
const double longestGlide = 0.05;
const double keptSilence = 0.02; // what an onset sung early leaves of a rest before it

double lengthOf (const VoicePhone& phone)
{
    if (phone.length > 0.0)
        return phone.length;
    PhoneClass cls = PhoneClass::vowel;
    voicePhoneClass (phone.name, cls);
    switch (cls)
    {
        case PhoneClass::vowel:     return 0.12;
        case PhoneClass::stop:      return 0.05;
        case PhoneClass::affricate: return 0.08;
        case PhoneClass::fricative: return phone.name == "hh" ? 0.05 : 0.08;
        case PhoneClass::nasal:     return 0.06;
        case PhoneClass::liquid:
        case PhoneClass::glide:     return 0.05;
        case PhoneClass::silence:   return 0.06;
    }
    return 0.06;
}

double total (const std::vector<VoicePhone>& phones)
{
    double sum = 0.0;
    for (const auto& phone : phones)
        sum += lengthOf (phone);
    return sum;
}

double hertz (double midi) { return 440.0 * std::pow (2.0, (midi - 69.0) / 12.0); }

struct Syllable
{
    std::size_t first = 0;  ///< notes
    std::size_t last = 0;
    std::vector<VoicePhone> onset;  ///< everything before the held phone
    VoicePhone held;
    std::vector<VoicePhone> coda;
};

/** The phone a syllable holds: its last vowel; else a nasal, liquid or fricative that can be
    held; else a neutral vowel after the consonants. */
Syllable syllableOf (std::size_t note, std::vector<VoicePhone> phones)
{
    if (phones.empty ())
        phones.push_back ({"ah"});
    std::size_t held = phones.size ();
    for (std::size_t i = phones.size (); i-- > 0 && held == phones.size ();)
        if (isVoiceVowel (phones[i].name))
            held = i;
    for (std::size_t i = 0; i < phones.size () && held == phones.size (); ++i)
    {
        PhoneClass cls = PhoneClass::silence;
        voicePhoneClass (phones[i].name, cls);
        if (cls == PhoneClass::nasal || cls == PhoneClass::liquid || (cls == PhoneClass::fricative && phones[i].name != "hh"))
            held = i;
    }
    if (held == phones.size ())
        phones.push_back ({"ax"});
    Syllable s;
    s.first = s.last = note;
    s.onset.assign (phones.begin (), phones.begin () + static_cast<long> (held));
    s.held = phones[held];
    s.held.length = 0.0;
    s.coda.assign (phones.begin () + static_cast<long> (held) + 1, phones.end ());
    return s;
}

bool isPause (const VoicePhone& p) { return p.name == pausePhone; }

/** A close vowel opened on a high note, as singers do: the voice's close vowels lose their
    pitch there (the filter's first resonance falls below the note and rings between harmonics). */
std::string openedVowel (const std::string& vowel, double midi)
{
    const bool front = vowel == "iy" || vowel == "ih" || vowel == "ey" || vowel == "eh";
    const bool back = vowel == "uw" || vowel == "uh";
    if (midi >= 81.0 && (front || back))
        return front ? "ae" : "ao";
    if (midi >= 72.0 && (vowel == "iy" || vowel == "ih" || vowel == "uw"))
        return vowel == "uw" ? "uh" : "eh";
    return vowel;
}

std::vector<Syllable> syllablesOf (const std::vector<Note>& song, const PhoneMapping& mapping)
{
    std::vector<Syllable> out;
    bool open = false;
    for (std::size_t n = 0; n < song.size (); ++n)
    {
        auto phones = mapping.notes[n];
        // A note of silence tokens alone is a rest; elsewhere they are dropped. Closures stay.
        const bool silent = !phones.empty ()
                            && std::all_of (phones.begin (), phones.end (),
                                            [] (const VoicePhone& p) { return isPause (p) && p.length == 0.0; });
        phones.erase (std::remove_if (phones.begin (), phones.end (),
                                      [] (const VoicePhone& p) { return isPause (p) && p.length == 0.0; }),
                      phones.end ());
        if (song[n].kind == NoteKind::rest || silent)
        {
            open = false;
            continue;
        }
        const bool closureOnly = !phones.empty ()
                                 && std::all_of (phones.begin (), phones.end (), [] (const VoicePhone& p) { return isPause (p); });
        if (open && song[n].start - song[out.back ().last].end < joinedGap
            && (song[n].kind == NoteKind::continuation || closureOnly))
        {
            // A melisma: the held phone goes on; what the note adds behind it becomes the coda.
            auto& s = out.back ();
            std::size_t k = 0;
            while (k < phones.size () && phones[k].name == s.held.name)
                ++k;
            const bool newVowel = std::any_of (phones.begin () + static_cast<long> (k), phones.end (),
                                               [] (const VoicePhone& p) { return isVoiceVowel (p.name); });
            if (!newVowel)
            {
                s.last = n;
                if (k < phones.size ())
                    s.coda.assign (phones.begin () + static_cast<long> (k), phones.end ());
                continue;
            }
        }
        out.push_back (syllableOf (n, phones));
        open = true;
    }
    return out;
}

void scale (std::vector<VoicePhone>& phones, double factor)
{
    for (auto& phone : phones)
        phone.length = lengthOf (phone) * factor;
}

void append (std::vector<TimedPhone>& out, const std::string& name, double start, double end, bool onset = false)
{
    if (name == pausePhone && !out.empty () && out.back ().name == pausePhone)
        out.back ().end = end;
    else
        out.push_back ({name, start, end, false, onset});
}

std::vector<TimedPhone> layOut (const std::vector<Note>& song, std::vector<Syllable> syllables, double end,
                                const PlanOptions& options)
{
    std::vector<TimedPhone> out {{pausePhone, -leadIn, 0.0, false, false}};
    for (auto& s : syllables)
    {
        double highest = 0.0;
        for (std::size_t n = s.first; n <= s.last; ++n)
            highest = std::max (highest, song[n].midi);
        s.held.name = openedVowel (s.held.name, highest);
    }
    std::size_t previousHeld = 0;  // index of the held phone of a syllable that ends where the next starts
    bool joined = false;
    for (auto& s : syllables)
    {
        const double start = song[s.first].start, stop = song[s.last].end;
        if (start > out.back ().end)
        {
            append (out, pausePhone, out.back ().end, start);
            joined = false;
        }
        const double onset = total (s.onset), coda = total (s.coda);
        double early = 0.0;
        if (options.onsetsBeforeNote && onset > 0.0)
        {
            const auto& before = out.back ();
            const double room = joined ? 0.5 * (out[previousHeld].end - out[previousHeld].start)
                                       : start - std::max (before.start, 0.0) - keptSilence;
            early = std::clamp (room, 0.0, onset);
        }
        // Consonants take at most half of the syllable's own time.
        const double inside = onset - early, half = 0.5 * (stop - start);
        const double squeeze = inside + coda > half ? half / (inside + coda) : 1.0;
        if (onset > 0.0)
            scale (s.onset, (early + inside * squeeze) / onset);
        scale (s.coda, squeeze);
        if (early > 0.0)
        {
            if (joined)
            {
                out[previousHeld].end -= early;
                for (std::size_t i = previousHeld + 1; i < out.size (); ++i)
                    out[i].start -= early, out[i].end -= early;
            }
            else
                out.back ().end -= early;
        }
        double t = start - early;
        for (const auto& phone : s.onset)
        {
            append (out, phone.name, t, t + phone.length, true);
            t += phone.length;
        }
        const double codaStart = stop - total (s.coda);
        previousHeld = out.size ();
        out.push_back ({s.held.name, t, codaStart, true, false});
        t = codaStart;
        for (const auto& phone : s.coda)
        {
            append (out, phone.name, t, t + phone.length);
            t += phone.length;
        }
        out.back ().end = stop;
        joined = s.last + 1 < song.size () && song[s.last + 1].kind != NoteKind::rest
                 && song[s.last + 1].start - stop < joinedGap;
    }
    append (out, pausePhone, out.back ().end, std::max (end, out.back ().end) + tailOut);
    return out;
}

std::vector<PitchPoint> contourOf (const std::vector<Note>& song)
{
    std::vector<double> hz (song.size (), 0.0);
    // A rest takes the pitch of the note after it, so that an onset sung into it is in tune.
    double next = 0.0;
    for (std::size_t i = song.size (); i-- > 0;)
        if (song[i].kind != NoteKind::rest)
            hz[i] = next = hertz (song[i].midi);
        else
            hz[i] = next;
    double last = hertz (48.0);
    for (std::size_t i = 0; i < song.size (); ++i)
        last = hz[i] = hz[i] > 0.0 ? hz[i] : last;

    const auto glide = [&] (std::size_t a)  // between note a and a + 1
    {
        if (a + 1 >= song.size () || hz[a] == hz[a + 1] || song[a + 1].start - song[a].end >= joinedGap)
            return 0.0;
        const double shorter = std::min (song[a].end - song[a].start, song[a + 1].end - song[a + 1].start);
        return std::min (longestGlide, 0.25 * shorter);
    };
    std::vector<PitchPoint> out;
    for (std::size_t i = 0; i < song.size (); ++i)
    {
        out.push_back ({song[i].start + (i > 0 ? 0.5 * glide (i - 1) : 0.0), hz[i]});
        out.push_back ({song[i].end - 0.5 * glide (i), hz[i]});
    }
    if (out.empty ())
        out.push_back ({0.0, last});
    return out;
}

} // namespace

SongPlan planSong (const std::vector<Note>& notes, double duration, const PlanOptions& options)
{
    SongPlan plan;
    std::vector<Note> song = notes;
    std::stable_sort (song.begin (), song.end (), [] (const Note& a, const Note& b) { return a.start < b.start; });
    for (std::size_t i = 0; i < song.size (); ++i)
    {
        song[i].start = std::max (song[i].start, 0.0);
        if (i + 1 < song.size ())
            song[i].end = std::min (song[i].end, song[i + 1].start);
    }
    song.erase (std::remove_if (song.begin (), song.end (), [] (const Note& n) { return n.end - n.start < shortestNote; }),
                song.end ());

    int folded = 0;
    for (auto& note : song)
        if (note.kind != NoteKind::rest && (note.midi < lowestMidi || note.midi > highestMidi))
        {
            const double octaves = note.midi > highestMidi ? -std::ceil ((note.midi - highestMidi) / 12.0)
                                                           : std::ceil ((lowestMidi - note.midi) / 12.0);
            note.midi += 12.0 * octaves;
            ++folded;
        }
    if (folded > 0)
        plan.warnings.push_back (std::to_string (folded) + " note(s) outside MIDI 36-84 sung whole octaves nearer");

    const auto mapping = mapPhonemes (song);
    for (const auto& unknown : mapping.unknown)
    {
        char at[32];
        std::snprintf (at, sizeof at, "%.3f", song[unknown.note].start);
        plan.warnings.push_back ("note at " + std::string (at) + " s: unknown phoneme \"" + unknown.token + "\" left out");
    }

    plan.duration = std::max (duration, song.empty () ? 0.0 : song.back ().end);
    plan.phones = layOut (song, syllablesOf (song, mapping), plan.duration, options);
    plan.pitch = contourOf (song);
    return plan;
}

double pitchAt (const std::vector<PitchPoint>& pitch, double time)
{
    const auto after = std::upper_bound (pitch.begin (), pitch.end (), time,
                                         [] (double t, const PitchPoint& p) { return t < p.time; });
    if (after == pitch.begin ())
        return pitch.front ().hz;
    if (after == pitch.end ())
        return pitch.back ().hz;
    const auto& a = *(after - 1);
    const auto& b = *after;
    return b.time > a.time ? a.hz + (b.hz - a.hz) * (time - a.time) / (b.time - a.time) : b.hz;
}

std::vector<double> pitchMarks (const std::vector<PitchPoint>& pitch, double from, double to,
                                const std::vector<double>& onsets)
{
    std::vector<double> marks;
    auto onset = std::lower_bound (onsets.begin (), onsets.end (), from);
    for (double t = from; t < to;)
    {
        marks.push_back (t);
        // The period at the middle of the period, so that a glide is followed closely.
        const double period = 1.0 / pitchAt (pitch, t + 0.5 / pitchAt (pitch, t));
        t += period;
        // An onset within half a period of the last mark has its mark already.
        while (onset != onsets.end () && *onset < marks.back () + 0.5 * period)
            ++onset;
        if (onset != onsets.end () && *onset < t)
            t = *onset++;
    }
    return marks;
}

double sourceTime (double t, double t0, double t1, double s0, double s1, bool held)
{
    const double target = t1 - t0, source = s1 - s0;
    if (target <= 0.0)
        return s1;
    if (!held || target <= source)
        return s0 + (t - t0) / target * source;
    const double edge = 0.25 * source;
    if (t < t0 + edge)
        return s0 + (t - t0);
    if (t > t1 - edge)
        return s1 - (t1 - t);
    return s0 + edge + (t - t0 - edge) / (target - 2.0 * edge) * (source - 2.0 * edge);
}

} // namespace Voice
