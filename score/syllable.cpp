#include "score/syllable.h"

namespace Score {

const char* const elisionMark = "\xE2\x80\xBF";  // U+203F

Syllable::Kind syllableKind (bool beginsWord, bool endsWord)
{
    if (beginsWord)
        return endsWord ? Syllable::Single : Syllable::Begin;
    return endsWord ? Syllable::End : Syllable::Middle;
}

bool hasHint (const std::string& text)
{
    const auto open = text.find ('[');
    const auto close = text.rfind (']');
    return open != std::string::npos && close != std::string::npos && open < close;
}

} // namespace Score
