#pragma once
// A TreeView on the in-memory platform, driven as a host drives it, for the
// project-level measurements of kestrel_perf.
#include <memory>
#include <string>
#include <vector>

#include "control/memory/memory_platform.h"
#include "control/tree_view.h"

namespace kestrel::perf {

struct BenchHost {
    MemoryPlatform platform;
    std::shared_ptr<TreeView> view = TreeView::Create(platform.Get());
};

// Functions plus variables over every class of every file.
long long CountItems(TreeView& view);
long long CountItems(clsAllFiles& all);
// Bytes per item (which is also kilobytes per 1,000 items); 0 without items.
inline double PerItem(int64_t bytes, long long items) {
    return items > 0 ? static_cast<double>(bytes) / static_cast<double>(items) : 0;
}

// Headers declaring `classesPerFile` classes of `functionsPerClass` functions each, and
// implementations defining them; returns the paths, headers first in each pair.
std::vector<std::string> WriteClassFiles(const std::string& folder, int files, int classesPerFile,
                                         int functionsPerClass);

// Every class node under the project roots of the class tree.
std::vector<NodeId> ClassNodes(MemoryTree& tree);

}  // namespace kestrel::perf
