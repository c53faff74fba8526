// The journal of a host edit: what each change of a note's text or a node's
// attribute was before and after, for the host's undo and redo.
#pragma once

#include "workbench/sim/text_pool.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Sim {

class AttributeStore;

/** One journaled change: a note text or a node attribute, before and after. */
struct Change
{
    AttributeStore* store;  ///< the node's attributes or the note's texts
    uint32_t entry;         ///< the key's place in the store
    Slot before;            ///< absent: the key was absent
    Slot after;

    bool operator== (const Change& o) const
    {
        return store == o.store && entry == o.entry && before == o.before && after == o.after;
    }
};

/**
 * The changes of one edit in order, kept in blocks that never move. A pass
 * that writes back a whole track journals thousands of changes, nearly all as
 * the edit before journaled them at the same places: a block that comes out
 * the same as the base's (the edit before) is shared with it, not stored again.
 */
class Journal
{
public:
    using Block = std::vector<Change>;

    Journal () = default;
    /** `base`'s blocks are shared where this journal repeats them; `base` may go before this one. */
    explicit Journal (const Journal* base);

    void add (const Change& change)
    {
        ++size_;
        // The common case: the same change as the base's at this place.
        if (mirror_ && mirror_[matched_] == change)
        {
            if (++matched_ == mirrorSize_)
                shareMirror ();
            return;
        }
        addOwn (change);
    }
    /** Ends the recording: keeps what was still being compared or filled. Before any reading. */
    void close ();

    bool empty () const { return size_ == 0; }
    std::size_t size () const { return size_; }
    /** Blocks held, and of them those shared with the base. */
    std::size_t blockCount () const { return blocks_.size (); }
    std::size_t sharedBlocks () const { return shared_; }

    template <class F>
    void forwards (F&& f) const
    {
        for (const auto& block : blocks_)
            for (const Change& c : *block)
                f (c);
    }
    template <class F>
    void backwards (F&& f) const
    {
        for (auto b = blocks_.rbegin (); b != blocks_.rend (); ++b)
            for (auto c = (*b)->rbegin (); c != (*b)->rend (); ++c)
                f (*c);
    }

private:
    void addOwn (const Change& change);
    void shareMirror ();
    /** Adds a finished block and looks at the base's block at the same place next. */
    void keep (std::shared_ptr<const Block> block);

    std::vector<std::shared_ptr<const Block>> base_;
    std::vector<std::shared_ptr<const Block>> blocks_;  ///< done
    const Change* mirror_ = nullptr;  ///< the base's block at the place of the next, while it is matched
    std::size_t mirrorSize_ = 0;
    std::size_t matched_ = 0;         ///< changes of `mirror_` repeated so far
    std::shared_ptr<Block> filling_;  ///< our own block under way, or null
    std::size_t limit_ = 0;           ///< how many changes `filling_` takes
    std::size_t size_ = 0;
    std::size_t shared_ = 0;
};

} // namespace Sim
