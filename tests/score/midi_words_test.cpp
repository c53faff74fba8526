// Words as other programs write them into MIDI files, and files that players
// read in spite of their faults: every word on its note, and what was done said.
#include "score/midi_song.h"
#include "score/musicxml_reader.h"
#include "score/text_encoding.h"
#include "songs/generator/layouts.h"
#include "tests/score/midi_bytes.h"

#include <gtest/gtest.h>

namespace {

bool says (const Score::Song& s, const std::string& part)
{
    for (const auto& w : s.warnings)
        if (w.find (part) != std::string::npos)
            return true;
    return false;
}

TEST (MidiWords, EachLayoutSingsEveryWordOnItsNoteAndSaysHowItWasRead)
{
    using Typed = std::vector<std::vector<std::string>>;  // per track with notes
    const struct
    {
        const char* name;
        Score::MidiFile (*compose) ();
        bool raw;
        Typed typed;
        std::vector<std::string> said;
    } cases[] = {
        {"converter karaoke", Songs::converterKaraoke, false,
         {{"Twinkle", "", "twinkle", "", "little", "", "star", "How", "I", "wonder", ""}},
         {"Stars: 1 text event(s) taken for commentary, not sung: \"note track\"",
          "Melody: words from its text events, read as karaoke"}},
        // The words track's words go to the melody, which they meet more often than the piano.
        {"library karaoke", Songs::libraryKaraoke, false,
         {std::vector<std::string> (15), {"Quiet", "", "night", "Sing", "softly", ""}},
         {"Words: text \"Testing karaoke with a song of our own\" taken for a description",
          "Words: words from its lyric events, read as karaoke", "Words: its words are sung by Melody"}},
        {"blank-ended lyric events", Songs::blankEnded, false, {{"Testing", "", "one", "two", "Singing", "", "again", ""}},
         {"Voice: words from its lyric events, read as blank-ended"}},
        {"notation", Songs::notation, false, {{"Hello", "", "the‿old[dh ah ow]", "[- l d]", "sun"}},
         {"Voice: 2 note(s) under the top note of a chord left out", "read as hyphenated"}},
        {"commentary", Songs::commentary, false, {{"", "", ""}}, {"Tune: 2 text event(s) taken for commentary"}},
        {"commentary, raw", Songs::commentary, true, {{"Copyright 2026 by nobody in particular", "", ""}},
         {"each typed as written", "\"players should ignore this track\" is left out"}},
        {"two singers", Songs::twoSingers, false, {{"Café", "olé", "bien"}, {"sí", "señor", ""}},
         {"texts that are not UTF-8 are read as Latin-1", "Alto words: its words are sung by Alto",
          "Tenor words: its words are sung by Tenor"}},
        {"Shift-JIS", Songs::shiftJis, false, {{"きょうは", "", "", "らーめん", "", "", "", "ね"}},
         {"read as Shift-JIS; 1 byte(s) that are no Shift-JIS character stand as U+FFFD"}},
    };
    for (const auto& c : cases)
    {
        Score::Song s;
        std::string error;
        ASSERT_TRUE (song (Score::writeMidi (c.compose ()), s, error, {1, c.raw})) << c.name << ": " << error;
        ASSERT_EQ (s.tracks.size (), c.typed.size ()) << c.name;
        for (std::size_t t = 0; t < c.typed.size (); ++t)
            EXPECT_EQ (lyrics (s, t), c.typed[t]) << c.name << ", track " << t;
        for (const auto& part : c.said)
            EXPECT_TRUE (says (s, part)) << c.name << ": nothing says " << part;
    }
}

TEST (MidiWords, FaultsPlayersReadPastAreRepairedAndSaidAndWorseOnesRefused)
{
    const Bytes note = {0x00, 0x90, 60, 90, 0x60, 0x80, 60, 0};
    auto cat = [] (Bytes a, const Bytes& b) {
        a.insert (a.end (), b.begin (), b.end ());
        return a;
    };
    auto claiming = [] (Bytes file, int more) {  // the last chunk claims `more` bytes past the file's end
        const std::size_t at = 14 + 6;           // the low bytes of the first track's length
        const int length = file[at] * 256 + file[at + 1] + more;
        file[at] = std::uint8_t (length >> 8);
        file[at + 1] = std::uint8_t (length);
        return file;
    };
    const Bytes end = {0x00, 0xFF, 0x2F, 0};
    const Bytes afterMeta = {0x00, 0x90, 60, 90, 0x00, 0xFF, 0x05, 2, 'l', 'a', 0x60, 60, 0};
    const struct
    {
        const char* name;
        Bytes file;
        const char* notes;
        const char* said;
    } read[] = {
        {"running status after a meta event", withTrack (header (0, 1, 96), cat (afterMeta, end)), "0-96 60 la\n",
         "Track 1 (track 1): running status goes on after a meta or system-exclusive event; read as the channel "
         "message before it, at 1:2 (0.50 s)"},
        {"no end of track", withTrack (header (0, 1, 96), note), "0-96 60 \n",
         "Track 1 (track 1): the track has no end-of-track event; it ends with its chunk, at 1:2 (0.50 s)"},
        {"a chunk a little too long", claiming (withTrack (header (0, 1, 96), cat (note, end)), 4), "0-96 60 \n",
         "Track 1 (track 1): the track's chunk claims 16 bytes, but the file ends 4 bytes sooner"},
        {"the last event cut", claiming (withTrack (header (0, 1, 96), cat (note, {0x00, 0x90, 62})), 1), "0-96 60 \n",
         "the file ends inside the track's last event; that event is left out, at 1:2 (0.50 s)"},
    };
    for (const auto& c : read)
    {
        Score::Song s;
        std::string error;
        ASSERT_TRUE (song (c.file, s, error)) << c.name << ": " << error;
        EXPECT_EQ (notesOf (s), c.notes) << c.name;
        EXPECT_TRUE (says (s, c.said)) << c.name << ": " << (s.warnings.empty () ? "" : s.warnings[0]);
    }

    const struct
    {
        const char* name;
        Bytes file;
        const char* says;
    } refused[] = {
        {"a chunk far too long", claiming (withTrack (header (0, 1, 96), cat (note, end)), 65), "claims 77 bytes"},
        {"a number past its chunk", withTrack (header (0, 1, 96), cat (note, {0x81})), "past the end of its chunk"},
        {"a text too long", withTrack (header (0, 1, 96), cat ({0x00, 0xFF, 0x01, 0x84, 0x80, 0x01}, Bytes (65537, 'a'))),
         "a text event of 65537 bytes"},
    };
    for (const auto& c : refused)
    {
        Score::MidiFile file;
        std::string error;
        EXPECT_FALSE (Score::parseMidi (c.file.data (), c.file.size (), file, error)) << c.name;
        EXPECT_NE (error.find (c.says), std::string::npos) << c.name << ": " << error;
    }
}

TEST (MidiWords, ThousandsOfTextsOnOneNoteAreSungTogetherCutShortAndSaidOnce)
{
    Score::MidiFile f;
    f.division = 96;
    f.tracks.resize (1);
    for (int i = 0; i < 8000; ++i)
        f.tracks[0].events.push_back ({0, Score::MidiEvent::Lyric, 0, 0, 0, 0, "la"});
    f.tracks[0].events.push_back ({0, Score::MidiEvent::NoteOn, 0, 60, 90, 0, {}});
    f.tracks[0].events.push_back ({96, Score::MidiEvent::NoteOff, 0, 60, 0, 0, {}});
    Score::Song s;
    std::string error;
    ASSERT_TRUE (song (Score::writeMidi (f), s, error)) << error;
    std::size_t said = 0;
    for (const auto& w : s.warnings)
        said += w.size ();
    EXPECT_LT (said, 1000u);
    EXPECT_TRUE (says (s, "reached by 8000 texts"));
    EXPECT_LT (s.tracks.at (0).notes.at (0).lyric.size (), 600u);
}

TEST (ScoreReader, ElidedSyllablesAreAllSungOnTheirNote)
{
    auto note = [] (const std::string& lyric) {
        return "<note><pitch><step>C</step><octave>4</octave></pitch><duration>1</duration>" + lyric + "</note>";
    };
    const std::string xml = "<score-partwise><part-list><score-part id=\"P\"/></part-list><part id=\"P\"><measure>"
                            + note ("<lyric><text>b</text><elision/><text>c</text></lyric>")
                            + note ("<lyric><text>d</text></lyric>")
                            + note ("<lyric><syllabic>single</syllabic><text>the</text><elision>‿</elision>"
                                    "<syllabic>single</syllabic><text>old</text><extend/></lyric>")
                            + note ("") + "</measure></part></score-partwise>";
    Score::Song s;
    std::string error;
    ASSERT_TRUE (Score::readMusicXml (reinterpret_cast<const std::uint8_t*> (xml.data ()), xml.size (), {}, s, error))
        << error;
    EXPECT_EQ (lyrics (s), (std::vector<std::string> {"b‿c[b iy s iy]", "d", "the‿old[dh ah ow]", "[- l d]"}));
}

TEST (TextEncoding, FilesWithoutUtf8AreReadAsTheirTextsShow)
{
    using E = Score::TextEncoding;
    const struct
    {
        std::vector<std::string> texts;
        E encoding;
        const char* utf8;  // of the first text
    } cases[] = {
        {{"la", "ol\xC3\xA9"}, E::Utf8, "la"},
        {{"\x82\xab\x82\xe5\x82\xa4", "\x82\xcd"}, E::ShiftJis, "きょう"},
        // Latin-1 letters and Windows' quotes make Shift-JIS pairs, but no kana.
        {{"Gr\xFC\xDF" "e", "M\xFCller"}, E::Latin1, "Grüße"},
        {{"don\x92t", "\x93hi\x94"}, E::Latin1, "don’t"},
    };
    for (const auto& c : cases)
    {
        std::vector<const std::string*> texts;
        for (const auto& t : c.texts)
            texts.push_back (&t);
        const E guessed = Score::guessEncoding (texts);
        EXPECT_EQ (guessed, c.encoding) << c.utf8;
        std::size_t unreadable = 0;
        EXPECT_EQ (Score::decodeText (c.texts[0], guessed, unreadable), c.utf8);
        EXPECT_EQ (unreadable, 0u) << c.utf8;
    }
}

} // namespace
