#pragma once
// Hands out the lines of a text file one at a time. UTF-8 (a leading byte-order mark
// is dropped) or UTF-16 when the file starts with a UTF-16 byte-order mark; a line
// ends at CR LF, CR or LF.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "scanner/unit_set.h"

namespace kestrel {

// Uninitialised, growable byte storage (a std::string would zero what it grows by).
struct ByteBuffer {
    std::unique_ptr<unsigned char[]> data;
    size_t capacity = 0;
};

class clsLoader {
public:
    clsLoader() = default;
    ~clsLoader() { CloseFile(); }
    clsLoader(const clsLoader&) = delete;
    clsLoader& operator=(const clsLoader&) = delete;

    int32_t CurrentLine = 0;  // reserved for the caller; the loader never changes it
    bool EndOfFile = false;   // true once a read has failed or nothing is open
    std::u16string LastLine;  // reserved for the caller; the loader never changes it

    // Back to the state of a new loader. Does not close an open file.
    void Init();
    // Closes any open file first. False when the file cannot be opened (see OpenError).
    bool OpenFile(const std::string& fileName);
    // The next line without its line end. Reading past the last line fails: it gives
    // an empty line and sets EndOfFile, so every file yields one extra empty line.
    std::u16string ReadLine();
    // As ReadLine, into `line` (its old text replaced, its storage reused).
    void ReadLineInto(std::u16string& line);
    // As ReadLineInto, the line then cleaned as CleanLine does, recording its tracked
    // units in `present` (none for a line that comes out empty). A plain ASCII line is
    // decoded and cleaned in one pass. A UTF-8 line that starts with `emptyingStart`
    // after its blanks (a one-line comment that takes the whole line) is passed over
    // unread and left empty.
    void ReadCleanLineInto(std::u16string& line, UnitSet& present, std::string_view emptyingStart = {});
    // Passes over the next line unread when the file is UTF-8 and the line's bytes do
    // not hold `bytes` (not empty); true then. Otherwise reads nothing and answers false.
    bool SkipLineWithout(std::string_view bytes);
    void CloseFile();

    // errno of the last OpenFile that failed, for messages.
    int OpenError() const { return openError_; }

private:
    enum class Encoding { Utf8, Utf16Le, Utf16Be };

    // Reads the next line and, given `present`, cleans it and records its units there.
    void Read(std::u16string& line, UnitSet* present, std::string_view emptyingStart);
    // What NextUtf8Line can tell of a line's bytes as it finds their end: whether
    // every one is below 128, and which tracked units they hold.
    struct LineLook {
        bool ascii = false;
        UnitSet units;
    };
    // The bytes of the next UTF-8 line, without its line end, which is passed over;
    // with `look`, what they hold.
    std::string_view NextUtf8Line(LineLook* look = nullptr);
    // Whether the next line's bytes start with `bytes` after its spaces and tabs.
    bool LineStartsAfterBlanks(std::string_view bytes) const;
    void ReadUtf16Line(std::u16string& line);

    bool open_ = false;
    std::string fileName_;
    int openError_ = 0;
    // The whole file, read at once when it opens. The storage is handed from one loader
    // to the next on the same thread, so scanning many files does not allocate per file.
    ByteBuffer bytes_;
    const unsigned char* data_ = nullptr;
    size_t size_ = 0;
    size_t pos_ = 0;
    Encoding encoding_ = Encoding::Utf8;
};

}  // namespace kestrel
