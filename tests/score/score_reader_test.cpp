// The MIDI file reader and the song built from it: hand-made bytes, hostile
// files, the tempo map, and where lyrics land; karaoke and notation-program
// words, MusicXML, and syllables joined into the words a singer types.
#include "score/lay_lyrics.h"
#include "score/midi_song.h"
#include "score/musicxml_reader.h"
#include "score/song_position.h"
#include "score/song_reader.h"
#include "score/typed_words.h"
#include "songs/generator/compose.h"
#include "tests/score/midi_bytes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace {

/** One voice, a beat a note, the last after a rest; each note's texts ("|" between two) a tick before it. */
Bytes wordsFile (Score::MidiEvent::Kind kind, const std::vector<std::string>& notes)
{
    Score::MidiFile f;
    f.division = 96;
    f.tracks.resize (1);
    auto event = [&] (std::uint64_t tick, Score::MidiEvent::Kind k, const std::string& text) {
        f.tracks[0].events.push_back ({tick, k, 0, 60, 90, 0, text});  // channel 0, C4, velocity 90
    };
    for (std::size_t i = 0; i < notes.size (); ++i)
    {
        const std::uint64_t at = 1 + 96 * (i + 1 < notes.size () ? i : i + 1);
        for (std::size_t a = 0, b = 0; a < notes[i].size (); a = b + 1)
        {
            b = std::min (notes[i].find ('|', a), notes[i].size ());
            event (at - 1, kind, notes[i].substr (a, b - a));
        }
        event (at, Score::MidiEvent::NoteOn, {});
        event (at + 96, Score::MidiEvent::NoteOff, {});
    }
    return Score::writeMidi (f);
}

TEST (MidiReader, RunningStatusSysexUnknownChunksAndNoteOffs)
{
    Bytes file = header (1, 1, 96);
    const Bytes junk = {'X', 'Y', 'Z', 'W', 0, 0, 0, 2, 1, 2};  // a chunk nobody knows is skipped
    file.insert (file.end (), junk.begin (), junk.end ());
    file = withTrack (file, {
        0x00, 0xF0, 0x03, 0x7E, 0x7F, 0xF7,        // sysex, skipped by its length
        0x00, 0x90, 60, 100,                       // C4 on
        0x30, 60, 100,                             // running status: C4 again 48 ticks later, over the first
        0x30, 60, 0,                               // a velocity-zero on ends the earliest C4
        0x30, 0x80, 60, 0,                         // and this the other
        0x00, 0xFF, 0x2F, 0x00,                    // end of track
        0x00, 0x90, 70, 100                        // past the end: not read
    });
    Score::Song s;
    std::string error;
    ASSERT_TRUE (song (file, s, error)) << error;
    ASSERT_EQ (s.tracks.size (), 1u);
    EXPECT_EQ (s.tracks[0].name, "Track 1");
    EXPECT_EQ (notesOf (s), "0-96 60 \n48-144 60 \n");
    EXPECT_DOUBLE_EQ (s.tracks[0].notes[0].end, 0.5);  // 120 bpm by default: 96 ticks are half a second
}

TEST (MidiReader, TempoMapAndFrameTime)
{
    Score::Song s;
    std::string error;
    ASSERT_TRUE (song (Score::writeMidi (Songs::morning ()), s, error)) << error;
    ASSERT_EQ (s.tempi.size (), 2u);
    EXPECT_DOUBLE_EQ (s.tempi[1].beat, 16.0);
    EXPECT_NEAR (s.tempi[1].bpm, 120.0, 1e-9);
    const auto& notes = s.tracks.at (0).notes;
    // Beat 16 at 96 bpm is 10 s; beat 17 at 120 bpm is half a second later.
    EXPECT_DOUBLE_EQ (notes.at (16).start, 10.0);
    EXPECT_DOUBLE_EQ (notes.at (17).start, 10.5);

    // 25 frames of 40 ticks: a tick is a millisecond, whatever the tempo says.
    Bytes smpte = header (0, 1, 0);
    smpte[12] = 0xE7;  // -25
    smpte[13] = 40;
    smpte = withTrack (smpte, {0x00, 0xFF, 0x51, 0x03, 0x01, 0x00, 0x00, 0x00, 0x90, 60, 90, 0x87, 0x68, 0x80, 60, 0});
    ASSERT_TRUE (song (smpte, s, error)) << error;
    EXPECT_DOUBLE_EQ (s.tracks.at (0).notes.at (0).end, 1.0);  // 1000 ticks
}

