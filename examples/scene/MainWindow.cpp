// Menus, docks and the status bar.
#include "examples/scene/MainWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>

#include "plst/JsonReport.h"
#include "plst/json.h"

namespace scene {

using nxSupport::Object;

MainWindow::MainWindow(Editor& editor, std::filesystem::path scripts)
    : editor_(editor),
      scripting_(editor),
      viewport_(*new Viewport(editor, this)),
      outliner_(new Outliner(editor)),
      panel_(new PropertyPanel(editor)),
      history_(new HistoryPanel(editor)),
      console_(new Console(editor, scripting_)),
      progress_(new QProgressBar),
      counters_(new QLabel) {
    editor.messageSignal.addCallback(client_, [this](std::string_view text) {
        statusBar()->showMessage(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())), 10000);
    });
    editor.loadSettings();
    debugPage_ = new DebugPage(editor);
    resize(1100, 700);
    setCentralWidget(&viewport_);
    addDock("Objects", outliner_, Qt::LeftDockWidgetArea);
    addDock("History", history_, Qt::LeftDockWidgetArea);
    addDock("Properties", panel_, Qt::RightDockWidgetArea);
    addDock("Debug", debugPage_, Qt::RightDockWidgetArea);
    addDock("Console", console_, Qt::BottomDockWidgetArea);
    tabifyDockWidget(findChild<QDockWidget*>("Properties"), findChild<QDockWidget*>("Debug"));
    findChild<QDockWidget*>("Properties")->raise();
    resizeDocks({findChild<QDockWidget*>("Objects"), findChild<QDockWidget*>("Properties")}, {200, 300},
                Qt::Horizontal);
    resizeDocks({findChild<QDockWidget*>("Console")}, {130}, Qt::Vertical);
    addCommands();
    addScripts(scripts);
    statusBar()->addPermanentWidget(progress_);
    statusBar()->addPermanentWidget(counters_);
    progress_->hide();
    progress_->setMaximumWidth(200);

    // [status]
    editor.jobs().progressed.addCallback(client_, [this](nxSupport::Job const& job, double part, auto) {
        progress_->setFormat(QString::fromUtf8(job.name().c_str()) + " %p%");
        progress_->setValue(static_cast<int>(100 * part));
        progress_->show();
    });
    auto const later = [this] { status_.start(0); };
    editor.changedSignal.addCallback(client_, later);
    status_.setSingleShot(true);
    status_.callOnTimeout(this, [this] { showStatus(); });
    // [status]
    autosave_.callOnTimeout(this, [this] { editor_.autosave(); });
    autosave_.start(static_cast<int>(editor.settings().autosaveSeconds * 1000));
    showStatus();
}

void MainWindow::addDock(QString const& title, QWidget* widget, Qt::DockWidgetArea area) {
    auto* const dock = new QDockWidget(title, this);
    dock->setObjectName(title);
    dock->setWidget(widget);
    addDockWidget(area, dock);
}

QAction* MainWindow::add(QMenu* menu, QString const& text, QKeySequence const& keys, std::function<void()> const& run) {
    QAction* const action = menu->addAction(text);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, [run] { run(); });
    return action;
}

QAction* MainWindow::command(QString const& text) const {
    for (QAction* const action : findChildren<QAction*>()) {
        if (action->text() == text) return action;
    }
    return nullptr;
}

// [commands]
void MainWindow::addCommands() {
    auto& document = editor_.document();
    QMenu* const file = menuBar()->addMenu("File");
    add(file, "Open or import…", QKeySequence::Open, [this] { openByDialog(); });
    add(file, "Save", QKeySequence::Save,
        [this] { editor_.path().empty() ? saveByDialog() : editor_.save(editor_.path()); });
    add(file, "Save as…", QKeySequence::SaveAs, [this] { saveByDialog(); });
    add(file, "Stop work", Qt::CTRL | Qt::Key_Period, [this] { editor_.jobs().cancelAll(); });
    add(file, "Quit", QKeySequence::Quit, [this] { close(); });
    QMenu* const edit = menuBar()->addMenu("Edit");
    add(edit, "Undo", QKeySequence::Undo, [&document] { document.undo(); });
    add(edit, "Redo", QKeySequence::Redo, [&document] { document.redo(); });
    add(edit, "Copy", QKeySequence::Copy, [this] { copy(); });
    add(edit, "Paste", QKeySequence::Paste, [this] { paste(); });
    add(edit, "Duplicate", Qt::CTRL | Qt::Key_D, [&document] { nxSupport::duplicate(document.selection()); });
    add(edit, "Delete", QKeySequence::Delete, [this] { deleteSelected(); });
    add(edit, "Group", Qt::CTRL | Qt::Key_G, [this] { group(); });
    QMenu* const view = menuBar()->addMenu("View");
    add(view, "Look at selection", Qt::CTRL | Qt::Key_F, [this] { viewport_.frameSelection(); });
    add(view, "Reload meshes", QKeySequence::Refresh, [this] { reload(); });
    using Tool = Viewport::Tool;
    QMenu* const tools = menuBar()->addMenu("Tools");
    add(tools, "Move", Qt::CTRL | Qt::Key_1, [this] { viewport_.setTool(Tool::move); });
    add(tools, "Rotate", Qt::CTRL | Qt::Key_2, [this] { viewport_.setTool(Tool::rotate); });
    add(tools, "Scale", Qt::CTRL | Qt::Key_3, [this] { viewport_.setTool(Tool::scale); });
    add(tools, "Smooth", Qt::CTRL | Qt::Key_4, [this] { viewport_.setTool(Tool::smooth); });
}
// [commands]

