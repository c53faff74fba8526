#include "songs/generator/compose.h"

#include "songs/generator/score_writer.h"
#include "songs/generator/voice.h"

namespace Songs {

Score::MidiFile morning ()
{
    Voice v ("Voice", 0);
    // Bar 1 opens with a beat of silence; "Hel-lo" holds its first syllable over a second note.
    v.note (1.0, 0.5, C4, "Hel-lo").note (1.5, 0.5, D4).note (2.0, 1.0, E4).note (3.0, 1.0, G4, "sun");
    // A half-beat rest, then a word whose sound the singer gives in brackets.
    v.note (4.0, 1.5, E4, "rise").note (6.0, 0.5, D4, "I").note (6.5, 1.5, C4, "read[r eh d]");
    // "light" comes a hair late: the gap is too short for a rest.
    v.note (8.0, 1.0, D4, "a").note (9.0, 0.5, E4, "sto-ry").note (9.5, 0.5, F4).note (10.0, 1.0, E4);
    v.note (11.0, 0.5, D4, "of").note (11.55, 0.45, C4, "light");
    v.note (12.0, 2.0, D4, "to-day").note (14.0, 0.5, E4).note (14.5, 1.5, C4);
    // From bar 5 on the tempo rises from 96 to 120.
    v.note (16.0, 1.0, G4, "sing").note (17.0, 1.0, A4, "with").note (18.0, 2.0, G4, "me");
    v.note (20.0, 1.0, E4, "mor-ning").note (21.0, 0.5, F4).note (21.5, 0.5, E4).note (22.0, 2.0, C4, "home");
    return file ({conductor ("Morning Song", {{0.0, 96.0}, {16.0, 120.0}}), v.done ()});
}

Score::MidiFile ramen ()
{
    // Karaoke style: words in text events, "@" header lines, "\" and "/" start paragraphs and lines.
    Voice v ("Uta", 0, Score::MidiEvent::Text);
    v.meta (0.0, Score::MidiEvent::Text, "@KMIDI KARAOKE FILE").meta (0.0, Score::MidiEvent::Text, "@TRamen Song");
    v.note (0.0, 1.0, G4, "\\きょうは").note (1.0, 0.5, A4).note (1.5, 0.5, G4);
    v.note (2.0, 1.0, E4, "/らーめん").note (3.0, 1.0, E4).note (4.0, 0.5, D4).note (4.5, 1.5, C4);
    // This word stands a little before its note, as karaoke files often have it.
    v.note (6.5, 0.5, D4, "/しゃしん", 0.1).note (7.0, 0.5, E4).note (7.5, 0.5, G4);
    v.note (8.0, 1.0, A4, "/きって").note (9.0, 0.5, G4).note (9.5, 0.5, E4);
    v.note (10.0, 1.0, D4, "/カッター").note (11.0, 0.5, E4).note (11.5, 0.5, D4).note (12.0, 1.0, D4);
    v.note (13.0, 2.0, C4, " ね");  // a leading blank: a word of its own
    return file ({conductor ("Ramen Song", {{0.0, 90.0}}), v.done ()});
}

Score::MidiFile evening ()
{
    // As a common converter writes karaoke: headers, a description of the track before the first
    // line, and each syllable a tick before its note; a leading blank begins a word, "\" and "/" a line.
    Voice v ("Evening", 0, Score::MidiEvent::Text);
    v.meta (0.0, Score::MidiEvent::Text, "@KMIDI KARAOKE FILE").meta (0.0, Score::MidiEvent::Text, "@TEvening");
    v.meta (0.0, Score::MidiEvent::Text, "melody and words");
    const double tick = 1.0 / ppq;
    v.note (1.0, 1.0, E4, "\\Qui", tick).note (2.0, 1.0, G4, "et", tick).note (3.0, 1.0, A4, " eve", tick);
    v.note (4.0, 1.0, G4, "ning", tick).note (5.0, 2.0, E4, " comes", tick);
    // "bove" is held over a second note, and "wa-ter" runs on into one more.
    v.note (8.0, 1.0, D4, "/Stars", tick).note (9.0, 0.5, E4, " a", tick).note (9.5, 0.5, F4, "bove", tick);
    v.note (10.0, 1.0, G4).note (11.0, 1.0, E4, " the", tick).note (12.0, 1.0, D4, " wa", tick);
    v.note (13.0, 1.0, C4, "ter", tick).note (14.0, 1.0, D4);
    v.note (16.0, 1.0, E4, "/Sing", tick).note (17.0, 1.0, D4, " me", tick).note (18.0, 2.0, C4, " home", tick);
    return file ({conductor ("Evening", {{0.0, 100.0}}), v.done ()});
}

Score::MidiFile duet ()
{
    Voice lead ("Lead", 0);
    lead.note (0.0, 1.0, E4, "Shine").note (1.0, 1.0, G4, "on").note (2.0, 2.0, A4, "me");
    lead.note (4.0, 1.0, G4, "to-night").note (5.0, 1.0, E4).note (6.0, 2.0, D4);
    Voice harmony ("Harmony", 1);
    // Enters a beat late and sings across the lead's phrase.
    harmony.note (1.0, 2.0, C4, "ah").note (3.0, 2.0, E4, "yeah").note (5.0, 3.0, B3, "night");
    return file ({conductor ("Duet", {{0.0, 110.0}}), lead.done (), harmony.done ()});
}

Score::MidiFile overlap ()
{
    // Two MIDI tracks named alike: two parts of one track, the second entering
    // while the first still sings, their notes taking turns in time.
    Voice first ("Verse", 0);
    first.note (1.0, 1.0, C4, "Hel-lo").note (2.0, 1.0, D4).note (3.0, 1.0, E4);
    // A half-beat rest, then a word on each beat, answered off the beat by the second part.
    first.note (4.5, 0.5, G4, "I").note (5.0, 0.5, E4, "call").note (6.0, 0.5, E4, "and");
    first.note (7.0, 0.5, D4, "wait");
    Voice second ("Verse", 0);
    second.note (5.5, 0.5, A4, "you").note (6.5, 0.5, A4, "sing").note (7.5, 0.5, G4, "back");
    // Alone again after another half-beat rest: a word held over three notes.
    second.note (8.5, 1.0, E4, "to-day").note (9.5, 0.5, D4).note (10.0, 2.0, C4);
    return file ({conductor ("Overlap", {{0.0, 120.0}}), first.done (), second.done ()});
}

Score::MidiFile long400 ()
{
    struct Word
    {
        const char* text;
        int notes;
    };
    const Word words[] = {{"the", 1},   {"sun", 1},      {"is", 1},     {"bright", 1}, {"hello", 2},
                          {"morning", 2}, {"sing", 1},   {"today", 2},  {"a", 1},      {"story", 2},
                          {"of", 1},    {"light", 1},    {"wonderful", 3}, {"together", 3}, {"ho-me", 2}};
    const int scale[] = {C4, D4, E4, F4, G4, A4, B4, C5, B4, A4, G4, F4, E4, D4};
    Voice v ("Voice", 0);
    int placed = 0, w = 0;
    double beat = 0.0;
    while (placed < 400)
    {
        const Word& word = words[w++ % (sizeof words / sizeof words[0])];
        for (int i = 0; i < word.notes && placed < 400; ++i, ++placed)
        {
            v.note (beat, 0.5, scale[placed % 14], i == 0 ? word.text : "");
            beat += (placed % 16 == 15) ? 1.5 : 0.5;  // a breath every sixteen notes
        }
    }
    return file ({conductor ("Long Song", {{0.0, 120.0}, {100.0, 132.0}}), v.done ()});
}

std::string lantern ()
{
    ScoreWriter s ("Lantern");
    s.part ("Soprano").tempo (84);
    // "Lan-tern" holds its first syllable over a note of the word without words of its own.
    s.note (E4, 1, {"Lan-", "Qui-"}).note (G4, 1).note (A4, 1, {"-tern", "-et"}).note (G4, 1, {"in", "is"});
    s.note (E4, 1, {"the", "the"}).note (D4, 1, {"win-", "ri-"}).note (E4, 2, {"-dow", "-ver"});
    // After a rest, a word on an extension line over three notes, the last tied over the barline.
    s.rest (1).note (G4, 1, {"glow_", "slow_"}).note (A4, 1).note (G4, 2);
    s.note (E4, 1, {"a", "a"}).note (F4, 1, {"won-", "sil-"}).note (E4, 1, {"-der-", "-ver"});
    s.tempo (100).note (D4, 1, {"-ful", "moon"}).note (F4 + 1, 1, {"light", "bright"}).rest (2);
    s.note (C4, 1, {"car-", "sing-"}).note (D4, 1, {"-ry", "-ing"}).note (E4, 1, {"me", "us"});
    s.note (G4, 1, {"home", "home"});
    s.note (A4, 1, {"to-", "to-"}).note (G4, 1).note (E4, 2, {"-night_", "-night_"});
    s.note (D4, 1).note (C4, 3);
    // The piano has chords and no words: a track of its own with nothing typed.
    s.part ("Piano");
    for (int root : {C3, C3, F3, C3, G3, C3, F3, C3})
        s.note (root, 4).chord (root + 4).chord (root + 7);
    return s.text ();
}

std::vector<std::uint8_t> bytes (const Entry& entry)
{
    if (entry.compose)
        return Score::writeMidi (entry.compose ());
    const std::string text = entry.score ();
    return std::vector<std::uint8_t> (text.begin (), text.end ());
}

std::string twoThousand ()
{
    const std::vector<std::vector<std::string>> phrases = {
        {"Lan-", "", "-tern"}, {"in"},        {"the"},          {"win-", "-dow"}, {"glow_", "", ""},
        {"won-", "-der-", "-ful"}, {"light"}, {"car-", "-ry"},   {"me"},           {"home_", ""},
        {"to-", "", "-night"}, {"zen-", "-dra-", "-vo"}, {"a"},  {"sing-", "-ing_", ""}, {"brave"}};
    const int scale[] = {60, 62, 64, 65, 67, 69, 71, 72, 71, 69, 67, 65, 64, 62};
    Songs::ScoreWriter s ("Two Thousand");
    s.part ("Voice").tempo (120);
    for (int n = 0, p = 0; n < 2000; ++p)
        for (const auto& text : phrases[static_cast<std::size_t> (p) % phrases.size ()])
            if (n < 2000)
            {
                s.note (scale[n % 14], n % 16 == 15 ? 1.0 : 0.5, {text});  // a longer note every sixteen
                ++n;
            }
    return s.text ();
}

const std::vector<Entry>& all ()
{
    static const std::vector<Entry> entries = {
        {"morning.mid", "English: hyphens, a hint in brackets, a tempo change", morning},
        {"ramen.mid", "kana karaoke: digraphs, small tsu, long-vowel marks", ramen},
        {"evening.kar", "English karaoke: syllables joined into words, held notes, a track description", evening},
        {"duet.mid", "two overlapping voices", duet},
        {"overlap.mid", "one voice in two overlapping parts", overlap},
        {"long400.mid", "400 notes, for timing", long400},
        {"lantern.musicxml", "MusicXML: syllables, held notes, a tie, two verses, a piano part", nullptr, lantern},
    };
    return entries;
}

} // namespace Songs
