#include "voice/song_plan.h"

#include "voice/phone_map.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>

using namespace Voice;

namespace {

Note note (double start, double end, double midi, const std::string& text, NoteKind kind = NoteKind::note)
{
    Note n {start, end, midi, kind, {}};
    std::istringstream words (text);
    for (std::string w; words >> w;)
        n.phonemes.push_back (w);
    return n;
}

const TimedPhone& find (const SongPlan& plan, const std::string& name)
{
    for (const auto& p : plan.phones)
        if (p.name == name)
            return p;
    static const TimedPhone none {"none", -1, -1};
    return none;
}

double hz (double midi) { return 440.0 * std::pow (2.0, (midi - 69.0) / 12.0); }

} // namespace

TEST (SongPlan, OnsetsVowelAndCoda)
{
    const std::vector<Note> song {note (0, 1, 60, "", NoteKind::rest), note (1, 2, 60, "l aa t")};
    const auto atNote = planSong (song, 0);
    EXPECT_DOUBLE_EQ (find (atNote, "l").start, 1.0);
    EXPECT_TRUE (find (atNote, "aa").held);
    EXPECT_DOUBLE_EQ (find (atNote, "aa").end, find (atNote, "t").start);
    EXPECT_DOUBLE_EQ (find (atNote, "t").end, 2.0);

    PlanOptions early;
    early.onsetsBeforeNote = true;
    const auto onBeat = planSong (song, 0, early);
    EXPECT_DOUBLE_EQ (find (onBeat, "aa").start, 1.0);
    EXPECT_LT (find (onBeat, "l").start, 1.0);

    // Early onsets take at most half of the held vowel before them.
    const auto legato = planSong ({note (0, 0.1, 60, "aa"), note (0.1, 1, 60, "s t r aa")}, 0, early);
    EXPECT_GE (legato.phones[1].end - legato.phones[1].start, 0.05 - 1e-9);
    EXPECT_DOUBLE_EQ (legato.phones[2].start, 0.05);  // "s"
}

TEST (SongPlan, ConsonantsTakeAtMostHalfTheSyllable)
{
    const auto plan = planSong ({note (0, 0.2, 60, "s t r eh ng th s")}, 0);
    double consonants = 0.0;
    for (const auto& p : plan.phones)
        if (p.name != pausePhone && !p.held)
            consonants += p.end - p.start;
    EXPECT_NEAR (consonants, 0.1, 1e-9);
}

// A melisma is one vowel; the pitch steps at the note boundaries with a short glide.
TEST (SongPlan, Melisma)
{
    const auto plan = planSong ({note (0, 0.5, 60, "l aa"), note (0.5, 1, 62, "aa n", NoteKind::continuation),
                                 note (1, 1.5, 64, "- aa", NoteKind::continuation)},
                                0);
    ASSERT_EQ (plan.phones.size (), 5u);  // pau l aa n pau
    EXPECT_TRUE (plan.phones[2].held);
    EXPECT_DOUBLE_EQ (plan.phones[3].end, 1.5);
    for (double t : {0.15, 0.35})
        EXPECT_DOUBLE_EQ (pitchAt (plan.pitch, t), hz (60));
    for (double t : {0.6, 0.9})
        EXPECT_DOUBLE_EQ (pitchAt (plan.pitch, t), hz (62));
    EXPECT_DOUBLE_EQ (pitchAt (plan.pitch, 1.1), hz (64));
    EXPECT_GT (pitchAt (plan.pitch, 0.5), hz (60));
    EXPECT_LT (pitchAt (plan.pitch, 0.5), hz (62));
}

// Whatever the notes, the phones are gapless and in order, the voice has each of them and the
// pitch stays in its range.
TEST (SongPlan, AnySongGivesAPlayablePlan)
{
    std::mt19937 random (7);
    const char* texts[] = {"k a", "N", "cl", "- a", "s t r eh ng th s", "", "qq", "SIL", "hh ah l ow", "t", "r a"};
    for (int round = 0; round < 200; ++round)
    {
        std::vector<Note> song;
        double t = std::uniform_real_distribution<double> (0.0, 0.3) (random);
        for (int i = std::uniform_int_distribution<int> (0, 12) (random); i > 0; --i)
        {
            const double length = std::uniform_real_distribution<double> (-0.01, 0.6) (random);
            const int kind = std::uniform_int_distribution<int> (0, 2) (random);
            song.push_back (note (t, t + std::max (0.0, length), std::uniform_int_distribution<int> (0, 127) (random),
                                  texts[std::uniform_int_distribution<int> (0, 10) (random)], static_cast<NoteKind> (kind)));
            t += std::uniform_real_distribution<double> (-0.1, 0.8) (random);  // overlaps and gaps
        }
        const double duration = std::uniform_real_distribution<double> (0.0, 3.0) (random);
        const auto plan = planSong (song, duration, PlanOptions {round % 2 == 0});
        ASSERT_FALSE (plan.phones.empty ());
        EXPECT_EQ (plan.phones.front ().name, pausePhone);
        EXPECT_EQ (plan.phones.back ().name, pausePhone);
        EXPECT_GE (plan.phones.back ().end, plan.duration);
        EXPECT_GE (plan.duration, duration);
        for (std::size_t i = 0; i < plan.phones.size (); ++i)
        {
            PhoneClass cls;
            EXPECT_TRUE (voicePhoneClass (plan.phones[i].name, cls)) << plan.phones[i].name;
            EXPECT_LE (plan.phones[i].start, plan.phones[i].end);
            if (i > 0)
            {
                EXPECT_NEAR (plan.phones[i].start, plan.phones[i - 1].end, 1e-9) << "round " << round;
            }
        }
        for (const auto& p : plan.pitch)
            EXPECT_TRUE (p.hz >= hz (lowestMidi) - 1e-6 && p.hz <= hz (highestMidi) + 1e-6) << p.hz;
    }
}
