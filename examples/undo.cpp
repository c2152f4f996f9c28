// A drawing with undo: objects that record their changes, named steps, and a drag that is one step.
#include <cstdio>

#include "foundation/nxTXN/Manager.h"
#include "foundation/nxTXN/ObjectList.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/Transaction.h"
#include "foundation/nxTXN/fields.h"
#include "support/properties/fields.h"

using nxTXN::Manager;
using nxTXN::Transaction;
using urLinear::Point;

// [object]
/// A circle. Its fields change only through functions that call `transact()` first.
class Circle : public nxTXN::RefCountedObject {
public:
    using RefCountedObject::RefCountedObject;

    Point const& center() const { return center_; }
    void move(Point const& center) {
        transact();
        center_ = center;
    }

protected:
    void onTransact(nxTXN::Serializer& serializer) override {
        serializer.beginObject(this, nullptr);
        RefCountedObject::onTransact(serializer);
        serializer.field(center_);
        serializer.endObject(this);
    }

private:
    Point center_;
};
// [object]

// [document]
/// Holds one circle, or none.
class Drawing : public nxTXN::RefCountedObject {
public:
    using RefCountedObject::RefCountedObject;

    Circle* circle() const { return circle_.get(); }
    void setCircle(ur::Reference<Circle> circle) {
        transact();
        circle_ = std::move(circle);
    }

protected:
    void onTransact(nxTXN::Serializer& serializer) override {
        serializer.beginObject(this, nullptr);
        RefCountedObject::onTransact(serializer);
        serializer.field(circle_);
        serializer.endObject(this);
    }
    void onTxnModified() override { std::printf("redraw\n"); }

private:
    ur::Reference<Circle> circle_;
};
// [document]

void show(Drawing const& drawing, Manager const& manager) {
    if (Circle const* const circle = drawing.circle()) {
        std::printf("circle at %g %g", circle->center().x, circle->center().y);
    } else {
        std::printf("no circle");
    }
    std::printf("  [Undo %s] [Redo %s]\n", manager.undoName().c_str(), manager.redoName().c_str());
}

void showList() {
    // [list]
    Manager manager;
    nxTXN::ObjectList<Circle> circles(manager);
    circles.insertedSignal().addCallback([](std::size_t at, Circle&) { std::printf("inserted at %zu\n", at); });
    circles.erasedSignal().addCallback([](std::size_t at, Circle&) { std::printf("erased at %zu\n", at); });
    edit(manager, "Add two", [&] {
        circles.append(ur::make<Circle>(manager));
        circles.insert(0, ur::make<Circle>(manager));
    });
    manager.undo();
    std::printf("%zu circles\n", circles.size());
    // [list]
}

int main() {
    Manager manager;
    auto const drawing = ur::make<Drawing>(manager);

    // [steps]
    edit(manager, "Draw", [&] {
        drawing->setCircle(ur::make<Circle>(manager));
        drawing->circle()->move({1, 1, 0});
    });
    for (int x = 2; x <= 5; ++x) {  // one transaction for each mouse move
        manager.beginCoalescing("Drag", drawing->circle());
        drawing->circle()->move({1.0 * x, 1, 0});
        manager.commit();
    }
    manager.endCoalescing();
    {
        Transaction const transaction(manager, "Delete");
        drawing->setCircle(nullptr);
        // Destroyed without commit, as when an error is thrown: aborted.
    }
    show(*drawing, manager);
    // [steps]

    // [walk]
    manager.undo();
    show(*drawing, manager);
    manager.undo();
    show(*drawing, manager);
    manager.redo();
    manager.redo();
    show(*drawing, manager);
    std::printf("%zu steps\n", manager.undoCount());
    // [walk]
    showList();
    return 0;
}
