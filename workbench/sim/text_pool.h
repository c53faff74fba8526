// What a node holds for a key, and the project's texts those holdings point
// into. Each distinct text is kept once, so that a node, the journal's before
// and after and the next pass's identical write all share it: journaling a
// change copies no text, and a write of the same text stores nothing new.
#pragma once

#include "workbench/sim/value.h"

#include "pluginterfaces/base/fvariant.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Sim {

/** A held value: absent, or a number, or a text of a pool. Copied as plain bytes. */
struct Slot
{
    enum Type : uint8_t
    {
        Absent,
        Empty,  ///< present, but neither number nor text (an object or empty variant was set)
        Int,
        Float,
        Wide,
        Narrow,
    };

    union
    {
        int64_t i = 0;
        double f;
        const std::u16string* wide;
        const std::string* narrow;
    };
    Type type = Absent;

    bool present () const { return type != Absent; }
    /** Texts of one pool are the same text exactly when they are the same pointer; numbers compare by their bits. */
    bool operator== (const Slot& o) const { return type == o.type && (type <= Empty || bits () == o.bits ()); }
    bool operator!= (const Slot& o) const { return !(*this == o); }

    uint64_t bits () const
    {
        uint64_t b;
        std::memcpy (&b, this, sizeof b);  // the payload leads: see the static_assert below
        return b;
    }

    /** The held value on its own; an absent slot gives an empty value. */
    Value value () const;
    /**
     * Fills `out` as a host does: texts go out as new[] copies with the owner
     * flag, or, when `borrowed`, as a pointer into the pool without it.
     */
    void toVariant (Steinberg::FVariant& out, bool borrowed) const;
};

static_assert (offsetof (Slot, i) == 0 && sizeof (Slot::i) == 8, "a slot's payload comes first");

class TextPool
{
public:
    TextPool () = default;
    TextPool (const TextPool&) = delete;
    TextPool& operator= (const TextPool&) = delete;

    const std::u16string* wide (std::u16string_view text);
    const std::string* narrow (std::string_view text);

    Slot hold (const Value& value);
    /**
     * What a host keeps of a variant: its integer, float, wide or narrow text
     * (a null text as an empty one), tried in that order, else an empty
     * value. A text equal to `current`'s is taken from it without a look-up.
     */
    Slot hold (const Steinberg::FVariant& v, const Slot& current);

    /** For nodes that belong to no project: lives as long as the process. */
    static TextPool& unowned ();

private:
    // Keyed by views into the owned strings, which never move.
    std::unordered_map<std::u16string_view, std::unique_ptr<std::u16string>> wide_;
    std::unordered_map<std::string_view, std::unique_ptr<std::string>> narrow_;
};

} // namespace Sim
