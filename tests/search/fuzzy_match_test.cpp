// How a typed query ranks names: what people expect of "Go to Symbol".
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <random>

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

namespace {

// Every alignment of the query in the name, tried one by one and scored by the rules
// as written: the plain twin of the matcher's table, for short names.
int32_t BestByTryingAll(std::u16string_view query, std::u16string_view name) {
    constexpr int32_t kNone = INT32_MIN;
    auto fold = [](char16_t c) { return FoldUnit(c); };
    auto isWord = [](char16_t c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c >= 128;
    };
    auto bonus = [&](size_t j) -> int32_t {
        if (j == 0 || !isWord(name[j - 1])) return 8;
        const char16_t p = name[j - 1], c = name[j];
        const bool pDigit = p >= u'0' && p <= u'9', cDigit = c >= u'0' && c <= u'9';
        if (((p >= u'a' && p <= u'z') || (p >= 128 && FoldUnit(p) != p)) && c >= u'A' && c <= u'Z') return 7;
        if (pDigit != cDigit) return 7;
        return 0;
    };
    std::u16string q;
    for (char16_t c : query)
        if (c != u' ') q += fold(c);
    int32_t best = kNone;
    std::vector<size_t> at(q.size());
    std::function<void(size_t, size_t)> place = [&](size_t i, size_t from) {
        if (i == q.size()) {
            int32_t score = 0;
            for (size_t k = 0; k < at.size(); ++k) {
                score += 16 + bonus(at[k]) * (k == 0 ? 2 : 1) + (k == 0 && at[k] == 0 ? 8 : 0);
                if (k > 0) {
                    const size_t gap = at[k] - at[k - 1] - 1;
                    score += gap == 0 ? 4 : -3 - static_cast<int32_t>(gap - 1);
                }
            }
            best = std::max(best, score);
            return;
        }
        for (size_t j = from; j < name.size(); ++j)
            if (fold(name[j]) == q[i]) {
                at[i] = j;
                place(i + 1, j + 1);
            }
    };
    place(0, 0);
    if (best == kNone) return kNone;
    return best - static_cast<int32_t>(std::min<size_t>(name.size() - q.size(), 32)) / 4;
}

}  // namespace

TEST(FuzzyMatch, TheTableScoresTheBestOfEveryAlignment) {
    // Two far-apart alignments: what the table held for an earlier unit must not pass
    // for a later one.
    const std::u16string far = u"a" + std::u16string(30, u'x') + u"b" + std::u16string(30, u'x') + u"c";
    EXPECT_EQ(FuzzyQuery(u"abc").Score(far + far), BestByTryingAll(u"abc", far + far));
    // Short names with long queries, and long names (long gaps) with short ones.
    std::mt19937 random(7);
    const std::u16string units = u"aAbB_c1";
    for (int round = 0; round < 24000; ++round) {
        const bool longName = round % 6 == 0;
        std::u16string name, query;
        for (size_t n = 1 + random() % (longName ? 40 : 12); n-- > 0;) name += units[random() % (longName ? 4 : units.size())];
        for (size_t n = 1 + random() % (longName ? 3 : 6); n-- > 0;) query += units[random() % (longName ? 4 : units.size())];
        const auto score = FuzzyQuery(query).Score(name);
        const int32_t expected = BestByTryingAll(query, name);
        if (expected == INT32_MIN) {
            EXPECT_FALSE(score) << round;
        } else {
            ASSERT_TRUE(score) << round;
            EXPECT_EQ(*score, expected) << "round " << round;
        }
    }
}
