// How a typed query ranks names: what people expect of "Go to Symbol".
#include <gtest/gtest.h>

#include <optional>

#include "search/fuzzy_match.h"

using namespace kestrel;

namespace {

std::optional<int32_t> Score(std::u16string_view query, std::u16string_view name) {
    return FuzzyQuery(query).Score(name);
}

// Whether `better` outranks `worse` for the query; both must match.
::testing::AssertionResult Outranks(std::u16string_view query, std::u16string_view better, std::u16string_view worse) {
    const auto a = Score(query, better), b = Score(query, worse);
    if (!a || !b) return ::testing::AssertionFailure() << "one of them does not match at all";
    if (*a > *b) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << *a << " is not above " << *b;
}

}  // namespace

TEST(FuzzyMatch, UnitsInOrderAndCaseBlind) {
    EXPECT_TRUE(Score(u"drw", u"Draw"));
    EXPECT_TRUE(Score(u"DRAW", u"draw"));
    EXPECT_FALSE(Score(u"wrd", u"Draw"));
    EXPECT_FALSE(Score(u"draws", u"Draw"));
    EXPECT_EQ(Score(u"", u"anything"), 0);
    EXPECT_TRUE(Score(u"\u0436\u0443\u043a", u"\u0416\u0443\u043a"));  // Cyrillic, case-blind
}

TEST(FuzzyMatch, WordStartsContiguousRunsPrefixesAndShortNamesRankHigher) {
    EXPECT_TRUE(Outranks(u"bar", u"foo_bar", u"foobar"));          // after '_'
    EXPECT_TRUE(Outranks(u"bar", u"fooBar", u"foobar"));           // lower-to-upper change
    EXPECT_TRUE(Outranks(u"bar", u"Shape::bar", u"Shapebar"));     // after "::"
    EXPECT_TRUE(Outranks(u"x", u"vec2x", u"vecx"));                // after a digit
    EXPECT_TRUE(Outranks(u"gv", u"getValue", u"dogvalue"));
    EXPECT_TRUE(Outranks(u"abc", u"xabcx", u"xaxbxc"));            // contiguous beats scattered
    EXPECT_TRUE(Outranks(u"get", u"getName", u"forget"));          // prefix
    EXPECT_TRUE(Outranks(u"area", u"Area", u"AreaOfTheWholeShape"));  // shorter
}

TEST(FuzzyMatch, SpaceMatchesAnUnderscoreOrNothing) {
    EXPECT_TRUE(Score(u"empty range", u"empty_range"));
    EXPECT_TRUE(Score(u"empty range", u"EmptyRange"));
    EXPECT_FALSE(Score(u"empty range", u"rangeEmpty"));
    EXPECT_EQ(Score(u"empty range", u"EmptyRange"), Score(u"emptyrange", u"EmptyRange"));
}

TEST(FuzzyMatch, PositionsFollowTheBestAlignment) {
    std::vector<uint32_t> positions;
    ASSERT_TRUE(FuzzyQuery(u"gv").Score(u"dogvalue_getValue", &positions));
    EXPECT_EQ(positions, (std::vector<uint32_t>{9, 12}));
    ASSERT_TRUE(FuzzyQuery(u"abc").Score(u"axbcabc", &positions));
    EXPECT_EQ(positions, (std::vector<uint32_t>{0, 2, 3}));
}

TEST(FuzzyMatch, UnitMaskHoldsWhatAMatchNeeds) {
    // Whatever matches, the name's set holds the query's: the mask may skip names
    // without scoring them, never one that matches.
    const std::u16string names[] = {u"emptyRange", u"x_1", u"\u00e9t\u00e9", u"operator<<", u"Zz9"};
    const std::u16string queries[] = {u"er", u"X1", u"\u00c9", u"<<", u"z9", u"q"};
    for (const auto& q : queries) {
        const FuzzyQuery query(q);
        for (const auto& n : names) {
            if (query.Score(n)) {
                EXPECT_EQ(UnitMask(n) & query.Mask(), query.Mask()) << "query " << q.size();
            }
        }
    }
    EXPECT_NE(UnitMask(u"abc") & FuzzyQuery(u"q").Mask(), FuzzyQuery(u"q").Mask());
}
