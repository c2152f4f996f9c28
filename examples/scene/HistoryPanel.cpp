// Lists steps and goes to them.
#include "examples/scene/HistoryPanel.h"

#include <QSignalBlocker>

namespace scene {

// [history]
HistoryPanel::HistoryPanel(Editor& editor, QWidget* parent) : QListWidget(parent), editor_(editor) {
    timer_.setSingleShot(true);
    timer_.callOnTimeout(this, [this] { refresh(); });
    editor.document().history().changedSignal().addCallback(client_, [this] { timer_.start(0); });
    connect(this, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0) editor_.document().undoTo(static_cast<std::size_t>(row));
    });
    refresh();
}

void HistoryPanel::refresh() {
    QSignalBlocker const blocker(this);
    auto const steps = editor_.document().steps();
    clear();
    addItem("Beginning");
    for (auto const& step : steps) addItem(QString::fromUtf8(step.c_str()));
    setCurrentRow(static_cast<int>(editor_.document().history().undoCount()));
}
// [history]

}  // namespace scene
