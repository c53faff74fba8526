#include "workbench/sim/attribute_store.h"

namespace Sim {

uint32_t AttributeStore::place (TextPool& pool, const char* key)
{
    const uint32_t i = find (key);
    if (i != kNone)
        return i;
    entries_.push_back ({pool.narrow (key)->c_str (), {}});
    return static_cast<uint32_t> (entries_.size () - 1);
}

std::optional<Value> AttributeStore::value (const char* key) const
{
    if (const Slot* s = get (key))
        return s->value ();
    return std::nullopt;
}

std::map<std::string, Value> AttributeStore::values () const
{
    std::map<std::string, Value> out;
    for (const auto& e : entries_)
        if (e.value.present ())
            out.emplace (e.key, e.value.value ());
    return out;
}

} // namespace Sim
