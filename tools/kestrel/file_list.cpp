#include "file_list.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string_view>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/constants.h"
#include "project_session.h"

namespace kestrel::cli {

namespace fs = std::filesystem;

namespace {

struct ExtensionType {
    std::string_view extension;
    int32_t type;
    int32_t language;  // the language whose folders hold such files
};

constexpr std::array kExtensions{
    ExtensionType{".h", FILETYPE_DEFINITION, LANGUAGE_C},      ExtensionType{".hh", FILETYPE_DEFINITION, LANGUAGE_C},
    ExtensionType{".hpp", FILETYPE_DEFINITION, LANGUAGE_C},    ExtensionType{".hxx", FILETYPE_DEFINITION, LANGUAGE_C},
    ExtensionType{".inl", FILETYPE_DEFINITION, LANGUAGE_C},    ExtensionType{".c", FILETYPE_IMPLEMENTATION, LANGUAGE_C},
    ExtensionType{".cc", FILETYPE_IMPLEMENTATION, LANGUAGE_C}, ExtensionType{".cpp", FILETYPE_IMPLEMENTATION, LANGUAGE_C},
    ExtensionType{".cxx", FILETYPE_IMPLEMENTATION, LANGUAGE_C},
    ExtensionType{".java", FILETYPE_IMPLEMENTATION, LANGUAGE_JAVA},
    ExtensionType{".bas", FILETYPE_IMPLEMENTATION, LANGUAGE_BASIC},
    ExtensionType{".cls", FILETYPE_IMPLEMENTATION, LANGUAGE_BASIC},
    ExtensionType{".frm", FILETYPE_FORM, LANGUAGE_BASIC},      ExtensionType{".ctl", FILETYPE_FORM, LANGUAGE_BASIC},
    ExtensionType{".dsr", FILETYPE_FORM, LANGUAGE_BASIC},
};

// The extension as std::filesystem::path::extension() gives it, without building a
// path for every file of a long list.
std::string_view ExtensionOf(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);  // all of it without a '/'
    const size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || name == "..") return {};
    return name.substr(dot);
}

const ExtensionType* Lookup(const std::string& path) {
    std::string ext(ExtensionOf(path));
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
    for (const ExtensionType& e : kExtensions)
        if (e.extension == ext) return &e;
    return nullptr;
}

// Every family of the C language shares one set of extensions.
int32_t FolderFamily(int32_t language) {
    return language == LANGUAGE_JAVA || language == LANGUAGE_BASIC ? language : LANGUAGE_C;
}

// A NUL byte in the first 8 KB makes a file binary, as git and grep decide; a file
// that starts with a UTF-16 byte-order mark is text that holds NUL bytes by nature.
bool LooksBinary(const std::string& path) {
    constexpr size_t kProbe = 8192;
    char head[kProbe];
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;  // left to the scan, which reports why it cannot read it
    size_t got = 0;
    for (ssize_t n; got < kProbe && (n = ::read(file, head + got, kProbe - got)) != 0;) {
        if (n > 0) got += static_cast<size_t>(n);
        else if (errno != EINTR) break;
    }
    ::close(file);
    const std::string_view bytes(head, got);
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return false;
    return bytes.find('\0') != std::string_view::npos;
}

double Now() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

int32_t FileTypeOfExtension(const std::string& path) {
    const ExtensionType* e = Lookup(path);
    return e ? e->type : FILETYPE_NOPARSE;
}

std::optional<int32_t> LanguageOfExtension(const std::string& path) {
    if (const ExtensionType* e = Lookup(path)) return e->language;
    return std::nullopt;
}

void FileList::AddFile(const std::string& absolutePath) {
    files_.push_back(SourceFile{absolutePath, type_ ? *type_ : FileTypeOfExtension(absolutePath)});
}

void FileList::Add(const std::string& path) {
    const std::string absolute = AbsolutePath(path);
    // Asked of the system directly: a list of many thousand files pays for it once each.
    struct stat status {};
    if (::stat(absolute.c_str(), &status) != 0) throw Failure(path, "no such file or folder");
    if (!S_ISDIR(status.st_mode)) {
        AddFile(absolute);
        return;
    }
    std::error_code ec;
    std::vector<std::string> found;
    fs::recursive_directory_iterator it(absolute, fs::directory_options::skip_permission_denied, ec), end;
    if (ec) throw Failure(path, ec.message());
    for (; it != end; it.increment(ec)) {
        if (ec) throw Failure(path, ec.message());
        const fs::path& p = it->path();
        if (it->is_directory(ec)) {
            if (p.filename().string().starts_with(".")) it.disable_recursion_pending();
            continue;
        }
        const ExtensionType* e = Lookup(p.string());
        if (!e || e->language != FolderFamily(language_) || !it->is_regular_file(ec)) continue;
        if (LooksBinary(p.string()))
            ++binaryFilesSkipped_;
        else
            found.push_back(p.lexically_normal().string());
    }
    if (found.empty()) emptyFolders_.push_back(path);
    std::sort(found.begin(), found.end());
    for (const std::string& f : found) AddFile(f);
}

std::string FileList::LanguageExtensions() const {
    std::string list;
    for (const ExtensionType& e : kExtensions)
        if (e.language == FolderFamily(language_)) list.append(list.empty() ? "(" : " ").append(e.extension);
    return list + ")";
}

void ReportFolderWalk(const FileList& list) {
    if (const size_t skipped = list.BinaryFilesSkipped())
        std::cerr << "kestrel: skipped " << skipped << (skipped == 1 ? " binary file" : " binary files")
                  << " in folders (a NUL byte in the first 8 KB)\n";
    if (!list.EmptyFolders().empty())
        throw Failure(list.EmptyFolders().front(),
                      "no source file of the project's language in this folder " + list.LanguageExtensions());
}

void FileList::AddFrom(const std::string& listPath) {
    std::ifstream file;
    std::istream* in = &std::cin;
    if (listPath != "-") {
        file.open(listPath);
        if (!file) throw Failure(listPath, "cannot read the file list");
        in = &file;
    }
    std::string line;
    while (std::getline(*in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty()) Add(line);
    }
}

Progress::Progress(size_t total, const char* verb)
    : total_(total), verb_(verb), start_(Now()), terminal_(::isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
    if (shown_) std::fputc('\n', stderr);
}

void Progress::Step(const std::string& path) {
    ++done_;
    if (!terminal_) return;  // nobody sees it: not even a look at the file's size
    std::error_code ec;
    const auto size = fs::file_size(path, ec);
    bytes_ += ec ? 0 : size;
    const double now = Now();
    const double elapsed = now - start_;
    if (elapsed <= 1.0 || (now - lastShown_ < 0.2 && done_ != total_)) return;
    lastShown_ = now;
    shown_ = true;
    std::fprintf(stderr, "\r%s %zu of %zu files, %.1f MB/s   ", verb_, done_, total_, bytes_ / 1e6 / elapsed);
    std::fflush(stderr);
}

}  // namespace kestrel::cli
