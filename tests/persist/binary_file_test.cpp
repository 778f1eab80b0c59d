#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "persist/binary_file.h"
#include "project_support.h"

using namespace kestrel;
using namespace kestrel::test;

namespace {

struct BinaryFileFixture : ::testing::Test {
    ScratchDir dir;
    const std::string path = dir / "records.bin";
    clsBinaryFile file;

    ~BinaryFileFixture() override { file.CloseFile(); }
    std::u16string Name() const { return FromUtf8(path); }
    std::string Bytes() const { return ReadFileBytes(path); }
    void WriteBytes(const std::string& bytes) const { WriteFileBytes(path, bytes); }
};

}  // namespace

TEST_F(BinaryFileFixture, WritesLittleEndianNumbersAndCountedSingleByteStrings) {
    ASSERT_TRUE(file.OpenFile(Name(), true));
    file.SaveString(u"abc");
    file.SaveNumeric(-2);
    file.SaveString(u"");
    file.SaveString(u"\u00e9\u20ac");  // below 256 as its own byte, anything else as '?'
    file.SaveString(std::u16string(32000, u'u'));  // cut to the longest string a reader takes
    EXPECT_TRUE(file.CloseFile());
    EXPECT_EQ(Bytes(), std::string("\x03\0\0\0abc\xfe\xff\xff\xff\0\0\0\0\x02\0\0\0\xe9?", 21) + N(31999) +
                           std::string(31999, 'u'));

    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.LoadString(), u"abc");
    EXPECT_EQ(file.LoadNumeric(), -2);
    EXPECT_EQ(file.LoadString(), u"");
    EXPECT_EQ(file.LoadString(), u"\u00e9?");
    EXPECT_EQ(file.LoadString(), std::u16string(31999, u'u'));
    EXPECT_FALSE(file.HitEnd());
    EXPECT_EQ(file.LoadNumeric(), 0);  // at the end of the file
    EXPECT_TRUE(file.HitEnd());
    file.Reset();
    EXPECT_FALSE(file.HitEnd());
    EXPECT_EQ(file.LoadNumeric(), 3);
}

TEST_F(BinaryFileFixture, StringsOfEveryShortLengthReadBackUnitForUnit) {
    // Texts are narrowed and widened a few units at a time, the last ones again as part
    // of a step that overlaps the one before; bytes above 127 must not come back
    // sign-extended, and a unit of 256 or more is '?' whatever its low byte.
    std::vector<std::u16string> texts, expected;
    for (size_t n = 0; n <= 24; ++n) {
        std::u16string text, back;
        for (size_t i = 0; i < n; ++i) {
            const char16_t unit = static_cast<char16_t>(i % 3 == 0 ? u'a' + i : i % 3 == 1 ? 0xA0 + i : 0x100 * i + u'A');
            text.push_back(unit);
            back.push_back(unit < 256 ? unit : u'?');
        }
        texts.push_back(text);
        expected.push_back(back);
    }
    ASSERT_TRUE(file.OpenFile(Name(), true));
    for (const std::u16string& text : texts) file.SaveString(text);
    ASSERT_TRUE(file.CloseFile());
    ASSERT_TRUE(file.OpenFile(Name(), false));
    for (const std::u16string& text : expected) EXPECT_EQ(file.LoadString(), text) << text.size() << " units";
}

TEST_F(BinaryFileFixture, EmptyNegativeOverlongAndCutShortStringsConsumeOnlyTheLength) {
    WriteBytes(N(0) + N(-5) + N(31999) + std::string(31999, 'x') + N(32000) + "abcd" + std::string(31996, 'y') + N(6) +
               "ab");
    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.LoadString(), u"");
    EXPECT_EQ(file.LoadString(), u"");
    EXPECT_EQ(file.LoadString(), std::u16string(31999, u'x'));
    EXPECT_EQ(file.LoadString(), u"");
    EXPECT_EQ(file.LoadNumeric(), 0x64636261);  // the first text bytes of the overlong string
    file.Skip(31996);
    EXPECT_FALSE(file.HitEnd());
    EXPECT_EQ(file.LoadString(), std::u16string(u"ab\0\0\0\0", 6));  // cut short: the length is kept
    EXPECT_TRUE(file.HitEnd());
    EXPECT_EQ(file.BytesLeft(), 0);
}

TEST_F(BinaryFileFixture, WindowsSpanReadBlocksAndTheBytesLeftCountDown) {
    // Three texts of 30,000 bytes: one window over all of them is wider than the 64 KB
    // the reader takes in at a time.
    std::string bytes;
    for (char c : {'a', 'b', 'c'}) bytes += N(30000) + std::string(30000, c);
    bytes += N(3) + "\xe9?z" + N(7);
    WriteBytes(bytes);
    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.LoadNumeric(), 30000);  // the window starts where reading stands
    std::string_view window = file.Window(3 * 30004 - 4);
    EXPECT_EQ(window, bytes.substr(4, 3 * 30004 - 4));
    EXPECT_EQ(file.BytesLeft(), static_cast<int64_t>(bytes.size()) - 4);  // a window reads nothing
    file.Skip(window.size());
    EXPECT_EQ(file.LoadNumeric(), 3);
    EXPECT_EQ(file.Window(3), "\xe9?z");
    file.Skip(3);
    EXPECT_EQ(file.LoadNumeric(), 7);
    EXPECT_EQ(file.BytesLeft(), 0);
    EXPECT_FALSE(file.HitEnd());
}

