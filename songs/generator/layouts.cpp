#include "songs/generator/layouts.h"

#include "songs/generator/voice.h"

namespace Songs {

namespace {

using Kind = Score::MidiEvent::Kind;

/** A track of words alone, each text at its beat. */
Score::MidiTrack wordsTrack (const std::string& name, Kind kind, const std::vector<std::pair<double, std::string>>& texts)
{
    Voice words (name, 0, kind);
    for (const auto& [beat, text] : texts)
        words.meta (beat, kind, text);
    return words.done ();
}

} // namespace

Score::MidiFile converterKaraoke ()
{
    Score::MidiTrack head = conductor ("Stars", {{0.0, 100.0}});
    for (const char* text : {"@KMIDI KARAOKE FILE", "@LENGL", "@TStars", "note track"})
        head.events.push_back ({0, Kind::Text, 0, 0, 0, 0, text});
    Voice v ("Melody", 0, Kind::Text);
    v.note (0, 1, C4, "\\Twin").note (1, 1, C4, "kle").note (2, 1, G4, " twin").note (3, 1, G4, "kle");
    v.note (4, 1, A4, " lit").note (5, 1, A4, "tle").note (6, 2, G4, " star");
    v.note (8, 1, F4, "/How").note (9, 1, F4, " I").note (10, 1, E4, " won").note (11, 1, E4, "der");
    return file ({head, v.done ()});
}

Score::MidiFile libraryKaraoke ()
{
    // Its words in lyric events, line marks and all, where the converter's stand in text events.
    const Score::MidiTrack words = wordsTrack (
        "Words", Kind::Lyric,
        {{0, "@LENGL"}, {0, "@TQuiet"}, {0, "Testing karaoke with a song of our own"}, {1, "\\Qui"}, {2, "et"},
         {3, " night"}, {5, "/Sing"}, {6, " soft"}, {7, "ly"}});
    Voice melody ("Melody", 0);
    melody.note (1, 1, E4).note (2, 1, G4).note (3, 2, A4).note (5, 1, G4).note (6, 1, E4).note (7, 2, D4);
    // The piano plays a chord every other beat: some of the words fall on it too, fewer than on the melody.
    Voice piano ("Piano", 1);
    for (int beat = 0; beat < 10; beat += 2)
        piano.note (beat, 2, C3).note (beat, 2, E3).note (beat, 2, G3);
    // The piano comes first: the words must find the melody by fitting it, not by its place.
    return file ({conductor ("Quiet", {{0.0, 90.0}}), words, piano.done (), melody.done ()});
}

Score::MidiFile blankEnded ()
{
    Voice v ("Voice", 0);
    v.note (0, 1, C4, "Test").note (1, 1, D4, "ing ").note (2, 1, E4, "one ").note (3, 1, F4, "two\r\n");
    v.note (4, 1, G4, "Sing").note (5, 1, F4, "ing ").note (6, 1, E4, "a").note (7, 2, D4, "gain\r\n");
    return file ({conductor ("Testing", {{0.0, 120.0}}), v.done ()});
}

Score::MidiFile notation ()
{
    Voice v ("Voice", 0);
    v.note (0, 1, C4, "Hel-").note (1, 1, D4, "lo").note (2, 1, E4, "the_old").note (3, 1, F4, "-");
    // A chord where the voice divides: the top note is the one sung.
    v.note (4, 2, G4, "sun").note (4, 2, E4).note (4, 2, C4);
    return file ({conductor ("Hello", {{0.0, 120.0}}), v.done ()});
}

Score::MidiFile commentary ()
{
    Voice v ("Tune", 0, Kind::Text);
    v.meta (0, Kind::Text, "Copyright 2026 by nobody in particular").meta (0, Kind::Text, "players should ignore this track");
    v.note (0, 1, C4).note (1, 1, E4).note (2, 2, G4);
    return file ({conductor ("Tune", {{0.0, 120.0}}), v.done ()});
}

Score::MidiFile twoSingers ()
{
    // The alto sings on the beat, the tenor off it; each words track belongs to the one its words meet.
    Voice alto ("Alto", 0), tenor ("Tenor", 1);
    alto.note (0, 1, E4).note (1, 1, G4).note (2, 2, E4);
    tenor.note (0.5, 1, C3).note (1.5, 1, E3).note (2.5, 1.5, C3);
    return file ({conductor ("Two", {{0.0, 100.0}}),
                  wordsTrack ("Alto words", Kind::Lyric, {{0, "Caf\xE9 "}, {1, "ol\xE9 "}, {2, "bien "}}),
                  wordsTrack ("Tenor words", Kind::Lyric, {{0.5, "s\xED "}, {1.5, "se"}, {2.5, "\xF1or "}}),
                  alto.done (), tenor.done ()});
}

Score::MidiFile shiftJis ()
{
    // きょうは, らーめん, ね in Shift-JIS; the header's last byte is none.
    Voice v ("Uta", 0, Kind::Text);
    v.meta (0, Kind::Text, "@KMIDI KARAOKE FILE").meta (0, Kind::Text, "@T\x82\xe7\x81\x5b\x82\xdf\x82\xf1\x80");
    v.note (0, 1, G4, "\\\x82\xab\x82\xe5\x82\xa4\x82\xcd").note (1, 0.5, A4).note (1.5, 0.5, G4);
    v.note (2, 1, E4, "/\x82\xe7\x81\x5b\x82\xdf\x82\xf1").note (3, 1, E4).note (4, 0.5, D4).note (4.5, 1.5, C4);
    v.note (6, 2, C4, " \x82\xcb");
    return file ({conductor ("Ramen", {{0.0, 90.0}}), v.done ()});
}

const std::vector<Entry>& layouts ()
{
    static const std::vector<Entry> entries = {
        {"converter-karaoke.kar", "a header track with a description; leading blanks begin words", converterKaraoke},
        {"library-karaoke.kar", "a words track apart, opening with a sentence; a piano of chords", libraryKaraoke},
        {"blank-ended.mid", "lyric events ended by blanks and line ends", blankEnded},
        {"notation.mid", "hyphenated lyric events, an elision, a hold, a chord in the voice", notation},
        {"commentary.mid", "text events that are commentary, no words", commentary},
        {"two-singers.mid", "two singers with words tracks apart, Latin-1", twoSingers},
        {"shift-jis.kar", "kana karaoke in Shift-JIS", shiftJis},
    };
    return entries;
}

} // namespace Songs
