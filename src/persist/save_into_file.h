#pragma once
// The project file: signature "KESTREL1.1", language, id, file count, then the file
// records with their classes and items, all through g_BinaryFile(). A project holding
// any code unit above 255 is signed "KESTREL1.2" and holds its strings as UTF-8.
#include <cstdint>
#include <string>

#include "model/all_files.h"
#include "persist/project_host.h"

namespace kestrel {

class clsSaveIntoFile {
public:
    // Writes `files` to ctl.FileName(), keeping a ".bak" copy when ctl.CreateBackup().
    // The project is written to a new file beside it and put in its place whole (see
    // FileReplacement), so a failed or killed save leaves the previous file in place; a
    // symbolic link is written through. True when the project file was written.
    bool Save(ProjectHost& ctl, clsAllFiles& files);
    // Reads a project file into `files` (which the caller has emptied) and sets the
    // host's Language, ID and FileName. False when the file is missing or refused. A
    // file that ends before its records do loads what it holds, and is reported.
    bool Load(const std::u16string& szFileName, ProjectHost& ctl, clsAllFiles& files);

    // The version a signature stands for: the number after its seventh character,
    // times ten, rounded half to even ("KESTREL1.1" gives 11).
    static int32_t VersionOf(const std::u16string& signature);

private:
    void SaveOneFile__(clsOneFile& file);
    void SaveClassObject__(const clsClassObject& classObj);
    void SaveOneItem__(const clsOneItem& item, bool isVariable);
};

}  // namespace kestrel