void MainWindow::addScripts(std::filesystem::path const& folder) {
    QMenu* const menu = menuBar()->addMenu("Scripts");
    std::error_code error;
    for (auto const& entry : std::filesystem::directory_iterator(folder, error)) {
        if (entry.path().extension() != ".lua") continue;
        add(menu, QString::fromStdString(entry.path().stem().string()), {},
            [this, path = entry.path()] { scripting_.runFile(path); });
    }
}

void MainWindow::openFiles(QStringList const& files) {
    for (QString const& file : files) {
        std::filesystem::path const path = file.toStdString();
        bool const isDocument = path.extension() == ".json" || path.extension() == ".nx";
        isDocument ? editor_.open(path) : editor_.importMesh(path);
    }
}

void MainWindow::openByDialog() {
    openFiles(
        QFileDialog::getOpenFileNames(this, "Open or import", {}, "Scenes and meshes (*.json *.nx *.obj *.off *.stl)"));
}

bool MainWindow::saveByDialog() {
    QString const file = QFileDialog::getSaveFileName(this, "Save", {}, "Scenes (*.json *.nx)");
    return !file.isEmpty() && editor_.save(file.toStdString());
}

void MainWindow::deleteSelected() {
    editor_.perform("Delete", [this] {
        for (Object* const object : topmost(editor_.document().selection())) {
            if (object->parent()) object->parent()->remove(*object);
        }
    });
}

void MainWindow::group() {
    auto const objects = topmost(editor_.document().selection());
    if (objects.empty() || !objects.front()->parent()) return;
    editor_.perform("Group", [&] {
        auto const made = editor_.document().make("Group");
        made->set("name", "Group");
        objects.front()->parent()->insert(objects.front()->index(), made);
        for (Object* const object : objects) {
            auto const world = worldOf(*object);
            object->moveTo(*made, made->children().size());
            setWorld(*object, world);
        }
        editor_.document().select({made.get()});
    });
}

void MainWindow::reload() {
    for (Object const* const object : editor_.document().selection()) {
        editor_.shapes().reload(object->get<std::string>("file"));
    }
    viewport_.refresh();
}

// [clipboard]
void MainWindow::copy() {
    std::string text;
    auto const copied = nxSupport::copy(editor_.document().selection());
    if (nxPLST::writeJson(text, copied, {.refuseNulls = true}))
        QApplication::clipboard()->setText(QString::fromStdString(text));
}

void MainWindow::paste() {
    ur::Reference<nxPLST::Item> item;
    nxPLST::JsonReport report;
    std::string const text = QApplication::clipboard()->text().toStdString();
    if (!nxPLST::convertFromJSON(item, text, report)) return editor_.messageSignal.emit("This is no copy of objects");
    auto& root = editor_.document().root();
    auto const pasted = nxSupport::paste(root, root.children().size(), item);
    if (!pasted.ok()) return editor_.messageSignal.emit(pasted.error.message());
    std::vector<Object*> objects;
    for (auto const& object : pasted.objects) objects.push_back(object.get());
    editor_.document().select(objects);
}
// [clipboard]

void MainWindow::showStatus() {
    auto& history = editor_.document().history();
    auto const cache = editor_.cache().statistics();
    setWindowTitle(QString::fromStdString(editor_.title()) + " – nxscene");
    auto const undo = [](QAction* action, char const* verb, bool can, urString::CString const& name) {
        action->setEnabled(can);
        action->setToolTip(QString(verb) + " " + QString::fromUtf8(name.c_str()));
    };
    undo(command("Undo"), "Undo", history.canUndo(), history.undoName());
    undo(command("Redo"), "Redo", history.canRedo(), history.redoName());
    counters_->setText(QString("%1 triangles, cache %2 of %3 MiB, %4 paged out, history %5 KiB")
                           .arg(viewport_.frame() ? viewport_.frame()->triangleCount() : 0)
                           .arg(double(cache.memoryUsed) / 1048576, 0, 'f', 1)
                           .arg(editor_.settings().cacheMegabytes)
                           .arg(cache.pagesOut)
                           .arg(history.historyBytes() / 1024));
    if (!editor_.jobs().isBusy()) progress_->hide();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (editor_.document().isModified()) {
        auto const answer = QMessageBox::question(this, "nxscene", "Save the changes of this scene?",
                                                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
        bool const isSaved =
            answer == QMessageBox::Save && (editor_.path().empty() ? saveByDialog() : editor_.save(editor_.path()));
        if (!isSaved && answer != QMessageBox::Discard) return event->ignore();
        if (!isSaved) editor_.discard();
    }
    event->accept();
}

}  // namespace scene
