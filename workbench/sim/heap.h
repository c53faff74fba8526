// The host process's heap: what it does with memory freed between passes.
#pragma once

namespace Sim {

/**
 * Keeps freed memory in the process for the next pass rather than giving it
 * back to the system. The agent builds its per-pass lists anew each pass
 * (records, notes and their texts, some hundreds of KiB for a long track);
 * the C library's default would hand the top of the heap back after each pass
 * and fault the same pages in again at the next, which on a long song's life
 * cost more than the host's journal. Once per process; a no-op where the C
 * library offers no such setting. Nothing of it is visible through a host call.
 */
void keepHeap ();

} // namespace Sim
