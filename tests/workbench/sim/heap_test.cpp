#include "workbench/sim/host_services.h"

#include <cstdlib>

#include <gtest/gtest.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

// Once the host is up, a block of the size a long track's pass builds comes
// from the heap rather than a mapping of its own, and freeing it gives nothing
// back to the system: the next pass finds its pages already there.
TEST (HostHeap, WhatAPassFreesStaysForTheNext)
{
#if defined(__GLIBC__)
    Sim::HostServices host;
    constexpr std::size_t kBlock = 8u << 20;
    const auto before = mallinfo2 ();
    auto* block = static_cast<volatile char*> (std::malloc (kBlock));
    ASSERT_NE (block, nullptr);
    block[kBlock - 1] = 1;
    const auto held = mallinfo2 ();
    EXPECT_EQ (held.hblkhd, before.hblkhd);
    std::free (const_cast<char*> (block));
    EXPECT_GE (mallinfo2 ().arena, held.arena);
#else
    GTEST_SKIP () << "no such setting in this C library";
#endif
}

} // namespace
