#include "control/class_holders.h"

#include <algorithm>

#include "common/text.h"

namespace kestrel {

namespace {
// Up to this many files, asking each of them costs less than an index of every class
// name of the project, which a project of a million classes in a few files would
// build and then search for each expansion.
constexpr int32_t kFilesAskedInTurn = 16;
}  // namespace

const std::vector<FilePtr>& ClassHolders::Of(const clsAllFiles& files, std::u16string_view className) {
    if (files.count() <= kFilesAskedInTurn) {
        asked_.clear();
        const std::u16string name(className);
        for (const FilePtr& file : files.Files())
            if (file->GetClass(name)) asked_.push_back(file);
        return asked_;
    }
    if (!valid_ || owner_ != &files || count_ != files.count()) {
        byName_ = {};
        for (const FilePtr& file : files.Files()) {
            for (const ClassPtr& c : file->Classes()) {
                std::vector<FilePtr>& holders = byName_[UpperCase(c->Name)];
                if (holders.empty() || holders.back() != file) holders.push_back(file);
            }
        }
        valid_ = true;
        owner_ = &files;
        count_ = files.count();
    }
    static const std::vector<FilePtr> kNone;
    auto it = byName_.find(UpperCase(className));
    return it == byName_.end() ? kNone : it->second;
}

void ClassHolders::Drop(const FilePtr& file) {
    if (!valid_) return;
    for (const ClassPtr& c : file->Classes()) {
        auto it = byName_.find(UpperCase(c->Name));
        if (it != byName_.end()) std::erase(it->second, file);
    }
    --count_;
}

}  // namespace kestrel