TEST_F(BinaryFileFixture, OpeningMissingFilesFoldersAndExistingFilesForWriting) {
    EXPECT_FALSE(file.OpenFile(FromUtf8(dir / "missing"), false));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.OpenFile(FromUtf8(dir.path().string()), false));
    EXPECT_EQ(file.LoadNumeric(), 0);  // reading a closed file gives zeros, nothing raised
    WriteBytes("old contents");
    ASSERT_TRUE(file.OpenFile(Name(), true));
    file.CloseFile();
    EXPECT_EQ(Bytes(), "");
}

TEST_F(BinaryFileFixture, Utf8StringsCountBytesAndReadBackWhole) {
    const std::u16string texts[] = {
        u"abc", u"\u00e9\u20ac", u"\u043f\u0440\u043e\u0435\u043a\u0442", u"\u30c7\u30fc\u30bf",
        u"\U0001F600x",                                      // outside the Basic Multilingual Plane
        std::u16string(u"a\xD800z\xDC00", 4),                // lone surrogates, as a host may hand them over
        u"",
    };
    ASSERT_TRUE(file.OpenFile(Name(), true));
    file.SetTextEncoding(clsBinaryFile::TextEncoding::Utf8);
    for (const std::u16string& text : texts) file.SaveString(text);
    ASSERT_TRUE(file.CloseFile());
    EXPECT_EQ(Bytes(), N(3) + "abc" + N(5) + "\xc3\xa9\xe2\x82\xac" + N(12) + "\xd0\xbf\xd1\x80\xd0\xbe\xd0\xb5\xd0\xba\xd1\x82" +
                           N(9) + "\xe3\x83\x87\xe3\x83\xbc\xe3\x82\xbf" + N(5) + "\xf0\x9f\x98\x80x" + N(8) +
                           "a\xed\xa0\x80z\xed\xb0\x80" + N(0));

    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.Encoding(), clsBinaryFile::TextEncoding::OneBytePerUnit);  // each file starts so
    file.SetTextEncoding(clsBinaryFile::TextEncoding::Utf8);
    for (const std::u16string& text : texts) EXPECT_EQ(file.LoadString(), text) << ToUtf8(text);
    EXPECT_FALSE(file.HitEnd());
    file.CloseFile();
    EXPECT_EQ(file.Encoding(), clsBinaryFile::TextEncoding::OneBytePerUnit);
}

TEST_F(BinaryFileFixture, LongUtf8StringsAreCutAtTheLastWholeCharacterThatFits) {
    // 31,999 bytes at most: a character that would cross the limit goes, whole.
    const std::u16string euroAtTheEdge = std::u16string(31996, u'a') + u"\u20ac\u20ac";  // 31,999 + 3 bytes
    const std::u16string pairAtTheEdge = std::u16string(31996, u'a') + u"\U0001F600";   // 31,996 + 4 bytes
    const std::u16string cyrillic(20000, u'\u0436');                                     // 40,000 bytes
    ASSERT_TRUE(file.OpenFile(Name(), true));
    file.SetTextEncoding(clsBinaryFile::TextEncoding::Utf8);
    for (const std::u16string& text : {euroAtTheEdge, pairAtTheEdge, cyrillic}) file.SaveString(text);
    file.SaveNumeric(7);
    ASSERT_TRUE(file.CloseFile());
    ASSERT_TRUE(file.OpenFile(Name(), false));
    file.SetTextEncoding(clsBinaryFile::TextEncoding::Utf8);
    EXPECT_EQ(file.LoadString(), euroAtTheEdge.substr(0, 31997));
    EXPECT_EQ(file.LoadString(), pairAtTheEdge.substr(0, 31996));
    EXPECT_EQ(file.LoadString(), cyrillic.substr(0, 15999));
    EXPECT_EQ(file.LoadNumeric(), 7);  // each cut string was read whole: nothing after it moved
    EXPECT_EQ(file.BytesLeft(), 0);
}

TEST_F(BinaryFileFixture, TheReadLimitCountsUtf8Bytes) {
    // 16,000 two-byte characters are 32,000 bytes: too long to read, though fewer units.
    std::string twoByteCharacters;
    for (int i = 0; i < 16000; ++i) twoByteCharacters += "\xd0\xb6";
    WriteBytes(N(32000) + twoByteCharacters + N(2) + "\xd0\xb6");
    ASSERT_TRUE(file.OpenFile(Name(), false));
    file.SetTextEncoding(clsBinaryFile::TextEncoding::Utf8);
    EXPECT_EQ(file.LoadString(), u"");
    file.Skip(32000);
    EXPECT_EQ(file.LoadString(), u"\u0436");
}

TEST_F(BinaryFileFixture, AUnitThatDoesNotFitOneByteIsNoticedWhereverItStands) {
    // Narrowed eight, four or one at a time: a unit of 256 or more at any place counts.
    ASSERT_TRUE(file.OpenFile(Name(), true));
    for (size_t n = 1; n <= 24; ++n) {
        for (size_t at = 0; at < n; ++at) {
            std::u16string text(n, u'\u00ff');
            text[at] = static_cast<char16_t>(0x100 << (at % 8));
            file.Restart();
            file.SaveString(std::u16string(n, u'\u00ff'));
            EXPECT_FALSE(file.UnitsDidNotFit()) << n;
            file.SaveString(text);
            EXPECT_TRUE(file.UnitsDidNotFit()) << n << " units, the wide one at " << at;
        }
    }
    // Restarting empties the file, also of what went to the disk already, and forgets
    // the unit.
    for (int i = 0; i < 4; ++i) file.SaveString(std::u16string(30000, u'x'));
    file.Restart();
    EXPECT_FALSE(file.UnitsDidNotFit());
    file.SaveString(u"ab");
    ASSERT_TRUE(file.CloseFile());
    EXPECT_EQ(Bytes(), N(2) + "ab");
}
