// The node operations: how every change of the model shows in the class tree and the
// file tree, under the key scheme of node_keys.h.
#include <cctype>

#include "control/node_keys.h"
#include "control/text_order.h"
#include "control/timed_load.h"
#include "control/tree_view.h"
#include "errorlog/errorlog.h"
#include "model/all_files.h"

namespace kestrel {

namespace {

constexpr const char* kModule = "TreeView.ctl";

bool StartsWithDigit(std::u16string_view tag) { return !tag.empty() && tag[0] >= u'0' && tag[0] <= u'9'; }

// A file's bit in an entry's tag digit: implementation files set 1, all others 2.
int FileBit(const FilePtr& file) { return file->FileType() == FILETYPE_IMPLEMENTATION ? 1 : 2; }

// Each Build* fills a buffer the caller keeps from call to call and returns a view of it.
std::u16string_view BuildKey(std::u16string& into, std::u16string_view marker, std::u16string_view rest) {
    into.assign(marker);
    into.append(rest);
    return into;
}

std::u16string_view BuildEntryKey(std::u16string& into, bool isFunction, const clsClassObject& classObj,
                                  const clsOneItem& item) {
    // A variable read back from a project file may carry a "#n" key; one just scanned
    // has no KeyVal yet and sits under its name, which is the key its class reads too.
    // A function's node always carries its KeyVal, even an empty one.
    BuildKey(into, isFunction ? kFunctionMarker : kVariableMarker, classObj.Name);
    into.append(kMemberSeparator);
    if (!isFunction || item.HasKeyVal())
        item.ForEachKeyUnit([&](char16_t c) {
            into.push_back(c);
            return true;
        });
    return into;
}

std::u16string_view BuildEntryText(std::u16string& into, bool isFunction, const clsOneItem& item) {
    if (isFunction) return BuildKey(into, item.Name(), item.Params());
    if (item.Params().empty()) return item.Name();
    into.assign(item.Params());
    into.append(u" ");
    into.append(item.Name());
    return into;
}

}  // namespace

NodeId TreeView::GetANodeEx__(int16_t tree, const std::u16string& key, const std::u16string& text, NodeId parent,
                              int16_t image) {
    NodeId node = kNoNode;
    Trap(kModule, "Function GetANodeEx__", [&] {
        PlatformTree& t = tView(tree);
        node = t.Find(key);
        if (node != kNoNode) {
            t.SetImage(node, image);
            if (parent != kNoNode) t.SetExpandedImage(node, image);
            return;
        }
        if (parent == kNoNode) {
            node = t.AddRoot(key, text, image);
            t.SetExpandedImage(node, kImageProjectOpen);
        } else {
            node = t.AddLastChild(parent, key, text, image);
        }
        t.SetSortedChildren(node, true);
    });
    return node;
}

NodeId TreeView::GetANode__(const std::u16string& key, const std::u16string& text, NodeId parent, int16_t image) {
    return GetANodeEx__(0, key, text, parent, image);
}

NodeId TreeView::FindClassNode__(const ClassPtr& classObj, const FilePtr& /*file*/, int16_t kind) {
    NodeId found = kNoNode;
    Trap(kModule, "Function FindClassNode__", [&] {
        const bool folder = kind == 1 || kind == 2;
        const std::u16string folderKey =
            MakeKey(kind == 1 ? kFunctionsFolderMarker : kVariablesFolderMarker, classObj->Name);
        if (folder) {
            found = classTree_->Find(folderKey);
            if (found != kNoNode) return;
        }
        NodeId project = GetANode__(MakeKey(kProjectMarker, projectName_), projectName_, kNoNode, kImageProject);
        NodeId classNode = GetANode__(MakeKey(kClassMarker, classObj->Name), classObj->Name, project, kImageClass);
        // The two folders keep their fixed order, functions first.
        classTree_->SetSortedChildren(classNode, false);
        if (kind == 1)
            found = GetANode__(folderKey, std::u16string(kFunctionsText), classNode, kImageFunction);
        else if (kind == 2)
            found = GetANode__(folderKey, std::u16string(kVariablesText), classNode, kImageVariable);
        else
            found = classNode;
    });
    return found;
}

void TreeView::SetCurrentClass(const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub SetCurrentClass", [&] {
        currentFolder_ = FindClassNode__(classObj, file, 1);
        currentClassName_ = classObj->Name;
    });
}

void TreeView::ForgetCurrentClass() {
    currentFolder_ = kNoNode;
    currentClassName_.clear();
}

void TreeView::AddClassNode__WithDummy(const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub AddClassNode__WithDummy", [&] {
        holders_.Invalidate();
        NodeId classNode = FindClassNode__(classObj, file, -1);
        if (classNode == kNoNode || classTree_->ChildCount(classNode) != 0) return;
        classTree_->AddLastChild(classNode, MakeKey(kPlaceholderMarker, classTree_->Key(classNode)),
                                 std::u16string(kPlaceholderText), kImageNone);
    });
}

