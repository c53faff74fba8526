#include "phoneme/dictionary_holder.h"

// The 6 MB text goes in through the assembler, byte for byte, so the compiler
// never has to read it as an array initialiser. CANTORELA_DICTIONARY_FILE is
// set by the build to the absolute path of the data file.
__asm__(".pushsection .rodata.cantorela_dictionary,\"a\",@progbits\n"
        ".balign 16\n"
        ".globl cantorelaDictionaryBegin\n"
        ".hidden cantorelaDictionaryBegin\n"
        "cantorelaDictionaryBegin:\n"
        ".incbin \"" CANTORELA_DICTIONARY_FILE "\"\n"
        ".globl cantorelaDictionaryEnd\n"
        ".hidden cantorelaDictionaryEnd\n"
        "cantorelaDictionaryEnd:\n"
        ".byte 0\n"
        ".popsection\n");

extern "C" {
__attribute__((visibility("hidden"))) extern const char cantorelaDictionaryBegin[];
__attribute__((visibility("hidden"))) extern const char cantorelaDictionaryEnd[];
}

namespace Zelmor {

const char* embeddedDictionaryText()
{
    return cantorelaDictionaryBegin;
}

int32_t embeddedDictionarySize()
{
    return static_cast<int32_t>(cantorelaDictionaryEnd - cantorelaDictionaryBegin);
}

} // namespace Zelmor
