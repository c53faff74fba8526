// The lyric-sheet language of --lyrics: how a sheet is cut into one syllable a
// note, and how it is laid over a song's tracks.
#include "score/lay_lyrics.h"

#include <gtest/gtest.h>

namespace {

/** The syllables as "Kind:text" with the word's number: B won, E der, S the, H hold, W as written. */
std::string shape (const std::vector<Score::SheetSyllable>& sheet)
{
    static const char* kinds = "-SBMEHW";
    std::string out;
    for (const auto& s : sheet)
        out += std::string (1, kinds[s.syllable.kind]) + std::to_string (s.word) + ":" + s.syllable.text + " ";
    return out;
}

TEST (LyricSheet, HyphensSplitUnderscoresHoldAndBracketsStayWhole)
{
    const struct
    {
        const char* sheet;
        const char* syllables;
    } cases[] = {
        {"won-der the", "B0:won E0:der S1:the "},
        // Hyphens as sheets write them: at the end of a syllable, at the start of the next, or both.
        {"won- der", "B0:won E0:der "},
        {"won -der ful", "B0:won E0:der S1:ful "},
        {"won-der-ful", "B0:won M0:der E0:ful "},
        // An underscore holds its syllable one note more; so does a lone one, and two hold twice.
        {"won_-der_ the", "B0:won H0: E0:der H0: S1:the "},
        {"sun _ __", "S0:sun H0: H0: H0: "},
        // The host's own form stays one item, blanks in its brackets and all.
        {"read[r eh d] to-day", "W0:read[r eh d] B1:to E1:day "},
        {"la[l aa ] [k a]", "W0:la[l aa ] W1:[k a] "},
        // Without hyphens the converter says how many notes a word takes: "hello" two.
        {"hello", "S0:hello H0: "},
        {"_ a", "H0: S0:a "},
        {"", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ (shape (Score::readLyricSheet (c.sheet)), c.syllables) << c.sheet;
}

Score::SongTrack track (const char* name, std::vector<double> starts, const char* lyric = "")
{
    Score::SongTrack t;
    t.name = name;
    for (double s : starts)
    {
        Score::SongNote n;
        n.start = s;
        n.end = s + 0.5;
        n.lyric = lyric;
        t.notes.push_back (n);
    }
    return t;
}

std::string lyrics (const Score::SongTrack& t)
{
    std::string out;
    for (const auto& n : t.notes)
        out += n.lyric + "|";
    return out;
}

TEST (LyricSheet, LaidOverTheBareTracksOrTheOneNamedTopNoteOfAChordFirst)
{
    Score::Song song;
    song.tracks = {track ("Voice", {0, 1}, "la"), track ("Piano", {0, 0, 1, 2, 3})};
    std::string error;
    // The piano's chord at 0 takes one syllable, on its top note (the first); the held note takes none.
    ASSERT_TRUE (Score::layLyrics ("won-der sun_ extra", song, {}, error));
    EXPECT_EQ (lyrics (song.tracks[1]), "wonder|||sun-||");
    EXPECT_EQ (lyrics (song.tracks[0]), "la|la|");
    EXPECT_NE (song.warnings.back ().find ("Piano: the notes ran out; 1 word(s) of the lyrics are left out"),
               std::string::npos);

    // Named, a track with words gets the sheet in their place; an unknown name is refused with the names.
    ASSERT_TRUE (Score::layLyrics ("sing", song, "Voice", error));
    EXPECT_EQ (lyrics (song.tracks[0]), "sing||");
    EXPECT_NE (song.warnings.back ().find ("Voice: the lyrics end before the notes do; the last 1 note(s)"),
               std::string::npos);
    EXPECT_FALSE (Score::layLyrics ("sing", song, "Alto", error));
    EXPECT_EQ (error, "the song has no track named \"Alto\"; its tracks: \"Voice\", \"Piano\"");
}

} // namespace
