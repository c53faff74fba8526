// A node's values by key: its attributes, or a note's texts. A key keeps its
// place once set (a removed value leaves an absent slot), so that the journal
// can point at it by index; a node has a handful of keys, found by a scan.
#pragma once

#include "workbench/sim/text_pool.h"

#include "pluginterfaces/base/ftypes.h"

#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Sim {

class AttributeStore
{
public:
    struct Entry
    {
        const char* key;  ///< in the pool of the node's project
        Slot value;
        bool flagged = false;  ///< `flags` came with a setAttribute
        Steinberg::int32 flags = 0;
    };

    static constexpr uint32_t kNone = ~0u;

    uint32_t find (const char* key) const
    {
        // A node's keys seldom share a first letter: most misses cost no call.
        for (uint32_t i = 0; i < entries_.size (); ++i)
            if (entries_[i].key[0] == key[0] && std::strcmp (entries_[i].key, key) == 0)
                return i;
        return kNone;
    }
    /** The present value of `key`, or null. */
    const Slot* get (const char* key) const
    {
        const uint32_t i = find (key);
        return i != kNone && entries_[i].value.present () ? &entries_[i].value : nullptr;
    }
    bool has (const char* key) const { return get (key) != nullptr; }
    /** The entry of `key`, made (absent) if there is none yet. */
    uint32_t place (TextPool& pool, const char* key);

    Entry& at (uint32_t index) { return entries_[index]; }
    const Entry& at (uint32_t index) const { return entries_[index]; }

    std::optional<Value> value (const char* key) const;
    /** The present values, ordered by key. */
    std::map<std::string, Value> values () const;

private:
    std::vector<Entry> entries_;
};

} // namespace Sim
