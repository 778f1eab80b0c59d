#pragma once
// One source file of the project: its name, kind, host tags and the classes found in
// it. It runs its own rescans: the scanner reports every declaration back through the
// ScanOutput operations, which are merged into the classes by mark-and-sweep.
#include <cstdint>
#include <cstddef>
#include <memory>
#include <string>

#include "model/class_object.h"
#include "model/keyed_collection.h"
#include "model/model_sink.h"
#include "scanner/recorded_scan.h"
#include "scanner/scan_ahead.h"
#include "scanner/scan_output.h"

namespace kestrel {

class clsOneFile : public ScanOutput, public std::enable_shared_from_this<clsOneFile> {
public:
    bool Dirty = false;       // true after a scanning update, false after save or load
    std::u16string UserData;  // host's text
    int32_t UserId = 0;       // host's number

    // A FileType value (FILETYPE_*).
    int32_t FileType() const override { return fileType_; }
    void FileType(int32_t value) { fileType_ = value; }

    // The stored name (project-relative once the file has been updated).
    std::u16string RelativeFilename() const { return stored_; }
    // The absolute name: the sink's AbsPath__ of the stored name, computed once and kept.
    const std::u16string& FileName() override;
    // Replaces the stored name as given; the cached absolute name is kept.
    void FileName(const std::u16string& value) { stored_ = value; }

    int32_t count() const { return classes_.Count(); }
    // By 1-based position or class name; a bad index is reported to the error trap
    // ("clsOneFile.cls") and gives nullptr.
    ClassPtr item(int32_t position);
    ClassPtr item(const std::u16string& className);

    // Rescans from disk, or from lines the host holds, in the sink's Language.
    void UpdateFile();
    // The same, taking the scan from `scanned` when it has scanned this file ahead.
    void UpdateFile(ScanAhead* scanned);
    void UpdateEmbeededFile(LineSource& SourceObject);

    ClassPtr GetClass(const std::u16string& ClassName) const;  // case-blind, nullptr on a miss
    ClassPtr FindClass_ByUserData(const std::u16string& UserData) const;  // exact
    // One EnumClass call per class, in order.
    void EnumClasses(ClassEnumerator* EnumObject);
    int32_t IsFunctionDefined(const std::u16string& szFuncName) const;
    // The function with the latest start at or before LineNum over all classes.
    ItemPtr InProc(int32_t LineNum) const;

    // Internal.
    void SetSinkObject(std::weak_ptr<ModelSink> sink) { sink_ = std::move(sink); }
    std::u16string GetTrueFile() const { return stored_; }
    // Stores the name project-relative, then (unless a form or unparsed file) marks,
    // scans through the scanner and sweeps what was not seen again.
    void UpdateFile__(ModelSink* sink, int16_t language, LineSource* source, ScanAhead* scanned = nullptr);
    // UpdateFile__ from disk in portions, for a thread that must keep answering between
    // them: BeginUpdate__ takes the scan from `scanned` (or scans here when it has none),
    // each ContinueUpdate__ files a portion of it (RecordedScan::Replay's budget) and
    // sweeps after the last, returning true then. The file ends exactly as
    // UpdateFile__ leaves it, provided nothing else changes it in between.
    void BeginUpdate__(ModelSink* sink, int16_t language, ScanAhead* scanned);
    bool ContinueUpdate__(size_t budget);
    // Splits "Class::Member"; no "::" or an empty class name means "Globals".
    static void ExtractClassInfo(const std::u16string& fullName, std::u16string& className,
                                 std::u16string& memberName);
    void WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t scope,
                        const std::u16string& params) override;
    void WriteVariable__(const std::u16string& fullName, int32_t line, int16_t scope,
                         const std::u16string& params) override;
    // As WriteDeclare__ or WriteVariable__ with the full name className::memberName,
    // without joining and splitting it.
    void WriteMember__(bool isFunction, std::u16string_view className, std::u16string_view memberName, int32_t line,
                       int16_t scope, const std::u16string& text) override;
    void WriteEndClass__(const std::u16string& className, int32_t endLine) override;
    void WriteInclude__(const std::u16string& fileName, int32_t line) override;
    void AddAllFromTheClass__(const std::u16string& className, ModelSink* sink);
    // Reads the file record and its classes from g_BinaryFile().
    void LoadFromBinaryFile(int32_t version, ModelSink* sink);

    const KeyedCollection<clsClassObject>& Classes() const { return classes_; }

private:
    // As ExtractClassInfo, as views into fullName (or of "Globals").
    static void SplitClassInfo(std::u16string_view fullName, std::u16string_view& className,
                               std::u16string_view& memberName);
    ClassPtr ClassFor(std::u16string_view className);
    // Files a member under its class; both parts as SplitClassInfo gives them.
    void WriteSplit(bool isFunction, std::u16string_view className, std::u16string_view memberName, int32_t line,
                    int16_t scope, const std::u16string& text);
    // The sink the write operations report to, and the file they report: the running
    // update's, else the file's own (kept alive in held).
    ModelSink* WriteSink(std::shared_ptr<ModelSink>& held);
    const FilePtr& WriteSelf(FilePtr& held);
    // The steps of an update before and after the scan: false from the first when the
    // file is not scanned at all.
    bool MarkForUpdate(ModelSink* sink);
    void SweepAfterUpdate(ModelSink* sink, const FilePtr& self);

    int32_t fileType_ = 0;
    std::u16string stored_;
    std::u16string absolute_;
    KeyedCollection<clsClassObject> classes_;
    std::weak_ptr<ModelSink> sink_;
    // What the update running now keeps on its stack: its sink, the file itself, and
    // the class the last declaration went to, under the name it was asked for, so that
    // a run of declarations of one class looks it up once.
    struct RunningUpdate {
        ModelSink* sink = nullptr;
        FilePtr self;
        std::u16string className;
        ClassPtr found;
        uint32_t removals = 0;  // classes_.Removals() when it was found
    };
    RunningUpdate* update_ = nullptr;
    // Runs body with `running` as the running update.
    template <class Body>
    void WhileRunning(RunningUpdate& running, Body&& body) {
        update_ = &running;
        struct Forget {
            RunningUpdate*& slot;
            ~Forget() { slot = nullptr; }
        } forget{update_};
        body();
    }
    // An update filed in portions, between them. It holds neither the file nor its sink
    // (the file would keep itself alive); each portion takes them afresh.
    struct PortionedUpdate {
        RunningUpdate running;
        std::unique_ptr<RecordedScan> scan;
        size_t next = 0;
    };
    std::unique_ptr<PortionedUpdate> portioned_;
};

}  // namespace kestrel
