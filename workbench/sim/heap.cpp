#include "workbench/sim/heap.h"

#include <cstdlib>  // says which C library this is

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace Sim {

void keepHeap ()
{
#if defined(__GLIBC__)
    // Both fixed, since fixing one stops the library from moving the other
    // with the blocks it sees freed. Blocks below the first come from the
    // heap; the heap's top is handed back only past the second.
    static const bool kept = [] {
        mallopt (M_MMAP_THRESHOLD, 32 * 1024 * 1024);
        mallopt (M_TRIM_THRESHOLD, 256 * 1024 * 1024);
        return true;
    }();
    (void) kept;
#endif
}

} // namespace Sim
