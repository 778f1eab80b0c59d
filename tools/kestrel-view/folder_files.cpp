#include "folder_files.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <algorithm>
#include <array>

#include "common/constants.h"

namespace kestrel::view {

namespace {

struct Family {
    int32_t language;
    QStringList extensions;
};

// The source files each language family reads.
const std::array<Family, 3>& Families() {
    static const std::array<Family, 3> families{{
        {LANGUAGE_C, {"c", "cc", "cpp", "cxx", "h", "hh", "hpp", "hxx", "inl"}},
        {LANGUAGE_JAVA, {"java"}},
        {LANGUAGE_BASIC, {"bas", "cls", "frm", "ctl", "dsr"}},
    }};
    return families;
}

}  // namespace

int32_t FileTypeOf(const QString& path) {
    const QString extension = QFileInfo(path).suffix().toLower();
    static const QStringList definitions{"h", "hh", "hpp", "hxx", "inl"};
    static const QStringList forms{"frm", "ctl", "dsr"};
    static const QStringList implementations{"c", "cc", "cpp", "cxx", "java", "bas", "cls"};
    if (definitions.contains(extension)) return FILETYPE_DEFINITION;
    if (forms.contains(extension)) return FILETYPE_FORM;
    if (implementations.contains(extension)) return FILETYPE_IMPLEMENTATION;
    return FILETYPE_NOPARSE;
}

FolderFiles CollectFolder(const QString& folder) {
    // Every file of a known family, then the family with the most files wins (C on a tie).
    std::array<QStringList, 3> found;
    QDirIterator it(folder, QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = QDir::cleanPath(QFileInfo(it.next()).absoluteFilePath());
        const QString relative = QDir(folder).relativeFilePath(path);
        const QStringList parts = relative.split('/');
        const bool hidden = std::any_of(parts.cbegin(), parts.cend(), [](const QString& part) { return part.startsWith('.'); });
        if (hidden) continue;
        const QString extension = QFileInfo(path).suffix().toLower();
        for (size_t i = 0; i < Families().size(); ++i) {
            if (Families()[i].extensions.contains(extension)) found[i].append(path);
        }
    }
    size_t best = 0;
    for (size_t i = 1; i < found.size(); ++i) {
        if (found[i].size() > found[best].size()) best = i;
    }
    FolderFiles result{Families()[best].language, found[best]};
    result.paths.sort();
    return result;
}

}  // namespace kestrel::view
