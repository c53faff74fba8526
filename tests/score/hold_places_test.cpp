// Where hold marks go, told from one conversion of a word, against trying
// every place on the converter as the typing rule did: the same places for
// every word, kana, punctuation and all.
#include "score/hold_places.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Score::HoldPlace;

/** Every place and mark tried on the converter: the rule as it was, kept here to compare against. */
std::vector<HoldPlace> triedPlaces (const std::string& text, const std::vector<Score::SungSyllable>& base,
                                    const std::vector<std::size_t>& target, bool withLongMarks)
{
    std::vector<HoldPlace> reach (base.size ());
    std::vector<int> gained;
    auto distance = [] (std::size_t a, std::size_t b) { return a > b ? a - b : b - a; };
    for (std::size_t at = 0; at <= text.size (); ++at)
    {
        if (at < text.size () && (static_cast<unsigned char> (text[at]) & 0xC0) == 0x80)
            continue;
        for (const char* mark : {Score::hyphen, Score::longMark})
        {
            if (mark == Score::longMark && !withLongMarks)
                continue;
            std::string tried = text;
            tried.insert (at, mark);
            int sum = 0;
            if (!Score::gainedHolds (Score::convertText (tried), base, gained))
                continue;
            for (int g : gained)
                sum += g;
            if (sum != 1)
                continue;
            const auto j = static_cast<std::size_t> (std::find (gained.begin (), gained.end (), 1) - gained.begin ());
            HoldPlace& p = reach[j];
            if (!p.mark || (p.mark == Score::longMark && mark == Score::hyphen)
                || (p.mark == mark && distance (at, target[j]) <= distance (p.at, target[j])))
                p = {at, mark};
        }
    }
    return reach;
}

TEST (HoldPlaces, EveryWordGetsThePlacesThatTryingEachPlaceFinds)
{
    std::vector<std::string> words = {
        "lantern", "window", "wonderful", "carry", "tonight", "zendravo", "singing", "idea", "fire", "hour",
        "lalalalalalalalalalalalala", "hello-world", "don't", "(oh)", "a.b", "Mary's", "o-o-oh", "さくら", "きゃりー",
        "かあさん", "ラーメン", "laきゃla", "ab0", "la la", "ぁぃ", "éclair", "naïve", "sky-", "-sky", "ahー", "ky,oto", "おきゃく", "かきゅう",
        "とうきょう", "にゃんにゃん", "しゅくしょう", "ときょ"};
    // Pieces a random word is made of: letters, syllables, punctuation the
    // converter strips, hyphens, blanks, kana that pair, long-vowel marks, and
    // letters outside ASCII.
    const char* pieces[] = {"la", "ka", "a", "e", "o", "n", "th", "str", "won", "der", "ful", "i", "de", "'", "-",
                            ".", ",", " ", "0", "\xC3\xA9", "か", "き", "ゃ", "ょ", "ー", "ん", "ア", "ぁ", "x", "y"};
    std::mt19937 random (21);
    for (int i = 0; i < 1500; ++i)
    {
        std::string w;
        for (int n = 1 + static_cast<int> (random () % 8); n > 0; --n)
            w += pieces[random () % std::size (pieces)];
        words.push_back (w);
    }
    int compared = 0;
    for (const auto& text : words)
    {
        Zelmor::LyricLayout layout;
        const auto elements = Score::convertText (text, &layout);
        std::vector<Score::SungSyllable> base;
        if (!Score::sungSyllables (elements, base) || base.empty ())
            continue;
        std::vector<std::size_t> target (base.size ());
        for (auto& t : target)
            t = random () % (text.size () + 1);
        for (const bool withLongMarks : {true, false})
        {
            const auto want = triedPlaces (text, base, target, withLongMarks);
            const auto got = Score::holdPlaces (text, layout, elements, base, target, withLongMarks);
            ASSERT_EQ (got.size (), want.size ()) << text;
            for (std::size_t j = 0; j < want.size (); ++j)
            {
                EXPECT_EQ (got[j].mark, want[j].mark) << text << " syllable " << j;
                EXPECT_EQ (got[j].at, want[j].at) << text << " syllable " << j;
            }
        }
        ++compared;
    }
    EXPECT_GT (compared, 1000);
}

} // namespace
