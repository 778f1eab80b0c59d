#include "persist/binary_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/text.h"

namespace kestrel {

namespace {

constexpr size_t kBufferSize = 64 * 1024;

}  // namespace

clsBinaryFile::~clsBinaryFile() {
    if (IsOpen()) CloseFile();
}

bool clsBinaryFile::OpenFile(const std::u16string& szFileName, bool OpenForWrite) {
    if (IsOpen()) CloseFile();
    std::string name = ToUtf8(szFileName);
    int flags = OpenForWrite ? (O_RDWR | O_CREAT | O_TRUNC) : O_RDONLY;
    fd_ = ::open(name.c_str(), flags | O_CLOEXEC, 0666);
    struct stat info {};
    if (IsOpen() && !OpenForWrite && (::fstat(fd_, &info) != 0 || S_ISDIR(info.st_mode))) {
        ::close(fd_);  // a folder is no project file
        fd_ = -1;
    }
    fileSize_ = IsOpen() && !OpenForWrite ? static_cast<int64_t>(info.st_size) : 0;
    bufferStart_ = 0;
    writing_ = OpenForWrite;
    hitEnd_ = false;
    writeFailed_ = false;
    buffer_.clear();
    bufferPos_ = 0;
    return IsOpen();
}

bool clsBinaryFile::OpenReplacement(const std::u16string& name) {
    if (IsOpen()) CloseFile();
    if (!replacement_.Open(ToUtf8(name))) return false;
    fd_ = replacement_.Descriptor();
    fileSize_ = 0;
    writing_ = true;
    hitEnd_ = false;
    writeFailed_ = false;
    encoding_ = TextEncoding::OneBytePerUnit;
    unitsDidNotFit_ = false;
    buffer_.clear();
    bufferPos_ = 0;
    return true;
}

bool clsBinaryFile::CommitReplacement() {
    if (!IsOpen() || replacement_.Descriptor() != fd_) return false;
    // Commit closes the file whatever it answers.
    if (!Flush() || !replacement_.Commit()) writeFailed_ = true;
    const int error = errno;  // the reason of a failure, for the caller
    replacement_.Abandon();
    errno = error;
    Closed();
    return !writeFailed_;
}

void clsBinaryFile::Closed() {
    fd_ = -1;
    encoding_ = TextEncoding::OneBytePerUnit;
    unitsDidNotFit_ = false;
    buffer_.clear();
    bufferPos_ = 0;
}

bool clsBinaryFile::CloseFile() {
    if (!IsOpen()) return !writeFailed_;
    if (replacement_.Descriptor() == fd_) {
        replacement_.Abandon();  // not committed: the old file stays
    } else {
        if (writing_) Flush();
        if (::close(fd_) != 0 && writing_) writeFailed_ = true;
    }
    Closed();
    return !writeFailed_;
}

char* clsBinaryFile::Append(size_t n) {
    if (!IsOpen() || !writing_) {
        writeFailed_ = true;
        return nullptr;
    }
    // While writing, buffer_ is all room: its first bufferPos_ bytes wait to be written.
    if (buffer_.size() - bufferPos_ < n) {
        Flush();
        if (buffer_.size() < std::max(n, kBufferSize)) buffer_.resize(std::max(n, kBufferSize));
    }
    char* at = buffer_.data() + bufferPos_;
    bufferPos_ += n;
    return at;
}

bool clsBinaryFile::Flush() {
    size_t done = 0;
    while (done < bufferPos_) {
        ssize_t put = ::write(fd_, buffer_.data() + done, bufferPos_ - done);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) {
            writeFailed_ = true;
            break;
        }
        done += static_cast<size_t>(put);
    }
    bufferPos_ = 0;
    return !writeFailed_;
}

int64_t clsBinaryFile::BytesLeft() const {
    if (!IsOpen() || writing_) return 0;
    return std::max<int64_t>(0, fileSize_ - bufferStart_ - static_cast<int64_t>(bufferPos_));
}

void clsBinaryFile::WidenWindow(size_t n) {
    // The unread bytes go to the front of the buffer, which keeps its size: what is read
    // behind them then needs no zeroing first.
    std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(bufferPos_), buffer_.end(), buffer_.begin());
    size_t have = buffer_.size() - bufferPos_;
    bufferStart_ += static_cast<int64_t>(bufferPos_);
    bufferPos_ = 0;
    if (buffer_.size() < std::max(n, kBufferSize)) buffer_.resize(std::max(n, kBufferSize));
    while (have < n && IsOpen() && !writing_) {
        ssize_t got = ::read(fd_, buffer_.data() + have, buffer_.size() - have);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        have += static_cast<size_t>(got);
    }
    if (have < n) {  // past the end, or unreadable
        std::fill(buffer_.begin() + static_cast<std::ptrdiff_t>(have), buffer_.begin() + static_cast<std::ptrdiff_t>(n), '\0');
        have = n;
        hitEnd_ = true;
    }
    buffer_.resize(have);
}

std::u16string clsBinaryFile::LoadString() {
    std::u16string text;
    LoadString(text);
    return text;
}

void clsBinaryFile::LoadString(std::u16string& into) {
    const size_t length = TextLength(LoadNumeric());
    if (encoding_ == TextEncoding::Utf8) {
        into.clear();
        AppendUtf8Text(into, Window(length));
    } else {
        into.resize(length);
        Widen(Window(length), into.data());
    }
    Skip(length);
}

namespace {

void EncodeNumeric(int32_t value, char* to) {
    const uint32_t v = static_cast<uint32_t>(value);
    const char b[4] = {char(v & 0xFF), char(v >> 8 & 0xFF), char(v >> 16 & 0xFF), char(v >> 24 & 0xFF)};
    std::memcpy(to, b, sizeof b);
}

}  // namespace

void clsBinaryFile::SaveNumeric(int32_t lNum) {
    if (char* to = Append(4)) EncodeNumeric(lNum, to);
}

void clsBinaryFile::SaveString(std::u16string_view sz) {
    // Length and text in one piece: every item writes three strings.
    if (encoding_ == TextEncoding::Utf8) {
        // Three bytes a unit at most; what the text does not take is given back.
        const size_t room = std::min(3 * sz.size(), static_cast<size_t>(kMaxStringWrite));
        if (char* to = Append(4 + room)) {
            const size_t length = EncodeUtf8(sz, to + 4, room);
            EncodeNumeric(static_cast<int32_t>(length), to);
            Unappend(room - length);
        }
        return;
    }
    sz = sz.substr(0, static_cast<size_t>(kMaxStringWrite));
    if (char* to = Append(4 + sz.size())) {
        EncodeNumeric(static_cast<int32_t>(sz.size()), to);
        if (!Narrow(sz, to + 4)) unitsDidNotFit_ = true;
    }
}

void clsBinaryFile::Restart() {
    if (!IsOpen() || !writing_) return;
    bufferPos_ = 0;  // what waits to be written goes too
    if (::lseek(fd_, 0, SEEK_SET) != 0 || ::ftruncate(fd_, 0) != 0) writeFailed_ = true;
    unitsDidNotFit_ = false;
}

void clsBinaryFile::Reset() {
    if (!IsOpen()) return;
    if (writing_) Flush();
    ::lseek(fd_, 0, SEEK_SET);
    buffer_.clear();
    bufferPos_ = 0;
    bufferStart_ = 0;
    hitEnd_ = false;
}

}  // namespace kestrel
