#include "checked_output.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <unistd.h>

namespace kestrel::cli {

DescriptorBuffer::DescriptorBuffer(int fd) : fd_(fd) { setp(buffer_.data(), buffer_.data() + buffer_.size()); }

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type c) {
    if (!Drain()) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    return traits_type::not_eof(c);
}

int DescriptorBuffer::sync() { return Drain() ? 0 : -1; }

bool DescriptorBuffer::Drain() {
    const char* from = pbase();
    while (error_ == 0 && from < pptr()) {
        const ssize_t written = ::write(fd_, from, static_cast<size_t>(pptr() - from));
        if (written > 0) from += written;
        else if (written < 0 && errno != EINTR) error_ = errno;
        else if (written == 0) error_ = EIO;  // no progress and no reason: do not spin
    }
    // After a failure the rest is dropped: the output is incomplete either way.
    setp(buffer_.data(), buffer_.data() + buffer_.size());
    return error_ == 0;
}

CheckedOutput::CheckedOutput() : buffer_(STDOUT_FILENO), previous_(std::cout.rdbuf(&buffer_)) {}

CheckedOutput::~CheckedOutput() { std::cout.rdbuf(previous_); }

int CheckedOutput::Finish(int status) {
    std::cout.flush();
    if (buffer_.Error() == 0) return status;
    std::cerr << "kestrel: writing standard output: " << std::strerror(buffer_.Error()) << '\n';
    return 1;
}

}  // namespace kestrel::cli
