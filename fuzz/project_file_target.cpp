// Arbitrary bytes loaded as a project file by a control on the in-memory platform,
// every class opened, then saved, loaded into a second control and saved again: the
// two saved files must be the same bytes.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "common/text.h"
#include "control/memory/memory_platform.h"
#include "control/tree_view.h"
#include "fuzz_input.h"

namespace {

using namespace kestrel;

// Opens every class node of the class tree, as a user going through the tree would.
void ExpandEveryClass(MemoryTree& tree) {
    std::vector<NodeId> classes;
    for (NodeId project = tree.FirstChild(kNoNode); project != kNoNode; project = tree.NextSibling(project))
        for (NodeId c = tree.FirstChild(project); c != kNoNode; c = tree.NextSibling(c)) classes.push_back(c);
    for (NodeId c : classes) tree.UserExpand(c);
}

// Loads `from` into a fresh control and saves it as `to`; false when the load is refused.
bool LoadAndSave(const std::filesystem::path& from, const std::filesystem::path& to, bool async) {
    MemoryPlatform platform;
    std::shared_ptr<TreeView> view = TreeView::Create(platform.Get());
    view->AsyncLoad(async);
    if (!view->Load(FromUtf8(from.string()))) return false;
    ExpandEveryClass(platform.classTree);
    platform.timer.Drain();
    view->FileName(FromUtf8(to.string()));
    if (!view->Save()) {
        std::fprintf(stderr, "project_file: a loaded project could not be saved\n");
        std::abort();
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kestrel::fuzz::QuietErrors errors;
    const auto& folder = kestrel::fuzz::ScratchFolder();
    const auto input = folder / "input.kpr", first = folder / "first.kpr", second = folder / "second.kpr";
    kestrel::fuzz::WriteFile(input, std::string_view(reinterpret_cast<const char*>(data), size));
    if (!LoadAndSave(input, first, true)) return 0;
    if (!LoadAndSave(first, second, false)) {
        std::fprintf(stderr, "project_file: a saved project could not be loaded\n");
        std::abort();
    }
    if (kestrel::fuzz::ReadFile(first) != kestrel::fuzz::ReadFile(second)) {
        std::fprintf(stderr, "project_file: saving what was loaded changed the project file\n");
        std::abort();
    }
    return 0;
}
