// A host driving the model and the control on the in-memory platform with a random
// sequence of calls: new project, write a source file, add, remove, rescan from disk
// or from editor lines, add a list of files scanned ahead on worker threads, expand,
// collapse, click, save, load, close, switch views and let the load timer tick. Each byte picks the next call; the bytes after it are its
// arguments.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "common/constants.h"
#include "common/text.h"
#include "control/memory/memory_platform.h"
#include "control/tree_view.h"
#include "fuzz_input.h"
#include "model/all_files.h"

namespace {

using namespace kestrel;
namespace fs = std::filesystem;

// Source files the host works with: fixed names of each kind, and one more whose name
// comes from the input (kept inside the scratch folder: no separators).
constexpr const char* kSourceNames[] = {"a.cpp", "b.h", "c.java", "d.bas", "e.frm", "sub/f.cc"};
constexpr int kSourceCount = sizeof(kSourceNames) / sizeof(kSourceNames[0]);
constexpr int16_t kLanguages[] = {LANGUAGE_C, LANGUAGE_JAVA, LANGUAGE_BASIC, LANGUAGE_PASCAL};

struct EditorLines : LineSource {
    std::vector<std::u16string> lines;
    int32_t GetLineCount() override { return static_cast<int32_t>(lines.size()); }
    std::u16string Line(int32_t n) override {
        return n >= 1 && n <= GetLineCount() ? lines[static_cast<size_t>(n - 1)] : std::u16string();
    }
};

class Host {
public:
    explicit Host(fuzz::FuzzInput& in) : in_(in), view_(TreeView::Create(platform_.Get())) {
        fs::create_directories(Folder() / "src" / "sub");
    }

    void Step() {
        switch (in_.Below(19)) {
        // The input is read in statements of their own: the order in which a call's
        // arguments are evaluated differs between compilers, and a kept input must
        // replay the same under g++ as under clang.
        case 0: {
            const std::u16string name = ProjectName();
            const int16_t language = kLanguages[in_.Below(4)];
            view_->NewProject(name, language, in_.Int32());
            break;
        }
        case 1: {
            const fs::path path = Folder() / "src" / kSourceNames[in_.Below(kSourceCount)];
            fuzz::WriteFile(path, in_.Bytes());
            break;
        }
        case 2: {
            const std::u16string name = SourceName();
            view_->files()->Add(name, static_cast<int32_t>(in_.Below(6)));
            break;
        }
        case 3: view_->files()->Remove(SourceName()); break;
        case 4: RescanFromEditor(); break;
        case 5:
            if (FilePtr file = view_->files()->item(SourceName())) file->UpdateFile();
            break;
        case 6: {
            int16_t t = static_cast<int16_t>(in_.Below(2));
            if (NodeId node = PickNode(t)) platform_.Tree(t).UserExpand(node);
            break;
        }
        case 7: {
            int16_t t = static_cast<int16_t>(in_.Below(2));
            if (NodeId node = PickNode(t)) platform_.Tree(t).UserCollapse(node);
            break;
        }
        case 8: {
            int16_t t = static_cast<int16_t>(in_.Below(2));
            if (NodeId node = PickNode(t)) {
                if (in_.Below(2)) platform_.Tree(t).UserDblClick(node);
                else platform_.Tree(t).UserClick(node);
            }
            break;
        }
        case 9: view_->Save(); break;
        case 10: view_->Load(ProjectName()); break;
        case 11: view_->CloseProject(); break;
        case 12: view_->SaveComplete(); break;
        case 13: view_->ViewStyle(static_cast<int32_t>(in_.Below(3))); break;
        case 14:
            view_->AsyncLoad(in_.Below(2));
            platform_.timer.Advance(in_.Byte() * 10);
            break;
        case 15: Ask(); break;
        case 16: view_->files()->UpdateAllFiles(); break;
        case 17: {
            view_->AutoToolTip(true);
            int16_t button = 0, shift = 0;
            float x = 10, y = static_cast<float>(in_.Byte());
            view_->tView_MouseMove(static_cast<int16_t>(in_.Below(2)), button, shift, x, y);
            break;
        }
        case 18: AddScannedAhead(); break;
        }
    }

