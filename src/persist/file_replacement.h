#pragma once
// A new version of a file, written beside it and put in its place whole. A process
// killed at any moment leaves the old file or the new one, and nothing else:
//
// - The new file is made without a name (O_TMPFILE) in the target's folder, written,
//   flushed to the disk, given a temporary name and renamed over the target. Only the
//   instant between the naming and the rename can leave a file behind.
// - Where the file system has no unnamed files, it is a named temporary from the start.
//
// Temporaries are named ".kestrel-save-PID-N". Each new replacement removes those of
// processes that no longer run from its folder, so whatever a kill left behind goes
// with the next save there; so do the target's own TARGET.tmpPID-N, as saves named
// their temporaries before. A symbolic link is written through: its target is
// replaced and the link stays.
#include <string>

namespace kestrel {

class FileReplacement {
public:
    FileReplacement() = default;
    ~FileReplacement() { Abandon(); }
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    // Starts a replacement of `target` (a UTF-8 name); false, with errno set, when no
    // new file can be made there, or when the target is a file that may not be written
    // (the rename would not ask).
    bool Open(const std::string& target);
    // The new file's descriptor, to write the content to; -1 when not open.
    int Descriptor() const { return fd_; }
    // Puts the written file in place of the target, on the disk; false (errno set) when
    // that fails, and the target is then as it was.
    bool Commit();
    // Drops the new file; the target stays as it was.
    void Abandon();

    // The file a save of `name` replaces: `name` with every symbolic link followed,
    // also a link to a file that does not exist yet.
    static std::string ThroughLinks(const std::string& name);

private:
    // Gives the unnamed file a temporary name in its folder.
    bool NameUnnamed();

    std::string target_;
    std::string folder_;
    std::string temporary_;  // empty while the new file has no name
    int fd_ = -1;
    int folderFd_ = -1;
};

}  // namespace kestrel
