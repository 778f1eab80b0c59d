#include "main_window.h"

#include <QActionGroup>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QSaveFile>
#include <QSplitter>
#include <QStatusBar>
#include <QStringDecoder>
#include <QStyle>
#include <QToolBar>
#include <QTreeWidget>

#include "code_editor.h"
#include "common/constants.h"
#include "common/text.h"
#include "document_lines.h"
#include "errorlog/errorlog.h"
#include "folder_files.h"
#include "model/all_files.h"
#include "qt/conversions.h"
#include "qt/tree_view_widget.h"
#include "qt/tree_widget.h"

namespace kestrel::view {

namespace {

constexpr std::string_view kModule = "main_window.cpp";
// Time one step of adding a folder's files may take before the window gets its turn.
constexpr qint64 kAddSliceMs = 30;

QString TextOf(std::u16string_view text) { return qt::ToQString(text); }

// The class of a file that holds an item, found through the item's key.
ClassPtr ClassHolding(const FilePtr& file, const ItemPtr& item) {
    for (int32_t i = 1; i <= file->count(); ++i) {
        ClassPtr cls = file->item(i);
        if (cls && cls->func(item->KeyVal()) == item) return cls;
    }
    return nullptr;
}

}  // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent),
      view_(new qt::TreeViewWidget),
      editor_(new CodeEditor),
      place_(new QLabel),
      progress_(new QProgressBar),
      viewStyles_(new QActionGroup(this)) {
    auto* splitter = new QSplitter(Qt::Horizontal);
    splitter->addWidget(view_);
    splitter->addWidget(editor_);
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({340, 760});
    setCentralWidget(splitter);
    view_->setAutoToolTip(true);
    editor_->setReadOnly(true);
    editor_->setPlaceholderText(tr("Open a folder or a project, then double-click a function or variable."));

    progress_->setMaximumWidth(220);
    progress_->setTextVisible(true);
    progress_->hide();
    statusBar()->addWidget(place_, 1);
    statusBar()->addPermanentWidget(progress_);
    BuildActions();

    rescanTimer_.setSingleShot(true);
    rescanTimer_.setInterval(kRescanPauseMs);
    addTimer_.setInterval(0);
    loadWatch_.setInterval(100);
    connect(&rescanTimer_, &QTimer::timeout, this, &MainWindow::Rescan);
    connect(&addTimer_, &QTimer::timeout, this, &MainWindow::AddPendingFiles);
    connect(&loadWatch_, &QTimer::timeout, this, &MainWindow::FollowTimedLoad);
    connect(view_, &qt::TreeViewWidget::DblClick, this, &MainWindow::OpenSelection);
    connect(view_, &qt::TreeViewWidget::propertyChanged, this, [this](const QString& name) {
        if (name == QLatin1String("ViewStyle")) viewStyles_->actions().value(view_->viewStyle())->setChecked(true);
    });
    connect(editor_, &QPlainTextEdit::textChanged, this, [this] {
        if (!loadingText_ && editedFile_) rescanTimer_.start();
    });
    connect(editor_, &QPlainTextEdit::cursorPositionChanged, this, &MainWindow::ShowCursorPlace);
    SetProjectTitle();
    resize(1100, 720);
}

MainWindow::~MainWindow() = default;

void MainWindow::BuildActions() {
    QToolBar* bar = addToolBar(tr("Project"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [&](QStyle::StandardPixmap icon, const QString& text, const QKeySequence& keys, auto slot) {
        QAction* action = bar->addAction(style()->standardIcon(icon), text, this, slot);
        action->setShortcut(keys);
        return action;
    };
    add(QStyle::SP_DirOpenIcon, tr("Open Folder…"), QKeySequence::Open, &MainWindow::ChooseFolder);
    add(QStyle::SP_FileDialogContentsView, tr("Open Project…"), QKeySequence(tr("Ctrl+Shift+O")),
        &MainWindow::ChooseProject);
    add(QStyle::SP_DialogSaveButton, tr("Save"), QKeySequence(tr("Ctrl+Shift+S")), &MainWindow::SaveProject);
    add(QStyle::SP_BrowserReload, tr("Save Complete"), QKeySequence(), &MainWindow::SaveProjectComplete);
    add(QStyle::SP_DialogCloseButton, tr("Close"), QKeySequence::Close, &MainWindow::CloseProject);
    bar->addSeparator();
    for (const auto& [style, text] : {std::pair{prvClasses, tr("By Class")}, std::pair{prvFiles, tr("By File")}}) {
        QAction* action = bar->addAction(text);
        action->setCheckable(true);
        action->setChecked(style == view_->viewStyle());
        viewStyles_->addAction(action);
        connect(action, &QAction::triggered, this, [this, style = style] { view_->setViewStyle(style); });
    }
    bar->addSeparator();
    add(QStyle::SP_DriveFDIcon, tr("Save File"), QKeySequence::Save, &MainWindow::SaveSourceFile);
}

bool MainWindow::OpenPath(const QString& path, bool inBackground) {
    if (!QFileInfo::exists(path)) {
        Report(tr("%1: no such file or folder").arg(path));
        return false;
    }
    return QFileInfo(path).isDir() ? OpenFolder(path, inBackground) : OpenProject(path, inBackground);
}

bool MainWindow::OpenFolder(const QString& folder, bool inBackground) {
    const QString root = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    if (!QFileInfo(root).isDir()) {
        Report(tr("%1: no such folder").arg(folder));
        return false;
    }
    FolderFiles found;
    try {
        found = CollectFolder(root);
    } catch (const std::exception& e) {
        Report(QString::fromStdString(e.what()));
        return false;
    }
    editedFile_.reset();
    editor_->clear();
    addTimer_.stop();
    const QString projectFile = root + QLatin1Char('/') + QDir(root).dirName() + QStringLiteral(".kpr");
    view_->control().NewProject(projectFile.toStdU16String(), found.language, 0);
    SetProjectTitle();
    pending_.assign(found.files.rbegin(), found.files.rend());
    pendingTotal_ = static_cast<int>(pending_.size());
    if (!inBackground) {
        while (!pending_.empty()) AddPendingFiles();
        return true;
    }
    progress_->setRange(0, qMax(1, pendingTotal_));
    progress_->setValue(0);
    progress_->setFormat(tr("Scanning %v of %m files"));
    progress_->show();
    addTimer_.start();
    return true;
}

// Adds files until one slice of time is used up; the event loop runs between slices.
void MainWindow::AddPendingFiles() {
    QElapsedTimer slice;
    slice.start();
    while (!pending_.empty() && slice.elapsed() < kAddSliceMs) {
        const cli::SourceFile file = pending_.back();
        pending_.pop_back();
        Trap(kModule, "Sub AddPendingFiles", [&] {
            view_->files()->Add(FromUtf8(file.path), file.type);
        });
    }
    progress_->setValue(pendingTotal_ - static_cast<int>(pending_.size()));
    if (!pending_.empty()) return;
    if (addTimer_.isActive()) {
        addTimer_.stop();
        progress_->hide();
        statusBar()->showMessage(tr("%n file(s) in the project", nullptr, view_->files()->count()), 4000);
    }
    OpenProjectNodes();
    emit openFinished();
}

bool MainWindow::OpenProject(const QString& projectFile, bool inBackground) {
    addTimer_.stop();
    pending_.clear();
    editedFile_.reset();
    editor_->clear();
    const QString path = QFileInfo(projectFile).absoluteFilePath();
    view_->control().NewProject(std::u16string(), 0, -1);
    // Entries come from the timer in portions, so a large project opens at once.
    view_->setAsyncLoad(inBackground);
    const bool loaded = view_->control().Load(path.toStdU16String());
    SetProjectTitle();
    if (!loaded) {
        Report(tr("%1: not a kestrel project, or it cannot be read").arg(projectFile));
        return false;
    }
    FollowTimedLoad();
    OpenProjectNodes();
    emit openFinished();
    return true;
}

// Shows a busy bar while the timed loader still adds entries.
void MainWindow::FollowTimedLoad() {
    const bool loading = view_->loadTimer().isActive();
    if (loading && !progress_->isVisible()) {
        progress_->setRange(0, 0);
        progress_->setFormat(tr("Loading"));
        progress_->show();
        loadWatch_.start();
    } else if (!loading) {
        loadWatch_.stop();
        progress_->hide();
    }
}

void MainWindow::ChooseFolder() {
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Open Folder"));
    if (!folder.isEmpty()) OpenFolder(folder, true);
}

void MainWindow::ChooseProject() {
    const QString file = QFileDialog::getOpenFileName(this, tr("Open Project"), QString(),
                                                      tr("kestrel projects (*.kpr);;All files (*)"));
    if (!file.isEmpty()) OpenProject(file, true);
}

void MainWindow::SaveProject() { SaveProjectWith(&TreeView::Save, tr("Saved %1")); }

void MainWindow::SaveProjectComplete() {
    SaveProjectWith(&TreeView::SaveComplete, tr("Rescanned every file and saved %1"));
}

void MainWindow::SaveProjectWith(bool (TreeView::*save)(), const QString& doneMessage) {
    const QString file = TextOf(view_->control().FileName());
    if (file.isEmpty()) return;
    if (!(view_->control().*save)()) Report(tr("The project could not be written to %1").arg(file));
    else statusBar()->showMessage(doneMessage.arg(file), 4000);
}

// Closing saves the project first, as the control's CloseProject does.
void MainWindow::CloseProject() {
    addTimer_.stop();
    pending_.clear();
    progress_->hide();
    editedFile_.reset();
    editor_->clear();
    view_->control().CloseProject();
    SetProjectTitle();
}

void MainWindow::SaveSourceFile() {
    if (!editedFile_) return;
    const QString path = TextOf(editedFile_->FileName());
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(editor_->toPlainText().toUtf8()) < 0 || !out.commit()) {
        Report(tr("%1: %2").arg(path, out.errorString()));
        return;
    }
    statusBar()->showMessage(tr("Saved %1").arg(path), 4000);
}

void MainWindow::OpenSourceFile(const FilePtr& file, int line) {
    const QString path = TextOf(file->FileName());
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly)) {
        Report(tr("%1: %2").arg(path, in.errorString()));
        return;
    }
    const QByteArray bytes = in.readAll();
    // A byte-order mark chooses UTF-16 or UTF-8; without one the text is UTF-8.
    QStringDecoder decoder(QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8));
    QString text = decoder.decode(bytes);
    // Lines are numbered as the scanner counts them: CR LF, CR and LF each end one.
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    if (file != editedFile_) {
        rescanTimer_.stop();
        loadingText_ = true;
        editor_->setPlainText(text);
        loadingText_ = false;
        editedFile_ = file;
        editor_->setReadOnly(false);
    }
    editor_->GoToLine(line);
    SetProjectTitle();
    ShowCursorPlace();
}

