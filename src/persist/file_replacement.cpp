#include "persist/file_replacement.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrel {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kTemporaryPrefix = ".kestrel-save-";
// As many links as the system itself follows in one name before it gives up.
constexpr int kMaxLinkHops = 40;

std::string TemporaryName(int attempt) {
    return std::string(kTemporaryPrefix) + std::to_string(::getpid()) + "-" + std::to_string(attempt);
}

// The process that made the temporary `name`, or 0 when the name is no temporary:
// ".kestrel-save-PID-N", or TARGET.tmpPID-N as saves of TARGET named them before.
pid_t MakerOf(std::string_view name, std::string_view target) {
    const std::string earlier = std::string(target) + ".tmp";
    if (name.starts_with(kTemporaryPrefix)) name.remove_prefix(kTemporaryPrefix.size());
    else if (name.starts_with(earlier)) name.remove_prefix(earlier.size());
    else return 0;
    const size_t dash = name.find('-');
    auto digits = [](std::string_view s) { return !s.empty() && s.find_first_not_of("0123456789") == std::string_view::npos; };
    if (dash == std::string_view::npos || !digits(name.substr(0, dash)) || !digits(name.substr(dash + 1)) || dash > 9)
        return 0;
    return static_cast<pid_t>(std::atol(std::string(name.substr(0, dash)).c_str()));
}

// Removes the temporaries of processes that no longer run. One that a process of
// another pid namespace is still writing may look dead from here; its save then
// fails at the rename and leaves its old file, which is safe.
void RemoveStaleTemporaries(int folderFd, std::string_view target) {
    const int listFd = ::openat(folderFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (listFd < 0) return;
    DIR* list = ::fdopendir(listFd);
    if (!list) {
        ::close(listFd);
        return;
    }
    while (const dirent* entry = ::readdir(list)) {
        const pid_t maker = MakerOf(entry->d_name, target);
        if (maker > 0 && ::kill(maker, 0) != 0 && errno == ESRCH) ::unlinkat(folderFd, entry->d_name, 0);
    }
    ::closedir(list);
}

// The name under which /proc shows an open file; linking it names an unnamed file
// without the privilege that linking the descriptor itself would need.
std::string ProcName(int fd) { return "/proc/self/fd/" + std::to_string(fd); }

// Keeps errno across the clean-up after a failure.
struct KeepErrno {
    int saved = errno;
    ~KeepErrno() { errno = saved; }
};

}  // namespace

std::string FileReplacement::ThroughLinks(const std::string& name) {
    fs::path path = name;
    for (int hop = 0; hop < kMaxLinkHops; ++hop) {
        struct stat info {};
        if (::lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return path.string();
        std::error_code ec;
        const fs::path link = fs::read_symlink(path, ec);
        if (ec) return path.string();
        path = link.is_absolute() ? link : path.parent_path() / link;
    }
    return {};  // a loop of links
}

bool FileReplacement::Open(const std::string& target) {
    Abandon();
    target_ = ThroughLinks(target);
    if (target_.empty()) {
        errno = ELOOP;
        return false;
    }
    const fs::path folder = fs::path(target_).parent_path();
    folder_ = folder.empty() ? "." : folder.string();
    struct stat existing {};
    const bool exists = ::stat(target_.c_str(), &existing) == 0;
    // The rename would replace a read-only file without asking; refuse it as writing
    // the file in place would. The mode bits count too, because access() lets the
    // superuser write anything.
    if (exists && S_ISREG(existing.st_mode) &&
        (::access(target_.c_str(), W_OK) != 0 || (existing.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)) {
        errno = EACCES;
        return false;
    }
    folderFd_ = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFd_ < 0) return false;
    RemoveStaleTemporaries(folderFd_, fs::path(target_).filename().string());
#ifdef O_TMPFILE
    fd_ = ::openat(folderFd_, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
    // Without /proc the unnamed file could not be named later.
    if (fd_ >= 0 && ::access(ProcName(fd_).c_str(), F_OK) != 0) {
        ::close(fd_);
        fd_ = -1;
    }
#endif
    // The file system has no unnamed files (or this system none at all): a named one.
    for (int attempt = 0; fd_ < 0 && attempt < 100; ++attempt) {
        const std::string name = TemporaryName(attempt);
        fd_ = ::openat(folderFd_, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd_ >= 0) temporary_ = name;
        else if (errno != EEXIST) break;
    }
    if (fd_ < 0) {
        KeepErrno keep;
        Abandon();
        return false;
    }
    // The new file takes the place of the old one, and its permissions with it; its
    // owner too where that is allowed (the superuser saving someone's project).
    if (exists) {
        (void)::fchown(fd_, existing.st_uid, existing.st_gid);
        (void)::fchmod(fd_, existing.st_mode & 07777);
    }
    return true;
}

bool FileReplacement::NameUnnamed() {
    const std::string proc = ProcName(fd_);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string name = TemporaryName(attempt);
        if (::linkat(AT_FDCWD, proc.c_str(), folderFd_, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            temporary_ = name;
            return true;
        }
        if (errno != EEXIST) return false;
    }
    return false;
}

bool FileReplacement::Commit() {
    if (fd_ < 0) {
        errno = EBADF;
        return false;
    }
    // The data reaches the disk before its name does; otherwise a crash right after
    // the rename could leave the name on an empty file.
    const std::string targetName = fs::path(target_).filename().string();
    if (::fsync(fd_) != 0 || (temporary_.empty() && !NameUnnamed()) ||
        ::renameat(folderFd_, temporary_.c_str(), folderFd_, targetName.c_str()) != 0) {
        KeepErrno keep;
        Abandon();
        return false;
    }
    temporary_.clear();
    // The rename itself is on the disk once the folder is. Some file systems cannot
    // sync a folder; the new file is in place either way, so that is no failure.
    (void)::fsync(folderFd_);
    Abandon();  // only closes now
    return true;
}

void FileReplacement::Abandon() {
    if (!temporary_.empty()) ::unlinkat(folderFd_, temporary_.c_str(), 0);
    temporary_.clear();
    if (fd_ >= 0) ::close(fd_);
    if (folderFd_ >= 0) ::close(folderFd_);
    fd_ = folderFd_ = -1;
}

}  // namespace kestrel
