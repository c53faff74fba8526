// UTF-8 and UTF-16 at the simulated host's border.
#pragma once

#include "pluginterfaces/base/ftypes.h"

#include <string>

namespace Sim {

std::u16string toU16 (const std::string& utf8);
/** Lenient: a malformed sequence (tests build those on purpose) becomes U+FFFD. */
std::string toU8 (const std::u16string& utf16);
std::string toU8 (const Steinberg::char16* utf16);
/** A new[]-allocated, zero-terminated copy, as the SDK's variant frees it. */
Steinberg::char16* newString16 (const std::u16string& text);

// The SDK's 16-bit unit is wchar_t on Windows and char16_t elsewhere; either way
// it holds UTF-16, and the host's texts cross between the two here.
inline const Steinberg::char16* units (const std::u16string& text)
{
    return reinterpret_cast<const Steinberg::char16*> (text.c_str ());
}
inline std::u16string fromUnits (const Steinberg::char16* text)
{
    return std::u16string (reinterpret_cast<const char16_t*> (text));
}

} // namespace Sim
