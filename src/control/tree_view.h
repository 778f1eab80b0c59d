#pragma once
// The class-view control a host embeds. It owns the project (clsAllFiles), shows it in
// two trees (by class, tView(0), and by file, tView(1)) drawn on the platform layer,
// mirrors every change of the model through its node operations (it is the model's
// sink), saves and loads the project file, answers what is selected and forwards the
// trees' input to the host as events.
//
// Create it with TreeView::Create: the model holds the control as a weak reference, so
// the control lives in a shared_ptr.
#include <cstdint>
#include <memory>
#include <string>

#include "common/constants.h"
#include "control/class_holders.h"
#include "control/paths.h"
#include "control/platform/platform.h"
#include "control/tree_view_events.h"
#include "model/all_files.h"
#include "model/model_sink.h"
#include "persist/project_host.h"

namespace kestrel {

class clsTimedLoad;

class TreeView final : public ModelSink, public ProjectHost, public std::enable_shared_from_this<TreeView> {
    struct Passkey {};

public:
    // Builds the control on the given platform and runs UserControl_Initialize. The
    // class tree starts visible and the file tree hidden; the listener may be null.
    static std::shared_ptr<TreeView> Create(const Platform& platform, TreeViewEvents* events = nullptr);
    TreeView(Passkey, const Platform& platform, TreeViewEvents* events);
    ~TreeView() override;
    TreeView(const TreeView&) = delete;
    TreeView& operator=(const TreeView&) = delete;

    void SetEventListener(TreeViewEvents* events) { events_ = events; }
    // How file names are split and made relative (POSIX unless the host says otherwise).
    void SetPathStyle(PathStyle style) { pathStyle_ = style; }
    PathStyle GetPathStyle() const { return pathStyle_; }

    // Life in the host container.
    void UserControl_InitProperties();
    void UserControl_ReadProperties(PropertyBag& PropBag);
    void UserControl_WriteProperties(PropertyBag& PropBag);
    void UserControl_Resize();

    // Public variables.
    int32_t Language() override { return language_; }
    void Language(int32_t value) override { language_ = value; }
    int32_t ID() override { return id_; }
    void ID(int32_t value) override { id_ = value; }
    std::u16string FileName() override { return fileName_; }
    void FileName(const std::u16string& value) override { fileName_ = value; }
    bool AutoToolTip() const { return autoToolTip_; }
    void AutoToolTip(bool value) { autoToolTip_ = value; }

    // Properties.
    std::intptr_t hWnd();
    int32_t ViewStyle();
    void ViewStyle(int32_t value);
    bool Enabled();
    void Enabled(bool value);
    kestrel::Font Font();
    void Font(const kestrel::Font& value);
    AllFilesPtr files();
    void files(AllFilesPtr value);
    bool AsyncLoad();
    void AsyncLoad(bool value);
    bool CreateBackup() override;
    void ClearProjectBeforeRead() override;
    void CreateBackup(bool value);

    // Project commands.
    void NewProject(const std::u16string& szFileName, int32_t nLanguage, int32_t nId);
    void CloseProject();
    bool Save();
    bool Load(const std::u16string& szFileName);
    bool SaveComplete();

    // What a node of either tree stands for in the model, for hosts that want objects
    // rather than keys: its kind (a SelectedItemType) and, as they apply, the file, the
    // class and the member. A class tree node stands for its class in every file; the
    // answer is where the class's body is (else its first file), and for a member the
    // implementation file's entry before any other.
    struct Entry {
        int32_t kind = ST_UNKNOWN;
        FilePtr file;
        ClassPtr classObj;
        ItemPtr item;
    };
    Entry EntryOf(NodeId node, bool inClassTree);
    // The entry of the selected node of the tree in view.
    Entry Selection();

    // Selection queries.
    FilePtr GetSelectedFile();
    ClassPtr GetSelectedClass();
    std::u16string GetSelectedText();
    int32_t WhatIsSelected();
    std::u16string GetProjectName();

    // Path work against the project directory.
    std::u16string ExtractFilename__(const std::u16string& path, int16_t strip) override;
    bool FileNamesIgnoreCase() override { return pathStyle_ == PathStyle::Windows; }
    std::u16string ExtractPath__(const std::u16string& path);
    std::u16string AbsPath__(const std::u16string& storedName) override;
    std::u16string RelativePathToProject__(const std::u16string& fullPath) override;

