#include "phoneme/dictionary_holder.h"

namespace Zelmor {

namespace {

DictionaryHolder* holder = nullptr;

// Runs during static initialisation of the module; the accessors live in this
// translation unit so that any user of them links the initialiser too.
struct HolderInitialiser {
    HolderInitialiser()
    {
        auto made = std::make_unique<DictionaryHolder>();
        made->map = std::make_unique<PronouncingDictionary>();
        PronouncingDictionary parsed =
            loadPronouncingDictionary(embeddedDictionaryText(), embeddedDictionarySize());
        *made->map = std::move(parsed);
        holder = made.release();
    }
    ~HolderInitialiser()
    {
        delete holder;
        holder = nullptr;
    }
    HolderInitialiser(const HolderInitialiser&) = delete;
    HolderInitialiser& operator=(const HolderInitialiser&) = delete;
};

HolderInitialiser initialiser;

} // namespace

const DictionaryHolder* dictionaryHolder()
{
    return holder;
}

const PronouncingDictionary* dictionaryHolderMap()
{
    return holder ? holder->map.get() : nullptr;
}

} // namespace Zelmor
