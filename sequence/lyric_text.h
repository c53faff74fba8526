#pragma once

#include <cstddef>
#include <string>

namespace Zelmor {

// A lyric as typed: a word, optionally followed by a phoneme hint in square
// brackets, e.g. "ka[k a]".
struct LyricParts {
    std::string word;
    std::string hint;
};

// Positions count code points. Malformed UTF-8 raises UTF8-CPP's exceptions,
// which are deliberately left to the caller.
LyricParts splitLyricText(const std::string& text);
std::string composeLyricText(const std::string& word, const std::string& hint);

std::size_t utf8Length(const std::string& text);
// Clamped to the end of the text.
std::string utf8Substring(const std::string& text, std::size_t start, std::size_t count);
// -1 when the code point does not occur.
std::ptrdiff_t utf8IndexOf(const std::string& text, char32_t character);
std::ptrdiff_t utf8LastIndexOf(const std::string& text, char32_t character);
// Strips U+0020 and U+0009 at both ends. A non-empty text made only of those
// raises utf8::not_enough_room: the backward scan runs off the start. Callers
// rely on that (a hint of blanks is an error), so it must stay.
std::string utf8Trim(const std::string& text);

} // namespace Zelmor
