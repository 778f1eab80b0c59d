#include "model/all_files.h"

#include "errorlog/resume.h"
#include "persist/binary_file.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsAllFiles.cls";

}  // namespace

clsAllFiles::~clsAllFiles() { RemoveAllFiles__(); }

FilePtr clsAllFiles::Add(const std::u16string& FileName, int32_t nFileType) {
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
    file->UpdateFile__(sink.get(), static_cast<int16_t>(to.Language()), nullptr);
    file->Dirty = true;
    for (int32_t i = 1; i <= file->count(); ++i) to.AddClassNode__WithDummy(file->Classes().At(i), file);
    return file;
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
        for (const FilePtr& f : files_) f->UpdateFile();
    });
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
