#pragma once
// Standard output for every command, written to its file descriptor through a buffer
// that keeps the reason of the first failed write: a listing cut short by a full disk
// must not pass for a finished one.
#include <array>
#include <streambuf>

namespace kestrel::cli {

class DescriptorBuffer : public std::streambuf {
public:
    explicit DescriptorBuffer(int fd);
    // The errno of the first write that failed, 0 while none has.
    int Error() const { return error_; }

protected:
    int_type overflow(int_type c) override;
    int sync() override;

private:
    // Writes out what the buffer holds; false once a write has failed.
    bool Drain();

    int fd_;
    int error_ = 0;
    std::array<char, 1 << 16> buffer_;
};

// Takes over std::cout for its lifetime.
class CheckedOutput {
public:
    CheckedOutput();
    ~CheckedOutput();
    CheckedOutput(const CheckedOutput&) = delete;
    CheckedOutput& operator=(const CheckedOutput&) = delete;

    // Flushes standard output and returns the command's exit status, or 1 after one
    // line on standard error when a write failed.
    int Finish(int status);

private:
    DescriptorBuffer buffer_;
    std::streambuf* previous_;
};

}  // namespace kestrel::cli
