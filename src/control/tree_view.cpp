// The control's surface: creation, persisted properties, project commands and the
// selection queries.
#include "control/tree_view.h"

#include <unistd.h>

#include "common/text.h"
#include "control/node_keys.h"
#include "control/text_order.h"
#include "control/timed_load.h"
#include "errorlog/errorlog.h"
#include "persist/save_into_file.h"

namespace kestrel {

namespace {

constexpr const char* kModule = "TreeView.ctl";

template <class T>
T BagValue(PropertyBag& bag, std::string_view name, const T& fallback) {
    return std::get<T>(bag.ReadProperty(name, PropertyValue(fallback)));
}

std::u16string CurrentDirectory() {
    std::string buffer(4096, '\0');
    if (!::getcwd(buffer.data(), buffer.size())) throw RuntimeError(kErrFileIo, "Path not found");
    buffer.resize(buffer.find('\0'));
    return FromUtf8(buffer);
}

}  // namespace

// Forwards one tree's input to the control's handlers with that tree's index.
class TreeView::InputForwarder final : public TreeInput {
public:
    InputForwarder(TreeView& view, int16_t index) : view_(view), index_(index) {}
    void Expand(NodeId node) override { view_.tView_Expand(index_, node); }
    void Collapse(NodeId node) override { view_.tView_Collapse(index_, node); }
    void Click() override { view_.tView_Click(index_); }
    void DblClick() override { view_.tView_DblClick(index_); }
    void KeyDown(int16_t& keyCode, int16_t& shift) override { view_.tView_KeyDown(index_, keyCode, shift); }
    void KeyPress(int16_t& keyAscii) override { view_.tView_KeyPress(index_, keyAscii); }
    void KeyUp(int16_t& keyCode, int16_t& shift) override { view_.tView_KeyUp(index_, keyCode, shift); }
    void MouseDown(int16_t& button, int16_t& shift, float& x, float& y) override {
        view_.tView_MouseDown(index_, button, shift, x, y);
    }
    void MouseMove(int16_t& button, int16_t& shift, float& x, float& y) override {
        view_.tView_MouseMove(index_, button, shift, x, y);
    }
    void MouseUp(int16_t& button, int16_t& shift, float& x, float& y) override {
        view_.tView_MouseUp(index_, button, shift, x, y);
    }

private:
    TreeView& view_;
    int16_t index_;
};

std::shared_ptr<TreeView> TreeView::Create(const Platform& platform, TreeViewEvents* events) {
    auto view = std::make_shared<TreeView>(Passkey{}, platform, events);
    view->UserControl_Initialize();
    return view;
}

TreeView::TreeView(Passkey, const Platform& platform, TreeViewEvents* events)
    : classTree_(platform.classTree),
      fileTree_(platform.fileTree),
      loadTimer_(platform.loadTimer),
      site_(platform.site),
      events_(events),
      classInput_(std::make_unique<InputForwarder>(*this, 0)),
      fileInput_(std::make_unique<InputForwarder>(*this, 1)) {
    classTree_->SetInput(classInput_.get());
    fileTree_->SetInput(fileInput_.get());
    classTree_->SetVisible(true);
    fileTree_->SetVisible(false);
}

TreeView::~TreeView() {
    // The loader's timer and the trees outlive the control; leave nothing pointing back.
    if (timedLoad_) timedLoad_->Enabled(false);
    if (loadTimer_) loadTimer_->SetTickHandler(nullptr);
    classTree_->SetInput(nullptr);
    fileTree_->SetInput(nullptr);
    if (files_) files_->RemoveAllFiles__();
}

void TreeView::UserControl_Initialize() {
    Trap(kModule, "Sub UserControl_Initialize", [&] {
        files()->SetSinkObject__(weak_from_this());
        id_ = -1;
        TimedLoad();
        async_ = false;
    });
}

clsTimedLoad& TreeView::TimedLoad() {
    if (!timedLoad_) {
        timedLoad_ = std::make_unique<clsTimedLoad>();
        timedLoad_->Init(this, loadTimer_);
    }
    return *timedLoad_;
}

void TreeView::UserControl_InitProperties() {
    Trap(kModule, "Sub UserControl_InitProperties", [&] {
        viewStyle_ = prvClasses;
        async_ = false;
        backup_ = false;
    });
}

void TreeView::UserControl_ReadProperties(PropertyBag& PropBag) {
    Trap(kModule, "Sub UserControl_ReadProperties", [&] {
        classTree_->SetFont(BagValue(PropBag, "Font", site_->AmbientFont()));
        viewStyle_ = BagValue(PropBag, "ViewStyle", int32_t{prvClasses});
        classTree_->SetEnabled(BagValue(PropBag, "Enabled", true));
        async_ = BagValue(PropBag, "AsyncLoad", false);
        fileTree_->SetFont(classTree_->GetFont());
        fileTree_->SetEnabled(classTree_->Enabled());
        backup_ = BagValue(PropBag, "CreateBackup", false);
        autoToolTip_ = BagValue(PropBag, "AutoToolTip", false);
    });
}

void TreeView::UserControl_WriteProperties(PropertyBag& PropBag) {
    Trap(kModule, "Sub UserControl_WriteProperties", [&] {
        PropBag.WriteProperty("Font", classTree_->GetFont(), site_->AmbientFont());
        PropBag.WriteProperty("ViewStyle", viewStyle_, int32_t{prvClasses});
        PropBag.WriteProperty("Enabled", classTree_->Enabled(), true);
        PropBag.WriteProperty("AsyncLoad", async_, false);
        PropBag.WriteProperty("CreateBackup", backup_, false);
        PropBag.WriteProperty("AutoToolTip", autoToolTip_, false);
    });
}

void TreeView::UserControl_Resize() {
    Trap(kModule, "Sub UserControl_Resize", [&] {
        for (int16_t index = 0; index <= 1; ++index)
            tView(index).Move(0, 0, site_->ScaleWidth(), site_->ScaleHeight());
    });
}

std::intptr_t TreeView::hWnd() {
    std::intptr_t handle = 0;
    Trap(kModule, "Property (Get) hWnd", [&] { handle = site_->WindowHandle(); });
    return handle;
}

int32_t TreeView::ViewStyle() { return viewStyle_; }

void TreeView::ViewStyle(int32_t value) {
    Trap(kModule, "Property (Let) ViewStyle", [&] {
        viewStyle_ = value;
        if (value == prvClasses || value == prvFiles) {
            classTree_->SetVisible(value == prvClasses);
            fileTree_->SetVisible(value == prvFiles);
        }
        site_->PropertyChanged("ViewStyle");
    });
}

bool TreeView::Enabled() {
    bool on = false;
    Trap(kModule, "Property (Get) Enabled", [&] { on = classTree_->Enabled(); });
    return on;
}

void TreeView::Enabled(bool value) {
    Trap(kModule, "Property (Let) Enabled", [&] {
        classTree_->SetEnabled(value);
        fileTree_->SetEnabled(classTree_->Enabled());
        site_->PropertyChanged("Enabled");
    });
}

kestrel::Font TreeView::Font() {
    kestrel::Font font;
    Trap(kModule, "Property (Get) Font", [&] { font = classTree_->GetFont(); });
    return font;
}

void TreeView::Font(const kestrel::Font& value) {
    Trap(kModule, "Property (Set) Font", [&] {
        classTree_->SetFont(value);
        fileTree_->SetFont(classTree_->GetFont());
        site_->PropertyChanged("Font");
    });
}

AllFilesPtr TreeView::files() {
    if (!files_) files_ = std::make_shared<clsAllFiles>();
    return files_;
}

void TreeView::files(AllFilesPtr value) {
    Trap(kModule, "Property (Set) files", [&] {
        files_ = std::move(value);
        holders_.Invalidate();
        site_->PropertyChanged("Files");
    });
}

bool TreeView::AsyncLoad() { return async_; }
void TreeView::AsyncLoad(bool value) { async_ = value; }
bool TreeView::CreateBackup() { return backup_; }

void TreeView::CreateBackup(bool value) {
    Trap(kModule, "Property (Let) CreateBackup", [&] {
        backup_ = value;
        site_->PropertyChanged("CreateBackup");
    });
}

void TreeView::EmptyProject() {
    TimedLoad().Enabled(false);
    files()->RemoveAllFiles__();
}

void TreeView::NewProject(const std::u16string& szFileName, int32_t nLanguage, int32_t nId) {
    Trap(kModule, "Sub NewProject", [&] {
        EmptyProject();
        // The collection does not tell the sink when it is emptied; the trees are
        // cleared here so that no node of the previous project stays behind.
        RemoveAll__();
        fileName_ = szFileName;
        language_ = nLanguage;
        id_ = nId;
        projectName_ = ExtractFilename__(fileName_, 1);
    });
}

void TreeView::CloseProject() {
    Trap(kModule, "Sub CloseProject", [&] {
        clsSaveIntoFile().Save(*this, *files());
        EmptyProject();
        id_ = -1;
        fileName_.clear();
        language_ = 0;
        RemoveAll__();
        projectDir_.clear();
    });
}

bool TreeView::Save() {
    bool saved = false;
    Trap(kModule, "Function Save", [&] {
        projectDir_ = ExtractPath__(fileName_);
        saved = clsSaveIntoFile().Save(*this, *files());
    });
    return saved;
}

bool TreeView::Load(const std::u16string& szFileName) {
    bool loaded = false;
    Trap(kModule, "Function Load", [&] {
        std::u16string name = szFileName;
        if (ExtractPath__(name).empty())
            name = CurrentDirectory() + (pathStyle_ == PathStyle::Windows ? u"\\" : u"/") + name;
        fileName_ = name;
        projectName_ = ExtractFilename__(fileName_, 1);
        projectDir_ = ExtractPath__(fileName_);
        if (async_) TimedLoad().Enabled(true);
        loaded = clsSaveIntoFile().Load(fileName_, *this, *files());
    });
    return loaded;
}

bool TreeView::SaveComplete() {
    bool saved = false;
    Trap(kModule, "Function SaveComplete", [&] {
        projectDir_ = ExtractPath__(fileName_);
        files()->UpdateAllFiles();
        saved = Save();
    });
    return saved;
}

int32_t TreeView::WhatIsSelected() {
    int32_t kind = ST_UNKNOWN;
    Trap(kModule, "Function WhatIsSelected", [&] {
        if (viewStyle_ == prvFiles) {
            kind = ST_FILE;
        } else if (viewStyle_ == prvClasses) {
            NodeId node = classTree_->Selected();
            if (node != kNoNode) kind = SelectedKindOf(classTree_->Key(node));
        }
    });
    return kind;
}

std::u16string TreeView::GetProjectName() {
    std::u16string name;
    Trap(kModule, "Function GetProjectName", [&] {
        if (projectName_.empty()) return;
        name = UpperCase(projectName_.substr(0, 1)) + LowerCase(projectName_.substr(1));
    });
    return name;
}

ClassPtr TreeView::GetSelectedClass() {
    ClassPtr found;
    Trap(kModule, "Function GetSelectedClass", [&] {
        if (viewStyle_ != prvClasses) return;
        const int32_t kind = WhatIsSelected();
        if (kind == ST_FILE || kind == ST_PROJECT || kind == ST_UNKNOWN) return;
        NodeId node = classTree_->Selected();
        while (node != kNoNode && !HasMarker(classTree_->Key(node), kClassMarker)) node = classTree_->Parent(node);
        if (node == kNoNode) return;
        const std::u16string className = classTree_->Key(node).substr(2);
        // A class node stands for the class in every file; the implementation's
        // record answers first, the declaration's when there is no implementation.
        found = files()->FindClass(className, FILETYPE_IMPLEMENTATION);
        if (!found) found = files()->FindClass(className, FILETYPE_DEFINITION);
    });
    return found;
}

std::u16string TreeView::GetSelectedText() {
    std::u16string text;
    Trap(kModule, "Function GetSelectedText", [&] {
        PlatformTree& tree = classTree_->Visible() || !fileTree_->Visible() ? *classTree_ : *fileTree_;
        NodeId node = tree.Selected();
        if (node == kNoNode) return;
        const std::u16string key = tree.Key(node);
        if (viewStyle_ == prvClasses && &tree == classTree_ && HasMarker(key, kFunctionMarker)) {
            const size_t at = key.find(u"::");
            text = at == std::u16string::npos ? std::u16string() : key.substr(at + 2);
        } else {
            text = tree.Text(node);
        }
    });
    return text;
}

FilePtr TreeView::GetSelectedFile() {
    FilePtr file;
    Trap(kModule, "Function GetSelectedFile", [&] {
        if (viewStyle_ != prvFiles) return;
        NodeId node = fileTree_->Selected();
        if (node == kNoNode) return;
        NodeId parent = fileTree_->Parent(node);
        // Project (no parent) and folders (parent without parent) stand for no file.
        if (parent == kNoNode || fileTree_->Parent(parent) == kNoNode) return;
        file = files()->FindFile(fileTree_->Key(node));
    });
    return file;
}

int16_t TreeView::MousePointer() { return site_->MousePointer(); }
void TreeView::MousePointer(int16_t pointer) { site_->SetMousePointer(pointer); }

}  // namespace kestrel
