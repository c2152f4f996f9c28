// Makes the items equal to the objects.
#include "examples/scene/Outliner.h"

#include <QDropEvent>
#include <QScopedValueRollback>
#include <algorithm>

#include "examples/scene/resources.h"

namespace scene {

using nxSupport::Object;

namespace {

constexpr int idRole = Qt::UserRole;

QString idOf(Object const& object) { return QString::fromUtf8(object.id().asString().c_str()); }

}  // namespace

Outliner::Outliner(Editor& editor, QWidget* parent) : QTreeWidget(parent), editor_(editor) {
    setHeaderHidden(true);
    setSelectionMode(ExtendedSelection);
    setDragDropMode(DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setEditTriggers(EditKeyPressed | SelectedClicked);
    setIconSize({24, 24});
    timer_.setSingleShot(true);
    timer_.callOnTimeout(this, [this] { refresh(); });
    auto& document = editor.document();
    editor.changedSignal.addCallback(client_, this, &Outliner::refreshLater);
    document.selectionSignal().addCallback(client_, this, &Outliner::refreshLater);
    document.replacedSignal().addCallback(client_, this, &Outliner::refreshLater);
    connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item) { rename(*item); });
    connect(this, &QTreeWidget::itemSelectionChanged, this, [this] { selectObjects(); });
    refresh();
}

Object* Outliner::objectOf(QTreeWidgetItem const* item) const {
    urOS::Uuid id;
    if (!item || !id.parse(item->data(0, idRole).toString().toUtf8().constData())) return nullptr;
    return editor_.document().find(id);
}

QTreeWidgetItem* Outliner::itemOf(Object const& object) const {
    QTreeWidgetItemIterator at(const_cast<Outliner*>(this));
    for (; *at; ++at) {
        if ((*at)->data(0, idRole).toString() == idOf(object)) return *at;
    }
    return nullptr;
}

void Outliner::refreshLater() {
    if (!timer_.isActive()) timer_.start(0);
}

// [refresh]
void Outliner::refresh() {
    QScopedValueRollback const showing(isShowing_, true);
    refresh(*invisibleRootItem(), editor_.document().root());
    auto const selected = editor_.document().selection();
    QTreeWidgetItemIterator at(this);
    for (; *at; ++at) (*at)->setSelected(std::ranges::find(selected, objectOf(*at)) != selected.end());
}

/// Items that have the right object stay, so that they stay open and selected.
void Outliner::refresh(QTreeWidgetItem& item, Object const& object) {
    int index = 0;
    for (Object const& child : object.children()) {
        QString const id = idOf(child);
        int found = index;
        while (found < item.childCount() && item.child(found)->data(0, idRole).toString() != id) ++found;
        QTreeWidgetItem* childItem = nullptr;
        if (found == item.childCount()) {
            childItem = new QTreeWidgetItem({QString(), id});  // the tree owns it
            childItem->setData(0, idRole, id);
            item.insertChild(index, childItem);
            childItem->setExpanded(true);
        } else {
            childItem = item.child(found);
            if (found != index) item.insertChild(index, item.takeChild(found));
        }
        show(*childItem, child);
        refresh(*childItem, child);
        ++index;
    }
    while (item.childCount() > index) delete item.takeChild(index);
}
// [refresh]

void Outliner::show(QTreeWidgetItem& item, Object const& object) {
    bool const isMesh = object.objectClass().isA("Mesh");
    QString const name = QString::fromUtf8(object.name().c_str());
    if (item.text(0) != name) item.setText(0, name);
    item.setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsDragEnabled |
                  (isMesh ? Qt::NoItemFlags : Qt::ItemIsDropEnabled));
    if (!isMesh) return;
    auto const picture = access<Picture>(editor_.shapes().of(object).thumbnail);
    if (!picture) return;
    auto const* const bytes = reinterpret_cast<uchar const*>(picture->pixels.data());
    item.setIcon(0, QPixmap::fromImage(QImage(bytes, picture->width, picture->width, QImage::Format_ARGB32).copy()));
}

void Outliner::rename(QTreeWidgetItem& item) {
    Object* const object = isShowing_ ? nullptr : objectOf(&item);
    if (!object) return;
    editor_.perform("Rename", [&] { object->set("name", item.text(0).toStdString()); });
}

void Outliner::selectObjects() {
    if (isShowing_) return;
    std::vector<Object*> selected;
    for (QTreeWidgetItem const* const item : selectedItems()) {
        if (Object* const object = objectOf(item)) selected.push_back(object);
    }
    editor_.document().select(selected);
}

// [drop]
/// The document moves the objects; then the items follow.
void Outliner::dropEvent(QDropEvent* event) {
    QPoint const at = event->position().toPoint();
    QTreeWidgetItem const* const target = itemAt(at);
    Object* const under = objectOf(target);
    QRect const rect = target ? visualItemRect(target) : QRect();
    int const edge = under && under->objectClass().isA("Mesh") ? rect.height() / 2 : rect.height() / 4;
    bool const isAbove = under && at.y() < rect.top() + edge;
    bool const isBelow = under && at.y() >= rect.bottom() - edge;
    Object* const parent = !under ? &editor_.document().root() : isAbove || isBelow ? under->parent() : under;
    std::size_t place = isAbove ? under->index() : isBelow ? under->index() + 1 : parent->children().size();
    std::vector<Object*> moved;
    for (QTreeWidgetItem const* const item : selectedItems()) {
        if (Object* const object = objectOf(item)) moved.push_back(object);
    }
    editor_.perform("Reorder", [&] {
        for (Object* const object : topmost(moved)) {
            auto const world = worldOf(*object);
            if (object->parent() == parent && object->index() < place) --place;
            if (!object->moveTo(*parent, place++)) throw std::runtime_error("objects cannot be moved there");
            setWorld(*object, world);
        }
    });
    event->setDropAction(Qt::IgnoreAction);  // the base class must not remove the items
    event->accept();
    refresh();
}
// [drop]

}  // namespace scene
