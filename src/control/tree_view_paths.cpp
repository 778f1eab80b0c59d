// The control's path work: the path functions applied against the project directory,
// which is taken from the project's file name when it is not known yet.
#include "control/paths.h"
#include "control/tree_view.h"
#include "errorlog/errorlog.h"

namespace kestrel {

namespace {
constexpr const char* kModule = "TreeView.ctl";
}

const std::u16string& TreeView::ProjectDirectory() {
    if (projectDir_.empty()) projectDir_ = kestrel::ExtractPath__(fileName_, pathStyle_);
    return projectDir_;
}

std::u16string TreeView::ExtractFilename__(const std::u16string& path, int16_t strip) {
    std::u16string name;
    Trap(kModule, "Function ExtractFilename__", [&] { name = kestrel::ExtractFilename__(path, strip, pathStyle_); });
    return name;
}

std::u16string TreeView::ExtractPath__(const std::u16string& path) {
    std::u16string dir;
    Trap(kModule, "Function ExtractPath__", [&] { dir = kestrel::ExtractPath__(path, pathStyle_); });
    return dir;
}

std::u16string TreeView::AbsPath__(const std::u16string& storedName) {
    std::u16string full;
    Trap(kModule, "Function AbsPath__", [&] { full = kestrel::AbsPath__(storedName, ProjectDirectory(), pathStyle_); });
    return full;
}

std::u16string TreeView::RelativePathToProject__(const std::u16string& fullPath) {
    std::u16string stored;
    Trap(kModule, "Function RelativePathToProject__",
         [&] { stored = kestrel::RelativePathToProject__(fullPath, ProjectDirectory(), pathStyle_); });
    return stored;
}

}  // namespace kestrel
