// The voice's phone set and the one table that turns the converter's tokens
// (English ARPAbet and kana romaji) into it.
#pragma once

#include "voice/voice_note.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Voice {

enum class PhoneClass
{
    vowel,
    stop,
    affricate,
    fricative,
    nasal,
    liquid,
    glide,
    silence
};

/** The class of a phone of the voice's set; false when the voice has no such phone. */
bool voicePhoneClass (const std::string& phone, PhoneClass& cls);
bool isVoiceVowel (const std::string& phone);

/** The name the voice calls silence. */
extern const char* const pausePhone;

/** A phone of the voice and the length it asks for; 0 leaves the length to its class. */
struct VoicePhone
{
    std::string name;
    double length = 0.0;
};

struct UnknownPhoneme
{
    std::size_t note;   ///< index into the note list
    std::string token;
};

struct PhoneMapping
{
    std::vector<std::vector<VoicePhone>> notes;  ///< one list per note; a continuation's leading "-" is gone
    std::vector<UnknownPhoneme> unknown;         ///< tokens no table knows; they are left out
};

/** The voice's phones for every note of a song. English tokens are the voice's own; kana go
    through the table, and the syllabic nasal and the tap look at their neighbours. */
PhoneMapping mapPhonemes (const std::vector<Note>& notes);

} // namespace Voice
