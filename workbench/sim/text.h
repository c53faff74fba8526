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

} // namespace Sim
