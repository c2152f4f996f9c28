// The values of the selected objects.
#pragma once

#include <QFormLayout>
#include <QScrollArea>
#include <QTimer>
#include <memory>

#include "examples/scene/Editor.h"
#include "support/documents/Panel.h"

namespace scene {

/// A control for each property that the selected objects have in common, made from its description.
///
/// Controls are named after the properties. They follow all changes; what they set is one step for all objects.
class PropertyPanel final : public QScrollArea {
public:
    explicit PropertyPanel(Editor& editor, QWidget* parent = nullptr);

    void refresh();

private:
    Editor& editor_;
    QTimer timer_;
    std::unique_ptr<nxSupport::Panel> panel_;
    std::vector<urRTB::ScopedConnection> following_;
    urRTB::SignalClient client_;
};

}  // namespace scene
