#pragma once
// A TreeView on the in-memory platform, a scratch folder for project and source files,
// and helpers that read the trees back as text.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "common/constants.h"
#include "common/text.h"
#include "control/memory/memory_platform.h"
#include "control/tree_view.h"
#include "model/all_files.h"
#include "support/error_capture.h"
#include "support/scratch.h"

namespace kestrel::test {

class ControlTest : public ::testing::Test {
protected:
    std::u16string Write(const std::string& name, const std::string& content) {
        std::filesystem::create_directories((dir / name).parent_path());
        std::ofstream(dir / name, std::ios::binary) << content;
        return Path(name);
    }
    std::u16string Path(const std::string& name) const { return FromUtf8((dir / name).string()); }

    // The tree as an indented outline; with keys, each node's key, image and tag too.
    std::string Outline(int16_t index = 0, bool keys = false) const {
        std::string out;
        AppendOutline(platform.Tree(index), platform.Tree(index).FirstChild(kNoNode), 0, keys, out);
        return out;
    }
    std::vector<std::u16string> ChildKeys(NodeId node, int16_t index = 0) const {
        std::vector<std::u16string> keys;
        const MemoryTree& t = platform.Tree(index);
        for (NodeId c = t.FirstChild(node); c != kNoNode; c = t.NextSibling(c)) keys.push_back(t.Key(c));
        return keys;
    }
    NodeId Node(const std::u16string& key, int16_t index = 0) const { return platform.Tree(index).Find(key); }

    // Model objects made by hand, for the node operations the model calls.
    FilePtr MakeFile(const std::u16string& name, int32_t type) {
        auto file = std::make_shared<clsOneFile>();
        file->SetSinkObject(view);
        file->FileName(name);
        file->FileType(type);
        return file;
    }
    static ClassPtr MakeClass(const std::u16string& name) {
        auto c = std::make_shared<clsClassObject>();
        c->Name = name;
        return c;
    }
    static ItemPtr MakeFunction(const std::u16string& name, const std::u16string& params, int32_t scope = PUBLIC_SCOPE,
                                const std::u16string& userData = u"") {
        auto item = std::make_shared<clsOneItem>(name, params, clsClassObject::MakeFuncKey__(name, params));
        item->Scope = scope;
        item->SetUserData(userData);
        return item;
    }
    static ItemPtr MakeVariable(const std::u16string& name, const std::u16string& type, int32_t scope = PUBLIC_SCOPE) {
        auto item = std::make_shared<clsOneItem>(name, type);
        item->Scope = scope;
        return item;
    }

    ScratchDir scratch;
    const std::filesystem::path& dir = scratch.path();
    ErrorCapture errors;
    mutable MemoryPlatform platform;
    std::shared_ptr<TreeView> view = TreeView::Create(platform.Get());

private:
    static void AppendOutline(const MemoryTree& t, NodeId node, int depth, bool keys, std::string& out) {
        for (; node != kNoNode; node = t.NextSibling(node)) {
            out += std::string(2 * depth, ' ') + ToUtf8(t.Text(node));
            if (keys) {
                out += "  [" + ToUtf8(t.Key(node)) + "] " + std::to_string(t.Image(node));
                if (!t.Tag(node).empty()) out += " tag " + ToUtf8(t.Tag(node));
            }
            out += '\n';
            AppendOutline(t, t.FirstChild(node), depth + 1, keys, out);
        }
    }
};

}  // namespace kestrel::test
