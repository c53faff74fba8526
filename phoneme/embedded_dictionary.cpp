#include "phoneme/dictionary_holder.h"

// The 6 MB text goes in through the assembler, byte for byte, so the compiler
// never has to read it as an array initialiser. CANTORELA_DICTIONARY_FILE is
// set by the build to the absolute path of the data file. An ELF module hides
// the two symbols; a PE/COFF one keeps read-only data in .rdata and exports
// only what it lists, so there is nothing to hide. COFF has no section stack:
// the text section is named again after the data, before any code of ours.
#if defined(_WIN32)
#define DICTIONARY_SECTION ".section .rdata$cantorela_dictionary,\"dr\"\n"
#define DICTIONARY_SECTION_END ".text\n"
#define DICTIONARY_HIDDEN(name) ""
#define DICTIONARY_VISIBILITY
#else
#define DICTIONARY_SECTION ".pushsection .rodata.cantorela_dictionary,\"a\",@progbits\n"
#define DICTIONARY_SECTION_END ".popsection\n"
#define DICTIONARY_HIDDEN(name) ".hidden " name "\n"
#define DICTIONARY_VISIBILITY __attribute__((visibility("hidden")))
#endif

__asm__(DICTIONARY_SECTION
        ".balign 16\n"
        ".globl cantorelaDictionaryBegin\n"
        DICTIONARY_HIDDEN("cantorelaDictionaryBegin")
        "cantorelaDictionaryBegin:\n"
        ".incbin \"" CANTORELA_DICTIONARY_FILE "\"\n"
        ".globl cantorelaDictionaryEnd\n"
        DICTIONARY_HIDDEN("cantorelaDictionaryEnd")
        "cantorelaDictionaryEnd:\n"
        ".byte 0\n"
        DICTIONARY_SECTION_END);

extern "C" {
DICTIONARY_VISIBILITY extern const char cantorelaDictionaryBegin[];
DICTIONARY_VISIBILITY extern const char cantorelaDictionaryEnd[];
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
