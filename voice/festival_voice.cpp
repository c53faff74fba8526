#include "voice/festival_voice.h"

#include "voice/phone_map.h"

#include <festival.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

// Festival's own type tags for the mapping vector; its headers do not declare them.
EST_IVector* ivector (const EST_Val& v);
EST_Val est_val (const EST_IVector* v);

namespace Voice {

namespace {

// Scheme cells: room for the engine's start-up. A million would cost 0.6 s of start-up and
// 44 MB where this costs 0.2 s and 19 MB.
const int heapCells = 210000;
const char* const uttVariable = "cantorela_utt";

void evaluate (const char* what, const EST_String& expression)
{
    // The interpreter traps errors raised inside the call and reports them as a false result.
    if (!festival_eval_command (expression))
        throw std::runtime_error (std::string ("the voice failed at ") + what);
}

// Consonant pairs the voice recorded as clusters ("k_-_y"): an onset of two of these sounds
// joined, not as two separate consonants.
struct Cluster
{
    const char* first;
    const char* seconds;
};
const Cluster clusters[] = {
    {"p", "y r l w"}, {"t", "y r l w"}, {"k", "y r l w"}, {"b", "y r l w"}, {"d", "y r l w"}, {"g", "y r l w"},
    {"f", "y r l"},   {"s", "y l w k t p m n"}, {"hh", "y"}, {"v", "y"}, {"m", "y"}, {"n", "y"},
};

bool isCluster (const std::string& a, const std::string& b)
{
    for (const auto& c : clusters)
        if (a == c.first)
        {
            const std::string seconds = std::string (" ") + c.seconds + " ";
            return seconds.find (" " + b + " ") != std::string::npos;
        }
    return false;
}

EST_Item* nextItem (EST_Item* item) { return item == nullptr ? nullptr : next_item (item); }

/** The value of `feature` on the first item of `relation` when it is of `type`; else void. */
EST_Val firstFeature (EST_Utterance& utt, const char* relation, const char* feature, val_type type)
{
    if (!utt.relation_present (relation) || utt.relation (relation)->head () == nullptr
        || !utt.relation (relation)->head ()->f_present (feature))
        return EST_Val ();
    EST_Val value = utt.relation (relation)->head ()->f (feature);
    return value.type () == type ? value : EST_Val ();
}

/** The silent inside of each rest: a pause phone of 0.1 s or more less the sound's decay at its
    start and a little before the next onset; and the lead-in. */
std::vector<std::pair<double, double>> silentSpans (const SongPlan& plan)
{
    const double keptDecay = 0.03, keptAttack = 0.01, shortest = 0.1;
    std::vector<std::pair<double, double>> spans;
    for (const auto& phone : plan.phones)
    {
        // The lead-in has no sound before it, and it is where the marks start: always slow there.
        const bool leadIn = &phone == &plan.phones.front ();
        if (phone.name == pausePhone && (leadIn || phone.end - phone.start >= shortest))
            spans.emplace_back (phone.start + (leadIn ? 0.0 : keptDecay), phone.end - keptAttack);
    }
    return spans;
}

/** The rests made silent: the diphones of a pause carry the recording's room noise. */
void gateRests (std::vector<float>& sound, const std::vector<std::pair<double, double>>& spans)
{
    const double ramp = 0.005;
    for (const auto& [from, to] : spans)
    {
        const auto first = static_cast<long> (std::floor (std::max (from, 0.0) * FestivalVoice::sampleRate));
        const auto last = std::min (static_cast<long> (std::ceil (to * FestivalVoice::sampleRate)),
                                    static_cast<long> (sound.size ()));
        for (long i = first; i < last; ++i)
        {
            const double t = static_cast<double> (i) / FestivalVoice::sampleRate;
            const double gain = 1.0 - std::clamp (std::min (t - from, to - t) / ramp, 0.0, 1.0);
            sound[static_cast<std::size_t> (i)] *= static_cast<float> (gain);
        }
    }
}

/** The contour the pitch marks follow: inside a silent rest a slow 100 Hz, from the very first mark
    on. The engine's wave step reads before the start of its buffer when the marks start fast (from
    about MIDI 79), which ends the process once the song is long enough for that buffer to be mapped
    on its own; and a rest is silent anyway. */
std::vector<PitchPoint> markContour (const std::vector<PitchPoint>& pitch, const std::vector<std::pair<double, double>>& spans)
{
    const double restHz = 100.0, turn = 0.005;
    std::vector<PitchPoint> out;
    auto it = pitch.begin ();
    for (const auto& [from, to] : spans)
    {
        while (it != pitch.end () && it->time <= from)
            out.push_back (*it++);
        out.push_back ({from, out.empty () ? restHz : pitchAt (pitch, from)});
        out.push_back ({from + turn, restHz});
        out.push_back ({to - turn, restHz});
        out.push_back ({to, pitchAt (pitch, to)});
        while (it != pitch.end () && it->time < to)
            ++it;
    }
    out.insert (out.end (), it, pitch.end ());
    return out;
}

} // namespace

FestivalVoice& FestivalVoice::instance ()
{
    static FestivalVoice voice;
    voice.checkThread ();
    return voice;
}

FestivalVoice::FestivalVoice () : owner (std::this_thread::get_id ())
{
    festival_initialize (1, heapCells);
    evaluate ("start-up: is the voice kal_diphone (festvox-kallpc16k) installed?",
              "(begin (voice_kal_diphone)"
              " (Param.def \"unisyn.window_name\" \"hanning\")"
              " (Param.def \"unisyn.window_factor\" 1.0)"
              " (Parameter.set 'us_sigpr 'lpc))");
}

void FestivalVoice::checkThread () const
{
    if (std::this_thread::get_id () != owner)
        throw std::logic_error ("the Festival voice is used from a thread other than the one that started it");
}

std::vector<float> FestivalVoice::render (const SongPlan& plan)
{
    checkThread ();
    const auto& phones = plan.phones;
    std::vector<float> sound (static_cast<std::size_t> (std::lround (plan.duration * sampleRate)), 0.0f);
    if (std::all_of (phones.begin (), phones.end (), [] (const TimedPhone& p) { return p.name == pausePhone; }))
        return sound;
    const double origin = phones.front ().start;

    // The interpreter owns the utterance from here on and frees it when the variable lets go.
    auto* utt = new EST_Utterance;
    setvar (rintern (uttVariable), siod (utt), NIL);
    struct Release
    {
        ~Release () { setvar (rintern (uttVariable), NIL, NIL); festival_eval_command ("(gc)"); }
    } release;

    EST_Relation* segments = utt->create_relation ("Segment");
    for (std::size_t i = 0; i < phones.size (); ++i)
    {
        EST_Item* item = segments->append ();
        item->set_name (phones[i].name.c_str ());
        item->set ("end", static_cast<float> (phones[i].end - origin));
        // The voice's own set-up sings "ah" on the diphones of "aa".
        if (phones[i].name == "ah")
            item->set ("us_diphone", "aa");
        const auto clustered = [&] (std::size_t a)
        { return phones[a].onset && phones[a + 1].onset && isCluster (phones[a].name, phones[a + 1].name); };
        if (i + 1 < phones.size () && clustered (i))
            item->set ("us_diphone_left", (phones[i].name + "_").c_str ());
        if (i > 0 && clustered (i - 1))
            item->set ("us_diphone_right", ("_" + phones[i].name).c_str ());
    }

    evaluate ("choosing diphones", EST_String ("(us_get_diphones ") + uttVariable + ")");
    evaluate ("joining diphones", EST_String ("(us_unit_concat ") + uttVariable + ")");

    const EST_Val sourceCoefs = firstFeature (*utt, "SourceCoef", "coefs", val_type_track);
    if (sourceCoefs.type () != val_type_track)
        throw std::runtime_error ("the voice made no source track");
    const EST_Track& source = *track (sourceCoefs);
    if (source.num_frames () == 0)
        throw std::runtime_error ("the voice made an empty source track");

    // Where each phone lies in the joined recording.
    std::vector<double> sourceEnd;
    for (EST_Item* item = segments->head (); item != nullptr; item = nextItem (item))
        sourceEnd.push_back (item->f_present ("source_end") ? item->F ("source_end") : 0.0);
    if (sourceEnd.size () != phones.size ())
        throw std::logic_error ("the voice's segments differ from the plan");

    // Our pitch marks, and for each the source frame it sounds.
    std::vector<double> onsets;
    for (std::size_t i = 1; i < phones.size (); ++i)
        if (phones[i - 1].name == pausePhone && phones[i].name != pausePhone)
            onsets.push_back (phones[i].start);
    const auto silent = silentSpans (plan);
    const auto marks = pitchMarks (markContour (plan.pitch, silent), origin, phones.back ().end, onsets);
    auto* target = new EST_Track (static_cast<int> (marks.size ()), source.num_channels ());
    auto* map = new EST_IVector (static_cast<int> (marks.size ()));
    std::size_t seg = 0;
    int frame = 0;
    for (std::size_t i = 0; i < marks.size (); ++i)
    {
        const double t = marks[i];
        while (seg + 1 < phones.size () && t > phones[seg].end)
            ++seg;
        const double s0 = seg == 0 ? 0.0 : sourceEnd[seg - 1];
        const double s = sourceTime (t, phones[seg].start, phones[seg].end, s0, sourceEnd[seg], phones[seg].held);
        while (frame + 1 < source.num_frames () && source.t (frame + 1) <= s)
            ++frame;
        const bool nextIsNearer = frame + 1 < source.num_frames () && source.t (frame + 1) - s < s - source.t (frame);
        target->t (static_cast<int> (i)) = static_cast<float> (t - origin);
        map->a (static_cast<int> (i)) = nextIsNearer ? frame + 1 : frame;
    }
    utt->create_relation ("TargetCoef")->append ()->set_val ("coefs", est_val (target));
    utt->create_relation ("US_map")->append ()->set_val ("map", est_val (map));
    evaluate ("making the wave", EST_String ("(us_generate_wave ") + uttVariable + " 'lpc 'analysis_period)");

    const EST_Val waveValue = firstFeature (*utt, "Wave", "wave", val_type_wave);
    if (waveValue.type () != val_type_wave)
        throw std::runtime_error ("the voice made no wave");
    const EST_Wave& wave = *::wave (waveValue);

    const long skip = std::lround (-origin * sampleRate);
    for (std::size_t i = 0; i < sound.size (); ++i)
    {
        const long k = static_cast<long> (i) + skip;
        if (k >= 0 && k < wave.num_samples ())
            sound[i] = static_cast<float> (wave.a_no_check (static_cast<int> (k))) / 32768.0f;
    }
    gateRests (sound, silent);
    return sound;
}

} // namespace Voice