TEST (SongPosition, BarsAndBeatsFollowTheMetersAndAMidiFileKeepsThem)
{
    using M = std::vector<Score::MeterChange>;
    const struct
    {
        M meters;
        double quarters;
        const char* place;
    } cases[] = {
        {{}, 0.0, "1:1"},                            // 4/4 without a meter
        {{}, 9.5, "3:2.5"},                          // off the beat
        {{{0.0, 3, 4}}, 6.0, "3:1"},                 // 3/4
        {{{0.0, 6, 8}}, 4.5, "2:4"},                 // the beat of 6/8 is an eighth
        {{{0.0, 4, 4}, {8.0, 3, 4}}, 11.0, "4:1"},   // two bars of 4/4, then 3/4
        {{{0.0, 4, 4}, {6.0, 2, 4}}, 6.0, "3:1"},    // a change inside a bar starts a new one
        {{{3.0, 3, 4}}, 4.0, "2:2"},                 // 4/4 until the first meter
    };
    for (const auto& c : cases)
        EXPECT_EQ (Score::barBeat (c.meters, c.quarters), c.place) << c.quarters;
    EXPECT_EQ (Score::placeInSong ({}, -1.0, 2.5), "2.50 s");  // frame time: no beats

    Score::MidiFile f;
    f.tracks.push_back ({{{0, Score::MidiEvent::TimeSignature, 0, 0, 0, (6u << 8) | 8u, {}},
                          {960, Score::MidiEvent::NoteOn, 0, 60, 90, 0, {}},
                          {1920, Score::MidiEvent::NoteOff, 0, 60, 0, 0, {}}}});
    Score::Song s;
    std::string error;
    ASSERT_TRUE (song (Score::writeMidi (f), s, error)) << error;
    ASSERT_EQ (s.meters.size (), 1u);
    EXPECT_EQ (s.meters[0].numerator, 6);
    EXPECT_EQ (s.meters[0].denominator, 8);

    // A score's <time>, once however many parts repeat it; its title.
    ASSERT_TRUE (Score::readSong (std::string (SONGS_DIR) + "/lantern.musicxml", {}, s, error)) << error;
    EXPECT_EQ (s.title, "Lantern");
    ASSERT_EQ (s.meters.size (), 1u);
    EXPECT_EQ (s.meters[0].numerator * 10 + s.meters[0].denominator, 44);
}

