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
    file.SaveString(std::u16string(32000, u'u'));  // written whole, though too long to read back
    EXPECT_TRUE(file.CloseFile());
    EXPECT_EQ(Bytes(), std::string("\x03\0\0\0abc\xfe\xff\xff\xff\0\0\0\0\x02\0\0\0\xe9?", 21) + N(32000) +
                           std::string(32000, 'u'));

    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.LoadString(), u"abc");
    EXPECT_EQ(file.LoadNumeric(), -2);
    EXPECT_EQ(file.LoadString(), u"");
    EXPECT_EQ(file.LoadString(), u"\u00e9?");
    EXPECT_EQ(file.LoadString(), u"");
    file.Skip(32000);
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
