#include "scanner/loader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

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
    if (NextUtf8Line().find(bytes) == std::string_view::npos) return true;
    pos_ = start;
    return false;
}

bool clsLoader::LineStartsAfterBlanks(std::string_view bytes) const {
    size_t at = pos_;
    while (at < size_ && (data_[at] == ' ' || data_[at] == '\t')) ++at;
    return size_ - at >= bytes.size() && std::memcmp(data_ + at, bytes.data(), bytes.size()) == 0;
}

void clsLoader::Read(std::u16string& line, UnitSet* present, std::string_view emptyingStart) {
    bool cleaned = false;
    bool unitsKnown = false;  // from the line's bytes, as they were looked at
    if (!open_ || EndOfFile || pos_ >= size_) {
        line.clear();
        EndOfFile = true;
    } else {
        Trap(kModule, "Function ReadLine", [&] {
            if (encoding_ != Encoding::Utf8) {
                line.clear();
                return ReadUtf16Line(line);
            }
            if (present && !emptyingStart.empty() && LineStartsAfterBlanks(emptyingStart)) {
                // A one-line comment that takes the whole line: passed over unread.
                NextUtf8Line();
                line.clear();
                *present = UnitSet();
                unitsKnown = cleaned = true;
                return;
            }
            LineLook look;
            const std::string_view bytes = NextUtf8Line(&look);
            if (present) {
                *present = look.units;
                unitsKnown = true;
            }
            if (look.ascii && present) {
                CleanAsciiLine(bytes, line);
                cleaned = true;
            } else {
                line.clear();
                AppendUtf8(line, bytes);
            }
        });
    }
    if (!present) return;
    if (!cleaned) CleanLine(line);
    if (!unitsKnown) *present = UnitSet::Of(line);
    if (line.empty()) *present = UnitSet();  // a line emptied as it was read holds nothing
}

namespace {

// Where a line of UTF-8 bytes ends (its first CR or LF, or `left`) and, when asked for
// (kLook), whether a byte before that has its high bit set and which tracked units
// those bytes hold.
struct LineBytes {
    size_t end = 0;
    bool high = false;
    UnitSet units;
};

template <bool kLook>
LineBytes LookAtLineOneByOne(const unsigned char* start, size_t left) {
    LineBytes line;
    unsigned high = 0;
    uint32_t bits = 0;
    for (; line.end < left && start[line.end] != '\n' && start[line.end] != '\r'; ++line.end) {
        if constexpr (kLook) {
            high |= start[line.end];
            bits |= kTrackedBit[start[line.end]];
        }
    }
    line.high = (high & 0x80u) != 0;
    line.units = UnitSet::FromBits(bits);
    return line;
}

#ifdef KESTREL_BYTE_SHUFFLES
// Sixteen bytes at a time. The file's bytes are followed by kAsciiLinePadding readable
// bytes, so the last step may read past them; what lies past `left` counts as the end.
template <bool kLook>
__attribute__((target("ssse3"))) LineBytes LookAtLineWithShuffles(const unsigned char* start, size_t left) {
    const __m128i lf = _mm_set1_epi8('\n'), cr = _mm_set1_epi8('\r');
    const __m128i places = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    UnitsOfSixteenBytes seen{};
    __m128i high = _mm_setzero_si128();
    for (size_t n = 0;; n += 16) {
        __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(start + n));
        unsigned ends = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(bytes, lf), _mm_cmpeq_epi8(bytes, cr))));
        if (left - n < 16) ends |= 0xFFFFu << (left - n);
        const unsigned k = ends != 0 ? static_cast<unsigned>(__builtin_ctz(ends)) : 16;
        if constexpr (kLook) {
            if (k < 16) bytes = _mm_and_si128(bytes, _mm_cmplt_epi8(places, _mm_set1_epi8(static_cast<char>(k))));
            AddSorted(seen, SortIntoTrackedUnits(bytes));
            high = _mm_or_si128(high, bytes);
        }
        if (k < 16) {
            LineBytes line;
            line.end = n + k;
            if constexpr (kLook) {
                line.high = _mm_movemask_epi8(high) != 0;
                line.units = TrackedUnitsIn(seen);
            }
            return line;
        }
    }
}
#endif

template <bool kLook>
LineBytes LookAtLine(const unsigned char* start, size_t left) {
#ifdef KESTREL_BYTE_SHUFFLES
    if (kHasByteShuffles) return LookAtLineWithShuffles<kLook>(start, left);
#endif
    return LookAtLineOneByOne<kLook>(start, left);
}

}  // namespace

std::string_view clsLoader::NextUtf8Line(LineLook* look) {
    // CR and LF bytes never occur inside a multi-byte sequence, so the line can be
    // cut before it is decoded; nor do the tracked units, so the bytes tell which of
    // them the decoded line holds. One look at each byte finds all three.
    const unsigned char* start = data_ + pos_;
    const size_t left = size_ - pos_;
    const LineBytes line = look ? LookAtLine<true>(start, left) : LookAtLine<false>(start, left);
    if (look) {
        look->ascii = !line.high;
        look->units = line.units;
    }
    pos_ += line.end;
    if (pos_ < size_) pos_ += (data_[pos_] == '\r' && pos_ + 1 < size_ && data_[pos_ + 1] == '\n') ? 2 : 1;
    return {reinterpret_cast<const char*>(start), line.end};
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