void TreeView::AddFunction__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub AddFunction__", [&] { AddOrQueueEntry(true, item, classObj, file); });
}

void TreeView::AddVariable__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub AddVariable__", [&] { AddOrQueueEntry(false, item, classObj, file); });
}

void TreeView::AddOrQueueEntry(bool isFunction, const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    // Outside an expansion the entry may come from a class the project just gained.
    if (expanding_ == kNoNode) holders_.Invalidate();
    clsTimedLoad& loader = TimedLoad();
    if (loader.Enabled())
        isFunction ? loader.AddFunction(item, classObj, file) : loader.AddVariable(item, classObj, file);
    else
        isFunction ? AddFunction__Prim(item, classObj, file) : AddVariable__Prim(item, classObj, file);
}

void TreeView::AddFunction__Prim(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub AddFunction__Prim", [&] { AddEntry(true, item, classObj, file); });
}

void TreeView::AddVariable__Prim(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub AddVariable__Prim", [&] { AddEntry(false, item, classObj, file); });
}

void TreeView::AddEntry(bool isFunction, const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    if (!classObj) {
        currentClassName_.clear();
        return;
    }
    // An unopened class node is filled from the model when it is expanded; an entry
    // added beside its placeholder would leave it half filled for good.
    const std::u16string_view classKey = BuildKey(classKey_, kClassMarker, classObj->Name);
    if (classTree_->Find(BuildKey(placeholderKey_, kPlaceholderMarker, classKey)) != kNoNode &&
        (expanding_ == kNoNode || classTree_->Find(classKey) != expanding_))
        return;

    NodeId folder;
    if (isFunction) {
        if (classObj->Name != currentClassName_) {
            currentFolder_ = FindClassNode__(classObj, file, 1);
            currentClassName_ = classObj->Name;
        }
        folder = currentFolder_;
    } else {
        // The cache holds a functions folder only; variables look their folder up.
        folder = FindClassNode__(classObj, file, 2);
    }
    if (folder == kNoNode) return;

    const std::u16string_view key = BuildEntryKey(entryKey_, isFunction, *classObj, *item);
    NodeId node = classTree_->Find(key);
    if (node == kNoNode) {
        const std::u16string_view text = BuildEntryText(entryText_, isFunction, *item);
        const int16_t image = SelectImage__(static_cast<int16_t>(item->Scope), isFunction ? kImageFunction : kImageVariable);
        NodeId before = kNoNode;
        // A folder that sorts its children places the node itself; the walk is only
        // needed where the platform keeps the asked position.
        if (!classTree_->SortedChildren(folder)) {
            const std::u16string_view marker = isFunction ? kFunctionMarker : kVariableMarker;
            for (NodeId c = classTree_->FirstChild(folder); c != kNoNode; c = classTree_->NextSibling(c)) {
                const std::u16string childKey = classTree_->Key(c);
                if ((isFunction && HasMarker(childKey, kVariableMarker)) ||
                    (HasMarker(childKey, marker) && CompareCaseBlind(classTree_->Text(c), text) >= 0)) {
                    before = c;
                    break;
                }
            }
        }
        node = before != kNoNode ? classTree_->AddBefore(before, key, text, image)
                                 : classTree_->AddLastChild(folder, key, text, image);
        // A new node has no tag yet: only this file's bit and the user data.
        entryText_.assign(1, static_cast<char16_t>(u'0' + FileBit(file)));
        entryText_.append(item->UserData());
        classTree_->SetTag(node, entryText_);
        return;
    }
    std::u16string tag = SetATag__(node, item->UserData());
    // An empty tag: SetATag__ failed and has reported why.
    const auto digit = static_cast<char16_t>(u'0' + ((tag.empty() ? 0 : tag[0] - u'0') | FileBit(file)));
    if (tag.empty()) tag.push_back(digit);
    else tag[0] = digit;
    classTree_->SetTag(node, tag);
}

std::u16string TreeView::SetATag__(NodeId node, std::u16string_view text) {
    std::u16string tag;
    Trap(kModule, "Function SetATag__", [&] {
        const std::u16string old = classTree_->Tag(node);
        tag = StartsWithDigit(old) ? old.substr(0, 1) : u"0";
        tag.append(text);
    });
    return tag;
}

int16_t TreeView::SelectImage__(int16_t scope, int16_t base) {
    if (scope == PRIVATE_SCOPE) return static_cast<int16_t>(base + 2);
    if (scope == PROTECTED_SCOPE) return static_cast<int16_t>(base + 1);
    return base;
}

void TreeView::RemoveFunction__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub RemoveFunction__", [&] { RemoveEntry(true, item, classObj, file); });
}

void TreeView::RemoveVariable__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub RemoveVariable__", [&] { RemoveEntry(false, item, classObj, file); });
}

