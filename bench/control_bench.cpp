// The control's trees at size: 100,000 nodes under one sorted parent, a class of 50,000
// members opened and folded again through the expansion handler, and every class of a
// project of 10,000 files opened.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "common/text.h"
#include "control/memory/memory_platform.h"
#include "control/tree_view.h"

using namespace kestrel;

namespace {

void BM_SortedTreeOfAHundredThousandNodes(benchmark::State& state) {
    std::vector<std::u16string> keys, texts;
    for (int i = 0; i < 100000; ++i) {
        keys.push_back(u"k" + ToText(i));
        texts.push_back(u"n" + ToText((i * 7919LL) % 100000));
    }
    for (auto _ : state) {
        MemoryTree tree;
        NodeId root = tree.AddRoot(u"root", u"root", 10);
        tree.SetSortedChildren(root, true);
        for (size_t i = 0; i < keys.size(); ++i) tree.AddLastChild(root, keys[i], texts[i], 6);
        for (const std::u16string& k : keys) benchmark::DoNotOptimize(tree.Find(k));
    }
    state.SetItemsProcessed(state.iterations() * 100000);
}
BENCHMARK(BM_SortedTreeOfAHundredThousandNodes)->Unit(benchmark::kMillisecond);

void BM_ExpandAndCollapseAClassOfFiftyThousandMembers(benchmark::State& state) {
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / ("kestrel-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    {
        std::ofstream header(dir / "big.h");
        header << "class Big {\npublic:\n";
        for (int i = 0; i < 25000; ++i) header << "    int f" << i << "(int a);\n    int v" << i << ";\n";
        header << "};\n";
    }
    MemoryPlatform platform;
    auto view = TreeView::Create(platform.Get());
    const std::u16string project = FromUtf8((dir / "big.kpr").string());
    view->NewProject(project, LANGUAGE_C, 0);
    view->files()->Add(FromUtf8((dir / "big.h").string()), FILETYPE_DEFINITION);
    view->Save();
    view->CloseProject();
    view->Load(project);
    const NodeId big = platform.classTree.Find(u"--Big");
    for (auto _ : state) {
        platform.classTree.UserExpand(big);
        platform.classTree.UserCollapse(big);
    }
    state.SetItemsProcessed(state.iterations() * 50000);
    view.reset();
    std::filesystem::remove_all(dir);
}
BENCHMARK(BM_ExpandAndCollapseAClassOfFiftyThousandMembers)->Unit(benchmark::kMillisecond);

void BM_OpenEveryClassOfTenThousandFiles(benchmark::State& state) {
    const std::filesystem::path dir =
        std::filesystem::temp_directory_path() / ("kestrel-bench-files-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    MemoryPlatform platform;
    auto view = TreeView::Create(platform.Get());
    const std::u16string project = FromUtf8((dir / "many.kpr").string());
    view->NewProject(project, LANGUAGE_C, 0);
    for (int i = 0; i < 10000; ++i) {
        const std::filesystem::path file = dir / ("f" + std::to_string(i) + ".h");
        std::ofstream(file) << "class C" << i << " {\npublic:\n    int f(int a);\n};\n";
        view->files()->Add(FromUtf8(file.string()), FILETYPE_DEFINITION);
    }
    view->Save();
    for (auto _ : state) {
        state.PauseTiming();
        view->CloseProject();
        view->Load(project);
        std::vector<NodeId> classes;
        const NodeId root = platform.classTree.FirstChild(kNoNode);
        for (NodeId c = platform.classTree.FirstChild(root); c != kNoNode; c = platform.classTree.NextSibling(c))
            classes.push_back(c);
        state.ResumeTiming();
        for (NodeId c : classes) platform.classTree.UserExpand(c);
    }
    state.SetItemsProcessed(state.iterations() * 10000);
    view.reset();
    std::filesystem::remove_all(dir);
}
BENCHMARK(BM_OpenEveryClassOfTenThousandFiles)->Unit(benchmark::kMillisecond);

}  // namespace
