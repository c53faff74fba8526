#pragma once
// The process-wide pronouncing dictionary, indexed over the embedded text
// during static initialisation and released at unload.

#include "phoneme/pronouncing_dictionary.h"

#include <cstdint>
#include <memory>

namespace Zelmor {

struct DictionaryHolder {
    std::unique_ptr<PronouncingDictionary> map;
};

// The holder, or null before the module's initialiser has run or after unload.
const DictionaryHolder* dictionaryHolder();

// The holder's dictionary, or null when there is none; a caller then skips
// conversion.
const PronouncingDictionary* dictionaryHolderMap();

// The dictionary text compiled into the module.
const char* embeddedDictionaryText();
int32_t embeddedDictionarySize();

} // namespace Zelmor
