#include "main_window.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
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
#include "scanner/scan_ahead.h"

namespace kestrel::view {

namespace {

constexpr std::string_view kModule = "main_window.cpp";
// Time one step of adding a folder's files may take before the window gets its turn.
constexpr qint64 kAddSliceMs = 20;
// How often the window looks again for a scan the workers have not finished.
constexpr int kScanPollMs = 10;
// Text filed from a scan between two looks at the clock: a few milliseconds' work.
constexpr size_t kFilingBudget = 20000;
// Unreadable files named in a message's text; the rest are in its details.
constexpr int kFilesNamed = 10;

// A report kept while a project is read, to be passed on to the handler afterwards.
struct HeldReport {
    std::string module, title, message;
    int number;
};

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
      splitter_(new QSplitter(Qt::Horizontal)),
      view_(MakeView()),
      editor_(new CodeEditor),
      place_(new QLabel),
      progress_(new QProgressBar),
      viewStyles_(new QActionGroup(this)) {
    splitter_->addWidget(view_);
    splitter_->addWidget(editor_);
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 1);
    splitter_->setSizes({340, 760});
    setCentralWidget(splitter_);
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
    connect(&addTimer_, &QTimer::timeout, this, [this] { AddPendingFiles(false); });
    connect(&loadWatch_, &QTimer::timeout, this, &MainWindow::FollowTimedLoad);
    connect(editor_, &QPlainTextEdit::textChanged, this, [this] {
        if (!loadingText_ && editedFile_) rescanTimer_.start();
    });
    connect(editor_->document(), &QTextDocument::modificationChanged, this, &MainWindow::SetProjectTitle);
    connect(editor_, &QPlainTextEdit::cursorPositionChanged, this, &MainWindow::ShowCursorPlace);
    SetProjectTitle();
    resize(1100, 720);
}

MainWindow::~MainWindow() = default;

qt::TreeViewWidget* MainWindow::MakeView() {
    auto* view = new qt::TreeViewWidget;
    view->setAutoToolTip(true);
    // Folders are scanned on workers even on one core: the window's thread must not scan.
    view->files()->SetScanThreads(std::max(1u, ScanAhead::UsefulThreads()));
    connect(view, &qt::TreeViewWidget::DblClick, this, &MainWindow::OpenSelection);
    connect(view, &qt::TreeViewWidget::propertyChanged, this, [this, view](const QString& name) {
        if (name == QLatin1String("ViewStyle")) viewStyles_->actions().value(view->viewStyle())->setChecked(true);
    });
    return view;
}

void MainWindow::ReplaceView(qt::TreeViewWidget* fresh) {
    fresh->setViewStyle(view_->viewStyle());
    delete splitter_->replaceWidget(0, fresh);
    view_ = fresh;
    loadErrors_.clear();
}

void MainWindow::FinishFiling() {
    if (filing_) Trap(kModule, "Sub FinishFiling", [&] { view_->files()->ContinueAdd(filing_, SIZE_MAX); });
    filing_.reset();
}

void MainWindow::StopAdding() {
    filing_.reset();
    addTimer_.stop();
    pending_.clear();
    progress_->hide();
}

void MainWindow::ForgetEditedFile() {
    rescanTimer_.stop();
    editedFile_.reset();
    loadingText_ = true;
    editor_->clear();
    loadingText_ = false;
    editor_->document()->setModified(false);
    editor_->setReadOnly(true);
}

bool MainWindow::MayDropEditedText() {
    if (!editedFile_ || !editor_->document()->isModified()) return true;
    QMessageBox box(QMessageBox::Warning, QStringLiteral("kestrel-view"),
                    tr("%1 has changes that are not saved.").arg(TextOf(editedFile_->FileName())),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    box.setInformativeText(tr("Save them before going on?"));
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
        case QMessageBox::Save:
            return SaveSourceFile();
        case QMessageBox::Discard:
            // The project must not keep the symbols of text that was never saved.
            rescanTimer_.stop();
            FinishFiling();
            editedFile_->UpdateFile();
            editor_->document()->setModified(false);
            return true;
        default:
            return false;
    }
}

int MainWindow::AskBeforeSavingOver(bool closing) {
    if (loadErrors_.isEmpty()) return QMessageBox::Save;
    QMessageBox box(QMessageBox::Warning, QStringLiteral("kestrel-view"),
                    tr("Reading %1 reported an error, so it may hold more than was read.")
                        .arg(TextOf(view_->control().FileName())),
                    QMessageBox::Save | (closing ? QMessageBox::Discard : QMessageBox::NoButton) | QMessageBox::Cancel,
                    this);
    box.setInformativeText(closing ? tr("Closing saves the project over it. Save anyway, close without saving, or cancel?")
                                   : tr("Saving writes over it with what was read. Save anyway?"));
    box.setDetailedText(loadErrors_.join(QLatin1Char('\n')));
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec();
}

QStringList MainWindow::UnreadableFiles() const {
    QStringList unreadable;
    for (const FilePtr& file : view_->files()->Files()) {
        if (file->FileType() == FILETYPE_FORM || file->FileType() == FILETYPE_NOPARSE) continue;  // never read
        QFile source(TextOf(file->FileName()));
        if (!source.open(QIODevice::ReadOnly)) unreadable << source.fileName();
    }
    return unreadable;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (MayDropEditedText()) event->accept();
    else event->ignore();
}

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
    if (!MayDropEditedText()) return false;
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
    ForgetEditedFile();
    StopAdding();
    loadErrors_.clear();
    const QString projectFile = root + QLatin1Char('/') + QDir(root).dirName() + QStringLiteral(".kpr");
    view_->control().NewProject(projectFile.toStdU16String(), found.language, 0);
    SetProjectTitle();
    pending_.assign(found.files.rbegin(), found.files.rend());
    pendingTotal_ = static_cast<int>(pending_.size());
    std::vector<std::pair<std::u16string, int32_t>> ahead;
    for (const cli::SourceFile& file : found.files) ahead.emplace_back(FromUtf8(file.path), file.type);
    Trap(kModule, "Sub OpenFolder", [&] { view_->files()->ScanAheadOfAdd(ahead); });
    if (!inBackground) {
        AddPendingFiles(true);
        return true;
    }
    progress_->setRange(0, qMax(1, pendingTotal_));
    progress_->setValue(0);
    progress_->setFormat(tr("Scanning %v of %m files"));
    progress_->show();
    addTimer_.start();
    return true;
}

