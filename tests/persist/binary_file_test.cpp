#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

#include "common/text.h"
#include "persist/binary_file.h"

using namespace kestrel;
namespace fs = std::filesystem;

namespace {

struct BinaryFileFixture : ::testing::Test {
    fs::path dir = fs::temp_directory_path() / ("kestrel-bin-" + std::to_string(::getpid()));
    fs::path path = dir / "records.bin";
    clsBinaryFile file;

    BinaryFileFixture() { fs::create_directories(dir); }
    ~BinaryFileFixture() override {
        file.CloseFile();
        fs::remove_all(dir);
    }
    std::u16string Name() const { return FromUtf8(path.string()); }
    std::string Bytes() const {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    void WriteBytes(const std::string& bytes) const {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out << bytes;
    }
    static std::string Le(int32_t v) {
        uint32_t u = static_cast<uint32_t>(v);
        return {char(u & 0xFF), char(u >> 8 & 0xFF), char(u >> 16 & 0xFF), char(u >> 24 & 0xFF)};
    }
};

}  // namespace

TEST_F(BinaryFileFixture, WritesLittleEndianNumbersAndCountedSingleByteStrings) {
    ASSERT_TRUE(file.OpenFile(Name(), true));
    file.SaveString(u"abc");
    file.SaveNumeric(-2);
    file.SaveString(u"");
    file.SaveString(u"\u00e9\u20ac");  // below 256 as its own byte, anything else as '?'
    EXPECT_TRUE(file.CloseFile());
    EXPECT_EQ(Bytes(), std::string("\x03\0\0\0abc\xfe\xff\xff\xff\0\0\0\0\x02\0\0\0\xe9?", 21));

    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.LoadString(), u"abc");
    EXPECT_EQ(file.LoadNumeric(), -2);
    EXPECT_EQ(file.LoadString(), u"");
    EXPECT_EQ(file.LoadString(), u"\u00e9?");
    EXPECT_FALSE(file.HitEnd());
    EXPECT_EQ(file.LoadNumeric(), 0);  // at the end of the file
    EXPECT_TRUE(file.HitEnd());
    file.Reset();
    EXPECT_FALSE(file.HitEnd());
    EXPECT_EQ(file.LoadNumeric(), 3);
}

TEST_F(BinaryFileFixture, EmptyAndNegativeLengthsConsumeOnlyTheLength) {
    WriteBytes(Le(0) + Le(-5) + Le(7));
    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.LoadString(), u"");
    EXPECT_EQ(file.LoadString(), u"");
    EXPECT_EQ(file.LoadNumeric(), 7);
}

TEST_F(BinaryFileFixture, TheReadLimitLeavesOverlongTextUnskipped) {
    WriteBytes(Le(31999) + std::string(31999, 'x') + Le(32000) + "abcd" + std::string(31996, 'y'));
    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.LoadString(), std::u16string(31999, u'x'));
    EXPECT_EQ(file.LoadString(), u"");
    EXPECT_EQ(file.LoadNumeric(), 0x64636261);  // the first text bytes of the overlong string
}

TEST_F(BinaryFileFixture, AStringCutShortKeepsItsLengthWithNuls) {
    WriteBytes(Le(6) + "ab");
    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.LoadString(), std::u16string(u"ab\0\0\0\0", 6));
    EXPECT_TRUE(file.HitEnd());
}

TEST_F(BinaryFileFixture, WindowsSpanReadBlocksAndTheBytesLeftCountDown) {
    // Three texts of 30,000 bytes: one window over all of them is wider than the 64 KB
    // the reader takes in at a time.
    std::string bytes;
    for (char c : {'a', 'b', 'c'}) bytes += Le(30000) + std::string(30000, c);
    bytes += Le(3) + "\xe9?z" + Le(0) + Le(-1) + Le(40000) + Le(7);
    WriteBytes(bytes);
    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.BytesLeft(), static_cast<int64_t>(bytes.size()));
    EXPECT_EQ(file.LoadNumeric(), 30000);  // the window starts where reading stands
    std::string_view window = file.Window(3 * 30004 - 4);
    EXPECT_EQ(window, bytes.substr(4, 3 * 30004 - 4));
    EXPECT_EQ(file.BytesLeft(), static_cast<int64_t>(bytes.size()) - 4);  // a window reads nothing
    file.Skip(window.size());
    EXPECT_EQ(file.BytesLeft(), 23);
    EXPECT_EQ(file.LoadNumeric(), 3);
    EXPECT_EQ(file.Window(3), "\xe9?z");
    file.Skip(3);
    for (int32_t length : {0, -1, 40000}) {  // empty, negative, overlong: no text follows
        EXPECT_EQ(clsBinaryFile::TextLength(clsBinaryFile::DecodeNumeric(file.Window(4).data())),
                  0u) << length;
        file.Skip(4);
    }
    EXPECT_EQ(clsBinaryFile::TextLength(31999), 31999u);
    EXPECT_EQ(file.LoadNumeric(), 7);
    EXPECT_EQ(file.BytesLeft(), 0);
    EXPECT_FALSE(file.HitEnd());

    WriteBytes(Le(5) + "ab");  // cut short: the missing bytes read as zeros
    ASSERT_TRUE(file.OpenFile(Name(), false));
    EXPECT_EQ(file.Window(9), Le(5) + std::string("ab\0\0\0", 5));
    EXPECT_TRUE(file.HitEnd());
    file.Skip(9);
    EXPECT_EQ(file.BytesLeft(), 0);
    EXPECT_EQ(file.LoadNumeric(), 0);
}

TEST_F(BinaryFileFixture, OpeningMissingFilesFoldersAndExistingFilesForWriting) {
    EXPECT_FALSE(file.OpenFile(FromUtf8((dir / "missing").string()), false));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.OpenFile(FromUtf8(dir.string()), false));
    EXPECT_EQ(file.LoadNumeric(), 0);  // reading a closed file gives zeros, nothing raised
    WriteBytes("old contents");
    ASSERT_TRUE(file.OpenFile(Name(), true));
    file.CloseFile();
    EXPECT_EQ(Bytes(), "");
}

TEST_F(BinaryFileFixture, ATemporaryFileIsCreatedBesideTheTarget) {
    std::u16string temp = file.OpenTemporaryBeside(Name());
    ASSERT_FALSE(temp.empty());
    EXPECT_EQ(fs::path(ToUtf8(temp)).parent_path(), dir);
    file.SaveNumeric(1);
    EXPECT_TRUE(file.CloseFile());
    EXPECT_EQ(fs::file_size(ToUtf8(temp)), 4u);
    EXPECT_TRUE(file.OpenTemporaryBeside(FromUtf8((dir / "no" / "such" / "dir").string())).empty());
}
