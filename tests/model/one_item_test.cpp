// Items of the model and the memory their texts live in.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "common/text.h"
#include "model/class_object.h"
#include "model/item_memory.h"

using namespace kestrel;

namespace {

ItemPtr Item(std::u16string_view name, std::u16string_view params, std::u16string_view keyVal) {
    return std::make_shared<clsOneItem>(name, params, keyVal);
}

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

TEST(OneItem, KeepsEveryKindOfKeyValAsGivenAndEachTextChangesAlone) {
    for (std::u16string_view keyVal : {u"", u"count", u"COUNT(INTN)", u"count#2", u"COUNT", u"count (int n)"}) {
        clsOneItem item(u"count", u"(int n)", keyVal);
        EXPECT_EQ(item.KeyVal(), keyVal);
        EXPECT_EQ(item.HasKeyVal(), !keyVal.empty());
        EXPECT_EQ(item.Name(), u"count");
        EXPECT_EQ(item.Params(), u"(int n)");
        EXPECT_EQ(item.UserData(), u"");
    }
    // Each text changes alone, whatever the key value holds to.
    clsOneItem item(u"Draw", u"( int mode )", u"DRAW(INTMODE)");
    item.SetParams(u"()");
    EXPECT_EQ(item.KeyVal(), u"DRAW(INTMODE)");  // no longer the key of name and parameters
    item.SetName(u"Paint");
    item.SetUserData(u"tag \u00e9");
    EXPECT_EQ(item.KeyVal(), u"DRAW(INTMODE)");

    item.SetKeyVal(u"PAINT()");
    EXPECT_EQ(item.KeyVal(), u"PAINT()");
    item.SetKeyVal(u"Paint#1");
    EXPECT_EQ(item.KeyVal(), u"Paint#1");
    item.SetKeyVal(u"");
    EXPECT_FALSE(item.HasKeyVal());
    EXPECT_EQ(item.UserData(), u"tag \u00e9");

    clsOneItem copy = item;
    item.SetName(u"x");
    EXPECT_EQ(copy.Name(), u"Paint");
    EXPECT_EQ(copy.UserData(), u"tag \u00e9");
}

TEST(OneItem, AClassFindsItsItemsUnderTheirKeysInAnyLetterCase) {
    clsClassObject::Items items;
    items.Add(u"DRAW(INTMODE)", Item(u"Draw", u"( int mode )", u"DRAW(INTMODE)"));
    items.Add(u"count#1", Item(u"count", u"int", u"count#1"));
    items.Add(u"Total", Item(u"Total", u"long", u""));  // keyed by its name
    items.Add(u"Size", Item(u"Size", u"", u"Size"));
    EXPECT_FALSE(items.TryAdd(u"draw(intmode)", Item(u"draw", u"(int mode)", u"DRAW(INTMODE)")));
    EXPECT_FALSE(items.TryAdd(u"TOTAL", Item(u"TOTAL", u"", u"")));

    // The names found under some keys, "-" for none.
    auto names = [&](std::initializer_list<std::u16string_view> keys) {
        std::string found;
        for (std::u16string_view key : keys) found += (items.Find(key) ? ToUtf8(items.Find(key)->Name()) : "-") + " ";
        return found;
    };
    EXPECT_EQ(names({u"draw(intMode)", u"COUNT#1", u"total", u"size", u"DRAW(INTMODE", u"DRAW(INTMODE))", u"count"}),
              "Draw count Total Size - - - ");

    // Enough removals to squeeze the slots out and index the rest anew.
    for (int i = 0; i < 200; ++i) {
        const std::u16string name = u"f" + ToText(i);
        items.Add(UpperCase(name) + u"()", Item(name, u"()", UpperCase(name) + u"()"));
    }
    items.RemoveWhere([](const ItemPtr& item) { return item->Name().starts_with(u"f"); });
    EXPECT_EQ(items.Count(), 4);
    EXPECT_TRUE(items.Remove(u"count#1"));
    EXPECT_EQ(names({u"Draw(IntMode)", u"TOTAL", u"count#1"}), "Draw Total - ");
}

TEST(OneItem, AnItemFiledUnderItsOwnKeyIsFoundWhereverItsSpacesFall) {
    // Every printable ASCII unit (the neighbours of a..z included) and some beyond it, with
    // the spaces of the parameters moved through every place in a run of four units.
    std::u16string name;
    for (char16_t c = u'!'; c <= u'~'; ++c) name += c;
    name += u"\u00e9\u00df\u03b1z";
    clsClassObject::Items items;
    for (int spaces = 0; spaces < 8; ++spaces) {
        const std::u16string params = std::u16string(static_cast<size_t>(spaces), u' ') + u"(int " +
                                      ToText(spaces) + u" )";
        auto item = std::make_shared<clsOneItem>(name, params);
        ASSERT_TRUE(item->SetKeyValToOwn(clsOneItem::OwnKey::FunctionKey));
        const std::u16string key = clsClassObject::MakeFuncKey__(name, params);
        EXPECT_EQ(item->KeyVal(), key);
        ASSERT_TRUE(items.TryAdd(item));
        EXPECT_EQ(items.Find(key), item);
        EXPECT_EQ(items.Find(name + u"(int" + ToText(spaces) + u")"), item);  // in another letter case
        auto same = std::make_shared<clsOneItem>(UpperCase(name), u"(INT" + ToText(spaces) + u")");
        ASSERT_TRUE(same->SetKeyValToOwn(clsOneItem::OwnKey::FunctionKey));
        EXPECT_FALSE(items.TryAdd(same));
    }
    EXPECT_EQ(items.Count(), 8);

    auto variable = std::make_shared<clsOneItem>(u"Total", u"long", u"Total#1");
    ASSERT_TRUE(variable->SetKeyValToOwn(clsOneItem::OwnKey::Name));  // a stored key gives way
    EXPECT_EQ(variable->KeyVal(), u"Total");
    EXPECT_EQ(variable->Params(), u"long");
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