// Files the scans of the workers for as long as one slice of time lasts; the event loop
// runs between slices. A scan not finished yet is looked for again a little later.
void MainWindow::AddPendingFiles(bool waitForScans) {
    QElapsedTimer slice;
    slice.start();
    const AllFilesPtr files = view_->files();
    bool waiting = false;
    while ((filing_ || !pending_.empty()) && (waitForScans || slice.elapsed() < kAddSliceMs)) {
        if (filing_) {
            bool filed = true;  // a file whose filing fails is left as far as it got
            Trap(kModule, "Sub AddPendingFiles", [&] { filed = files->ContinueAdd(filing_, kFilingBudget); });
            if (filed) filing_.reset();
            continue;
        }
        const cli::SourceFile file = pending_.back();
        const std::u16string name = FromUtf8(file.path);
        Trap(kModule, "Sub AddPendingFiles", [&] { waiting = !waitForScans && !files->AddIsReady(name, file.type); });
        if (waiting) break;
        pending_.pop_back();
        Trap(kModule, "Sub AddPendingFiles", [&] { filing_ = files->BeginAdd(name, file.type); });
    }
    addTimer_.setInterval(waiting ? kScanPollMs : 0);
    progress_->setValue(pendingTotal_ - static_cast<int>(pending_.size()));
    if (filing_ || !pending_.empty()) return;
    if (addTimer_.isActive()) {
        addTimer_.stop();
        progress_->hide();
        statusBar()->showMessage(tr("%n file(s) in the project", nullptr, view_->files()->count()), 4000);
    }
    OpenProjectNodes();
    emit openFinished();
}

