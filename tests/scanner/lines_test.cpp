// Reading files (encodings, line ends, the extra empty line at the end), then white
// space normalisation and comment removal.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "common/constants.h"
#include "scanner/line_cleaning.h"
#include "scanner/loader.h"
#include "support/scan_recorder.h"

using namespace kestrel;
using Lines = std::vector<std::u16string>;

namespace {

Lines ReadAllLines(const std::string& bytes) {
    test::TempFile file(bytes);
    clsLoader loader;
    loader.Init();
    EXPECT_TRUE(loader.OpenFile(file.path()));
    Lines lines;
    while (!loader.EndOfFile) lines.push_back(loader.ReadLine());
    loader.CloseFile();
    return lines;
}

Lines WithoutComments(Lines lines, int16_t language = LANGUAGE_C) {
    const SyntaxTable syntax = test::SyntaxOf(language);
    return test::WithLineZero(std::move(lines), [&](Lines& all, int32_t count) { RemoveComments(all, count, syntax); });
}

}  // namespace

TEST(Loader, LinesEndAtCrLfCrOrLfInUtf8OrUtf16AndEveryFileEndsWithOneExtraEmptyLine) {
    EXPECT_EQ(ReadAllLines("a\nb"), (Lines{u"a", u"b", u""}));
    EXPECT_EQ(ReadAllLines("a\nb\n"), (Lines{u"a", u"b", u""}));
    EXPECT_EQ(ReadAllLines(""), (Lines{u""}));
    EXPECT_EQ(ReadAllLines("\n"), (Lines{u"", u""}));
    EXPECT_EQ(ReadAllLines("a\r\nb\rc\nd\r\r\ne"), (Lines{u"a", u"b", u"c", u"d", u"", u"e", u""}));
    // UTF-8 drops its byte-order mark.
    EXPECT_EQ(ReadAllLines("\xEF\xBB\xBFint \xC3\xA4;\n"), (Lines{u"int \u00E4;", u""}));
    // Bytes that are not valid UTF-8 become the code point of their value; NUL stays.
    EXPECT_EQ(ReadAllLines(std::string("a\xFF\xC0\x80z\0b", 7)), (Lines{std::u16string(u"a\u00FF\u00C0\u0080z\0b", 7), u""}));
    // UTF-16 in both byte orders.
    EXPECT_EQ(ReadAllLines(std::string("\xFF\xFE" "a\0\r\0\n\0\x34\x12", 10)), (Lines{u"a", u"\u1234", u""}));
    EXPECT_EQ(ReadAllLines(std::string("\xFE\xFF\0a\0\n\x12\x34", 8)), (Lines{u"a", u"\u1234", u""}));
    // A final odd byte is one code unit of its own value.
    EXPECT_EQ(ReadAllLines(std::string("\xFF\xFE" "a\0b", 5)), (Lines{u"ab", u""}));
}

namespace {

// White-space cleaning as plainly as it can be put.
std::u16string CleanedPlainly(std::u16string_view line) {
    std::u16string out;
    for (char16_t c : line) {
        const bool blank = c == u' ' || c == u'\t';
        if (!blank) out.push_back(c);
        else if (!out.empty() && out.back() != u' ') out.push_back(u' ');
    }
    return out;
}

// The tracked units of a text, unit by unit.
UnitSet TrackedOneByOne(std::u16string_view text) {
    UnitSet set;
    for (char16_t c : text) set.Add(c);
    return set;
}

// Whether two sets agree on every tracked unit.
::testing::AssertionResult SameTrackedUnits(const UnitSet& a, const UnitSet& b) {
    for (char16_t unit : kTrackedUnits) {
        const UnitSet needed = TrackedOneByOne({&unit, 1});
        if (a.MayHold(needed) != b.MayHold(needed))
            return ::testing::AssertionFailure() << "they differ on '" << static_cast<char>(unit) << "'";
    }
    return ::testing::AssertionSuccess();
}

}  // namespace

