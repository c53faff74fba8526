// libFuzzer target: any byte string is a line of lyric2phoneme. Nothing may
// leave convertLine; a refusal says why, and what is converted has no "." in it
// and, in the host's form, starts with the user's own phonemes.

#include "phoneme/dictionary_holder.h"
#include "phoneme/tools/lyric_line.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto* dictionary = Zelmor::dictionaryHolderMap();
    if (!dictionary)
        std::abort();
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto line = Zelmor::convertLine(text, *dictionary);
    if (line.ok != line.error.empty())
        std::abort();
    if (line.ownPhonemes && (line.elements.empty() || line.elements.front().empty()))
        std::abort();
    for (size_t i = line.ownPhonemes ? 1 : 0; i < line.elements.size(); ++i)
        if (line.elements[i].find('.') != std::string::npos)
            std::abort();
    return 0;
}
