#include "scanner/loader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "common/text.h"
#include "errorlog/errorlog.h"
#include "scanner/line_cleaning.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsLoader.cls";
// A buffer larger than this goes back to the system when its file closes.
constexpr size_t kKeptBufferBytes = size_t{16} << 20;

// The storage the last closed loader of this thread left behind.
ByteBuffer& SpareBuffer() {
    thread_local ByteBuffer spare;
    return spare;
}

void Reserve(ByteBuffer& buffer, size_t used, size_t wanted) {
    if (wanted <= buffer.capacity) return;
    size_t capacity = std::max(wanted, buffer.capacity * 2);
    auto grown = std::make_unique_for_overwrite<unsigned char[]>(capacity);
    if (used > 0) std::memcpy(grown.get(), buffer.data.get(), used);
    buffer.data = std::move(grown);
    buffer.capacity = capacity;
}

// Reads until the end of the file, or until the size the system reported (`expected`,
// 0 for a pipe or a file that does not know its size) is in: that spares the call
// which would only report the end, one per file. False on a read error (errno is set).
bool ReadAll(int fd, size_t expected, ByteBuffer& buffer, size_t& size) {
    size = 0;
    Reserve(buffer, 0, expected + kAsciiLinePadding);
    for (;;) {
        if (expected != 0 && size == expected) return true;
        if (size == buffer.capacity) Reserve(buffer, size, std::max<size_t>(size * 2, 65536));
        ssize_t got = ::read(fd, buffer.data.get() + size, buffer.capacity - size);
        if (got == 0) return true;
        if (got < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        size += static_cast<size_t>(got);
    }
}

}  // namespace

void clsLoader::Init() {
    // Called on a loader that has nothing open yet; an open file would stay open.
    fileName_.clear();
    LastLine.clear();
}

bool clsLoader::OpenFile(const std::string& fileName) {
    CloseFile();
    // Not blocking, so that opening a pipe nobody writes to cannot hang the caller.
    int fd = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        openError_ = errno;
        return false;
    }
    struct stat st {};
    int error = 0;
    if (::fstat(fd, &st) != 0) error = errno;
    else if (S_ISDIR(st.st_mode)) error = EISDIR;
    // Devices and sockets may never end; only files and pipes are read.
    else if (!S_ISREG(st.st_mode) && !S_ISFIFO(st.st_mode)) error = ENOTSUP;
    else if (S_ISFIFO(st.st_mode) && ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK) != 0) error = errno;
    if (error == 0) {
        std::swap(bytes_, SpareBuffer());
        const size_t expected = S_ISREG(st.st_mode) && st.st_size > 0 ? static_cast<size_t>(st.st_size) : 0;
        if (!ReadAll(fd, expected, bytes_, size_)) error = errno;
        // Zeros after the last line, which CleanAsciiLine may read past a line's end.
        Reserve(bytes_, size_, size_ + kAsciiLinePadding);
        std::memset(bytes_.data.get() + size_, 0, kAsciiLinePadding);
    }
    ::close(fd);
    if (error != 0) {
        openError_ = error;
        size_ = 0;
        return false;
    }
    open_ = true;
    fileName_ = fileName;
    data_ = bytes_.data.get();
    pos_ = 0;
    encoding_ = Encoding::Utf8;
    if (size_ >= 3 && data_[0] == 0xEF && data_[1] == 0xBB && data_[2] == 0xBF) {
        pos_ = 3;
    } else if (size_ >= 2 && data_[0] == 0xFF && data_[1] == 0xFE) {
        encoding_ = Encoding::Utf16Le;
        pos_ = 2;
    } else if (size_ >= 2 && data_[0] == 0xFE && data_[1] == 0xFF) {
        encoding_ = Encoding::Utf16Be;
        pos_ = 2;
    }
    return true;
}

std::u16string clsLoader::ReadLine() {
    std::u16string line;
    ReadLineInto(line);
    return line;
}

void clsLoader::ReadLineInto(std::u16string& line) { Read(line, nullptr, {}); }

void clsLoader::ReadCleanLineInto(std::u16string& line, UnitSet& present, std::string_view emptyingStart) {
    Read(line, &present, emptyingStart);
}

