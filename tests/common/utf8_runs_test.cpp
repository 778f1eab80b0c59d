// The decoder widens ASCII sixteen bytes at a time and finishes a short ASCII tail by
// rewriting the last sixteen; every split between fast and slow paths must agree with
// decoding one character at a time.
#include <gtest/gtest.h>

#include <string>

#include "common/text.h"

using namespace kestrel;

TEST(Utf8, AnyMixOfAsciiRunsAndOtherBytesDecodesAsCharacterByCharacter) {
    struct Piece {
        std::string bytes;
        std::u16string units;
    };
    const Piece others[] = {{"\xc3\xa9", u"\u00e9"},
                            {"\xf0\x9f\x98\x80", u"\xd83d\xde00"},
                            {"\xff", u"\u00ff"},
                            {"\xe2\x82", u"\u00e2\u0082"}};
    for (const Piece& other : others) {
        for (size_t before = 0; before <= 40; ++before) {
            for (size_t after = 0; after <= 40; ++after) {
                std::string bytes;
                std::u16string expected;
                for (size_t k = 0; k < before; ++k) {
                    bytes += static_cast<char>('a' + k % 26);
                    expected += static_cast<char16_t>(u'a' + k % 26);
                }
                bytes += other.bytes;
                expected += other.units;
                for (size_t k = 0; k < after; ++k) {
                    bytes += static_cast<char>('0' + k % 10);
                    expected += static_cast<char16_t>(u'0' + k % 10);
                }
                ASSERT_EQ(FromUtf8(bytes), expected) << "before " << before << ", after " << after;
                std::u16string appended = u"head";
                AppendUtf8(appended, bytes);
                ASSERT_EQ(appended, u"head" + expected);
            }
        }
    }
}
