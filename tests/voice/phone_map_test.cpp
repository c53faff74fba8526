#include "voice/phone_map.h"

#include "phoneme/phoneme_inventory.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Voice;

namespace {

/** Notes of `texts` one after another, legato; "." is a rest. */
std::vector<Note> notesOf (const std::vector<std::string>& texts)
{
    std::vector<Note> notes;
    for (std::size_t i = 0; i < texts.size (); ++i)
    {
        Note n;
        n.start = static_cast<double> (i), n.end = n.start + 1.0;
        n.kind = texts[i] == "." ? NoteKind::rest : NoteKind::note;
        std::istringstream words (texts[i]);
        for (std::string w; words >> w;)
            n.phonemes.push_back (w);
        notes.push_back (n);
    }
    return notes;
}

std::string sung (const PhoneMapping& m)
{
    std::string out;
    for (std::size_t i = 0; i < m.notes.size (); ++i)
    {
        out += i ? " |" : "";
        for (const auto& p : m.notes[i])
            out += (out.empty () ? "" : " ") + p.name;
    }
    return out;
}

} // namespace

// Every token the converter can write, English and kana, comes out as phones the voice has.
TEST (PhoneMap, EveryConverterTokenHasVoicePhones)
{
    std::vector<std::string> texts = {"sil", "SIL", "BR", "-", "ah"};
    for (const char* t : {"aa", "ae", "ah", "ao", "aw", "ay", "eh", "er", "ey", "ih", "iy", "ow", "oy", "uh", "uw",
                          "b", "ch", "d", "dh", "f", "g", "hh", "jh", "k", "l", "m", "n", "ng", "p", "r", "s",
                          "sh", "t", "th", "v", "w", "y", "z", "zh"})
        texts.push_back (t);
    for (const auto& row : Zelmor::kanaDigraphTable)
        texts.push_back (row.phonemes);
    for (const auto& row : Zelmor::kanaMonographTable)
        texts.push_back (row.phonemes);
    // Each alone, and each after a vowel and before a pause, where the context rules differ.
    for (const auto& text : texts)
        for (const auto& notes : {notesOf ({text}), notesOf ({"a", text, "."})})
        {
            const auto mapping = mapPhonemes (notes);
            EXPECT_TRUE (mapping.unknown.empty ()) << text;
            for (const auto& phones : mapping.notes)
                for (const auto& phone : phones)
                {
                    PhoneClass cls;
                    EXPECT_TRUE (voicePhoneClass (phone.name, cls)) << text << " gives " << phone.name;
                }
        }
}

TEST (PhoneMap, KanaInContext)
{
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"a", "r a"}, "aa | d aa"},          // the tap between vowels is a flap
        {{"r a"}, "l aa"},                    // and after a pause a lateral
        {{"a", ".", "r a"}, "aa | | l aa"},
        {{"r ey"}, "r ey"},                   // English r stays
        {{"s a", "N", "p a"}, "s aa | m | p aa"},
        {{"k a", "N", "k a"}, "k aa | ng | k aa"},
        {{"k a", "N", "t a"}, "k aa | n | t aa"},
        {{"h o", "N", "."}, "hh ao | ng |"},
        {{"N", "a"}, "n | aa"},               // ng only after a vowel
        {{"ts u", "ky a", "wo", "ry o"}, "t s uw | k y aa | w ao | d y ao"},
        {{"k a", "cl", "t a"}, "k aa | pau | t aa"},
        {{"sh i", "j i", "ch i", "f u"}, "sh iy | jh iy | ch iy | f uw"},
    };
    for (const auto& [texts, expected] : cases)
        EXPECT_EQ (sung (mapPhonemes (notesOf (texts))), expected);

    const auto closure = mapPhonemes (notesOf ({"k a", "cl"}));
    EXPECT_GT (closure.notes[1][0].length, 0.0);
    const auto unknown = mapPhonemes (notesOf ({"aa", "x aa"}));
    ASSERT_EQ (unknown.unknown.size (), 1u);
    EXPECT_EQ (unknown.unknown[0].note, 1u);
    EXPECT_EQ (unknown.unknown[0].token, "x");
}
