#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "model/item_memory.h"
#include "model/one_item.h"

using namespace kestrel;

namespace {

// Fills a piece with a pattern of its own and checks it later: pieces that overlapped,
// or a block freed while a piece in it is alive, show up as a changed pattern (and
// under the address sanitizer as a use after free).
struct Piece {
    unsigned char* at;
    size_t bytes;
    unsigned char mark;
    void Fill() const { std::memset(at, mark, bytes); }
    bool Intact() const {
        for (size_t i = 0; i < bytes; ++i)
            if (at[i] != mark) return false;
        return true;
    }
};

std::vector<Piece> Carve(int n, size_t bytes) {
    std::vector<Piece> pieces;
    for (int i = 0; i < n; ++i) {
        const size_t size = bytes + static_cast<size_t>(i % 7) * 10;
        Piece p{static_cast<unsigned char*>(AllocateItemMemory(size)), size, static_cast<unsigned char>(i)};
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p.at) % alignof(void*), 0u);
        p.Fill();
        pieces.push_back(p);
    }
    return pieces;
}

}  // namespace

TEST(ItemMemory, PiecesStayApartAndAliveUntilEachIsFreedInAnyOrder) {
    // Enough pieces to fill several blocks, some too large to share one.
    std::vector<Piece> pieces = Carve(5000, 60);
    for (const Piece& p : Carve(40, 20000)) pieces.push_back(p);
    // Every other piece goes first: each block keeps live pieces while others are freed.
    for (size_t i = 0; i < pieces.size(); i += 2) FreeItemMemory(pieces[i].at);
    for (size_t i = 1; i < pieces.size(); i += 2) ASSERT_TRUE(pieces[i].Intact()) << i;
    for (size_t i = 1; i < pieces.size(); i += 2) FreeItemMemory(pieces[i].at);
    // The block being carved from when all its pieces went is carved on.
    std::vector<Piece> again = Carve(100, 30);
    for (const Piece& p : again) EXPECT_TRUE(p.Intact());
    for (const Piece& p : again) FreeItemMemory(p.at);
}

TEST(ItemMemory, PiecesOutliveTheThreadThatCarvedThemAndMayBeFreedElsewhere) {
    std::vector<Piece> pieces;
    std::thread([&] { pieces = Carve(3000, 48); }).join();
    for (const Piece& p : pieces) ASSERT_TRUE(p.Intact());
    std::thread([&] {
        for (const Piece& p : pieces) FreeItemMemory(p.at);
    }).join();
}

TEST(ItemMemory, ItemsMadeAndLoadedKeepTheirTextsThroughChanges) {
    std::vector<ItemPtr> items;
    for (int i = 0; i < 3000; ++i)
        items.push_back(clsOneItem::New(u"name" + ToText(i), u"(int a" + ToText(i) + u")"));
    const ItemPtr copy = std::make_shared<clsOneItem>(*items[7]);
    items[7]->SetParams(std::u16string(5000, u'x'));  // leaves its room for a block of its own
    items[8]->SetName(u"renamed");
    items.erase(items.begin() + 10, items.begin() + 2000);
    EXPECT_EQ(items[7]->Params().size(), 5000u);
    EXPECT_EQ(items[7]->Name(), u"name7");
    EXPECT_EQ(items[8]->Name(), u"renamed");
    EXPECT_EQ(items[8]->Params(), u"(int a8)");
    EXPECT_EQ(items[10]->Name(), u"name2000");
    EXPECT_EQ(copy->Params(), u"(int a7)");
    const ItemPtr empty = clsOneItem::New(u"", u"");
    EXPECT_TRUE(empty->Name().empty());
    EXPECT_TRUE(empty->Params().empty());
}