// Plain ASCII lines are decoded and cleaned in one pass, sixteen bytes at a time, and
// other lines cleaned in place eight units at a time; every line must come out as the
// plain cleaning has it, and hold the tracked units its text holds. Random lines put
// blanks, line ends, tracked units and non-ASCII bytes on every side of each chunk.
TEST(Loader, ReadingAndCleaningInOneStepMatchesReadingThenCleaning) {
    // Short lines with every kind of unit, then long plain ASCII lines with few runs
    // of blanks, which are cleaned many units at a time.
    const std::vector<std::vector<std::string>> pieceSets = {
        {" ", "  ", "\t", "a", "bc", "{", "/*", "\"'", "Pv", "\n", "\r", "\r\n", "\xC3\xA4", "\xFF", std::string(1, '\0')},
        {" ", "\t", "a", "bc", "{", "abcbcabcbca", "bcab", "cab", "cba", "ab", "ba", "  ", "\n"}};
    std::mt19937 random(7);
    std::string bytes;
    for (const std::vector<std::string>& pieces : pieceSets)
        for (int k = 0; k < 20000; ++k) bytes += pieces[random() % pieces.size()];
    test::TempFile file(bytes);
    clsLoader plain, cleaning;
    ASSERT_TRUE(plain.OpenFile(file.path()));
    ASSERT_TRUE(cleaning.OpenFile(file.path()));
    std::u16string raw, expected, line;
    for (int n = 1; !plain.EndOfFile; ++n) {
        UnitSet expectedUnits, units;
        plain.ReadLineInto(raw);
        expected = raw;
        CleanLine(expected, expectedUnits);
        ASSERT_EQ(expected, CleanedPlainly(raw)) << "line " << n;
        ASSERT_TRUE(SameTrackedUnits(expectedUnits, TrackedOneByOne(expected))) << "line " << n;
        cleaning.ReadCleanLineInto(line, units);
        ASSERT_EQ(line, expected) << "line " << n;
        ASSERT_TRUE(SameTrackedUnits(units, expectedUnits)) << "line " << n;
    }
    EXPECT_TRUE(cleaning.EndOfFile);
}

// Each byte is sorted into the tracked units by two table look-ups, sixteen bytes at a
// time, up to the line's end inside a block; a unit of a text is narrowed to a byte
// first. Every byte value at places on both sides of a block's edge, followed by a
// line full of tracked units that must not count, and texts of units that narrow to
// the bytes of tracked units, must give what the units give one by one.
TEST(UnitSet, LinesAndTextsHoldExactlyTheTrackedUnitsOfTheirUnits) {
    const std::string trackedLine = "/*\"'{}clasprivteodubEnFSDmAP";
    std::string bytes;
    std::vector<std::string> cases;
    for (int value = 0; value < 256; ++value) {
        if (value == '\n' || value == '\r') continue;
        for (size_t place : {0, 7, 14, 15, 16, 31}) {
            std::string line(place + 1 + place % 2, 'x');
            line[place] = static_cast<char>(value);
            bytes += line + "\n" + trackedLine + "\n";
            cases.push_back("byte " + std::to_string(value) + " at " + std::to_string(place));
        }
    }
    test::TempFile file(bytes);
    clsLoader loader;
    ASSERT_TRUE(loader.OpenFile(file.path()));
    std::u16string line;
    UnitSet units;
    for (const std::string& name : cases) {
        loader.ReadCleanLineInto(line, units);
        ASSERT_TRUE(SameTrackedUnits(units, TrackedOneByOne(line))) << name;
        loader.ReadCleanLineInto(line, units);
    }
    std::mt19937 random(11);
    const std::u16string pool = u"/{'A\u0000\u007F\u00FF\u012F\uFF7B\u8022x ";
    for (int n = 0; n < 2000; ++n) {
        std::u16string text(random() % 40, u' ');
        for (char16_t& c : text) c = pool[random() % pool.size()];
        ASSERT_TRUE(SameTrackedUnits(UnitSet::Of(text), TrackedOneByOne(text))) << n;
    }
}

TEST(Loader, MissingFilesAndDirectoriesDoNotOpen) {
    clsLoader loader;
    EXPECT_FALSE(loader.OpenFile("/nonexistent/kestrel/none.cpp"));
    EXPECT_EQ(loader.OpenError(), ENOENT);
    EXPECT_FALSE(loader.OpenFile("/tmp"));
    EXPECT_EQ(loader.OpenError(), EISDIR);
    EXPECT_FALSE(loader.OpenFile("/dev/zero"));  // would never end
    EXPECT_EQ(loader.OpenError(), ENOTSUP);
    EXPECT_EQ(loader.ReadLine(), u"");
    EXPECT_TRUE(loader.EndOfFile);
}

