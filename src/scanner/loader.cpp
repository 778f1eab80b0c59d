#include "scanner/loader.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/text.h"
#include "errorlog/errorlog.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsLoader.cls";

bool ReadAll(int fd, std::string& out) {
    char buffer[65536];
    for (;;) {
        ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got == 0) return true;
        if (got < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        out.append(buffer, static_cast<size_t>(got));
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
    else if (::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK) != 0) error = errno;
    if (error != 0) {
        openError_ = error;
        ::close(fd);
        return false;
    }
    if (S_ISREG(st.st_mode) && st.st_size > 0) {
        void* map = ::mmap(nullptr, static_cast<size_t>(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
        if (map != MAP_FAILED) {
            ::madvise(map, static_cast<size_t>(st.st_size), MADV_SEQUENTIAL);
            data_ = static_cast<const unsigned char*>(map);
            size_ = static_cast<size_t>(st.st_size);
            mapped_ = true;
        }
    }
    if (!mapped_) {
        // Pipes and files whose size the system does not know.
        if (!ReadAll(fd, owned_)) {
            openError_ = errno;
            owned_.clear();
            ::close(fd);
            return false;
        }
        data_ = reinterpret_cast<const unsigned char*>(owned_.data());
        size_ = owned_.size();
    }
    fd_ = fd;
    fileName_ = fileName;
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
    if (fd_ < 0 || EndOfFile || pos_ >= size_) {
        EndOfFile = true;
        return line;
    }
    Trap(kModule, "Function ReadLine", [&] {
        line = encoding_ == Encoding::Utf8 ? ReadUtf8Line() : ReadUtf16Line();
    });
    return line;
}

std::u16string clsLoader::ReadUtf8Line() {
    // CR and LF bytes never occur inside a multi-byte sequence, so the line can be
    // cut before it is decoded.
    size_t end = pos_;
    while (end < size_ && data_[end] != '\n' && data_[end] != '\r') ++end;
    std::u16string line = FromUtf8(std::string_view(reinterpret_cast<const char*>(data_ + pos_), end - pos_));
    pos_ = end;
    if (pos_ < size_) pos_ += (data_[pos_] == '\r' && pos_ + 1 < size_ && data_[pos_ + 1] == '\n') ? 2 : 1;
    return line;
}

std::u16string clsLoader::ReadUtf16Line() {
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
    std::u16string line;
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
    return line;
}

void clsLoader::CloseFile() {
    if (fd_ < 0) return;
    if (mapped_) ::munmap(const_cast<unsigned char*>(data_), size_);
    owned_.clear();
    owned_.shrink_to_fit();
    data_ = nullptr;
    size_ = pos_ = 0;
    mapped_ = false;
    ::close(fd_);
    fd_ = -1;
}

}  // namespace kestrel
