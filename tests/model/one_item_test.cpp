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
