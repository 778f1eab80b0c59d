#include <gtest/gtest.h>

#include "common/text.h"
#include "model/class_object.h"

using namespace kestrel;

namespace {

ItemPtr Item(std::u16string_view name, std::u16string_view params, std::u16string_view keyVal) {
    return std::make_shared<clsOneItem>(name, params, keyVal);
}

}  // namespace

TEST(OneItem, KeepsEveryKindOfKeyValAsGiven) {
    for (std::u16string_view keyVal : {u"", u"count", u"COUNT(INTN)", u"count#2", u"COUNT", u"count (int n)"}) {
        clsOneItem item(u"count", u"(int n)", keyVal);
        EXPECT_EQ(item.KeyVal(), keyVal);
        EXPECT_EQ(item.HasKeyVal(), !keyVal.empty());
        EXPECT_EQ(item.Name(), u"count");
        EXPECT_EQ(item.Params(), u"(int n)");
        EXPECT_EQ(item.UserData(), u"");
    }
}

TEST(OneItem, EachTextChangesAloneWhateverTheKeyValHoldsTo) {
    clsOneItem item(u"Draw", u"( int mode )", u"DRAW(INTMODE)");
    item.SetParams(u"()");
    EXPECT_EQ(item.KeyVal(), u"DRAW(INTMODE)");  // no longer the key of name and parameters
    item.SetName(u"Paint");
    item.SetUserData(u"tag \u00e9");
    EXPECT_EQ(item.Name(), u"Paint");
    EXPECT_EQ(item.Params(), u"()");
    EXPECT_EQ(item.UserData(), u"tag \u00e9");
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

    EXPECT_EQ(items.Find(u"draw(intMode)")->Name(), u"Draw");
    EXPECT_EQ(items.Find(u"COUNT#1")->Name(), u"count");
    EXPECT_EQ(items.Find(u"total")->Name(), u"Total");
    EXPECT_EQ(items.Find(u"size")->Name(), u"Size");
    EXPECT_EQ(items.Find(u"DRAW(INTMODE"), nullptr);
    EXPECT_EQ(items.Find(u"DRAW(INTMODE))"), nullptr);
    EXPECT_EQ(items.Find(u"count"), nullptr);

    // Enough removals to squeeze the slots out and index the rest anew.
    for (int i = 0; i < 200; ++i) {
        const std::u16string name = u"f" + ToText(i);
        items.Add(UpperCase(name) + u"()", Item(name, u"()", UpperCase(name) + u"()"));
    }
    items.RemoveWhere([](const ItemPtr& item) { return item->Name().starts_with(u"f"); });
    EXPECT_EQ(items.Count(), 4);
    EXPECT_TRUE(items.Remove(u"count#1"));
    EXPECT_EQ(items.Find(u"Draw(IntMode)")->Name(), u"Draw");
    EXPECT_EQ(items.Find(u"TOTAL")->Name(), u"Total");
    EXPECT_EQ(items.Find(u"count#1"), nullptr);
}
