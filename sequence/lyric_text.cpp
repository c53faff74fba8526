#include "sequence/lyric_text.h"

#include <utf8.h>

namespace Zelmor {

namespace {

using ByteIt = std::string::const_iterator;
using CodeIt = utf8::iterator<ByteIt>;

CodeIt codeBegin(const std::string& text) { return CodeIt(text.begin(), text.begin(), text.end()); }
CodeIt codeEnd(const std::string& text) { return CodeIt(text.end(), text.begin(), text.end()); }

bool isBlank(uint32_t cp) { return cp == 0x20 || cp == 0x09; }

} // namespace

std::size_t utf8Length(const std::string& text)
{
    std::size_t length = 0;
    for (CodeIt it = codeBegin(text), end = codeEnd(text); it != end; ++it)
        ++length;
    return length;
}

std::string utf8Substring(const std::string& text, std::size_t start, std::size_t count)
{
    CodeIt it = codeBegin(text);
    const CodeIt end = codeEnd(text);
    for (std::size_t n = 0; n < start && it != end; ++n)
        ++it;
    const ByteIt from = it.base();
    for (std::size_t n = 0; n < count && it != end; ++n)
        ++it;
    return std::string(from, it.base());
}

std::ptrdiff_t utf8IndexOf(const std::string& text, char32_t character)
{
    std::ptrdiff_t pos = 0;
    for (CodeIt it = codeBegin(text), end = codeEnd(text); it != end; ++it, ++pos) {
        if (*it == character)
            return pos;
    }
    return -1;
}

std::ptrdiff_t utf8LastIndexOf(const std::string& text, char32_t character)
{
    std::ptrdiff_t pos = 0;
    std::ptrdiff_t found = -1;
    for (CodeIt it = codeBegin(text), end = codeEnd(text); it != end; ++it, ++pos) {
        if (*it == character)
            found = pos;
    }
    return found;
}

std::string utf8Trim(const std::string& text)
{
    if (text.empty())
        return text;
    const CodeIt end = codeEnd(text);
    CodeIt first = codeBegin(text);
    while (first != end && isBlank(*first))
        ++first;
    // Scans back from the end independently of the forward scan; for a text
    // of blanks only it steps past the start and UTF8-CPP throws.
    CodeIt last = end;
    do {
        --last;
    } while (isBlank(*last));
    ++last;
    return std::string(first.base(), last.base());
}

LyricParts splitLyricText(const std::string& text)
{
    // Malformed text raises what a scan by code points meets first: the
    // library's own error for the first bad sequence from the start.
    const auto bad = utf8::find_invalid(text.begin(), text.end());
    if (bad != text.end()) {
        ByteIt at = bad;
        utf8::next(at, text.end());
    }

    // The brackets are ASCII, which valid UTF-8 never holds inside a longer
    // sequence: their byte positions order as their code point positions do.
    LyricParts parts;
    const std::size_t open = text.find('[');
    const std::size_t close = text.rfind(']');
    if (open == std::string::npos || close == std::string::npos || close <= open) {
        parts.word = text;
        return parts;
    }
    // Of several opening brackets, the one nearest the final ']' counts.
    const std::size_t k = text.rfind('[', close);
    parts.word = text.substr(0, k);
    // Anything after the final ']' is dropped.
    parts.hint = utf8Trim(text.substr(k + 1, close - k - 1));
    return parts;
}

std::string composeLyricText(const std::string& word, const std::string& hint)
{
    if (hint.empty())
        return word;
    return word + "[" + hint + "]";
}

} // namespace Zelmor