TEST (MidiReader, BadFilesSayWhy)
{
    const Bytes good = Score::writeMidi (Songs::duet ());
    Bytes hugeChunk = header (1, 1, 96);
    const Bytes claim = {'M', 'T', 'r', 'k', 0xFF, 0xFF, 0xFF, 0xF0, 0x00};
    hugeChunk.insert (hugeChunk.end (), claim.begin (), claim.end ());
    Bytes zeroDivision = header (1, 1, 0);
    const struct
    {
        const char* name;
        Bytes bytes;
        const char* says;
    } cases[] = {
        {"empty", {}, "not a Standard MIDI File"},
        {"other format", {'R', 'I', 'F', 'F', 0, 0, 0, 4, 'W', 'A', 'V', 'E'}, "not a Standard MIDI File"},
        {"short header", {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1}, "header chunk claims 6 bytes"},
        {"header too small", {'M', 'T', 'h', 'd', 0, 0, 0, 2, 0, 1}, "header chunk of 2 bytes"},
        {"absurd chunk length", hugeChunk, "claims 4294967280 bytes"},
        {"zero division", withTrack (zeroDivision, {0, 0xFF, 0x2F, 0}), "zero ticks"},
        {"no tracks", header (1, 0, 96), "no track chunk"},
        {"long varlen", withTrack (header (0, 1, 96), {0x81, 0x81, 0x81, 0x81, 0x00, 0x90, 60, 1}), "four bytes"},
        {"meta past the end", withTrack (header (0, 1, 96), {0x00, 0xFF, 0x05, 0x7F, 'l', 'a'}), "truncated"},
        {"running status from nothing", withTrack (header (0, 1, 96), {0x00, 60, 100}), "data byte"},
        {"status inside a message", withTrack (header (0, 1, 96), {0x00, 0x90, 60, 0x90}), "status byte inside"},
        {"short tempo", withTrack (header (0, 1, 96), {0x00, 0xFF, 0x51, 0x02, 1, 2}), "tempo event of 2 bytes"},
        {"system common", withTrack (header (0, 1, 96), {0x00, 0xF2, 1, 2}), "no place in a file"},
        {"cut in the middle", Bytes (good.begin (), good.begin () + 60), "claims 99 bytes, only 11 left"},
    };
    for (const auto& c : cases)
    {
        Score::MidiFile file;
        std::string error;
        EXPECT_FALSE (Score::parseMidi (c.bytes.data (), c.bytes.size (), file, error)) << c.name;
        EXPECT_NE (error.find (c.says), std::string::npos) << c.name << ": " << error;
    }

    // Every cut of a real song is read or refused, never read past.
    for (std::size_t n = 0; n < good.size (); ++n)
    {
        const Bytes cut (good.begin (), good.begin () + static_cast<long> (n));
        Score::MidiFile file;
        std::string error;
        if (Score::parseMidi (cut.data (), cut.size (), file, error))
        {
            Score::Song s;
            Score::readMidiSong (file, s, error);
        }
    }
}

TEST (MidiReader, LyricsLandOnTheirNotes)
{
    const int sixteenth = 24, ppq = 96;
    auto meta = [] (std::uint8_t type, const std::string& text) {
        Bytes b = {0xFF, type, std::uint8_t (text.size ())};
        for (char c : text)
            b.push_back (std::uint8_t (c));
        return b;
    };
    auto cat = [] (std::initializer_list<Bytes> parts) {
        Bytes all;
        for (auto& p : parts)
            all.insert (all.end (), p.begin (), p.end ());
        return all;
    };
    // A lyric a sixteenth early lands on the note; one an eighth early lands nowhere.
    const Bytes body = cat ({{0x00}, meta (0x05, " hel-lo "), {std::uint8_t (sixteenth), 0x90, 60, 90},
                             {std::uint8_t (ppq), 0x80, 60, 0, 0x00}, meta (0x05, "far"), {0x30, 0x90, 62, 90},
                             {0x60, 0x80, 62, 0}, {0x00}, meta (0x01, "ignored: the file has lyric events"),
                             {0x00, 0xFF, 0x2F, 0}});
    Score::Song s;
    std::string error;
    ASSERT_TRUE (song (withTrack (header (0, 1, ppq), body), s, error)) << error;
    EXPECT_EQ (lyrics (s), (std::vector<std::string> {"hel-lo", ""}));
    ASSERT_EQ (s.warnings.size (), 3u);
    EXPECT_EQ (s.warnings[0], "Track 1: 1 text event(s) taken for commentary, not sung: \"ignored: the file has lyric events\"");
    EXPECT_EQ (s.warnings[2], "Track 1: lyric \"far\" at 1:2.25 (0.62 s) stands on no note and is left out");

    // Karaoke: words in text events of a track without notes, headers and line marks dropped,
    // Latin-1 read as such; each channel of a format 0 file makes a track.
    Bytes kar = withTrack (header (1, 2, ppq),
                           cat ({{0x00}, meta (0x01, "@TTitle"), {0x00}, meta (0x01, "\\Caf\xE9"), {0x60},
                                 meta (0x01, "/ ol\xC3\xA9"), {0x00, 0xFF, 0x2F, 0}}));
    kar = withTrack (kar, {0x00, 0x90, 60, 90, 0x60, 0x90, 62, 90, 0x60, 0x80, 60, 0, 0x00, 0x80, 62, 0});
    ASSERT_TRUE (song (kar, s, error)) << error;
    ASSERT_EQ (s.tracks.size (), 1u);
    EXPECT_EQ (s.tracks[0].name, "Track 2");
    EXPECT_EQ (notesOf (s), "0-192 60 Caf\xC3\xA9\n96-192 62 ol\xC3\xA9\n");

    const Bytes twoChannels = {0x00, 0x92, 50, 90,  // never ends: it lasts to the end of the track
                               0x00, 0x90, 60, 90, 0x00, 0x91, 48, 90, 0x60, 0x80, 60, 0, 0x00, 0x81, 48, 0};
    ASSERT_TRUE (song (withTrack (header (0, 1, ppq), twoChannels), s, error)) << error;
    ASSERT_EQ (s.tracks.size (), 3u);
    EXPECT_EQ (s.tracks[1].name, "Track 1 ch 2");
    EXPECT_EQ (notesOf (s, 2), "0-96 50 \n");
}

