#pragma once
// Memory for the shared-pointer blocks of items. A project loads or scans tens of
// thousands of items one after another, and each would otherwise be a heap allocation
// of its own: here they are carved in turn out of 64 KiB blocks, and a block goes back
// to the heap when the last item carved from it is freed (from any thread).
#include <cstddef>

namespace kestrel {

void* AllocateItemMemory(size_t bytes);
void FreeItemMemory(void* at) noexcept;

}  // namespace kestrel
