#pragma once
// What opening a folder puts into a new project: every source file under it, hidden
// folders skipped, in sorted path order, each with the file type its extension gives.
#include <QString>
#include <QStringList>
#include <cstdint>

namespace kestrel::view {

struct FolderFiles {
    int32_t language = 0;  // the family most of the files belong to
    QStringList paths;     // absolute, sorted
};

// The file type (FILETYPE_*) of a file name's extension.
int32_t FileTypeOf(const QString& path);
FolderFiles CollectFolder(const QString& folder);

}  // namespace kestrel::view
