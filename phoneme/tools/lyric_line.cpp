#include "phoneme/tools/lyric_line.h"

#include "phoneme/lyric_converter.h"

#include <utf8.h>

namespace Zelmor {

namespace {

std::string trimBlanks(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

} // namespace

LyricLine convertLine(const std::string& text, const PronouncingDictionary& dictionary)
{
    LyricLine line;
    const auto bad = utf8::find_invalid(text.begin(), text.end());
    if (bad != text.end()) {
        line.badByte = static_cast<long>(bad - text.begin());
        line.error = "invalid UTF-8 at byte offset " + std::to_string(line.badByte);
        return line;
    }
    // As the host splits a lyric: the hint lies between the last "[" before the final "]" and that "]".
    const auto close = text.rfind(']');
    const auto open = text.find('[');
    std::string word = text, hint;
    bool bracketed = false;
    if (open != std::string::npos && close != std::string::npos && open < close) {
        const auto k = text.rfind('[', close);
        word = text.substr(0, k);
        const std::string inside = text.substr(k + 1, close - k - 1);
        hint = trimBlanks(inside);
        bracketed = true;
        if (hint.empty() && !inside.empty()) {
            line.error = "the brackets hold only blanks, which the agent cannot take";
            return line;
        }
    }
    try {
        if (bracketed && !hint.empty()) {
            line.ownPhonemes = true;
            line.elements.push_back(hint);
            // A bracket alone is never converted: it has no word.
            if (!word.empty()) {
                const auto dealt = convertLyric(text, dictionary);
                line.elements.insert(line.elements.end(), dealt.begin() + (dealt.empty() ? 0 : 1), dealt.end());
            }
        } else {
            line.elements = convertLyric(text, dictionary);
        }
    } catch (const std::exception& e) {
        line.elements.clear();
        line.error = e.what();
        return line;
    }
    line.ok = true;
    return line;
}

} // namespace Zelmor
