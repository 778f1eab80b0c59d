#include "scanner/text_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

namespace kestrel {
namespace {

// The vectorised searches against the standard library's, on texts of every length
// around their eight- and sixteen-unit blocks, with the sought units at every place:
// first, last, twice, straddling two blocks, and absent.
TEST(TextSearch, AgreesWithTheStandardSearchesAtEveryPlaceAndLength) {
    constexpr size_t npos = std::u16string_view::npos;
    for (size_t length = 0; length <= 40; ++length) {
        for (size_t at = 0; at <= length; ++at) {
            std::u16string hay(length, u'a');
            for (size_t k = at; k < length; k += 7) hay[k] = u':';
            if (at + 1 < length) hay[at + 1] = u'=';
            SCOPED_TRACE(std::string(hay.begin(), hay.end()));
            const std::u16string_view h = hay;
            for (std::u16string_view needle : {u":", u":=", u"a:", u"=a", u"aaaaaaaaaaa", u"b"}) {
                for (size_t from = 0; from <= length; from += 3) EXPECT_EQ(FindText(h, needle, from), h.find(needle, from));
                EXPECT_EQ(FindLastText(h, needle), h.rfind(needle));
            }
            for (auto [first, second] : {std::pair<std::u16string_view, std::u16string_view>{u"a:", u":="}, {u":=", u":"},
                                         {u"=a", u""}, {u"", u"b"}, {u"b", u"aaaaaaaaaaa"}}) {
                for (size_t from = 0; from <= length; from += 3) {
                    const size_t a = first.empty() ? npos : h.find(first, from), b = second.empty() ? npos : h.find(second, from);
                    const EarlierFound found = FindEarlierOf(h, first, second, from);
                    EXPECT_EQ(found.at, std::min(a, b));
                    if (found.at != npos) {
                        EXPECT_EQ(found.second, b < a);
                    }
                }
            }
            EXPECT_EQ(FindUnit(h, u'=', at), h.find(u'=', at));
            EXPECT_EQ(FindLastUnit(h, u':'), h.rfind(u':'));
        }
    }
}

}  // namespace
}  // namespace kestrel
