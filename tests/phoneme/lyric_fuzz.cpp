// libFuzzer target: any byte string is a lyric. Only the decoder's three
// exceptions may leave convertLyric; anything else aborts the run.

#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"

#include <utf8.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto* dictionary = Zelmor::dictionaryHolderMap();
    if (!dictionary)
        std::abort();
    const std::string lyric(reinterpret_cast<const char*>(data), size);
    try {
        for (const auto& element : Zelmor::convertLyric(lyric, *dictionary))
            if (element.find('.') != std::string::npos)
                std::abort();
    } catch (const utf8::not_enough_room&) {
    } catch (const utf8::invalid_utf8&) {
    } catch (const utf8::invalid_code_point&) {
    }
    return 0;
}
