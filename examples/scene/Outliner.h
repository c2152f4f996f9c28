// The tree of objects.
#pragma once

#include <QTimer>
#include <QTreeWidget>

#include "examples/scene/Editor.h"

namespace scene {

/// Shows the objects with names and thumbnails, follows the document and edits it: rename, drag to another place,
/// select.
class Outliner final : public QTreeWidget {
public:
    explicit Outliner(Editor& editor, QWidget* parent = nullptr);

    /// Null for an item of an object that is gone.
    [[nodiscard]] nxSupport::Object* objectOf(QTreeWidgetItem const* item) const;
    [[nodiscard]] QTreeWidgetItem* itemOf(nxSupport::Object const& object) const;
    /// Shows the document as it is now; called when the program is idle.
    void refresh();

protected:
    void dropEvent(QDropEvent* event) override;

private:
    void refreshLater();
    void refresh(QTreeWidgetItem& item, nxSupport::Object const& object);
    void show(QTreeWidgetItem& item, nxSupport::Object const& object);
    void rename(QTreeWidgetItem& item);
    void selectObjects();

    Editor& editor_;
    QTimer timer_;
    bool isShowing_ = false;  ///< items change because the document has changed
    urRTB::SignalClient client_;
};

}  // namespace scene