// Double-click on an entry opens its file at its line; on a file, at its top.
void MainWindow::OpenSelection() {
    TreeView& control = view_->control();
    const int32_t kind = control.WhatIsSelected();
    if (kind == ST_FILE) {
        if (FilePtr file = control.GetSelectedFile()) OpenSourceFile(file, 1);
        return;
    }
    if (kind != ST_METHOD && kind != ST_VAR) return;
    const ClassPtr selectedClass = control.GetSelectedClass();
    if (!selectedClass) return;
    const std::u16string key = control.tView(0).Key(control.tView(0).Selected());
    const std::u16string itemKey = key.substr(std::min(key.size(), 2 + selectedClass->Name.size() + 2));
    // A function is shown where it is implemented when a file does; else where it is declared.
    FilePtr bestFile;
    ItemPtr bestItem;
    for (int32_t i = 1; i <= control.files()->count(); ++i) {
        const FilePtr file = control.files()->item(i);
        const ClassPtr cls = file ? file->GetClass(selectedClass->Name) : nullptr;
        const ItemPtr item = !cls ? nullptr : kind == ST_METHOD ? cls->func(itemKey) : cls->var(itemKey);
        if (!item) continue;
        if (!bestItem || (kind == ST_METHOD && file->FileType() == FILETYPE_IMPLEMENTATION &&
                          bestFile->FileType() != FILETYPE_IMPLEMENTATION)) {
            bestFile = file;
            bestItem = item;
        }
    }
    if (bestItem) OpenSourceFile(bestFile, bestItem->Line);
}

