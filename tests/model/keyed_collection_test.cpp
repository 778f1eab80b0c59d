// Collection keys: their hash and the keyed container of the model.
#include <gtest/gtest.h>

#include <string>

#include "model/key_hash.h"
#include "model/keyed_collection.h"

using namespace kestrel;

namespace {

using Numbers = KeyedCollection<int>;

uint32_t HashInTwo(std::u16string_view text, size_t split) {
    return KeyHash().Add(text.substr(0, split)).Add(text.substr(split)).Value();
}

}  // namespace

TEST(KeyedCollection, FindsByPositionOrByAKeyComparedCaseBlindWithItsSpaces) {
    // Spaces do not count towards a key's hash, but they do count towards the key; the
    // empty string is an ordinary key.
    Numbers c;
    int n = 0;
    for (std::u16string_view key : {u"beta", u"Alpha", u"", u"a b", u"ab", u" \u00e9t\u00e9 x", u"\u00c9T\u00c9X"})
        c.Add(key, std::make_shared<int>(++n));
    std::vector<int> order;
    for (const auto& v : c) order.push_back(*v);
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(*c.At(3), 3);
    EXPECT_EQ(c.At(0), nullptr);
    EXPECT_EQ(c.At(8), nullptr);
    const std::pair<std::u16string_view, int> lookups[] = {
        {u"ALPHA", 2}, {u"", 3},  {u"gamma", 0}, {u"A B", 4}, {u"aB", 5}, {u" \u00c9T\u00c9 X", 6}, {u"\u00e9t\u00e9x", 7},
        {u"a  b", 0},  {u"\u00e9t\u00e9 x", 0},
    };
    for (const auto& [key, value] : lookups) {
        const auto found = c.Find(key);
        EXPECT_EQ(found ? *found : 0, value) << ToUtf8(std::u16string(key));
    }
    // An existing key in any letter case is refused, by Add as an error; so are misses by Item.
    EXPECT_FALSE(c.TryAdd(u"A B", std::make_shared<int>(0)));
    EXPECT_THROW(c.Add(u"BETA", std::make_shared<int>(0)), RuntimeError);
    EXPECT_EQ(c.Count(), 7);
    EXPECT_THROW(c.Item(8), RuntimeError);
    EXPECT_THROW(c.Item(u"nope"), RuntimeError);
}

TEST(KeyedCollection, RemoveWhereSweepsInOrderAndStopsAtAnError) {
    Numbers c;
    for (int i = 1; i <= 10; ++i) c.Add(ToText(i), std::make_shared<int>(i));
    std::vector<int> seen;
    c.RemoveWhere([&](const std::shared_ptr<int>& v) {
        seen.push_back(*v);
        return *v % 2 == 0;
    });
    EXPECT_EQ(seen.size(), 10u);
    ASSERT_EQ(c.Count(), 5);
    for (int i = 1; i <= 5; ++i) EXPECT_EQ(*c.At(i), 2 * i - 1);

    EXPECT_THROW(c.RemoveWhere([](const std::shared_ptr<int>& v) {
        if (*v == 5) throw RuntimeError(kErrInvalidCall, "stop");
        return true;
    }),
                 RuntimeError);
    ASSERT_EQ(c.Count(), 3);  // 1 and 3 went, 5 and everything after stayed
    EXPECT_EQ(*c.At(1), 5);
}

