#pragma once
// Hands out the lines of a text file one at a time. UTF-8 (a leading byte-order mark
// is dropped) or UTF-16 when the file starts with a UTF-16 byte-order mark; a line
// ends at CR LF, CR or LF.
#include <cstddef>
#include <cstdint>
#include <string>

namespace kestrel {

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
    void CloseFile();

    // errno of the last OpenFile that failed, for messages.
    int OpenError() const { return openError_; }

private:
    enum class Encoding { Utf8, Utf16Le, Utf16Be };

    std::u16string ReadUtf8Line();
    std::u16string ReadUtf16Line();

    int fd_ = -1;
    std::string fileName_;
    int openError_ = 0;
    // The file's bytes: mapped when it is a regular file, else read into owned_.
    const unsigned char* data_ = nullptr;
    size_t size_ = 0;
    size_t pos_ = 0;
    bool mapped_ = false;
    std::string owned_;
    Encoding encoding_ = Encoding::Utf8;
};

}  // namespace kestrel
