// Items of the model and the memory their texts live in.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "common/text.h"
#include "model/class_object.h"
#include "model/item_memory.h"

using namespace kestrel;

namespace {

// Fills a piece with a pattern of its own and checks it later: pieces that overlapped,
// or a block freed while a piece in it is alive, show up as a changed pattern (and
// under the address sanitizer as a use after free).
struct Piece {
    unsigned char* at;
    size_t bytes;
    unsigned char mark;
    bool Intact() const { return std::all_of(at, at + bytes, [&](unsigned char b) { return b == mark; }); }
};

std::vector<Piece> Carve(int n, size_t bytes) {
    std::vector<Piece> pieces;
    for (int i = 0; i < n; ++i) {
        const size_t size = bytes + static_cast<size_t>(i % 7) * 10;
        Piece p{static_cast<unsigned char*>(AllocateItemMemory(size)), size, static_cast<unsigned char>(i)};
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p.at) % alignof(void*), 0u);
        std::memset(p.at, p.mark, size);
        pieces.push_back(p);
    }
    return pieces;
}

}  // namespace

TEST(OneItem, KeepsItsKeyValAsGivenWhileTheOtherTextsChange) {
    clsOneItem item(u"Draw", u"( int mode )", u"DRAW(INTMODE)");
    item.SetParams(std::u16string(5000, u'x'));  // too long to share a block with the others
    item.SetName(u"Paint");
    item.SetUserData(u"tag \u00e9");
    EXPECT_EQ(item.KeyVal(), u"DRAW(INTMODE)");  // no longer the key of name and parameters
    item.SetKeyVal(u"Paint#1");
    EXPECT_EQ(item.KeyVal(), u"Paint#1");
    clsOneItem copy = item;
    item.SetKeyVal(u"");
    item.SetName(u"x");
    EXPECT_FALSE(item.HasKeyVal());
    EXPECT_EQ(copy.Name(), u"Paint");
    EXPECT_EQ(copy.Params(), std::u16string(5000, u'x'));
    EXPECT_EQ(copy.UserData(), u"tag \u00e9");
    EXPECT_EQ(copy.KeyVal(), u"Paint#1");
}

TEST(OneItem, AnItemTakesItsOwnKeyUnlessItHasNone) {
    auto item = std::make_shared<clsOneItem>(u"Draw", u" ( int  mode )");
    ASSERT_TRUE(item->SetKeyValToOwn(clsOneItem::OwnKey::FunctionKey));
    EXPECT_EQ(item->KeyVal(), clsClassObject::MakeFuncKey__(u"Draw", u" ( int  mode )"));
    auto variable = std::make_shared<clsOneItem>(u"Total", u"long", u"Total#1");
    ASSERT_TRUE(variable->SetKeyValToOwn(clsOneItem::OwnKey::Name));  // a stored key gives way
    EXPECT_EQ(variable->KeyVal(), u"Total");
    clsOneItem blank(u"  ", u" ");
    EXPECT_FALSE(blank.SetKeyValToOwn(clsOneItem::OwnKey::FunctionKey));  // no key to rebuild
    EXPECT_FALSE(blank.HasKeyVal());
}

TEST(ItemMemory, PiecesStayApartAndAliveUntilEachIsFreedInAnyOrderOnAnyThread) {
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
    // Pieces outlive the thread that carved them and may be freed on another.
    std::thread([&] { pieces = Carve(3000, 48); }).join();
    for (const Piece& p : pieces) ASSERT_TRUE(p.Intact());
    std::thread([&] {
        for (const Piece& p : pieces) FreeItemMemory(p.at);
    }).join();
}
