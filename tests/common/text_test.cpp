#include <gtest/gtest.h>

#include <string>

#include "common/text.h"

using namespace kestrel;

TEST(UpperCase, MapsEachCodeUnitToItsSimpleUpperForm) {
    EXPECT_EQ(UpperCase(u"abc_XYZ 09"), u"ABC_XYZ 09");
    EXPECT_EQ(UpperCase(u"\u00e9t\u00e9"), u"\u00c9T\u00c9");       // é -> É
    EXPECT_EQ(UpperCase(u"\u00df"), u"\u00df");                     // ß has no simple upper form
    EXPECT_EQ(UpperCase(u"\u03b1\u0444"), u"\u0391\u0424");         // Greek and Cyrillic
    EXPECT_EQ(UpperCase(u"\xd83d"), u"\xd83d");                     // lone surrogate unchanged
    // Texts of every short length, with one unit beyond ASCII at each place or none:
    // ASCII goes eight units at a time and its last few again in an overlapping step.
    for (size_t n = 0; n <= 20; ++n) {
        for (size_t wide = 0; wide <= n; ++wide) {
            std::u16string text;
            for (size_t i = 0; i < n; ++i) text.push_back(i == wide ? u'\u00e9' : u"aZ_m{`"[i % 6]);
            const std::u16string upper = UpperCase(text);
            ASSERT_EQ(upper.size(), n);
            for (size_t i = 0; i < n; ++i) ASSERT_EQ(upper[i], UpperUnit(text[i])) << n << " units, unit " << i;
        }
    }
}

TEST(UpperCase, KeepsWhatItGives) {
    // Collections hash a key's text and its upper-cased form alike on this ground.
    for (char32_t c = 0; c < 0x10000; ++c) {
        const char16_t upper = UpperUnit(static_cast<char16_t>(c));
        ASSERT_EQ(UpperUnit(upper), upper) << "unit " << static_cast<uint32_t>(c);
        ASSERT_EQ(upper == u' ', c == u' ') << "unit " << static_cast<uint32_t>(c);
    }
}

TEST(TrimSpaces, RemovesSpacesOnly) {
    EXPECT_EQ(TrimSpaces(u"  a b  "), u"a b");
    EXPECT_EQ(TrimSpaces(u"\ta\t"), u"\ta\t");
    EXPECT_EQ(TrimSpaces(u"   "), u"");
}

TEST(Utf8, KeepsInvalidBytesAsTheirValueAndEncodesLoneSurrogates) {
    EXPECT_EQ(FromUtf8("\xc0\xaf"), u"\u00c0\u00af");               // overlong
    EXPECT_EQ(FromUtf8("\xed\xa0\x80"), u"\u00ed\u00a0\u0080");     // encoded surrogate
    EXPECT_EQ(FromUtf8("\xf4\x90\x80\x80"), u"\u00f4\u0090\u0080\u0080");  // above U+10FFFF
    EXPECT_EQ(FromUtf8(std::string("a\0b", 3)), std::u16string(u"a\0b", 3));
    // Surrogate pairs encode as one character, lone surrogates as three bytes.
    EXPECT_EQ(ToUtf8(u"a\u00e9"), "a\xc3\xa9");
    EXPECT_EQ(ToUtf8(u"\xd83d\xde00"), "\xf0\x9f\x98\x80");
    EXPECT_EQ(ToUtf8(u"\xd83d"), "\xed\xa0\xbd");
    EXPECT_EQ(ToUtf8(u"\xde00x"), "\xed\xb8\x80x");
}

// The decoder widens ASCII sixteen bytes at a time and finishes a short ASCII tail by
// rewriting the last sixteen; every split between fast and slow paths must agree with
// decoding one character at a time.
TEST(Utf8, AnyMixOfAsciiRunsAndOtherBytesDecodesAsCharacterByCharacter) {
    struct Piece {
        std::string bytes;
        std::u16string units;
    };
    const Piece others[] = {{"\xc3\xa9", u"\u00e9"},
                            {"\xf0\x9f\x98\x80", u"\xd83d\xde00"},
                            {"\xff", u"\u00ff"},
                            {"\xe2\x82", u"\u00e2\u0082"}};
    const std::string letters = "abcdefghijklmnopqrstuvwxyzabcdefghijklmn", digits = letters;
    for (const Piece& other : others) {
        for (size_t before = 0; before <= 40; ++before) {
            for (size_t after = 0; after <= 40; ++after) {
                const std::string head = letters.substr(0, before), tail = digits.substr(0, after);
                const std::string bytes = head + other.bytes + tail;
                const std::u16string expected = std::u16string(head.begin(), head.end()) + other.units +
                                                std::u16string(tail.begin(), tail.end());
                ASSERT_EQ(FromUtf8(bytes), expected) << "before " << before << ", after " << after;
                std::u16string appended = u"head";
                AppendUtf8(appended, bytes);
                ASSERT_EQ(appended, u"head" + expected);
            }
        }
    }
}
