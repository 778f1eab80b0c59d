#include "model/all_files.h"

#include "common/constants.h"
#include "errorlog/resume.h"
#include "persist/binary_file.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsAllFiles.cls";

}  // namespace

clsAllFiles::~clsAllFiles() { RemoveAllFiles__(); }

FilePtr clsAllFiles::AddFile(const std::u16string& FileName, int32_t nFileType, bool inPortions) {
    if (std::shared_ptr<ModelSink> sink = sink_.lock()) FollowFileNameCase(*sink);
    if (files_.Contains(FileName)) return nullptr;
    // From here on errors are not trapped: they reach the host.
    auto file = std::make_shared<clsOneFile>();
    file->SetSinkObject(sink_);
    file->FileName(FileName);
    file->FileType(nFileType);
    files_.Add(FileName, file);
    std::shared_ptr<ModelSink> sink = sink_.lock();
    ModelSink& to = Required(sink);
    to.AddFile__(file);
    const auto language = static_cast<int16_t>(to.Language());
    if (inPortions)
        file->BeginUpdate__(sink.get(), language, addsAhead_.get());
    else
        file->UpdateFile__(sink.get(), language, nullptr, addsAhead_.get());
    if (addsAhead_ && addsAhead_->AllTaken()) addsAhead_.reset();
    if (!inPortions) FinishAdd(file, to);
    return file;
}

bool clsAllFiles::ContinueAdd(const FilePtr& file, size_t budget) {
    if (!file->ContinueUpdate__(budget)) return false;
    std::shared_ptr<ModelSink> sink = sink_.lock();
    FinishAdd(file, Required(sink));
    return true;
}

void clsAllFiles::FinishAdd(const FilePtr& file, ModelSink& to) {
    file->Dirty = true;
    for (int32_t i = 1; i <= file->count(); ++i) to.AddClassNode__WithDummy(file->Classes().At(i), file);
}

FilePtr clsAllFiles::item(int32_t position) const { return files_.At(position); }

FilePtr clsAllFiles::item(const std::u16string& key) const {
    FilePtr found = files_.Find(key);
    if (!found) {
        IgnoreErrors([&] {
            std::shared_ptr<ModelSink> sink = sink_.lock();
            found = files_.Find(Required(sink).ExtractFilename__(key, 0));
        });
    }
    return found;
}

void clsAllFiles::UpdateAllFiles() {
    Trap(kModule, "Sub UpdateAllFiles", [&] {
        std::shared_ptr<ModelSink> sink = sink_.lock();
        Required(sink).Collapse();
        const auto language = static_cast<int16_t>(Required(sink).Language());
        std::unique_ptr<ScanAhead> ahead;
        if (scanThreads_ > 0) {
            std::vector<std::pair<std::u16string, int32_t>> all;
            for (const FilePtr& f : files_) all.emplace_back(f->FileName(), f->FileType());
            ahead = std::make_unique<ScanAhead>(ScanJobs(all, language), scanThreads_);
        }
        for (const FilePtr& f : files_) f->UpdateFile(ahead.get());
    });
}

void clsAllFiles::ScanAheadOfAdd(const std::vector<std::pair<std::u16string, int32_t>>& files) {
    addsAhead_.reset();
    if (scanThreads_ == 0) return;
    std::shared_ptr<ModelSink> sink = sink_.lock();
    ModelSink& to = Required(sink);
    // Named as the records will name them.
    std::vector<std::pair<std::u16string, int32_t>> absolute;
    for (const auto& [name, type] : files) absolute.emplace_back(to.AbsPath__(name), type);
    addsAhead_ = std::make_unique<ScanAhead>(ScanJobs(absolute, static_cast<int16_t>(to.Language())), scanThreads_);
}

bool clsAllFiles::AddIsReady(const std::u16string& FileName, int32_t nFileType) const {
    if (!addsAhead_) return true;
    std::shared_ptr<ModelSink> sink = sink_.lock();
    ModelSink& to = Required(sink);
    return addsAhead_->Ready(to.AbsPath__(FileName), nFileType, static_cast<int16_t>(to.Language()));
}

std::vector<ScanJob> clsAllFiles::ScanJobs(const std::vector<std::pair<std::u16string, int32_t>>& files,
                                           int16_t language) {
    std::vector<ScanJob> jobs;
    for (const auto& [name, type] : files) {
        if (type == FILETYPE_FORM || type == FILETYPE_NOPARSE) continue;  // listed, never scanned
        jobs.push_back(ScanJob{name, type, language});
    }
    return jobs;
}

bool clsAllFiles::Remove(const std::u16string& FileName) {
    FilePtr file = files_.Find(FileName);
    if (!file) return false;
    IgnoreErrors([&] {
        std::shared_ptr<ModelSink> sink = sink_.lock();
        Required(sink).RemoveFile__(file);
    });
    files_.Remove(FileName);
    return true;
}

FilePtr clsAllFiles::FindFile(const std::u16string& FileName) const {
    for (const FilePtr& f : files_)
        if (f->FileName() == FileName) return f;
    return nullptr;
}

ClassPtr clsAllFiles::FindClass(const std::u16string& ClassName, int32_t RetFileType) const {
    for (const FilePtr& f : files_) {
        if (f->FileType() != RetFileType) continue;
        if (ClassPtr c = f->GetClass(ClassName)) return c;
    }
    return nullptr;
}

ClassPtr clsAllFiles::FindClass_ByUserData(const std::u16string& UserData, int32_t RetFileType) const {
    for (const FilePtr& f : files_) {
        if (f->FileType() != RetFileType) continue;
        if (ClassPtr c = f->FindClass_ByUserData(UserData)) return c;
    }
    return nullptr;
}

FilePtr clsAllFiles::FindClass_File(const std::u16string& ClassName, int32_t RetFileType) const {
    for (const FilePtr& f : files_)
        if (f->FileType() == RetFileType && f->GetClass(ClassName)) return f;
    return nullptr;
}

FilePtr clsAllFiles::FindFunction(const std::u16string& szFuncName, int32_t RetFileType) const {
    for (const FilePtr& f : files_)
        if (f->FileType() == RetFileType && f->IsFunctionDefined(szFuncName) >= 0) return f;
    return nullptr;
}

void clsAllFiles::EnumAllClasses(ClassEnumerator* EnumObject, int32_t FileType) {
    for (const FilePtr& f : files_)
        if (f->FileType() == FileType) f->EnumClasses(EnumObject);
}

void clsAllFiles::SetAllDirty() {
    for (const FilePtr& f : files_) f->Dirty = true;
}

void clsAllFiles::RemoveAllFiles__() { files_.Clear(); }

void clsAllFiles::LoadFromBinaryFile(int32_t version) {
    Trap(kModule, "Sub LoadFromBinaryFile", [&] {
        clsBinaryFile& in = g_BinaryFile();
        std::shared_ptr<ModelSink> sink = sink_.lock();
        if (sink) FollowFileNameCase(*sink);
        // A count from a damaged file ends with the data, and reserves nothing up front.
        for (int32_t n = in.LoadNumeric(), k = 0; k < n && !in.HitEnd(); ++k) {
            auto file = std::make_shared<clsOneFile>();
            file->SetSinkObject(sink_);
            file->LoadFromBinaryFile(version, sink.get());
            // A file already present is dropped; its records have been read, so the
            // reader stays aligned.
            IgnoreErrors([&] {
                if (files_.TryAdd(file->FileName(), file)) Required(sink).AddFile__(file);
            });
        }
    });
}

}  // namespace kestrel
