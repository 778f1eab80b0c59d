#include "control/headless_project.h"

#include "errorlog/errorlog.h"
#include "persist/save_into_file.h"

namespace kestrel {

namespace {
constexpr const char* kModule = "HeadlessProject.cpp";
}

std::shared_ptr<HeadlessProject> HeadlessProject::Create(PathStyle style) {
    auto project = std::make_shared<HeadlessProject>(Passkey{}, style);
    project->files_->SetSinkObject__(project->weak_from_this());
    return project;
}

HeadlessProject::HeadlessProject(Passkey, PathStyle style) : pathStyle_(style) {}

HeadlessProject::~HeadlessProject() { files_->RemoveAllFiles__(); }

void HeadlessProject::NewProject(const std::u16string& szFileName, int32_t nLanguage, int32_t nId) {
    Trap(kModule, "Sub NewProject", [&] {
        files_->RemoveAllFiles__();
        fileName_ = szFileName;
        language_ = nLanguage;
        id_ = nId;
        projectDir_.clear();
    });
}

bool HeadlessProject::Save() {
    bool saved = false;
    Trap(kModule, "Function Save", [&] {
        projectDir_ = kestrel::ExtractPath__(fileName_, pathStyle_);
        saved = clsSaveIntoFile().Save(*this, *files_);
    });
    return saved;
}

bool HeadlessProject::Load(const std::u16string& szFileName) {
    bool loaded = false;
    Trap(kModule, "Function Load", [&] {
        fileName_ = szFileName;
        projectDir_ = kestrel::ExtractPath__(fileName_, pathStyle_);
        loaded = clsSaveIntoFile().Load(fileName_, *this, *files_);
    });
    return loaded;
}

bool HeadlessProject::SaveComplete() {
    bool saved = false;
    Trap(kModule, "Function SaveComplete", [&] {
        projectDir_ = kestrel::ExtractPath__(fileName_, pathStyle_);
        files_->UpdateAllFiles();
        saved = Save();
    });
    return saved;
}

const std::u16string& HeadlessProject::ProjectDirectory() {
    if (projectDir_.empty()) projectDir_ = kestrel::ExtractPath__(fileName_, pathStyle_);
    return projectDir_;
}

std::u16string HeadlessProject::AbsPath__(const std::u16string& storedName) {
    return kestrel::AbsPath__(storedName, ProjectDirectory(), pathStyle_);
}

std::u16string HeadlessProject::RelativePathToProject__(const std::u16string& fullPath) {
    return kestrel::RelativePathToProject__(fullPath, ProjectDirectory(), pathStyle_);
}

std::u16string HeadlessProject::ExtractFilename__(const std::u16string& path, int16_t strip) {
    return kestrel::ExtractFilename__(path, strip, pathStyle_);
}

}  // namespace kestrel
