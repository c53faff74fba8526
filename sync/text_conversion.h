// The host speaks zero-terminated UTF-16; inside we keep UTF-8. Both
// conversions are checked: malformed input raises UTF8-CPP's exceptions.
#pragma once

#include "pluginterfaces/base/ftypes.h"

#include <string>

namespace Zelmor {

/** Counts up to the terminating zero. Unpaired surrogates raise utf8::invalid_utf16. */
std::string utf16ToUtf8 (const Steinberg::char16* text);

/** Truncated, malformed and out-of-range input raise utf8::not_enough_room, invalid_utf8, invalid_code_point. */
std::u16string utf8ToUtf16 (const std::string& text);

} // namespace Zelmor
