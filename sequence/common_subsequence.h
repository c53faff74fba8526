#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "sequence/sequence_note.h"

namespace Zelmor {

// Two exact ways of answering T(i, j), the length of a longest common
// subsequence of the heads a[0, i) and b[0, j) of two note lists, for
// 0 <= i <= m and 0 <= j <= n. The caller keeps both lists alive.

// Every count in one block, 4 bytes a cell. The caller has made sure that the
// (m + 1) * (n + 1) cells fit a signed 32-bit count.
class CountTable {
public:
    CountTable(const SequenceNote* a, std::size_t m, const SequenceNote* b, std::size_t n);
    uint64_t operator()(std::size_t i, std::size_t j) const { return static_cast<uint64_t>(cells[i * cols + j]); }

private:
    std::size_t cols;
    std::vector<int32_t> cells;
};

// The counts as the edits that reach each cell: e(i, j) = i + j - 2 T(i, j)
// inserts and removes at the least. Along a diagonal k = i - j, e never falls
// as i grows, so each diagonal is told by the furthest i that d edits reach,
// for every d up to e(m, n); that costs about (m + n) * e(m, n) compares and
// e(m, n)^2 / 2 entries, so a change costs what it changes.
class EditFront {
public:
    EditFront(const SequenceNote* a, std::size_t m, const SequenceNote* b, std::size_t n);

    // Builds the front; false, with nothing kept, when it would need more
    // than `maxEntries` entries.
    bool build(std::size_t maxEntries);

    // Only for cells that e(m, n) + 1 edits reach. Every cell that the walk
    // back reads is: the walk keeps to cells on some shortest script, which
    // e(m, n) edits reach, and reads their neighbours.
    uint64_t operator()(std::size_t i, std::size_t j) const;

private:
    static std::size_t entry(int64_t d, int64_t k) { return static_cast<std::size_t>(d * (d + 1) / 2 + (k + d) / 2); }
    int64_t slide(int64_t x, int64_t k) const;

    const SequenceNote* a;
    const SequenceNote* b;
    int64_t m;
    int64_t n;
    int64_t last = -1;            // e(m, n), the last round built
    std::vector<int32_t> reach;   // furthest i per (d, k), k = -d, -d + 2, ..., d; -1 off the grid
};

} // namespace Zelmor
