#include "project_lock.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

#include "project_session.h"

namespace kestrel::cli {

namespace {

// How often a waiting writer asks again: short beside a save, long beside a system call.
constexpr auto kRetryEvery = std::chrono::milliseconds(20);

}  // namespace

ProjectLock::ProjectLock(const std::string& projectPath, int waitSeconds) {
    const std::filesystem::path written = ProjectFilePath(projectPath);
    fd_ = ::open(written.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd_ < 0) {
        if (errno == ENOENT || errno == ENOTDIR) return;
        throw Failure(projectPath, std::string("cannot lock its folder for writing: ") + std::strerror(errno));
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(waitSeconds);
    while (::flock(fd_, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) {
            std::cerr << "kestrel: " << projectPath << ": written without a lock, its file system has none ("
                      << std::strerror(errno) << ")\n";
            return;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            ::close(fd_);
            fd_ = -1;
            throw Failure(projectPath, "another program is writing this project; gave up after " +
                                           std::to_string(waitSeconds) + " s (--wait SECONDS waits longer)");
        }
        std::this_thread::sleep_for(kRetryEvery);
    }
}

ProjectLock::~ProjectLock() {
    if (fd_ >= 0) ::close(fd_);  // which lets the lock go
}

}  // namespace kestrel::cli
