#include <gtest/gtest.h>

#include <string>

#include "common/text.h"
#include "model/key_hash.h"

using namespace kestrel;

namespace {

uint32_t HashInTwo(std::u16string_view text, size_t split) {
    return KeyHash().Add(text.substr(0, split)).Add(text.substr(split)).Value();
}

}  // namespace

TEST(KeyHash, ALongKeyHashesAlikeWhereverItsSpacesItsCaseAndItsSplitFall) {
    // Longer than two of the chunks the units are packed in, with runs of spaces that
    // straddle the chunk edges and units beyond ASCII among them.
    std::u16string key;
    for (int i = 0; key.size() < 150; ++i) key += i % 3 ? u"PARAM" + ToText(i) + u"," : u"\u00c9L\u00c8VE*,";
    const uint32_t whole = KeyHash().Add(key).Value();

    std::u16string spaced;
    for (size_t i = 0; i < key.size(); ++i) {
        spaced += std::u16string(i % 7, u' ');
        const char16_t u = key[i];
        spaced += u >= u'A' && u <= u'Z' ? static_cast<char16_t>(u + 32) : u == u'\u00c9' ? u'\u00e9' : u;
    }
    spaced += u"  ";
    EXPECT_EQ(KeyHash().Add(spaced).Value(), whole);
    for (size_t split = 0; split <= spaced.size(); ++split)
        ASSERT_EQ(HashInTwo(spaced, split), whole) << "split " << split;

    std::u16string changed = key;  // one unit differs near the end
    changed[140] = u'#';
    EXPECT_NE(KeyHash().Add(changed).Value(), whole);
}

TEST(KeyHash, TrailingNulUnitsAndSpacesOnlyKeysAreToldApart) {
    const std::u16string a(u"A"), aNul(u"A\0", 2), aNulNul(u"A\0\0", 3);
    EXPECT_NE(KeyHash().Add(a).Value(), KeyHash().Add(aNul).Value());
    EXPECT_NE(KeyHash().Add(aNul).Value(), KeyHash().Add(aNulNul).Value());
    // Spaces are no units of the key: only spaces hash as the empty key.
    EXPECT_EQ(KeyHash().Add(u"    ").Value(), KeyHash().Value());
    EXPECT_NE(KeyHash().Add(std::u16string(1, u'\0')).Value(), KeyHash().Value());
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
