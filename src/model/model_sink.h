#pragma once
// What the code model talks to. The model never draws: every insertion, refresh and
// removal is reported to a ModelSink (the control, which mirrors the model in its
// trees), and the model asks the sink for the project's language and for path work.
// The host's enumeration callback is a ClassEnumerator.
#include <cstdint>
#include <memory>
#include <string>

namespace kestrel {

class clsOneItem;
class clsClassObject;
class clsOneFile;
class clsAllFiles;

using ItemPtr = std::shared_ptr<clsOneItem>;
using ClassPtr = std::shared_ptr<clsClassObject>;
using FilePtr = std::shared_ptr<clsOneFile>;
using AllFilesPtr = std::shared_ptr<clsAllFiles>;

// The node operations of the control that the model calls, and what it asks of it.
// Entry operations take the item, its class and the file record the class was found
// in, in that order. A sink may be asked to add the same entry again: that is a
// refresh, not a second entry. Errors a sink raises (kestrel::RuntimeError) are
// handled by the calling model operation as its error trap says.
class ModelSink {
public:
    virtual ~ModelSink() = default;

    // The project's language (a Languages value); files are scanned in it.
    virtual int32_t Language() = 0;

    // Path work against the project directory (see control/paths.h).
    virtual std::u16string AbsPath__(const std::u16string& storedName) = 0;
    virtual std::u16string RelativePathToProject__(const std::u16string& fullPath) = 0;
    virtual std::u16string ExtractFilename__(const std::u16string& path, int16_t strip) = 0;
    // Whether two file names that differ only in letter case name one file, as they do
    // with Windows paths; POSIX file systems hold both.
    virtual bool FileNamesIgnoreCase() { return false; }

    virtual void AddFile__(const FilePtr& file) = 0;
    virtual void RemoveFile__(const FilePtr& file) = 0;
    virtual void AddClassNode__WithDummy(const ClassPtr& classObj, const FilePtr& file) = 0;
    virtual void SetCurrentClass(const ClassPtr& classObj, const FilePtr& file) = 0;
    virtual void RemoveClass__(const ClassPtr& classObj, const FilePtr& file) = 0;
    virtual void AddFunction__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) = 0;
    virtual void AddVariable__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) = 0;
    virtual void RemoveFunction__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) = 0;
    virtual void RemoveVariable__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) = 0;
    // Folds the class tree back before every file is rescanned.
    virtual void Collapse() = 0;

    // The screen's mouse pointer (11 is the hourglass), shown while many entries are
    // replayed into the tree.
    virtual int16_t MousePointer() = 0;
    virtual void MousePointer(int16_t pointer) = 0;
};

// The host's enumeration target: one call per class.
class ClassEnumerator {
public:
    virtual ~ClassEnumerator() = default;
    virtual void EnumClass(const std::u16string& Name, const std::u16string& UserData, int32_t UserId) = 0;
};

}  // namespace kestrel