    // Node operations the model calls.
    void AddFile__(const FilePtr& file) override;
    void RemoveFile__(const FilePtr& file) override;
    void AddClassNode__WithDummy(const ClassPtr& classObj, const FilePtr& file) override;
    void SetCurrentClass(const ClassPtr& classObj, const FilePtr& file) override;
    void RemoveClass__(const ClassPtr& classObj, const FilePtr& file) override;
    void AddFunction__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) override;
    void AddVariable__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) override;
    void RemoveFunction__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) override;
    void RemoveVariable__(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) override;
    void Collapse() override;
    int16_t MousePointer() override;
    void MousePointer(int16_t pointer) override;

    // Node operations of the control itself.
    NodeId GetANodeEx__(int16_t tree, const std::u16string& key, const std::u16string& text, NodeId parent,
                        int16_t image);
    NodeId GetANode__(const std::u16string& key, const std::u16string& text, NodeId parent, int16_t image);
    NodeId FindClassNode__(const ClassPtr& classObj, const FilePtr& file, int16_t kind);
    void AddFunction__Prim(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file);
    void AddVariable__Prim(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file);
    std::u16string SetATag__(NodeId node, std::u16string_view text);
    static int16_t SelectImage__(int16_t scope, int16_t base);
    void RemoveAll__();
    void ReloadClassView__();
    void CollapseClassNode(NodeId node);

    // Handlers of the trees' input; index 0 is the class tree, 1 the file tree.
    void tView_Expand(int16_t Index, NodeId Node);
    void tView_Collapse(int16_t Index, NodeId Node);
    void tView_Click(int16_t Index);
    void tView_DblClick(int16_t Index);
    void tView_KeyDown(int16_t Index, int16_t& KeyCode, int16_t& Shift);
    void tView_KeyPress(int16_t Index, int16_t& KeyAscii);
    void tView_KeyUp(int16_t Index, int16_t& KeyCode, int16_t& Shift);
    void tView_MouseDown(int16_t Index, int16_t& Button, int16_t& Shift, float& x, float& y);
    void tView_MouseMove(int16_t Index, int16_t& Button, int16_t& Shift, float& x, float& y);
    void tView_MouseUp(int16_t Index, int16_t& Button, int16_t& Shift, float& x, float& y);

    // The two trees, and the timed loader (created on first use).
    PlatformTree& tView(int16_t index) const { return index == 1 ? *fileTree_ : *classTree_; }
    clsTimedLoad& TimedLoad();

private:
    class InputForwarder;

    void UserControl_Initialize();
    void AddOrQueueEntry(bool isFunction, const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file);
    void AddEntry(bool isFunction, const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file);
    void RemoveEntry(bool isFunction, const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file);
    bool HeldByAnotherFile(const std::u16string& className, const FilePtr& except);
    void ForgetCurrentClass();
    void EmptyProject();
    const std::u16string& ProjectDirectory();

    PlatformTree* classTree_;
    PlatformTree* fileTree_;
    PlatformTimer* loadTimer_;
    ControlSite* site_;
    TreeViewEvents* events_;
    std::unique_ptr<InputForwarder> classInput_;
    std::unique_ptr<InputForwarder> fileInput_;
    PathStyle pathStyle_ = PathStyle::Posix;

    int32_t language_ = 0;
    int32_t id_ = 0;
    std::u16string fileName_;
    bool autoToolTip_ = false;
    std::u16string projectDir_;
    std::unique_ptr<clsTimedLoad> timedLoad_;
    bool async_ = false;
    std::u16string projectName_;
    AllFilesPtr files_;
    int32_t viewStyle_ = prvClasses;
    bool backup_ = false;

    NodeId currentFolder_ = kNoNode;
    std::u16string currentClassName_;
    NodeId expanding_ = kNoNode;  // the class node tView_Expand is filling
    // Buffers AddEntry builds its keys and texts in, kept from entry to entry so that
    // adding one costs no allocation once they have grown.
    std::u16string classKey_, placeholderKey_, entryKey_, entryText_;
    ClassHolders holders_;
};

}  // namespace kestrel
