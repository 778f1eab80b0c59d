#include "huge_heap.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace kestrel::cli {

#if defined(__GLIBC__) && defined(MADV_HUGEPAGE) && !defined(__SANITIZE_ADDRESS__)

namespace {

constexpr size_t kHugePage = size_t{2} << 20;
// Address space only: a page of it costs memory once something is written there.
constexpr size_t kReserve = size_t{256} << 20;
// glibc's own defaults, for what comes after the reserve.
constexpr int kDefaultTopPad = 128 << 10;
// Large blocks (the line and result arrays of a big file, a file's bytes) come from
// the heap too, not from a mapping of their own that would fault page by page.
constexpr int kMmapThreshold = 32 << 20;
// Larger than a probe, so that the heap must grow to hand it out.
constexpr size_t kProbe = size_t{1} << 20;

}  // namespace

void ReserveHugePageHeap() {
    // The heap grows by the request plus the top pad: one probe with a large pad grows
    // it by the reserve, which is then advised as a whole. Trimming is held off so
    // that the reserve stays once the probe is freed.
    if (mallopt(M_MMAP_THRESHOLD, kMmapThreshold) == 0 || mallopt(M_TRIM_THRESHOLD, static_cast<int>(2 * kReserve)) == 0 ||
        mallopt(M_TOP_PAD, static_cast<int>(kReserve)) == 0)
        return;
    void* probe = std::malloc(kProbe);
    const auto start = reinterpret_cast<uintptr_t>(probe);
    const auto end = reinterpret_cast<uintptr_t>(sbrk(0));
    std::free(probe);
    mallopt(M_TOP_PAD, kDefaultTopPad);
    // Only whole huge pages inside the heap can be backed by one.
    const uintptr_t first = (start + kHugePage - 1) & ~(kHugePage - 1);
    if (probe != nullptr && end > first) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
}

#else

void ReserveHugePageHeap() {}

#endif

}  // namespace kestrel::cli
