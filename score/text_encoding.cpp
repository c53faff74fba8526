#include "score/text_encoding.h"

#include <cstdint>

namespace Score {

namespace {

bool validUtf8 (const std::string& s)
{
    std::size_t i = 0;
    const std::size_t n = s.size ();
    while (i < n)
    {
        const auto c = static_cast<unsigned char> (s[i]);
        if (c < 0x80)
        {
            ++i;
            continue;
        }
        const int extra = (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : 0;
        if (extra == 0 || n - i <= static_cast<std::size_t> (extra))
            return false;
        std::uint32_t cp = c & (0x3Fu >> extra);
        for (int k = 1; k <= extra; ++k)
        {
            const auto b = static_cast<unsigned char> (s[i + static_cast<std::size_t> (k)]);
            if ((b & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (b & 0x3F);
        }
        // Overlong forms, surrogates and values past U+10FFFF are no UTF-8 either.
        const std::uint32_t least[] = {0, 0x80, 0x800, 0x10000};
        if (cp < least[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        i += static_cast<std::size_t> (extra) + 1;
    }
    return true;
}

} // namespace

std::string toUtf8 (const std::string& bytes)
{
    if (validUtf8 (bytes))
        return bytes;
    std::string out;
    for (unsigned char c : bytes)
    {
        if (c < 0x80)
            out += static_cast<char> (c);
        else
        {
            out += static_cast<char> (0xC0 | (c >> 6));
            out += static_cast<char> (0x80 | (c & 0x3F));
        }
    }
    return out;
}

std::string trimBlanks (const std::string& s)
{
    const char* blank = " \t\r\n";
    const auto a = s.find_first_not_of (blank);
    if (a == std::string::npos)
        return {};
    return s.substr (a, s.find_last_not_of (blank) - a + 1);
}

} // namespace Score
