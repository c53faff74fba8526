#include "workbench/sim/journal.h"

#include <algorithm>

namespace Sim {

namespace {

// Own blocks past the base's end: small for a typed word, 12 KiB at most.
constexpr std::size_t kFirstBlock = 16;
constexpr std::size_t kLargestBlock = 256;

} // namespace

Journal::Journal (const Journal* base)
{
    if (base && !base->blocks_.empty ())
    {
        base_ = base->blocks_;
        mirror_ = base_.front ()->data ();
        mirrorSize_ = base_.front ()->size ();
    }
}

void Journal::keep (std::shared_ptr<const Block> block)
{
    blocks_.push_back (std::move (block));
    matched_ = 0;
    const std::size_t next = blocks_.size ();
    mirror_ = next < base_.size () ? base_[next]->data () : nullptr;
    mirrorSize_ = next < base_.size () ? base_[next]->size () : 0;
}

void Journal::shareMirror ()
{
    ++shared_;
    keep (base_[blocks_.size ()]);
}

void Journal::addOwn (const Change& change)
{
    if (!filling_)
    {
        filling_ = std::make_shared<Block> ();
        if (mirror_)
        {
            // Our own from here to the end of the base's block, so that the blocks after stay in step.
            limit_ = mirrorSize_;
            filling_->reserve (limit_);
            filling_->assign (mirror_, mirror_ + matched_);
            mirror_ = nullptr;
            matched_ = 0;
        }
        else
        {
            limit_ = std::clamp (size_ - 1, kFirstBlock, kLargestBlock);
            filling_->reserve (limit_);
        }
    }
    filling_->push_back (change);
    if (filling_->size () == limit_)
        keep (std::move (filling_));
}

void Journal::close ()
{
    if (filling_)
        keep (std::move (filling_));
    else if (matched_ > 0)
        keep (std::make_shared<const Block> (mirror_, mirror_ + matched_));
    base_.clear ();
    mirror_ = nullptr;
}

} // namespace Sim
