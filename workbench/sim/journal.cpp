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
    if (base)
        base_ = base->blocks_;
}

void Journal::keep (std::shared_ptr<const Block> block)
{
    blocks_.push_back (std::move (block));
}

void Journal::add (const Change& change)
{
    ++size_;
    const std::size_t next = blocks_.size ();
    if (!filling_)
    {
        if (next < base_.size ())
        {
            const Block& mirror = *base_[next];
            if (mirror[matched_] == change)
            {
                if (++matched_ == mirror.size ())
                {
                    keep (base_[next]);
                    ++shared_;
                    matched_ = 0;
                }
                return;
            }
            // Our own from here to the end of the base's block, so that the blocks after stay in step.
            limit_ = mirror.size ();
            filling_ = std::make_shared<Block> ();
            filling_->reserve (limit_);
            filling_->assign (mirror.begin (), mirror.begin () + static_cast<std::ptrdiff_t> (matched_));
            matched_ = 0;
        }
        else
        {
            limit_ = std::clamp (size_ - 1, kFirstBlock, kLargestBlock);
            filling_ = std::make_shared<Block> ();
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
    {
        const Block& mirror = *base_[blocks_.size ()];
        keep (std::make_shared<const Block> (mirror.begin (), mirror.begin () + static_cast<std::ptrdiff_t> (matched_)));
        matched_ = 0;
    }
    base_.clear ();
}

} // namespace Sim
