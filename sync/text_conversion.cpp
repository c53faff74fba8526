#include "sync/text_conversion.h"

#include <utf8.h>

#include <iterator>

namespace Zelmor {

std::string utf16ToUtf8 (const Steinberg::char16* text)
{
    std::string result;
    if (!text)
        return result;
    const auto* end = text;
    while (*end)
        ++end;
    utf8::utf16to8 (text, end, std::back_inserter (result));
    return result;
}

std::u16string utf8ToUtf16 (const std::string& text)
{
    std::u16string result;
    utf8::utf8to16 (text.begin (), text.end (), std::back_inserter (result));
    return result;
}

} // namespace Zelmor
