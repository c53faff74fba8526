#include "workbench/sim/text.h"

#include <utf8.h>

#include <algorithm>
#include <iterator>

namespace Sim {

std::u16string toU16 (const std::string& utf8)
{
    std::u16string out;
    utf8::utf8to16 (utf8.begin (), utf8.end (), std::back_inserter (out));
    return out;
}

std::string toU8 (const std::u16string& utf16)
{
    std::string out;
    for (std::size_t i = 0; i < utf16.size (); ++i)
    {
        uint32_t cp = utf16[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < utf16.size () && utf16[i + 1] >= 0xDC00
            && utf16[i + 1] <= 0xDFFF)
        {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (utf16[i + 1] - 0xDC00);
            ++i;
        }
        else if (cp >= 0xD800 && cp <= 0xDFFF)
            cp = 0xFFFD;
        utf8::append (cp, std::back_inserter (out));
    }
    return out;
}

std::string toU8 (const Steinberg::char16* utf16)
{
    return utf16 ? toU8 (fromUnits (utf16)) : std::string ();
}

Steinberg::char16* newString16 (const std::u16string& text)
{
    auto* copy = new Steinberg::char16[text.size () + 1];
    std::copy (text.begin (), text.end (), copy);
    copy[text.size ()] = 0;
    return copy;
}

} // namespace Sim
