#include "score/text_encoding.h"

#include <cstdint>

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>
#include <iconv.h>
#endif

namespace Score {

namespace {

void appendUtf8 (std::string& out, std::uint32_t cp)
{
    if (cp < 0x80)
        out += static_cast<char> (cp);
    else if (cp < 0x800)
    {
        out += static_cast<char> (0xC0 | (cp >> 6));
        out += static_cast<char> (0x80 | (cp & 0x3F));
    }
    else
    {
        out += static_cast<char> (0xE0 | (cp >> 12));
        out += static_cast<char> (0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char> (0x80 | (cp & 0x3F));
    }
}

const char* const replacement = "\xEF\xBF\xBD";  // U+FFFD

/** Windows' Latin-1: its 0x80 to 0x9F are quotes, dashes and a few letters, never controls in a text. */
std::string fromLatin1 (const std::string& bytes)
{
    static const std::uint16_t windows[32] = {
        0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    std::string out;
    for (unsigned char c : bytes)
        appendUtf8 (out, c >= 0x80 && c < 0xA0 ? windows[c - 0x80] : c);
    return out;
}

bool leadByte (unsigned char c) { return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC); }
bool trailByte (unsigned char c) { return c >= 0x40 && c <= 0xFC && c != 0x7F; }
bool singleByte (unsigned char c) { return c < 0x80 || (c >= 0xA1 && c <= 0xDF); }

/** One Shift-JIS character (one or two bytes) as UTF-8; false when the platform knows none there. */
bool shiftJisChar (const char* at, std::size_t length, std::string& out)
{
#ifdef _WIN32
    wchar_t wide[2];
    const int n = MultiByteToWideChar (932, MB_ERR_INVALID_CHARS, at, static_cast<int> (length), wide, 2);
    if (n <= 0)
        return false;
    char utf8[8];
    const int m = WideCharToMultiByte (CP_UTF8, 0, wide, n, utf8, sizeof utf8, nullptr, nullptr);
    if (m <= 0)
        return false;
    out.append (utf8, static_cast<std::size_t> (m));
    return true;
#else
    // Windows' own form of Shift-JIS, as Japanese files are written; one converter for the
    // thread, as opening one costs more than a character does.
    struct Converter
    {
        iconv_t handle = iconv_open ("UTF-8", "CP932");
        ~Converter ()
        {
            if (handle != reinterpret_cast<iconv_t> (-1))
                iconv_close (handle);
        }
    };
    thread_local Converter converter;
    if (converter.handle == reinterpret_cast<iconv_t> (-1))
        return false;
    char in[2] = {at[0], length > 1 ? at[1] : '\0'};
    char utf8[8];
    char* inp = in;
    char* outp = utf8;
    std::size_t inLeft = length, outLeft = sizeof utf8;
    iconv (converter.handle, nullptr, nullptr, nullptr, nullptr);
    if (iconv (converter.handle, &inp, &inLeft, &outp, &outLeft) == static_cast<std::size_t> (-1) || inLeft != 0)
        return false;
    out.append (utf8, sizeof utf8 - outLeft);
    return true;
#endif
}

std::string fromShiftJis (const std::string& bytes, std::size_t& unreadable)
{
    std::string out;
    for (std::size_t i = 0; i < bytes.size ();)
    {
        const auto c = static_cast<unsigned char> (bytes[i]);
        if (c < 0x80)
        {
            out += static_cast<char> (c);
            ++i;
            continue;
        }
        const bool pair = leadByte (c) && i + 1 < bytes.size () && trailByte (static_cast<unsigned char> (bytes[i + 1]));
        const std::size_t length = pair ? 2 : 1;
        if ((pair || singleByte (c)) && shiftJisChar (bytes.data () + i, length, out))
            i += length;
        else
        {
            out += replacement;
            ++unreadable;
            ++i;
        }
    }
    return out;
}

} // namespace

bool isUtf8 (const std::string& s)
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

std::string toUtf8 (const std::string& bytes)
{
    return isUtf8 (bytes) ? bytes : fromLatin1 (bytes);
}

TextEncoding guessEncoding (const std::vector<const std::string*>& texts)
{
    // Latin-1 letters and Windows' quotes pair up as Shift-JIS often enough ("ü" or "’" and a
    // letter after it), so Shift-JIS needs the lead bytes of kana and Japanese punctuation,
    // which no Western text has, and few bytes it can't read.
    std::size_t kanaPairs = 0, pairs = 0, bad = 0;
    bool allUtf8 = true;
    for (const std::string* text : texts)
    {
        if (isUtf8 (*text))
            continue;
        allUtf8 = false;
        const std::string& s = *text;
        for (std::size_t i = 0; i < s.size (); ++i)
        {
            const auto c = static_cast<unsigned char> (s[i]);
            if (c < 0x80)
                continue;
            if (leadByte (c) && i + 1 < s.size () && trailByte (static_cast<unsigned char> (s[i + 1])))
            {
                ++pairs;
                kanaPairs += c <= 0x84 ? 1 : 0;
                ++i;
            }
            else if (!singleByte (c))
                ++bad;
        }
    }
    if (allUtf8)
        return TextEncoding::Utf8;
    if (kanaPairs > 0 && kanaPairs * 4 >= pairs && bad * 8 <= pairs)
        return TextEncoding::ShiftJis;
    return TextEncoding::Latin1;
}

std::string decodeText (const std::string& bytes, TextEncoding encoding, std::size_t& unreadable)
{
    if (encoding == TextEncoding::Utf8 || isUtf8 (bytes))
        return bytes;
    return encoding == TextEncoding::ShiftJis ? fromShiftJis (bytes, unreadable) : fromLatin1 (bytes);
}

const char* encodingName (TextEncoding encoding)
{
    switch (encoding)
    {
    case TextEncoding::Utf8: return "UTF-8";
    case TextEncoding::ShiftJis: return "Shift-JIS";
    case TextEncoding::Latin1: return "Latin-1";
    }
    return "";
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