TEST (MidiReader, KaraokeAndNotationWordsAreJoinedAsASingerTypesThem)
{
    // As a common converter writes karaoke: headers and the track's description, not sung; a leading
    // blank begins a word; the note after "kle" follows on and holds, the one after a rest doesn't.
    const Bytes karaoke = wordsFile (Score::MidiEvent::Text, {"@KMIDI KARAOKE FILE|@ITwinkle|notes/lyric track|/Twin",
                                                         "kle", " twin", "kle", "", ""});
    Score::Song s;
    std::string error;
    ASSERT_TRUE (song (karaoke, s, error)) << error;
    EXPECT_EQ (lyrics (s), (std::vector<std::string> {"Twinkle", "", "twin-kle", "", "", ""}));
    ASSERT_FALSE (s.warnings.empty ());
    EXPECT_NE (s.warnings[0].find ("\"notes/lyric track\""), std::string::npos) << s.warnings[0];
    ASSERT_TRUE (song (karaoke, s, error, {1, true}));
    EXPECT_EQ (lyrics (s), (std::vector<std::string> {"Twin", "kle", "twin", "kle", "", ""}));

    // Notation programs: a trailing hyphen goes on into the next syllable, and a leading one; "_"
    // holds; "their" is one syllable to the converter, so it holds over the score's second; two texts
    // on one note are sung together, and said.
    ASSERT_TRUE (song (wordsFile (Score::MidiEvent::Lyric, {"Hel-", "lo", "sun", "_", "the", "-ir", "of|the"}), s, error));
    EXPECT_EQ (lyrics (s), (std::vector<std::string> {"Hello", "", "sun-", "", "their-", "", "of‿the[ah v dh ah]"}));
    EXPECT_NE (s.warnings.back ().find ("2 texts; it sings them together: \"of‿the\""), std::string::npos)
        << s.warnings.back ();

    // Line ends alone don't make lyric events blank-ended: notation programs end their lines with them.
    ASSERT_TRUE (song (wordsFile (Score::MidiEvent::Lyric, {"Sing\r", "me", "home\r\n"}), s, error));
    EXPECT_EQ (lyrics (s), (std::vector<std::string> {"Sing", "me", "home"}));

    // Plain words over a melody: as many notes a word as the converter gives it elements.
    ASSERT_TRUE (song (wordsFile (Score::MidiEvent::Lyric, {"", "", "", "", ""}), s, error));
    Score::layLyrics ("hello sun extra words", s);
    EXPECT_EQ (lyrics (s), (std::vector<std::string> {"hello", "", "sun", "extra", ""}));
    EXPECT_NE (s.warnings.back ().find ("1 word(s)"), std::string::npos) << s.warnings.back ();
}

