#include "model/item_memory.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace kestrel {

namespace {

constexpr size_t kBlockBytes = 64 * 1024;
// Each piece is the address of its block followed by the memory handed out, so the
// pieces are kept at the alignment of a pointer (what an item's block needs).
constexpr size_t kPieceAlign = alignof(void*);
// While a thread still carves from a block the block's balance carries this bias, so
// that frees alone never bring it to zero; the thread takes the bias off, less the
// pieces it carved, when it moves on.
constexpr int64_t kOpenBias = int64_t{1} << 48;

struct alignas(kPieceAlign) BlockHeader {
    std::atomic<int64_t> balance;  // pieces carved and not yet freed, plus kOpenBias while open
};
struct alignas(kPieceAlign) PiecePrefix {
    BlockHeader* block;
};

BlockHeader* NewBlock(size_t bytes, int64_t balance) { return new (::operator new(bytes)) BlockHeader{balance}; }

void Settle(BlockHeader* block, int64_t taken) {
    if (block->balance.fetch_sub(taken, std::memory_order_acq_rel) == taken) {
        block->~BlockHeader();
        ::operator delete(block);
    }
}

void* Piece(BlockHeader* block, char* at) { return new (at) PiecePrefix{block} + 1; }

// The block this thread carves from.
struct Carving {
    BlockHeader* block = nullptr;
    char* next = nullptr;
    char* end = nullptr;
    int64_t carved = 0;

    void Close() {
        if (block) Settle(block, kOpenBias - carved);
        block = nullptr;
    }
    ~Carving() { Close(); }
};

thread_local Carving t_carving;

}  // namespace

void* AllocateItemMemory(size_t bytes) {
    bytes = sizeof(PiecePrefix) + (bytes + kPieceAlign - 1) / kPieceAlign * kPieceAlign;
    if (bytes > kBlockBytes / 8) {  // a large one gets a block of its own, closed at once
        BlockHeader* own = NewBlock(sizeof(BlockHeader) + bytes, 1);
        return Piece(own, reinterpret_cast<char*>(own + 1));
    }
    Carving& c = t_carving;
    if (!c.block || static_cast<size_t>(c.end - c.next) < bytes) {
        c.Close();
        c.block = NewBlock(kBlockBytes, kOpenBias);
        c.next = reinterpret_cast<char*>(c.block + 1);
        c.end = reinterpret_cast<char*>(c.block) + kBlockBytes;
        c.carved = 0;
    }
    char* at = c.next;
    c.next += bytes;
    ++c.carved;
    return Piece(c.block, at);
}

void FreeItemMemory(void* at) noexcept { Settle((static_cast<PiecePrefix*>(at) - 1)->block, 1); }

}  // namespace kestrel
