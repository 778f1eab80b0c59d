// The trees' input: lazy filling of class nodes on expansion, folding them back on
// collapse, tool tips that follow the mouse, and the host's key, mouse and click events.
#include "control/node_keys.h"
#include "control/tree_view.h"
#include "errorlog/errorlog.h"
#include "model/all_files.h"

namespace kestrel {

namespace {

constexpr const char* kModule = "TreeView.ctl";

// The user text a tag carries: the tag without its leading digit.
std::u16string TipOfTag(const std::u16string& tag) {
    if (!tag.empty() && tag[0] >= u'0' && tag[0] <= u'9') return tag.substr(1);
    return tag;
}

}  // namespace

void TreeView::tView_Expand(int16_t Index, NodeId Node) {
    struct EndOfFilling {
        NodeId& expanding;
        ~EndOfFilling() { expanding = kNoNode; }
    } guard{expanding_};
    Trap(kModule, "Sub tView_Expand", [&] {
        if (Index == 1) return;
        const std::u16string key = classTree_->Key(Node);
        if (!HasMarker(key, kClassMarker)) return;
        if (classTree_->ChildCount(Node) != 1 || classTree_->Text(classTree_->FirstChild(Node)) != kPlaceholderText)
            return;
        const std::u16string className = key.substr(2);
        if (className.empty()) return;
        expanding_ = Node;
        // The files holding the class, in project order: the same files, in the same
        // order, as a walk over the whole project would find.
        const std::vector<FilePtr> holders = holders_.Of(*files(), className);
        for (const FilePtr& file : holders) {
            if (file->FileType() != FILETYPE_IMPLEMENTATION && file->FileType() != FILETYPE_DEFINITION) continue;
            if (ClassPtr classObj = file->GetClass(className)) classObj->AddAllFromTheClass__(this, file);
        }
        classTree_->Remove(classTree_->Find(MakeKey(kPlaceholderMarker, key)));
    });
}

void TreeView::tView_Collapse(int16_t Index, NodeId Node) {
    Trap(kModule, "Sub tView_Collapse", [&] {
        // A large project should not keep every member's node alive once the user
        // has folded its class away; the next expansion fills it again.
        if (Index != 1) CollapseClassNode(Node);
    });
}

void TreeView::tView_Click(int16_t /*Index*/) {
    Trap(kModule, "Sub tView_Click", [&] {
        if (events_) events_->Click();
    });
}

void TreeView::tView_DblClick(int16_t /*Index*/) {
    Trap(kModule, "Sub tView_DblClick", [&] {
        if (events_) events_->DblClick();
    });
}

void TreeView::tView_KeyDown(int16_t /*Index*/, int16_t& KeyCode, int16_t& Shift) {
    Trap(kModule, "Sub tView_KeyDown", [&] {
        if (events_) events_->KeyDown(KeyCode, Shift);
    });
}

void TreeView::tView_KeyPress(int16_t /*Index*/, int16_t& KeyAscii) {
    Trap(kModule, "Sub tView_KeyPress", [&] {
        if (events_) events_->KeyPress(KeyAscii);
    });
}

void TreeView::tView_KeyUp(int16_t /*Index*/, int16_t& KeyCode, int16_t& Shift) {
    Trap(kModule, "Sub tView_KeyUp", [&] {
        if (events_) events_->KeyUp(KeyCode, Shift);
    });
}

void TreeView::tView_MouseDown(int16_t /*Index*/, int16_t& Button, int16_t& Shift, float& x, float& y) {
    Trap(kModule, "Sub tView_MouseDown", [&] {
        if (events_) events_->MouseDown(Button, Shift, x, y);
    });
}

void TreeView::tView_MouseMove(int16_t Index, int16_t& Button, int16_t& Shift, float& x, float& y) {
    Trap(kModule, "Sub tView_MouseMove", [&] {
        if (Button == 0 && autoToolTip_) {
            PlatformTree& tree = tView(Index);
            NodeId node = tree.HitTest(x, y);
            const std::u16string tip = node == kNoNode ? std::u16string() : TipOfTag(tree.Tag(node));
            if (tip != tree.ToolTipText()) {
                tree.SetToolTipText(tip);
                if (events_) events_->ToolTipChanged(tree.ToolTipText());
            }
        }
        if (events_) events_->MouseMove(Button, Shift, x, y);
    });
}

void TreeView::tView_MouseUp(int16_t /*Index*/, int16_t& Button, int16_t& Shift, float& x, float& y) {
    Trap(kModule, "Sub tView_MouseUp", [&] {
        if (events_) events_->MouseUp(Button, Shift, x, y);
    });
}

}  // namespace kestrel
