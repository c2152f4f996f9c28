// The window of the editor.
#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>

#include "examples/scene/Console.h"
#include "examples/scene/DebugPage.h"
#include "examples/scene/HistoryPanel.h"
#include "examples/scene/Outliner.h"
#include "examples/scene/PropertyPanel.h"
#include "examples/scene/Viewport.h"

namespace scene {

/// A viewport with panels around it, menus and a status bar.
class MainWindow final : public QMainWindow {
public:
    /// `scripts` is the folder of the menu Scripts.
    MainWindow(Editor& editor, std::filesystem::path scripts);

    [[nodiscard]] Viewport& viewport() { return viewport_; }
    [[nodiscard]] Outliner& outliner() { return *outliner_; }
    [[nodiscard]] PropertyPanel& panel() { return *panel_; }
    [[nodiscard]] HistoryPanel& history() { return *history_; }
    [[nodiscard]] Console& console() { return *console_; }
    [[nodiscard]] DebugPage& debugPage() { return *debugPage_; }
    [[nodiscard]] Scripting& scripting() { return scripting_; }
    /// A command of the menus, by its text.
    [[nodiscard]] QAction* command(QString const& text) const;
    /// Opens documents and imports meshes, by their names.
    void openFiles(QStringList const& files);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void addDock(QString const& title, QWidget* widget, Qt::DockWidgetArea area);
    void addCommands();
    void addScripts(std::filesystem::path const& folder);
    QAction* add(QMenu* menu, QString const& text, QKeySequence const& keys, std::function<void()> const& run);
    void openByDialog();
    bool saveByDialog();
    void deleteSelected();
    void group();
    void reload();
    void copy();
    void paste();
    void showStatus();

    Editor& editor_;
    Scripting scripting_;
    Viewport& viewport_;
    Outliner* outliner_;
    PropertyPanel* panel_;
    HistoryPanel* history_;
    Console* console_;
    DebugPage* debugPage_ = nullptr;
    QProgressBar* progress_;
    QLabel* counters_;
    QTimer status_;
    QTimer autosave_;
    urRTB::SignalClient client_;
};

}  // namespace scene
