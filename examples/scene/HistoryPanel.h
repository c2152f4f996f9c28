// The steps of the history.
#pragma once

#include <QListWidget>
#include <QTimer>

#include "examples/scene/Editor.h"

namespace scene {

/// Lists the steps; a click goes to one of them.
class HistoryPanel final : public QListWidget {
public:
    explicit HistoryPanel(Editor& editor, QWidget* parent = nullptr);

private:
    void refresh();

    Editor& editor_;
    QTimer timer_;  ///< a click must end before the list changes
    urRTB::SignalClient client_;
};

}  // namespace scene