void TreeView::RemoveEntry(bool isFunction, const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    NodeId node = classTree_->Find(BuildEntryKey(entryKey_, isFunction, *classObj, *item));
    if (node == kNoNode) return;
    const std::u16string tag = classTree_->Tag(node);
    int digit = StartsWithDigit(tag) ? tag[0] - u'0' : 0;
    digit &= file->FileType() == FILETYPE_IMPLEMENTATION ? 254 : 253;
    if (digit != 0) {
        classTree_->SetTag(node, static_cast<char16_t>(u'0' + digit) + tag.substr(1));
        return;
    }
    ForgetCurrentClass();
    classTree_->Remove(node);
}

bool TreeView::HeldByAnotherFile(const std::u16string& className, const FilePtr& except) {
    for (const FilePtr& other : holders_.Of(*files(), className))
        if (other != except && other->GetClass(className)) return true;
    return false;
}

void TreeView::RemoveClass__(const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub RemoveClass__", [&] {
        // Another file's class of the same name keeps the node; this file's entries
        // have already left it one by one.
        if (HeldByAnotherFile(classObj->Name, file)) return;
        NodeId node = classTree_->Find(MakeKey(kClassMarker, classObj->Name));
        if (node == kNoNode) return;
        ForgetCurrentClass();
        classTree_->Remove(node);
    });
}

void TreeView::AddFile__(const FilePtr& file) {
    Trap(kModule, "Sub AddFile__", [&] {
        holders_.Invalidate();
        NodeId project = GetANodeEx__(1, MakeKey(kProjectMarker, projectName_), projectName_, kNoNode, kImageProject);
        const FileFolder& folder = FolderOfType(file->FileType());
        NodeId folderNode =
            GetANodeEx__(1, std::u16string(folder.key), std::u16string(folder.text), project, folder.image);
        const std::u16string& name = file->FileName();
        GetANodeEx__(1, name, ExtractFilename__(name, 0), folderNode, folder.image);
    });
}

void TreeView::RemoveFile__(const FilePtr& file) {
    Trap(kModule, "Sub RemoveFile__", [&] {
        ForgetCurrentClass();
        NodeId fileNode = fileTree_->Find(file->FileName());
        if (fileNode != kNoNode) {
            NodeId folder = fileTree_->Parent(fileNode);
            fileTree_->Remove(fileNode);
            if (folder != kNoNode && fileTree_->ChildCount(folder) == 0) fileTree_->Remove(folder);
        }
        for (const ClassPtr& classObj : file->Classes()) {
            NodeId classNode = classTree_->Find(MakeKey(kClassMarker, classObj->Name));
            if (classNode == kNoNode) continue;
            if (!HeldByAnotherFile(classObj->Name, file)) {
                classTree_->Remove(classNode);
                continue;
            }
            // The tag bits count file types, not files: take this file's entries out,
            // then let the remaining files set their bits again.
            for (const ItemPtr& f : classObj->Functions()) RemoveEntry(true, f, classObj, file);
            for (const ItemPtr& v : classObj->Variables()) RemoveEntry(false, v, classObj, file);
            ForgetCurrentClass();
            const std::vector<FilePtr> holders = holders_.Of(*files(), classObj->Name);
            for (const FilePtr& other : holders) {
                if (other == file) continue;
                ClassPtr same = other->GetClass(classObj->Name);
                if (!same) continue;
                for (const ItemPtr& f : same->Functions()) AddFunction__Prim(f, same, other);
                for (const ItemPtr& v : same->Variables()) AddVariable__Prim(v, same, other);
            }
        }
        ForgetCurrentClass();
        holders_.Drop(file);
    });
}

void TreeView::RemoveAll__() {
    Trap(kModule, "Sub RemoveAll__", [&] {
        ForgetCurrentClass();
        holders_.Invalidate();
        classTree_->Clear();
        fileTree_->Clear();
    });
}

void TreeView::ReloadClassView__() {
    Trap(kModule, "Sub ReloadClassView__", [&] {
        ForgetCurrentClass();
        classTree_->Clear();
        for (const FilePtr& file : files()->Files())
            for (const ClassPtr& classObj : file->Classes()) AddClassNode__WithDummy(classObj, file);
    });
}

void TreeView::CollapseClassNode(NodeId node) {
    Trap(kModule, "Sub CollapseClassNode", [&] {
        const std::u16string key = classTree_->Key(node);
        if (!HasMarker(key, kClassMarker)) return;
        ForgetCurrentClass();
        while (NodeId child = classTree_->FirstChild(node)) classTree_->Remove(child);
        classTree_->AddLastChild(node, MakeKey(kPlaceholderMarker, key), std::u16string(kPlaceholderText), kImageNone);
        classTree_->SetExpanded(node, false);
    });
}

void TreeView::Collapse() {
    Trap(kModule, "Sub Collapse", [&] {
        for (NodeId project = classTree_->FirstChild(kNoNode); project != kNoNode;
             project = classTree_->NextSibling(project))
            for (NodeId c = classTree_->FirstChild(project); c != kNoNode; c = classTree_->NextSibling(c))
                CollapseClassNode(c);
    });
}

}  // namespace kestrel