void MainWindow::Rescan() {
    if (!editedFile_) return;
    DocumentLines lines(*editor_->document());
    Trap(kModule, "Sub Rescan", [&] { editedFile_->UpdateEmbeededFile(lines); });
    ShowCursorPlace();
    emit rescanned();
}

QString MainWindow::StatusText() const {
    if (!editedFile_) return QString();
    const int line = editor_->CursorLine();
    QString text = tr("%1, line %2").arg(TextOf(view_->control().ExtractFilename__(editedFile_->FileName(), 0))).arg(line);
    const ItemPtr function = editedFile_->InProc(line);
    if (!function) return text;
    const ClassPtr cls = ClassHolding(editedFile_, function);
    return tr("%1    function %2%3    class %4")
        .arg(text, TextOf(function->Name()), TextOf(function->Params()), cls ? TextOf(cls->Name) : QString());
}

void MainWindow::ShowCursorPlace() { place_->setText(StatusText()); }

// The project node of each tree is opened, so the classes and file kinds show at once.
void MainWindow::OpenProjectNodes() {
    for (int index : {0, 1}) {
        QTreeWidget* tree = view_->tree(index);
        for (int i = 0; i < tree->topLevelItemCount(); ++i) tree->expandItem(tree->topLevelItem(i));
    }
}

