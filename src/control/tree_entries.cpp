// The model objects behind a tree node. Keys and tag digits are read here and in the
// node operations that write them, nowhere else.
#include "control/node_keys.h"
#include "control/tree_view.h"
#include "errorlog/errorlog.h"
#include "model/all_files.h"
#include "model/class_object.h"
#include "model/one_file.h"

namespace kestrel {

namespace {

constexpr const char* kModule = "TreeView.ctl";
// The order in which the files of a class node are asked: its entries show the
// implementation first, as the control's class lookups do.
constexpr int32_t kTypesInOrder[] = {FILETYPE_IMPLEMENTATION, FILETYPE_DEFINITION, FILETYPE_FORM, FILETYPE_NOPARSE};

}  // namespace

TreeView::Entry TreeView::EntryOf(NodeId node, bool inClassTree) {
    Entry entry;
    Trap(kModule, "Function EntryOf", [&] {
        if (node == kNoNode) return;
        PlatformTree& tree = inClassTree ? *classTree_ : *fileTree_;
        if (!inClassTree) {
            // The project, its type folders, then the files, keyed by their absolute names.
            const NodeId parent = tree.Parent(node);
            if (parent == kNoNode) entry.kind = ST_PROJECT;
            else if (tree.Parent(parent) != kNoNode && (entry.file = files()->FindFile(tree.Key(node)))) entry.kind = ST_FILE;
            return;
        }
        entry.kind = SelectedKindOf(tree.Key(node));
        if (entry.kind == ST_PROJECT || entry.kind == ST_UNKNOWN) return;
        NodeId classNode = node;
        while (classNode != kNoNode && !HasMarker(tree.Key(classNode), kClassMarker)) classNode = tree.Parent(classNode);
        if (classNode == kNoNode) return;
        const std::u16string className = tree.Key(classNode).substr(kClassMarker.size());
        const bool isMember = entry.kind == ST_METHOD || entry.kind == ST_VAR;
        // A member's key is its class's name, the separator and the member's key.
        const std::u16string key = tree.Key(node);
        const std::u16string memberKey =
            isMember ? key.substr(std::min(key.size(), kFunctionMarker.size() + className.size() + kMemberSeparator.size()))
                     : std::u16string();
        for (const int32_t type : kTypesInOrder) {
            for (const FilePtr& file : files()->Files()) {
                if (file->FileType() != type) continue;
                ClassPtr classObj = file->GetClass(className);
                if (!classObj) continue;
                if (isMember) {
                    ItemPtr item = entry.kind == ST_METHOD ? classObj->func(memberKey) : classObj->var(memberKey);
                    if (!item) continue;
                    entry.item = item;
                } else if (entry.classObj && (entry.classObj->EndLine > 0 || classObj->EndLine <= 0)) {
                    continue;  // a file with the class's body wins over the first that names it
                }
                entry.file = file;
                entry.classObj = classObj;
                if (isMember) return;
            }
        }
    });
    return entry;
}

TreeView::Entry TreeView::Selection() {
    const bool inClassTree = classTree_->Visible() || !fileTree_->Visible();
    return EntryOf((inClassTree ? *classTree_ : *fileTree_).Selected(), inClassTree);
}

}  // namespace kestrel
