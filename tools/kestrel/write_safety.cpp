#include "write_safety.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "common/constants.h"

namespace kestrel::cli {

namespace {

// The first bytes of every project file: the signature's length, 10, and "KESTREL".
constexpr std::string_view kSignatureStart{"\x0a\0\0\0KESTREL", 11};

// Whether the scanner will read the file at all (forms and unparsed files it only lists).
bool Scanned(int32_t type) { return type != FILETYPE_FORM && type != FILETYPE_NOPARSE; }

// 0 when the file can be opened for reading as the scanner opens it, or the reason.
int ReadError(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return errno;
    struct stat info {};
    const int error = ::fstat(fd, &info) != 0 ? errno : S_ISDIR(info.st_mode) ? EISDIR : 0;
    ::close(fd);
    return error;
}

}  // namespace

bool TakeWriteOption(const std::vector<std::string>& args, size_t& i, WriteOptions& options) {
    if (args[i] == "--force") {
        options.force = true;
    } else if (args[i] == "--wait") {
        options.waitSeconds = ParseNumber("--wait", OptionValue(args, i));
        if (options.waitSeconds < 0) throw UsageError("--wait needs a number of seconds, 0 or more");
    } else {
        return false;
    }
    return true;
}

void RefuseToWriteOverNonProject(const std::string& projectPath, const WriteOptions& options) {
    if (options.force) return;
    const std::string path = AbsolutePath(projectPath);
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return;  // nothing there yet, or nothing the save could replace either
    struct stat info {};
    char head[kSignatureStart.size()] = {};
    const bool folder = ::fstat(fd, &info) == 0 && S_ISDIR(info.st_mode);
    const ssize_t got = folder ? 0 : ::read(fd, head, sizeof head);
    ::close(fd);
    if (folder || std::string_view(head, got > 0 ? size_t(got) : 0) == kSignatureStart) return;
    throw Failure(projectPath, "exists and is not a kestrel project file; not writing over it (--force does)");
}

void RefuseToSaveOverDamage(const ProjectSession& session, const std::string& projectPath,
                            const WriteOptions& options) {
    if (session.ErrorCount() == 0 || options.force) return;
    throw Failure(projectPath, "was not read whole (see above); not saving over it (--force does)");
}

ReadCheck ReportUnreadable(const std::vector<SourceFile>& files) {
    ReadCheck check;
    for (const SourceFile& f : files) {
        if (!Scanned(f.type)) continue;
        ++check.scanned;
        if (const int error = ReadError(f.path)) {
            std::cerr << "kestrel: " << f.path << ": cannot be read: " << std::strerror(error) << "\n";
            ++check.unreadable;
        }
    }
    return check;
}

std::vector<SourceFile> ProjectFiles(ProjectSession& session) {
    std::vector<SourceFile> files;
    for (const FilePtr& f : session.Files()->Files()) files.push_back({Utf8(f->FileName()), f->FileType()});
    return files;
}

}  // namespace kestrel::cli