void MainWindow::ExpandAllClasses() {
    QTreeWidget* tree = view_->tree(0);
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* project = tree->topLevelItem(i);
        tree->expandItem(project);
        for (int c = 0; c < project->childCount(); ++c) {
            QTreeWidgetItem* classNode = project->child(c);
            tree->expandItem(classNode);
            for (int f = 0; f < classNode->childCount(); ++f) tree->expandItem(classNode->child(f));
        }
    }
}

void MainWindow::ShowFirstFunction() {
    const AllFilesPtr files = view_->files();
    for (int32_t i = 1; i <= files->count(); ++i) {
        const FilePtr file = files->item(i);
        if (!file || file->FileType() != FILETYPE_IMPLEMENTATION) continue;
        for (int32_t c = 1; c <= file->count(); ++c) {
            const ClassPtr cls = file->item(c);
            if (!cls || cls->Name == u"Globals" || cls->CountFunc() == 0) continue;
            const ItemPtr function = cls->func(1);
            OpenSourceFile(file, function->Line);
            PlatformTree& tree = view_->control().tView(0);
            const NodeId node = tree.Find(u"!!" + cls->Name + u"::" + function->KeyVal());
            if (node != kNoNode) tree.Select(node);
            return;
        }
    }
}

void MainWindow::SetProjectTitle() {
    const std::u16string name = view_->control().GetProjectName();
    QString title = name.empty() ? QStringLiteral("kestrel-view") : TextOf(name) + QStringLiteral(" — kestrel-view");
    if (editedFile_) title.prepend(TextOf(view_->control().ExtractFilename__(editedFile_->FileName(), 0)) + QStringLiteral(" · "));
    setWindowTitle(title);
}

void MainWindow::Report(const QString& message) {
    lastError_ = message;
    statusBar()->showMessage(message, 8000);
    if (isVisible() && QApplication::platformName() != QLatin1String("offscreen")) {
        QMessageBox::warning(this, QStringLiteral("kestrel-view"), message);
    }
}

}  // namespace kestrel::view