TEST(KeyedCollection, PositionsHoldWhileEntriesComeAndGoInTurns) {
    // Against a plain vector: appends after removals (by position and by key), a
    // squeeze, removals again, and draining.
    Numbers c;
    std::vector<int> model;
    int next = 1;
    auto check = [&] {
        ASSERT_EQ(c.Count(), static_cast<int32_t>(model.size()));
        for (size_t i = 0; i < model.size(); ++i) ASSERT_EQ(*c.At(static_cast<int32_t>(i + 1)), model[i]);
    };
    auto add = [&](int count) {
        for (int k = 0; k < count; ++k, ++next) {
            c.Add(ToText(next), std::make_shared<int>(next));
            model.push_back(next);
        }
        check();
    };
    auto remove = [&](int count, int stride) {
        for (int k = 0; k < count && !model.empty(); ++k) {
            const size_t at = static_cast<size_t>(k * stride) % model.size();
            ASSERT_TRUE(k % 2 ? c.Remove(ToText(model[at])) : c.Remove(static_cast<int32_t>(at + 1)));
            ASSERT_FALSE(c.Remove(ToText(model[at])));
            model.erase(model.begin() + static_cast<std::ptrdiff_t>(at));
        }
        check();
    };
    add(3000);
    remove(400, 7);
    add(500);
    remove(2600, 3);  // enough holes to squeeze them out
    add(5);
    EXPECT_EQ(*c.Find(ToText(next - 1)), next - 1);
    while (!model.empty()) remove(100, 0);  // "remove position 1 until empty", as a project is closed
    EXPECT_EQ(c.begin(), c.end());
    c.Add(u"1", std::make_shared<int>(-1));  // a removed key is free again
    EXPECT_EQ(*c.At(1), -1);
}

TEST(KeyHash, ALongKeyHashesAndIsFoundAlikeWhereverItsSpacesItsCaseAndItsSplitFall) {
    // Longer than two of the chunks the units are packed in, with runs of spaces that
    // straddle the chunk edges and units beyond ASCII among them.
    std::u16string key;
    for (int i = 0; key.size() < 150; ++i) key += i % 3 ? u"PARAM" + ToText(i) + u"," : u"\u00c9L\u00c8VE*,";
    const uint32_t whole = KeyHash().Add(key).Value();
    Numbers c;
    c.Add(key, std::make_shared<int>(1));
    c.Add(key + u"X", std::make_shared<int>(2));

    std::u16string spaced;
    for (size_t i = 0; i < key.size(); ++i) {
        spaced += std::u16string(i % 7, u' ');
        const char16_t u = key[i];
        spaced += u >= u'A' && u <= u'Z' ? static_cast<char16_t>(u + 32) : u == u'\u00c9' ? u'\u00e9' : u;
    }
    spaced += u"  ";
    EXPECT_EQ(KeyHash().Add(spaced).Value(), whole);
    for (size_t split = 0; split <= spaced.size(); ++split) {
        ASSERT_EQ(HashInTwo(spaced, split), whole) << "split " << split;
        const std::u16string_view all(spaced);
        const auto probe = c.LocateJoined(all.substr(0, split), all.substr(split));
        ASSERT_NE(probe.found, nullptr) << "split " << split;
        EXPECT_EQ(*probe.found, 1);
    }
    EXPECT_EQ(c.LocateJoined(spaced, u"x").found, c.Find(key + u"X"));
    EXPECT_EQ(c.LocateJoined(spaced, u"y").found, nullptr);

    std::u16string changed = key;  // one unit differs near the end
    changed[140] = u'#';
    EXPECT_NE(KeyHash().Add(changed).Value(), whole);
    Numbers spacedKey;  // a key that holds a space is not the joined key without it
    spacedKey.Add(u"F (INT)", std::make_shared<int>(1));
    EXPECT_EQ(spacedKey.LocateJoined(u"f", u"(int)").found, nullptr);
}

TEST(KeyHash, PackingEightAtATimeKeepsWhatPackingOneByOneKeeps) {
    // Texts of every length up to three groups of eight, drawn from letters of both
    // cases, spaces, punctuation and units beyond ASCII (which make a group go one by one).
    const std::u16string alphabet = u"aZ z_(,)* \u00e9\u00c9\u0131";
    uint32_t seed = 12345;
    for (int round = 0; round < 2000; ++round) {
        std::u16string text(static_cast<size_t>(round % 25), u' ');
        for (char16_t& u : text) {
            seed = seed * 1103515245u + 12345u;
            u = alphabet[(seed >> 16) % (round % 3 ? 7 : alphabet.size())];
        }
        std::u16string packed(text.size(), u'\0'), oneByOne(text.size(), u'\0');
        packed.resize(PackKeyUnits(text.data(), text.size(), packed.data()));
        oneByOne.resize(PackKeyUnitsOneByOne(text.data(), text.size(), oneByOne.data()));
        ASSERT_EQ(packed, oneByOne) << "round " << round;
    }
}
