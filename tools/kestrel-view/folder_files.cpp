#include "folder_files.h"

#include "common/constants.h"

namespace kestrel::view {

FolderFiles CollectFolder(const QString& folder) {
    FolderFiles best;
    // C wins a tie: it is tried first and only a family with more files replaces it.
    for (int32_t language : {LANGUAGE_C, LANGUAGE_JAVA, LANGUAGE_BASIC}) {
        cli::FileList list(language);
        list.Add(folder.toStdString());
        if (best.files.empty() || list.Files().size() > best.files.size()) best = {language, list.Files()};
    }
    return best;
}

}  // namespace kestrel::view
