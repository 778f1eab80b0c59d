#pragma once
// The project: the ordered, keyed collection of source file records. Files added with
// Add are keyed by the name as the host gave it, files read from a project file by
// their absolute name; keys are case-blind where the sink's file names are, and exact
// otherwise.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "model/keyed_collection.h"
#include "model/model_sink.h"
#include "model/one_file.h"

namespace kestrel {

class clsAllFiles : public std::enable_shared_from_this<clsAllFiles> {
public:
    // Adds, shows and scans a file; nullptr when the key is present already. Errors
    // after the duplicate check (the sink's, the scan's) reach the caller as
    // kestrel::RuntimeError.
    FilePtr Add(const std::u16string& FileName, int32_t nFileType) { return AddFile(FileName, nFileType, false); }
    // Add in portions, for a thread that must keep answering between them: BeginAdd
    // adds and shows the file and takes its scan (nullptr when the key is present), and
    // each ContinueAdd files a portion of the scan (RecordedScan::Replay's budget),
    // returning true once the file is exactly as Add leaves it. Nothing else may change
    // the project in between.
    FilePtr BeginAdd(const std::u16string& FileName, int32_t nFileType) { return AddFile(FileName, nFileType, true); }
    bool ContinueAdd(const FilePtr& file, size_t budget);
    int32_t count() const { return files_.Count(); }
    // By 1-based position, by key, or by the sink's ExtractFilename__ of the key text.
    FilePtr item(int32_t position) const;
    FilePtr item(const std::u16string& key) const;
    // Collapses the tree, then rescans every file in order.
    void UpdateAllFiles();
    // Files about to be added, in order, as (name as given to Add, file type): they are
    // scanned on worker threads meanwhile, and each Add takes its file's scan. The
    // project comes out exactly as if Add scanned every file itself.
    void ScanAheadOfAdd(const std::vector<std::pair<std::u16string, int32_t>>& files);
    // Whether Add of this file would go ahead without waiting for a worker: a caller
    // that must stay responsive (a window's thread) adds the file only then.
    bool AddIsReady(const std::u16string& FileName, int32_t nFileType) const;
    // Worker threads for scanning ahead (also used by UpdateAllFiles); 0 scans every
    // file on the calling thread. Starts as one per core, or 0 on a single core.
    void SetScanThreads(unsigned threads) { scanThreads_ = threads; }
    bool Remove(const std::u16string& FileName);
    // First file whose absolute FileName equals the argument exactly.
    FilePtr FindFile(const std::u16string& FileName) const;
    // Searches over the files whose FileType equals RetFileType; first hit wins.
    ClassPtr FindClass(const std::u16string& ClassName, int32_t RetFileType) const;
    ClassPtr FindClass_ByUserData(const std::u16string& UserData, int32_t RetFileType) const;
    FilePtr FindClass_File(const std::u16string& ClassName, int32_t RetFileType) const;
    FilePtr FindFunction(const std::u16string& szFuncName, int32_t RetFileType) const;
    void EnumAllClasses(ClassEnumerator* EnumObject, int32_t FileType);

    // Internal.
    void SetSinkObject__(std::weak_ptr<ModelSink> sink) { sink_ = std::move(sink); }
    void SetAllDirty();
    // Empties the collection without telling the sink (the caller clears the tree).
    void RemoveAllFiles__();
    // Reads the file count and the file records from g_BinaryFile(), dropping files
    // whose key is present already.
    void LoadFromBinaryFile(int32_t version);

    const KeyedCollection<clsOneFile>& Files() const { return files_; }

    ~clsAllFiles();

private:
    // Takes the sink's rule for letter case in file names, while the project is empty.
    void FollowFileNameCase(ModelSink& sink) { files_.CompareKeysExactly(!sink.FileNamesIgnoreCase()); }
    FilePtr AddFile(const std::u16string& FileName, int32_t nFileType, bool inPortions);
    // What Add does once the file's scan is filed.
    void FinishAdd(const FilePtr& file, ModelSink& to);

    // The jobs for the files (absolute names) that are scanned at all.
    static std::vector<ScanJob> ScanJobs(const std::vector<std::pair<std::u16string, int32_t>>& files, int16_t language);

    KeyedCollection<clsOneFile> files_;
    std::weak_ptr<ModelSink> sink_;
    unsigned scanThreads_ = ScanAhead::UsefulThreads();
    std::unique_ptr<ScanAhead> addsAhead_;
};

}  // namespace kestrel
