#pragma once
// What opening a folder puts into a new project: the files the command line's
// `kestrel new PROJECT FOLDER` would add, for the language family most of the
// folder's files belong to.
#include <QString>
#include <cstdint>
#include <vector>

#include "file_list.h"

namespace kestrel::view {

struct FolderFiles {
    int32_t language = 0;
    std::vector<cli::SourceFile> files;  // sorted by path, each with its file type
};

// Throws cli::Failure when the folder cannot be read.
FolderFiles CollectFolder(const QString& folder);

}  // namespace kestrel::view