    // Lets the timed loader finish, then closes the project as a host does on exit.
    void Finish() {
        platform_.timer.Drain();
        view_->CloseProject();
    }

private:
    static const fs::path& Folder() { return fuzz::ScratchFolder(); }
    std::u16string ProjectName() { return FromUtf8((Folder() / (in_.Below(2) ? "p.kpr" : "q.kpr")).string()); }

    std::u16string SourceName() {
        uint32_t k = in_.Below(kSourceCount + 1);
        if (k < kSourceCount) return FromUtf8((Folder() / "src" / kSourceNames[k]).string());
        std::string name(in_.Bytes(32));
        std::erase_if(name, [](char c) { return c == '/' || c == '\0'; });
        return FromUtf8((Folder() / "src").string() + "/" + name);
    }

    void RescanFromEditor() {
        FilePtr file = view_->files()->item(SourceName());
        EditorLines editor;
        editor.lines = fuzz::SplitLines(in_.Bytes(), '\r');
        if (file) file->UpdateEmbeededFile(editor);
    }

    // Lists files to be scanned ahead on worker threads, then adds them as listed, except
    // that the host may skip one or add another file in its place.
    void AddScannedAhead() {
        AllFilesPtr files = view_->files();
        files->SetScanThreads(in_.Below(3));
        std::vector<std::pair<std::u16string, int32_t>> listed;
        for (uint32_t n = in_.Below(6); n > 0; --n) {
            std::u16string name = SourceName();
            listed.emplace_back(std::move(name), static_cast<int32_t>(in_.Below(6)));
        }
        files->ScanAheadOfAdd(listed);
        for (const auto& [name, type] : listed) {
            switch (in_.Below(4)) {
            case 0: break;
            case 1: files->Add(SourceName(), type); break;
            default: files->Add(name, type); break;
            }
        }
    }

    // A node of tree t, by its place in the tree's outline.
    NodeId PickNode(int16_t t) {
        std::vector<NodeId> nodes;
        MemoryTree& tree = platform_.Tree(t);
        CollectNodes(tree, tree.FirstChild(kNoNode), nodes);
        if (nodes.empty()) return kNoNode;
        return nodes[in_.Byte() % nodes.size()];
    }
    static void CollectNodes(const MemoryTree& tree, NodeId node, std::vector<NodeId>& into) {
        for (; node != kNoNode && into.size() < 4096; node = tree.NextSibling(node)) {
            into.push_back(node);
            CollectNodes(tree, tree.FirstChild(node), into);
        }
    }

    // The host's questions; their answers are not checked, only that they come.
    void Ask() {
        view_->WhatIsSelected();
        view_->GetSelectedClass();
        view_->GetSelectedFile();
        view_->GetSelectedText();
        view_->GetProjectName();
        std::u16string name = FromUtf8(in_.Bytes(16));
        int32_t type = static_cast<int32_t>(in_.Below(5));
        AllFilesPtr files = view_->files();
        files->FindClass(name, type);
        files->FindClass_File(name, type);
        files->FindFunction(name, type);
        files->FindClass_ByUserData(name, type);
        if (FilePtr file = files->item(SourceName())) file->InProc(in_.Int32());
    }

    fuzz::FuzzInput& in_;
    MemoryPlatform platform_;
    std::shared_ptr<TreeView> view_;  // after the platform, so that it goes first
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::QuietErrors errors;
    fuzz::FuzzInput in(data, size);
    {
        Host host(in);
        while (!in.Empty()) host.Step();
        host.Finish();
    }
    // Every run starts from an empty folder.
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(fuzz::ScratchFolder(), ignored)) fs::remove_all(entry.path(), ignored);
    return 0;
}
