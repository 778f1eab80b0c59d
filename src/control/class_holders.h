#pragma once
// Which files of the project hold a class of a given name, in project order. Filling a
// class node asks this for every expansion; walking all files each time would make
// opening every class of a large project quadratic. Built on demand from the
// collection; whoever sees the project gain a class or a file calls Invalidate, and a
// change of the file count not announced that way rebuilds it too. A file listed here
// is checked with GetClass before use, so a class that has since gone is harmless.
#include <string>
#include <unordered_map>
#include <vector>

#include "model/all_files.h"

namespace kestrel {

class ClassHolders {
public:
    void Invalidate() { valid_ = false; }
    // The files that held a class of that name (compared without regard to case) when
    // the list was built.
    const std::vector<FilePtr>& Of(const clsAllFiles& files, std::u16string_view className);
    // The file is about to leave the collection.
    void Drop(const FilePtr& file);

private:
    std::unordered_map<std::u16string, std::vector<FilePtr>> byName_;
    std::vector<FilePtr> asked_;  // the answer of a small project, asked file by file
    bool valid_ = false;
    const clsAllFiles* owner_ = nullptr;
    int32_t count_ = -1;
};

}  // namespace kestrel
