#pragma once
// The source files a project command adds: plain files, folders searched recursively
// for the project language's files, and lists of paths read from a file or standard
// input; each with its file type, given by --type or guessed from the extension.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel::cli {

struct SourceFile {
    std::string path;  // absolute, lexically normalised
    int32_t type;      // a FileType value
};

class FileList {
public:
    explicit FileList(int32_t language) : language_(language) {}

    // The type given with --type for the files that follow.
    void SetType(int32_t type) { type_ = type; }
    // A file, or a folder whose files of the project's language are added in sorted
    // path order (hidden folders skipped, binary files counted and skipped). A missing
    // path fails.
    void Add(const std::string& path);
    // One path per line of a list file, or of standard input for "-".
    void AddFrom(const std::string& listPath);

    const std::vector<SourceFile>& Files() const { return files_; }
    // The folders, as given, that held no source file of the project's language.
    const std::vector<std::string>& EmptyFolders() const { return emptyFolders_; }
    // The files of folders left out for holding a NUL byte in their first 8 KB, as git
    // and grep tell binary files (UTF-16 text with its byte-order mark excepted).
    size_t BinaryFilesSkipped() const { return binaryFilesSkipped_; }
    // The extensions of the project language's files, as "(.c .cc ...)".
    std::string LanguageExtensions() const;

private:
    void AddFile(const std::string& absolutePath);

    int32_t language_;
    std::optional<int32_t> type_;
    std::vector<SourceFile> files_;
    std::vector<std::string> emptyFolders_;
    size_t binaryFilesSkipped_ = 0;
};

// Notes the binary files a list's folders skipped on standard error, then fails on
// the first folder that held no source file: the project would come out empty.
void ReportFolderWalk(const FileList& list);

// The file type an extension stands for (FILETYPE_NOPARSE for anything unknown).
int32_t FileTypeOfExtension(const std::string& path);
// The language family whose files have the path's extension, if any.
std::optional<int32_t> LanguageOfExtension(const std::string& path);

// One line of progress on standard error, only when it is a terminal and the work
// has been going on for more than a second.
class Progress {
public:
    Progress(size_t total, const char* verb);
    ~Progress();
    // One more file done; its size counts towards the speed shown.
    void Step(const std::string& path);

private:
    size_t total_;
    size_t done_ = 0;
    unsigned long long bytes_ = 0;
    const char* verb_;
    double start_;
    double lastShown_ = 0;
    bool shown_ = false;
    bool terminal_;
};

}  // namespace kestrel::cli