TEST(CleanLine, CollapsesWhiteSpaceAndDropsLeadingBlanks) {
    for (auto [line, cleaned] : {std::pair<std::u16string, std::u16string>{u"\t\tint  x ;", u"int x ;"},
                                 {u"   ", u""},
                                 {u"a \t b\t", u"a b "},
                                 {u"", u""},
                                 {u"x\r\v", u"x\r\v"},
                                 // indentation ending on, before and past a run of eight units
                                 {u"\t       x", u"x"},
                                 {u"  \t \t  \t \t\t  int a  =  b ; // long enough", u"int a = b ; // long enough"},
                                 {std::u16string(17, u' '), u""}})
        EXPECT_EQ(CleanLine(line), cleaned);
}

TEST(RemoveComments, CutsOneLineAndBlockCommentsInOrderAcrossLines) {
    EXPECT_EQ(WithoutComments({u"int a; // note"}), (Lines{u"int a; "}));  // the blank before stays
    EXPECT_EQ(WithoutComments({u"int a; /* x */ int b;/**/c"}), (Lines{u"int a;  int b;c"}));
    EXPECT_EQ(WithoutComments({u"a // b /* c"}), (Lines{u"a "}));
    // The closing marker is searched from one character after the opening one.
    EXPECT_EQ(WithoutComments({u"a/*/b", u"c"}), (Lines{u"ab", u"c"}));
    // Strings are not known here.
    EXPECT_EQ(WithoutComments({u"s = \"http://x\";"}), (Lines{u"s = \"http:"}));
    // Block comments span lines.
    EXPECT_EQ(WithoutComments({u"/* start", u"middle", u"end */ int c;"}), (Lines{u"", u"", u" int c;"}));
    EXPECT_EQ(WithoutComments({u"a /* open", u"", u"still */ b /* again", u"x", u"*/ c // d"}),
              (Lines{u"a ", u"", u" b ", u"", u" c "}));
    // A comment left open empties everything after it.
    EXPECT_EQ(WithoutComments({u"int a; /* never closed", u"int b;"}), (Lines{u"int a; ", u""}));
    // Basic has only one-line comments.
    EXPECT_EQ(WithoutComments({u"x = 1 ' note", u"/* y */ z"}, LANGUAGE_BASIC), (Lines{u"x = 1 ", u"/* y */ z"}));
}

namespace {

// Comment removal as plainly as it can be put: whole-line searches, the line rebuilt
// after every cut, the sweep repeated while a block comment was cut out.
Lines WithoutCommentsPlainly(Lines lines) {
    const std::u16string olc = u"//", mcs = u"/*", mce = u"*/";
    bool inComment = false;
    for (std::u16string& L : lines) {
        if (L.empty()) continue;
        if (inComment) {
            const size_t e = L.find(mce);
            L = e == std::u16string::npos ? u"" : L.substr(e + mce.size());
            inComment = e == std::u16string::npos;
        }
        for (bool changed = true; changed && !inComment;) {
            changed = false;
            const size_t s = L.find(mcs), o = L.find(olc);
            if (s != std::u16string::npos && (o == std::u16string::npos || s < o)) {
                const size_t e = L.find(mce, s + 1);
                inComment = e == std::u16string::npos;
                L = L.substr(0, s) + (inComment ? u"" : L.substr(e + mce.size()));
                changed = !inComment;
            } else if (o != std::u16string::npos) {
                L.resize(o);
            }
        }
    }
    return lines;
}

}  // namespace

// Every line of up to nine units made of the markers' units and one other, alone and
// inside an open comment, then random ones long enough to span several blocks of the
// vector search: the pass searches on from each cut instead of from the line's start,
// and its order of markers, its one-unit step before the closing search and its
// carried comment flag must come out as the plain version's.
TEST(RemoveComments, AgreesWithRebuildingTheLineAfterEveryCut) {
    const std::u16string units = u"/*x";
    auto check = [](const Lines& lines) {
        EXPECT_EQ(WithoutComments(lines), WithoutCommentsPlainly(lines)) << std::string(lines.back().begin(), lines.back().end());
    };
    std::u16string line;
    std::vector<size_t> digits;
    for (size_t length = 1; length <= 9; ++length) {
        digits.assign(length, 0);
        for (;;) {
            line.clear();
            for (size_t d : digits) line.push_back(units[d]);
            check({line});
            check({u"/*", line, u"a//b"});
            size_t k = 0;
            while (k < length && ++digits[k] == units.size()) digits[k++] = 0;
            if (k == length) break;
        }
    }
    std::mt19937 random(7);
    for (int n = 0; n < 3000; ++n) {
        Lines lines(3);
        for (std::u16string& l : lines) {
            l.resize(random() % 48);
            for (char16_t& c : l) c = u"/*xy "[random() % 5];
        }
        check(lines);
    }
}
