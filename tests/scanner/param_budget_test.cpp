// The parameter collector against a plain twin that walks the following lines one at
// a time as the rules read: lists gather at most 65,536 units, and all the lists of
// one scan share one budget of units taken from later lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "common/text.h"
#include "scanner/params.h"
#include "support/scan_recorder.h"

using namespace kestrel;

namespace {

constexpr size_t kMax = 65536;

class PlainCollector {
public:
    PlainCollector(const std::vector<std::u16string>& lines, int64_t budget) : lines_(lines), budget_(budget) {}

    std::u16string Collect(std::u16string_view word, int32_t line) {
        const size_t open = word.find(u'(');
        if (open == std::u16string_view::npos) return u"";
        std::u16string_view text = word.substr(open + 1);
        if (!text.empty() && text.back() == u')') return u"(" + std::u16string(text);
        if (!text.empty() && text.back() == u';' && text.find(u')') != std::u16string_view::npos)
            return u"(" + std::u16string(text.substr(0, text.rfind(u')') + 1));
        collected_.clear();
        past_ = false;
        int depth = 1;
        if (const size_t close = Walk(text, depth); close != std::u16string_view::npos) {
            Add(text.substr(0, close));
            return Enclosed();
        }
        Add(text);
        int64_t taken = 0;
        bool closed = false, stopped = past_;
        for (size_t n = static_cast<size_t>(line) + 1; !stopped && !closed && n < lines_.size(); ++n) {
            std::u16string_view piece = lines_[n];
            const size_t close = Walk(piece, depth);
            closed = close != std::u16string_view::npos;
            if (closed) piece = piece.substr(0, close);
            if (taken + static_cast<int64_t>(piece.size()) > budget_) {
                piece = piece.substr(0, static_cast<size_t>(budget_ - taken));
                stopped = true;
            }
            taken += static_cast<int64_t>(Add(piece));
            stopped = stopped || past_;
        }
        budget_ -= taken;
        return closed || stopped ? Enclosed() : u"()";
    }

private:
    static size_t Walk(std::u16string_view text, int& depth) {
        for (size_t k = 0; k < text.size(); ++k) {
            if (text[k] == u'(') ++depth;
            else if (text[k] == u')' && --depth == 0) return k;
        }
        return std::u16string_view::npos;
    }
    // Units of `piece` taken: all of it, or up to the first unit past kMax.
    size_t Add(std::u16string_view piece) {
        const std::u16string_view trimmed = TrimmedView(piece);
        const size_t room = kMax - collected_.size();
        if (trimmed.size() <= room) {
            collected_ += trimmed;
            return piece.size();
        }
        collected_ += trimmed.substr(0, room);
        past_ = true;
        return static_cast<size_t>(trimmed.data() - piece.data()) + room;
    }
    std::u16string Enclosed() const { return u"(" + TrimSpaces(collected_) + u")"; }

    const std::vector<std::u16string>& lines_;
    int64_t budget_;
    std::u16string collected_;
    bool past_ = false;
};

std::u16string RandomText(std::mt19937& random, size_t length) {
    static constexpr char16_t kUnits[] = u"(()))    ab";
    std::u16string text(length, u' ');
    for (char16_t& c : text) c = kUnits[random() % (std::size(kUnits) - 1)];
    return text;
}

}  // namespace

TEST(ParamBudget, TheCollectorGathersAsThePlainWalkDoes) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        std::vector<std::u16string> lines{u""};
        for (int n = 0; n < 60; ++n) {
            const size_t length = random() % 8 == 0 ? 20000 + random() % 30000 : random() % 40;
            // Mostly opening parentheses, so that lists run on for many lines.
            std::u16string line = RandomText(random, length);
            if (random() % 2) std::replace(line.begin(), line.end(), u')', u'(');
            lines.push_back(std::move(line));
        }
        const auto lineCount = static_cast<int32_t>(lines.size() - 1);
        const int64_t scanned = random() % 3 == 0 ? -65536 + random() % 100000 : ParamCollector::ScannedUnits(lines, lineCount);
        ParamCollector fast(lines, lineCount, scanned);
        PlainCollector plain(lines, std::max<int64_t>(0, 65536 + scanned));
        for (int k = 0; k < 40; ++k) {
            const std::u16string word = u"f(" + RandomText(random, random() % 3 == 0 ? 70000 : random() % 20);
            RWord record;
            record.word = word;
            record.Line = static_cast<int32_t>(1 + random() % lineCount);
            ASSERT_EQ(fast.CollectParams(record), plain.Collect(word, record.Line)) << "list " << k;
        }
    }
}

TEST(ParamBudget, TheScannedTextIsItsLinesJoinedByOneUnitLineEnds) {
    const std::vector<std::u16string> lines{u"", u"ab", u"c", u""};
    EXPECT_EQ(ParamCollector::ScannedUnits(lines, 3), 5);  // "ab\nc\n"
    EXPECT_EQ(ParamCollector::ScannedUnits(lines, 1), 2);
    EXPECT_EQ(ParamCollector::ScannedUnits(lines, 0), 0);
}

TEST(ParamBudget, AFileOfListsThatNeverCloseSpendsTheBudgetOfItsSize) {
    // Each list would take in the rest of the file; the budget is the file's 201,600
    // bytes and 65,536: four lists take 65,536 units each, the fifth what is left,
    // and every later one nothing.
    const std::string filler(999, 'x');
    std::string basic;
    for (int i = 0; i < 200; ++i) basic += "Sub f(\n(" + filler + "\n";
    ASSERT_EQ(basic.size(), 201600u);
    const std::vector<std::string> subs = test::ScanBytes(basic, LANGUAGE_BASIC);
    ASSERT_EQ(subs.size(), 200u);
    std::string rest;
    for (int i = 0; i < 70; ++i) rest += "(" + filler;
    const int64_t left = 65536 + 201600 - 4 * 65536;
    for (int i = 0; i < 4; ++i) EXPECT_EQ(subs[i].size(), std::string("declare\t1\t0\t::f\t()").size() + 65536) << i;
    EXPECT_EQ(subs[3], "declare\t7\t0\t::f\t(" + rest.substr(0, 65536) + ")");
    EXPECT_EQ(subs[4], "declare\t9\t0\t::f\t(" + rest.substr(0, static_cast<size_t>(left)) + ")");
    EXPECT_EQ(subs[5], "declare\t11\t0\t::f\t()");
    EXPECT_EQ(subs[199], "declare\t399\t0\t::f\t()");
}
