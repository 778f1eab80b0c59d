#pragma once
// A project without a view: the code model and its project file, for tools that create
// or rewrite projects nobody looks at (a command-line indexer). Scanning, path work and
// the saved bytes are exactly the control's; what it leaves out is mirroring every
// class, function and variable into tree nodes, which is a good part of a scan's cost.
//
// Create it with HeadlessProject::Create: the model holds its sink as a weak reference.
#include <cstdint>
#include <memory>
#include <string>

#include "control/paths.h"
#include "model/all_files.h"
#include "model/model_sink.h"
#include "persist/project_host.h"

namespace kestrel {

class HeadlessProject final : public ModelSink,
                              public ProjectHost,
                              public std::enable_shared_from_this<HeadlessProject> {
    struct Passkey {};

public:
    static std::shared_ptr<HeadlessProject> Create(PathStyle style = PathStyle::Posix);
    HeadlessProject(Passkey, PathStyle style);
    ~HeadlessProject() override;
    HeadlessProject(const HeadlessProject&) = delete;
    HeadlessProject& operator=(const HeadlessProject&) = delete;

    AllFilesPtr files() { return files_; }

    // The control's project commands, with the same results.
    void NewProject(const std::u16string& szFileName, int32_t nLanguage, int32_t nId);
    bool Save();
    bool Load(const std::u16string& szFileName);
    bool SaveComplete();

    // ProjectHost and the model's questions.
    int32_t Language() override { return language_; }
    void Language(int32_t value) override { language_ = value; }
    int32_t ID() override { return id_; }
    void ID(int32_t value) override { id_ = value; }
    std::u16string FileName() override { return fileName_; }
    void FileName(const std::u16string& value) override { fileName_ = value; }
    bool CreateBackup() override { return backup_; }
    void CreateBackup(bool value) { backup_ = value; }
    void ClearProjectBeforeRead() override { files_->RemoveAllFiles__(); }

    std::u16string AbsPath__(const std::u16string& storedName) override;
    std::u16string RelativePathToProject__(const std::u16string& fullPath) override;
    std::u16string ExtractFilename__(const std::u16string& path, int16_t strip) override;
    bool FileNamesIgnoreCase() override { return pathStyle_ == PathStyle::Windows; }

    // Nothing is shown, so the node operations have nothing to do.
    void AddFile__(const FilePtr&) override {}
    void RemoveFile__(const FilePtr&) override {}
    void AddClassNode__WithDummy(const ClassPtr&, const FilePtr&) override {}
    void SetCurrentClass(const ClassPtr&, const FilePtr&) override {}
    void RemoveClass__(const ClassPtr&, const FilePtr&) override {}
    void AddFunction__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {}
    void AddVariable__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {}
    void RemoveFunction__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {}
    void RemoveVariable__(const ItemPtr&, const ClassPtr&, const FilePtr&) override {}
    void Collapse() override {}
    int16_t MousePointer() override { return pointer_; }
    void MousePointer(int16_t pointer) override { pointer_ = pointer; }

private:
    // Taken from the project's file name when first needed, as the control does.
    const std::u16string& ProjectDirectory();

    AllFilesPtr files_ = std::make_shared<clsAllFiles>();
    PathStyle pathStyle_;
    std::u16string fileName_;
    std::u16string projectDir_;
    int32_t language_ = 0;
    int32_t id_ = -1;
    bool backup_ = false;
    int16_t pointer_ = 0;
};

}  // namespace kestrel
