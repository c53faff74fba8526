#include "sequence/common_subsequence.h"

#include <algorithm>

namespace Zelmor {

CountTable::CountTable(const SequenceNote* a, std::size_t m, const SequenceNote* b, std::size_t n)
    : cols(n + 1), cells((m + 1) * (n + 1), 0)
{
    for (std::size_t i = 1; i <= m; ++i) {
        int32_t* row = &cells[i * cols];
        const int32_t* above = row - cols;
        for (std::size_t j = 1; j <= n; ++j) {
            if (equals(a[i - 1], b[j - 1]))
                row[j] = above[j - 1] + 1;
            else
                row[j] = std::max(above[j], row[j - 1]);
        }
    }
}

EditFront::EditFront(const SequenceNote* a, std::size_t m, const SequenceNote* b, std::size_t n)
    : a(a), b(b), m(static_cast<int64_t>(m)), n(static_cast<int64_t>(n))
{
}

int64_t EditFront::slide(int64_t x, int64_t k) const
{
    int64_t y = x - k;
    while (x < m && y < n && equals(a[x], b[y])) {
        ++x;
        ++y;
    }
    return x;
}

// Round d from round d - 1: the furthest cell on diagonal k that d edits
// reach ends a run of matches that starts one insert (from diagonal k + 1) or
// one remove (from diagonal k - 1) away from a cell that d - 1 edits reach.
// The furthest such start, held inside the grid, lies on that run, so sliding
// from it ends where d edits end. It also lies at or past where d - 2 edits
// end on the same diagonal, so a diagonal's reach never falls as d grows.
bool EditFront::build(std::size_t maxEntries)
{
    for (int64_t d = 0;; ++d) {
        if (entry(d + 1, -(d + 1)) > maxEntries) {
            std::vector<int32_t>().swap(reach);
            last = -1;
            return false;
        }
        reach.resize(entry(d + 1, -(d + 1)));
        for (int64_t k = -d; k <= d; k += 2) {
            int32_t& out = reach[entry(d, k)];
            if (k < -n || k > m) {
                out = -1;
                continue;
            }
            int64_t start = 0;
            if (d > 0) {
                start = -1;
                if (k + 1 <= d - 1 && k + 1 <= m)
                    start = std::max(start, std::min<int64_t>(reach[entry(d - 1, k + 1)], n + k));
                if (k - 1 >= -(d - 1) && k - 1 >= -n)
                    start = std::max(start, std::min<int64_t>(reach[entry(d - 1, k - 1)] + 1, m));
            }
            out = static_cast<int32_t>(slide(start, k));
        }
        const int64_t target = m - n;
        if (std::abs(target) <= d && (d - target) % 2 == 0 && reach[entry(d, target)] >= m) {
            last = d;
            return true;
        }
    }
}

uint64_t EditFront::operator()(std::size_t i, std::size_t j) const
{
    const auto x = static_cast<int64_t>(i);
    const int64_t k = x - static_cast<int64_t>(j);
    // The fewest edits that reach (i, j): the first round of k's parity whose
    // furthest reach on the diagonal is at or past i.
    int64_t low = std::abs(k);
    int64_t high = last - ((last - low) % 2 + 2) % 2;
    // Not reached by e(m, n) edits: then by one more, as every cell the walk back reads is.
    int64_t edits = high + 2;
    while (low <= high) {
        const int64_t mid = low + ((high - low) / 4) * 2;
        if (reach[entry(mid, k)] >= x) {
            edits = mid;
            high = mid - 2;
        } else {
            low = mid + 2;
        }
    }
    const int64_t count = (x + static_cast<int64_t>(j) - edits) / 2;
    return count > 0 ? static_cast<uint64_t>(count) : 0;
}

} // namespace Zelmor
