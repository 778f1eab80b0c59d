#pragma once
// Writers of one project take turns, so that no update is lost: each holds an advisory
// lock (flock) from before it loads the project until after its save. Readers take no
// lock; the save's rename keeps them safe.
//
// The lock is on the folder that holds the project file (the link's target's folder
// when the project is a symbolic link), not on the file. A save replaces the file by a
// new one through a rename: a writer that came after the rename would lock the new
// file while one that had waited still held the old one, and both would write. The
// folder stays the same for the whole load-change-save, exists before the project does
// (kestrel new), and unlike a lock file leaves nothing behind. The price: writers of
// different projects in one folder take turns as well.
#include <string>

namespace kestrel::cli {

class ProjectLock {
public:
    // Waits up to waitSeconds for the lock, then fails naming the project. A folder
    // that does not exist is not locked: the save fails there and says why. Where the
    // file system has no locks, a warning says that the project is written without one.
    ProjectLock(const std::string& projectPath, int waitSeconds);
    ~ProjectLock();
    ProjectLock(const ProjectLock&) = delete;
    ProjectLock& operator=(const ProjectLock&) = delete;

private:
    int fd_ = -1;
};

}  // namespace kestrel::cli