bool MainWindow::OpenProject(const QString& projectFile, bool inBackground) {
    if (!MayDropEditedText()) return false;
    const QString path = QFileInfo(projectFile).absoluteFilePath();
    // Read into a view of its own, which takes the open project's place only once read.
    auto fresh = std::unique_ptr<qt::TreeViewWidget>(MakeView());
    // Entries come from the timer in portions, so a large project opens at once.
    fresh->setAsyncLoad(inBackground);
    std::vector<HeldReport> reports;
    bool loaded = false;
    {
        ErrorDiversion hold([&](const ErrorReport& report) {
            reports.push_back({std::string(report.module), std::string(report.title), std::string(report.message),
                               report.number});
        });
        loaded = fresh->control().Load(path.toStdU16String());
    }
    // Passed on as they came, now that they are known to belong to this project.
    for (const HeldReport& report : reports) ReportError(report.module, report.title, report.number, report.message);
    if (!loaded) {
        Report(tr("%1: not a kestrel project, or it cannot be read").arg(projectFile));
        return false;
    }
    StopAdding();
    ForgetEditedFile();
    ReplaceView(fresh.release());
    for (const HeldReport& report : reports) loadErrors_ << QString::fromStdString(report.message);
    SetProjectTitle();
    FollowTimedLoad();
    OpenProjectNodes();
    if (!loadErrors_.isEmpty())
        Report(tr("Reading %1 reported an error; it may hold more than was read.").arg(projectFile), loadErrors_);
    const QStringList unreadable = UnreadableFiles();
    if (!unreadable.isEmpty())
        Report(tr("%n file(s) of the project cannot be read; was it moved without its sources?", nullptr,
                  unreadable.size()),
               unreadable);
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

bool MainWindow::SaveProject() { return SaveProjectWith(&TreeView::Save, tr("Saved %1")); }

// Rescanning a file that cannot be read empties it in the project, so they are named;
// when none can be read, nothing is rescanned or saved.
bool MainWindow::SaveProjectComplete() {
    const QStringList unreadable = UnreadableFiles();
    if (!unreadable.isEmpty() && unreadable.size() == view_->files()->count()) {
        Report(tr("No file of the project can be read, so nothing was rescanned or saved."), unreadable);
        return false;
    }
    const bool saved = SaveProjectWith(&TreeView::SaveComplete, tr("Rescanned every file and saved %1"));
    if (saved && !unreadable.isEmpty())
        Report(tr("%n file(s) could not be read and are empty in the saved project.", nullptr, unreadable.size()),
               unreadable);
    return saved;
}

bool MainWindow::SaveProjectWith(bool (TreeView::*save)(), const QString& doneMessage) {
    const QString file = TextOf(view_->control().FileName());
    if (file.isEmpty() || AskBeforeSavingOver(false) != QMessageBox::Save) return false;
    FinishFiling();
    if (!(view_->control().*save)()) {
        Report(tr("The project could not be written to %1").arg(file));
        return false;
    }
    loadErrors_.clear();  // the file now holds what the window holds
    statusBar()->showMessage(doneMessage.arg(file), 4000);
    return true;
}

// Closing saves the project first, as the control's CloseProject does, unless the user
// chooses not to write over a project that was not read whole.
bool MainWindow::CloseProject() {
    if (!MayDropEditedText()) return false;
    const int choice = AskBeforeSavingOver(true);
    if (choice == QMessageBox::Cancel) return false;
    FinishFiling();
    StopAdding();
    ForgetEditedFile();
    if (choice == QMessageBox::Save) view_->control().CloseProject();
    else ReplaceView(MakeView());
    loadErrors_.clear();
    SetProjectTitle();
    return true;
}

// Writes the editor's text to its file; the project then holds that text's symbols.
bool MainWindow::SaveSourceFile() {
    if (!editedFile_) return false;
    const QString path = TextOf(editedFile_->FileName());
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(editor_->toPlainText().toUtf8()) < 0 || !out.commit()) {
        Report(tr("%1: %2").arg(path, out.errorString()));
        return false;
    }
    if (rescanTimer_.isActive()) {
        rescanTimer_.stop();
        Rescan();
    }
    editor_->document()->setModified(false);
    statusBar()->showMessage(tr("Saved %1").arg(path), 4000);
    return true;
}

bool MainWindow::OpenSourceFile(const FilePtr& file, int line) {
    if (file != editedFile_ && !MayDropEditedText()) return false;
    const QString path = TextOf(file->FileName());
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly)) {
        Report(tr("%1: %2").arg(path, in.errorString()));
        return false;
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
    return true;
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
    FinishFiling();
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
    // Qt shows the placeholder as "*" while the editor's text differs from its file.
    if (editedFile_)
        title.prepend(TextOf(view_->control().ExtractFilename__(editedFile_->FileName(), 0)) + QStringLiteral("[*] · "));
    setWindowTitle(title);
    if (editedFile_) setWindowModified(editor_->document()->isModified());
}

void MainWindow::Report(const QString& message, const QStringList& details) {
    lastError_ = details.isEmpty() ? message : message + QLatin1Char('\n') + details.join(QLatin1Char('\n'));
    statusBar()->showMessage(message, 8000);
    if (!isVisible()) return;
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("kestrel-view"), message, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    if (!details.isEmpty()) {
        QStringList named = details.mid(0, kFilesNamed);
        if (details.size() > kFilesNamed) named << tr("and %n more", nullptr, int(details.size() - kFilesNamed));
        box->setInformativeText(named.join(QLatin1Char('\n')));
        box->setDetailedText(details.join(QLatin1Char('\n')));
    }
    box->open();
}

}  // namespace kestrel::view
