#pragma once
// What the fuzz targets share: the input bytes read as a sequence of choices, a
// private folder for the files kestrel reads and writes, and an error handler that
// keeps reports in memory instead of the user's error log.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "common/text.h"
#include "errorlog/errorlog.h"

namespace kestrel::fuzz {

// Reads choices off the front of the input; an exhausted input answers zeros and
// empty texts, so every byte sequence is a complete run.
class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    bool Empty() const { return pos_ >= size_; }
    uint8_t Byte() { return pos_ < size_ ? data_[pos_++] : 0; }
    // A number below `bound` (which must be positive).
    uint32_t Below(uint32_t bound) { return Byte() % bound; }
    int32_t Int32() {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i) v |= static_cast<uint32_t>(Byte()) << (8 * i);
        return static_cast<int32_t>(v);
    }
    // A run of bytes: its length is the next byte (at most `maxLength`), then the bytes.
    std::string_view Bytes(size_t maxLength = 255) {
        size_t n = std::min<size_t>(Byte(), maxLength);
        n = std::min(n, size_ - std::min(pos_, size_));
        std::string_view out(reinterpret_cast<const char*>(data_) + pos_, n);
        pos_ += n;
        return out;
    }
    // Everything not read yet.
    std::string_view Rest() {
        std::string_view out(reinterpret_cast<const char*>(data_) + std::min(pos_, size_), size_ - std::min(pos_, size_));
        pos_ = size_;
        return out;
    }

private:
    const uint8_t* data_;
    size_t size_;
    size_t pos_ = 0;
};

// The text cut at every `separator`, each piece read as UTF-8: the lines of an editor
// buffer.
inline std::vector<std::u16string> SplitLines(std::string_view text, char separator) {
    std::vector<std::u16string> lines;
    for (size_t from = 0;;) {
        size_t to = text.find(separator, from);
        lines.push_back(FromUtf8(text.substr(from, to == std::string_view::npos ? to : to - from)));
        if (to == std::string_view::npos) return lines;
        from = to + 1;
    }
}

// One folder per process under the temporary directory, removed at exit. The path is
// never destroyed, so that the clean-up at exit, which runs after static destructors
// registered later, still finds it.
inline const std::filesystem::path& ScratchFolder() {
    static const std::filesystem::path* folder = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "kestrel-fuzz-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) std::abort();
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(*folder, ignored);
        });
        return new std::filesystem::path(pattern);
    }();
    return *folder;
}

inline void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Counts the error reports of one run and answers each with 0 (end the operation),
// as the default handler does, without writing the error log. With KESTREL_FUZZ_ERRORS
// set in the environment each report is printed, to see what a reproducer runs into.
class QuietErrors {
public:
    QuietErrors() {
        static const bool print = std::getenv("KESTREL_FUZZ_ERRORS") != nullptr;
        previous_ = SetErrorHandler([this](const ErrorReport& r) -> int16_t {
            ++count;
            if (print)
                std::fprintf(stderr, "error %d in %.*s, %.*s: %.*s\n", r.number, static_cast<int>(r.module.size()),
                             r.module.data(), static_cast<int>(r.title.size()), r.title.data(),
                             static_cast<int>(r.message.size()), r.message.data());
            return 0;
        });
    }
    ~QuietErrors() { SetErrorHandler(previous_); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

    int count = 0;

private:
    ErrorHandler previous_;
};

}  // namespace kestrel::fuzz
