#pragma once
// What the commands that write a project file check so that they destroy nothing by
// accident: a file that is no project, a project that was not read whole, and source
// files that cannot be read (a project moved without its sources), which a scan would
// take as empty.
#include <cstdint>
#include <string>
#include <vector>

#include "file_list.h"
#include "project_session.h"

namespace kestrel::cli {

struct WriteOptions {
    bool force = false;        // --force: write over what the checks refuse
    int32_t waitSeconds = 10;  // --wait: how long to wait for another writer
};

// Takes --force, or --wait with its value, at args[i]; false for any other argument.
bool TakeWriteOption(const std::vector<std::string>& args, size_t& i, WriteOptions& options);

// Fails when `projectPath` is an existing file without the project file's signature,
// unless forced.
void RefuseToWriteOverNonProject(const std::string& projectPath, const WriteOptions& options);

// Fails, unless forced, when loading the project reported errors (printed already):
// the project was not read whole, and saving it would lose the rest for good.
void RefuseToSaveOverDamage(const ProjectSession& session, const std::string& projectPath,
                            const WriteOptions& options);

// How many of some files a scan reads, and how many of those cannot be read.
struct ReadCheck {
    size_t scanned = 0;
    size_t unreadable = 0;
};
// Names on standard error, one line each, the files among `files` that a scan reads
// and that cannot be read.
ReadCheck ReportUnreadable(const std::vector<SourceFile>& files);

// The files of the loaded project, with their absolute names.
std::vector<SourceFile> ProjectFiles(ProjectSession& session);

}  // namespace kestrel::cli
