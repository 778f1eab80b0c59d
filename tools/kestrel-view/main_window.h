#pragma once
// kestrel-view's window: the class view beside a code pane. Opening a folder makes a new
// project of its source files (added a few at a time, so the window keeps answering);
// opening a project file loads it with the timed loader on. Double-clicking an entry
// opens its file at its line; edits are rescanned from the editor's text after a pause.
#include <QMainWindow>
#include <QTimer>

#include <vector>

#include "file_list.h"
#include "model/model_sink.h"

class QActionGroup;
class QLabel;
class QProgressBar;

namespace kestrel {
class TreeView;
namespace qt {
class TreeViewWidget;
}
}  // namespace kestrel

namespace kestrel::view {

class CodeEditor;

class MainWindow final : public QMainWindow {
    Q_OBJECT
public:
    // Quiet of the keyboard after which an edited file is rescanned.
    static constexpr int kRescanPauseMs = 400;

    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // A folder (new project of its sources) or a project file. With inBackground the
    // files of a folder are added from the event loop (openFinished() follows), and a
    // project's entries are loaded by the control's timer.
    bool OpenPath(const QString& path, bool inBackground);
    bool OpenFolder(const QString& folder, bool inBackground);
    bool OpenProject(const QString& projectFile, bool inBackground);
    void OpenSourceFile(const FilePtr& file, int line);
    // Expands every class node through the tree, as a user would.
    void ExpandAllClasses();
    // Shows the first function of the project in the editor and selects its node.
    void ShowFirstFunction();

    qt::TreeViewWidget& View() const { return *view_; }
    CodeEditor& Editor() const { return *editor_; }
    FilePtr EditedFile() const { return editedFile_; }
    QString StatusText() const;
    // The last failure reported to the user, for the command line.
    QString LastError() const { return lastError_; }

signals:
    void openFinished();
    void rescanned();

private:
    void BuildActions();
    void ChooseFolder();
    void ChooseProject();
    void SaveProject();
    void SaveProjectComplete();
    void SaveProjectWith(bool (TreeView::*save)(), const QString& doneMessage);
    void SaveSourceFile();
    void CloseProject();
    void AddPendingFiles();
    void OpenSelection();
    void Rescan();
    void ShowCursorPlace();
    void OpenProjectNodes();
    void FollowTimedLoad();
    void SetProjectTitle();
    void Report(const QString& message);

    qt::TreeViewWidget* view_;
    CodeEditor* editor_;
    QLabel* place_;
    QProgressBar* progress_;
    QActionGroup* viewStyles_;
    QTimer rescanTimer_;
    QTimer addTimer_;
    QTimer loadWatch_;
    std::vector<cli::SourceFile> pending_;  // a folder's files still to add, last first
    int pendingTotal_ = 0;
    FilePtr editedFile_;
    bool loadingText_ = false;
    QString lastError_;
};

}  // namespace kestrel::view
