#include "voice/phone_map.h"

#include <cstring>

namespace Voice {

const char* const pausePhone = "pau";

namespace {

struct ClassRow
{
    const char* phone;
    PhoneClass cls;
};

// Every phone the voice has diphones for.
const ClassRow voicePhones[] = {
    {"aa", PhoneClass::vowel}, {"ae", PhoneClass::vowel}, {"ah", PhoneClass::vowel}, {"ao", PhoneClass::vowel},
    {"aw", PhoneClass::vowel}, {"ax", PhoneClass::vowel}, {"ay", PhoneClass::vowel}, {"eh", PhoneClass::vowel},
    {"er", PhoneClass::vowel}, {"ey", PhoneClass::vowel}, {"ih", PhoneClass::vowel}, {"iy", PhoneClass::vowel},
    {"ow", PhoneClass::vowel}, {"oy", PhoneClass::vowel}, {"uh", PhoneClass::vowel}, {"uw", PhoneClass::vowel},
    {"b", PhoneClass::stop}, {"d", PhoneClass::stop}, {"g", PhoneClass::stop},
    {"k", PhoneClass::stop}, {"p", PhoneClass::stop}, {"t", PhoneClass::stop},
    {"ch", PhoneClass::affricate}, {"jh", PhoneClass::affricate},
    {"dh", PhoneClass::fricative}, {"f", PhoneClass::fricative}, {"hh", PhoneClass::fricative},
    {"s", PhoneClass::fricative}, {"sh", PhoneClass::fricative}, {"th", PhoneClass::fricative},
    {"v", PhoneClass::fricative}, {"z", PhoneClass::fricative}, {"zh", PhoneClass::fricative},
    {"m", PhoneClass::nasal}, {"n", PhoneClass::nasal}, {"ng", PhoneClass::nasal},
    {"l", PhoneClass::liquid}, {"r", PhoneClass::liquid},
    {"w", PhoneClass::glide}, {"y", PhoneClass::glide},
    {"pau", PhoneClass::silence},
};

// Kana romaji and what the voice sings for them. "R" (the tap) and "N" (the syllabic nasal)
// are settled by their neighbours afterwards; "cl" is the short closure of a geminate.
struct KanaRow
{
    const char* token;
    const char* phones;
};
const KanaRow kanaPhones[] = {
    // The five vowels, each on the voice's nearest long vowel.
    {"a", "aa"}, {"i", "iy"}, {"u", "uw"}, {"e", "eh"}, {"o", "ao"},
    {"h", "hh"}, {"j", "jh"},
    // The affricate ts has no phone of its own: the voice's t then s make it.
    {"ts", "t s"},
    {"r", "R"},
    // Palatalised consonants: the consonant, then the glide y.
    {"ky", "k y"}, {"gy", "g y"}, {"ty", "t y"}, {"dy", "d y"}, {"ny", "n y"},
    {"hy", "hh y"}, {"by", "b y"}, {"py", "p y"}, {"my", "m y"}, {"ry", "R y"},
    {"wo", "w ao"},
    {"N", "N"},
    {"cl", "cl"},
    // Silence and breath: the breath has no phone of the voice that can stand before a pause.
    {"sil", "pau"}, {"SIL", "pau"}, {"BR", "pau"},
};

const double closureLength = 0.06;  // the held stop of a geminate
const double tapLength = 0.025;     // one flick of the tongue

bool isKanaVowel (const std::string& token)
{
    return token.size () == 1 && std::strchr ("aiueo", token[0]) != nullptr;
}

const char* kanaRow (const std::string& token)
{
    for (const auto& row : kanaPhones)
        if (token == row.token)
            return row.phones;
    return nullptr;
}

std::vector<std::string> words (const char* text)
{
    std::vector<std::string> out;
    std::string word;
    for (const char* p = text;; ++p)
    {
        if (*p == ' ' || *p == '\0')
        {
            if (!word.empty ())
                out.push_back (word);
            word.clear ();
            if (*p == '\0')
                return out;
        }
        else
            word += *p;
    }
}

bool isOneOf (const std::string& phone, std::initializer_list<const char*> names)
{
    for (const char* name : names)
        if (phone == name)
            return true;
    return false;
}

/** The syllabic nasal takes the place of what follows: lips before lips, the back of the tongue
    before the back and before a vowel or a pause, the ridge before the rest. The voice has ng only
    after a vowel. */
std::string syllabicNasal (bool afterVowel, const std::string& next)
{
    if (isOneOf (next, {"p", "b", "m"}))
        return "m";
    const bool back = next.empty () || isVoiceVowel (next) || isOneOf (next, {"k", "g", "ng", "hh", "w"});
    return back && afterVowel ? "ng" : "n";
}

} // namespace

bool voicePhoneClass (const std::string& phone, PhoneClass& cls)
{
    for (const auto& row : voicePhones)
        if (phone == row.phone)
        {
            cls = row.cls;
            return true;
        }
    return false;
}

bool isVoiceVowel (const std::string& phone)
{
    PhoneClass cls;
    return voicePhoneClass (phone, cls) && cls == PhoneClass::vowel;
}

PhoneMapping mapPhonemes (const std::vector<Note>& notes)
{
    PhoneMapping out;
    out.notes.resize (notes.size ());

    // First the table, context-free; "R", "N" and "cl" stay as they are.
    for (std::size_t n = 0; n < notes.size (); ++n)
    {
        if (notes[n].kind == NoteKind::rest)
            continue;
        const auto& tokens = notes[n].phonemes;
        for (std::size_t i = 0; i < tokens.size (); ++i)
        {
            const std::string& token = tokens[i];
            if (token == "-")
                continue;
            // The converter writes r for both languages: before a kana vowel it is the kana tap.
            const bool kanaTap = token == "r" && i + 1 < tokens.size () && isKanaVowel (tokens[i + 1]);
            PhoneClass cls;
            if (const char* row = kanaRow (token); row != nullptr && (token != "r" || kanaTap))
                for (auto& phone : words (row))
                    out.notes[n].push_back ({phone});
            else if (voicePhoneClass (token, cls))
                out.notes[n].push_back ({token});
            else
                out.unknown.push_back ({n, token});
        }
    }

    // Then the neighbours. Across notes only where one runs straight into the next.
    const auto joined = [&] (std::size_t a, std::size_t b)
    {
        return notes[a].kind != NoteKind::rest && notes[b].kind != NoteKind::rest
               && notes[b].start - notes[a].end < 0.001;
    };
    std::string previous;  // the phone before, empty after a pause
    for (std::size_t n = 0; n < notes.size (); ++n)
    {
        if (n > 0 && !joined (n - 1, n))
            previous.clear ();
        auto& phones = out.notes[n];
        for (std::size_t i = 0; i < phones.size (); ++i)
        {
            auto& phone = phones[i];
            if (phone.name == "R")
            {
                // The tap is the flap of "water", which the voice makes only as a short d;
                // after a pause a d would burst like a stop, so there the lateral stands in.
                const bool afterVowel = isVoiceVowel (previous);
                phone = afterVowel ? VoicePhone {"d", tapLength} : VoicePhone {"l"};
            }
            else if (phone.name == "N")
            {
                std::string next;
                if (i + 1 < phones.size ())
                    next = phones[i + 1].name;
                else
                    for (std::size_t m = n; m + 1 < notes.size () && joined (m, m + 1); ++m)
                        if (!out.notes[m + 1].empty ())
                        {
                            next = out.notes[m + 1].front ().name;
                            break;
                        }
                if (next == "R")
                    next = "d";
                phone.name = syllabicNasal (isVoiceVowel (previous), next == pausePhone ? "" : next);
            }
            else if (phone.name == "cl")
                phone = {pausePhone, closureLength};
            previous = phone.name == pausePhone ? std::string () : phone.name;
        }
    }
    return out;
}

} // namespace Voice