TEST (TypedWords, HoldsGoWhereTheConverterSingsThemAndNoNoteIsLeftOver)
{
    using S = Score::Syllable;
    const S held {S::Held, {}}, free {S::Free, {}};
    const struct
    {
        std::vector<S> in;
        std::vector<std::string> typed;
    } cases[] = {
        {{{S::Begin, "Lan"}, held, {S::End, "tern"}, {S::Single, "sun"}, held, held},
         {"Lan-tern", "", "", "sun--", "", ""}},
        // An open vowel at a word's end, and kana, hold with a long-vowel mark.
        {{{S::Begin, "won"}, {S::End, "der"}, held, {S::Single, "き"}, held, {S::Single, "ら"}},
         {"wonderー", "", "", "きー", "", "ら"}},
        // No mark holds "kle" without changing its sounds: the syllable before holds instead.
        {{{S::Begin, "Twin"}, {S::End, "kle"}, held}, {"Twin-kle", "", ""}},
        // The converter finds two syllables where the score has one: the missing hold goes on the later.
        {{{S::Single, "hello"}, held, held}, {"helloー", "", ""}},
        // A hold the word types itself counts: it gains only the one it lacks.
        {{{S::Single, "sun-"}, held, held}, {"sun--", "", ""}},
        // The host's own form stays as written and ends a word; a note that holds it says so, lest
        // it take the next sound the host finds in "day[d ey]"; a free note holds nothing.
        {{{S::Begin, "to"}, {S::AsWritten, "day[d ey]"}, held, free, {S::Middle, "go"}},
         {"to", "day[d ey]", "[-]", "", "go"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ (Score::typedWords (c.in), c.typed) << c.typed[0];
}

TEST (ScoreReader, TimewiseVoicesChordsAndTies)
{
    // Voice 2 has the words, so it sings, after a backup and a forward; of its chord the top note,
    // at the chord's start, with the words of the lower one listed after it; a tied note with a
    // syllable of its own is sung again.
    const std::string xml = R"(<?xml version="1.0"?><score-timewise>
<part-list><score-part id="A"><part-name>Alto</part-name></score-part></part-list>
<measure><part id="A"><attributes><divisions>2</divisions></attributes><sound tempo="60"/>
<note><pitch><step>C</step><octave>5</octave></pitch><duration>8</duration><voice>1</voice></note>
<backup><duration>8</duration></backup><forward><duration>2</duration><voice>2</voice></forward>
<note><pitch><step>G</step><alter>-1</alter><octave>4</octave></pitch><duration>2</duration><voice>2</voice></note>
<note><chord/><pitch><step>E</step><octave>4</octave></pitch><duration>2</duration><voice>2</voice>
  <lyric><syllabic>begin</syllabic><text>Al</text></lyric></note>
<note><pitch><step>A</step><octave>4</octave></pitch><duration>2</duration><voice>2</voice><tie type="start"/>
  <lyric><syllabic>end</syllabic><text>to</text></lyric></note>
<note><pitch><step>A</step><octave>4</octave></pitch><duration>2</duration><voice>2</voice><tie type="stop"/>
  <lyric><text>sings</text></lyric></note></part></measure>
<measure><part id="A"><note><pitch><step>B</step><octave>4</octave></pitch><duration>4</duration><voice>2</voice>
</note></part></measure></score-timewise>)";
    Score::Song s;
    std::string error;
    ASSERT_TRUE (Score::readMusicXml (reinterpret_cast<const std::uint8_t*> (xml.data ()), xml.size (), {}, s, error))
        << error;
    ASSERT_EQ (s.tracks.size (), 1u);
    EXPECT_EQ (s.tracks[0].name, "Alto");
    EXPECT_EQ (notesOf (s), "960-1920 66 Alto\n1920-2880 69 \n2880-3840 69 sings\n3840-5760 71 \n");
    EXPECT_DOUBLE_EQ (s.tracks[0].notes.back ().start, 4.0);  // at 60 bpm a beat is a second
}

TEST (BundledSongs, AreWhatTheGeneratorWrites)
{
    for (const auto& entry : Songs::all ())
    {
        std::ifstream in (std::string (SONGS_DIR) + "/" + entry.file, std::ios::binary);
        ASSERT_TRUE (in) << entry.file << " is missing: run generate_songs " << SONGS_DIR;
        const Bytes onDisk ((std::istreambuf_iterator<char> (in)), std::istreambuf_iterator<char> ());
        EXPECT_EQ (onDisk, Songs::bytes (entry)) << entry.file << " differs: run generate_songs";
    }
}

} // namespace