bool clsLoader::SkipLineWithout(std::string_view bytes) {
    if (bytes.empty() || !open_ || EndOfFile || pos_ >= size_ || encoding_ != Encoding::Utf8) return false;
    const size_t start = pos_;
    bool ascii = false;
    if (NextUtf8Line(ascii).find(bytes) == std::string_view::npos) return true;
    pos_ = start;
    return false;
}

void clsLoader::Read(std::u16string& line, UnitSet* present, std::string_view emptyingStart) {
    bool cleaned = false;
    line.clear();
    if (!open_ || EndOfFile || pos_ >= size_) {
        EndOfFile = true;
    } else {
        Trap(kModule, "Function ReadLine", [&] {
            if (encoding_ != Encoding::Utf8) return ReadUtf16Line(line);
            bool ascii = false;
            const std::string_view bytes = NextUtf8Line(ascii);
            if (ascii && present) {
                CleanAsciiLine(bytes, line, *present, emptyingStart);
                cleaned = true;
            } else {
                AppendUtf8(line, bytes);
            }
        });
    }
    if (present && !cleaned) CleanLine(line, *present);
}

std::string_view clsLoader::NextUtf8Line(bool& ascii) {
    // CR and LF bytes never occur inside a multi-byte sequence, so the line can be
    // cut before it is decoded. One look at each byte finds the end and whether a
    // byte before it has its high bit set.
    const unsigned char* start = data_ + pos_;
    const size_t left = size_ - pos_;
    constexpr size_t kNotFound = std::string_view::npos;
    size_t end = kNotFound;
    unsigned high = 0;
    size_t n = 0;
#if defined(__SSE2__)
    const __m128i lf = _mm_set1_epi8('\n'), cr = _mm_set1_epi8('\r');
    for (; n + 16 <= left; n += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(start + n));
        const auto ends = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(bytes, lf), _mm_cmpeq_epi8(bytes, cr))));
        const auto highs = static_cast<unsigned>(_mm_movemask_epi8(bytes));
        if (ends != 0) {
            const unsigned k = static_cast<unsigned>(__builtin_ctz(ends));
            high |= highs & ((1u << k) - 1);
            end = n + k;
            break;
        }
        high |= highs;
    }
#endif
    if (end == kNotFound) {
        for (end = n; end < left && start[end] != '\n' && start[end] != '\r'; ++end) high |= start[end] & 0x80u;
    }
    ascii = high == 0;
    pos_ += end;
    if (pos_ < size_) pos_ += (data_[pos_] == '\r' && pos_ + 1 < size_ && data_[pos_ + 1] == '\n') ? 2 : 1;
    return {reinterpret_cast<const char*>(start), end};
}

void clsLoader::ReadUtf16Line(std::u16string& line) {
    const bool little = encoding_ == Encoding::Utf16Le;
    // A final odd byte is one code unit of its own value.
    auto unitAt = [&](size_t i, size_t& width) -> char16_t {
        if (i + 1 >= size_) {
            width = 1;
            return data_[i];
        }
        width = 2;
        return little ? static_cast<char16_t>(data_[i] | (data_[i + 1] << 8))
                      : static_cast<char16_t>((data_[i] << 8) | data_[i + 1]);
    };
    size_t width = 0;
    while (pos_ < size_) {
        char16_t c = unitAt(pos_, width);
        pos_ += width;
        if (c == u'\n') break;
        if (c == u'\r') {
            if (pos_ < size_ && unitAt(pos_, width) == u'\n') pos_ += width;
            break;
        }
        line.push_back(c);
    }
}

void clsLoader::CloseFile() {
    if (!open_) return;
    // The descriptor closed as soon as the file was read; the bytes go back to the pool.
    if (bytes_.capacity <= kKeptBufferBytes && bytes_.capacity > SpareBuffer().capacity) std::swap(bytes_, SpareBuffer());
    bytes_ = ByteBuffer{};
    data_ = nullptr;
    size_ = pos_ = 0;
    open_ = false;
}

}  // namespace kestrel
