#pragma once
// The program's heap, made cheap to fill.

namespace kestrel::cli {

// A command such as `kestrel new` builds a model of many megabytes in one go and then
// exits, and the system hands a fresh heap out one 4 KiB page fault at a time, each of
// them dearer than the work of scanning a whole line. This reserves a stretch of heap
// at once and asks for it to be backed by transparent huge pages (one fault per 2 MiB)
// where the system offers them. Nothing changes where it does not: the heap then grows
// as it always does. Call it first thing, before the heap holds much.
void ReserveHugePageHeap();

}  // namespace kestrel::cli
