// The undo history: recording, undo and redo, memory, and how its cost grows.
#include <malloc.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "bench/rows.h"
#include "bench/undoMenus.h"
#include "foundation/nxTXN/Manager.h"
#include "foundation/nxTXN/ObjectList.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/fields.h"

namespace bench {
namespace {

constexpr std::size_t shapeCount = 1000;

/// A shape of the edited drawing. Each edit moves one shape.
class Shape final : public nxTXN::RefCountedObject {
public:
    using RefCountedObject::RefCountedObject;

    void move(double x) {
        transact();
        x_ = x;
    }

protected:
    void onTransact(nxTXN::Serializer& serializer) override {
        serializer.beginObject(this, nullptr);
        RefCountedObject::onTransact(serializer);
        serializer.field(x_);
        serializer.endObject(this);
    }

private:
    double x_ = 0;
};

/// A drawing with its history and its undo menus.
class OurDrawing {
public:
    OurDrawing() {
        for (std::size_t i = 0; i < shapeCount; ++i) shapes_.push_back(ur::make<Shape>(manager_));
    }
    void edit(std::size_t i) {
        manager_.begin("Move");
        shapes_[i * 7 % shapeCount]->move(static_cast<double>(i));
        manager_.commit();
    }
    bool undo() { return manager_.undo(); }
    bool redo() { return manager_.redo(); }

private:
    nxTXN::Manager manager_;
    std::vector<ur::Reference<Shape>> shapes_;
    OurMenus menus_{manager_};
};

class MoveCommand final : public QUndoCommand {
public:
    MoveCommand(double& place, double x) : QUndoCommand(QStringLiteral("Move")), place_(place), before_(place), x_(x) {}
    void undo() override { place_ = before_; }
    void redo() override { place_ = x_; }

private:
    double& place_;
    double before_;
    double x_;
};

/// The same with Qt.
class QtDrawing {
public:
    void edit(std::size_t i) { stack_.push(new MoveCommand(shapes_[i * 7 % shapeCount], static_cast<double>(i))); }
    bool undo() {
        bool const can = stack_.canUndo();
        stack_.undo();
        return can;
    }
    bool redo() {
        bool const can = stack_.canRedo();
        stack_.redo();
        return can;
    }

private:
    std::vector<double> shapes_ = std::vector<double>(shapeCount);
    QUndoStack stack_;
    QtMenus menus_{stack_};
};

template <class Drawing>
std::shared_ptr<Drawing> edited(std::size_t edits) {
    auto drawing = std::make_shared<Drawing>();
    for (std::size_t i = 0; i < edits; ++i) drawing->edit(i);
    return drawing;
}

template <class Drawing>
double timeToRecord(std::size_t edits) {
    Drawing drawing;
    return seconds([&] {
        for (std::size_t i = 0; i < edits; ++i) drawing.edit(i);
    });
}

template <class Drawing>
double timeToUndo(Drawing& drawing) {
    return seconds([&] {
        while (drawing.undo()) {
        }
    });
}
template <class Drawing>
double timeToRedo(Drawing& drawing) {
    return seconds([&] {
        while (drawing.redo()) {
        }
    });
}

template <class Drawing>
Side recording(char const* name, std::size_t edits) {
    return {name, [=] { return timeToRecord<Drawing>(edits); }};
}

template <class Drawing>
Side undoing(char const* name, std::size_t edits) {
    return {name, [drawing = edited<Drawing>(edits)] {
                double const time = timeToUndo(*drawing);
                timeToRedo(*drawing);
                return time;
            }};
}

template <class Drawing>
Side redoing(char const* name, std::size_t edits) {
    return {name, [drawing = edited<Drawing>(edits)] {
                timeToUndo(*drawing);
                return timeToRedo(*drawing);
            }};
}

template <class Drawing>
Side occupying(char const* name, std::size_t edits) {
    return {name, [=] {
                auto const heapBytes = [] {
                    struct mallinfo2 const info = mallinfo2();
                    return static_cast<double>(info.uordblks + info.hblkhd);
                };
                double const before = heapBytes();
                auto const drawing = edited<Drawing>(edits);
                return (heapBytes() - before) / static_cast<double>(edits);
            }};
}

/// The position of insertion number i in a list of that size, spread over the list.
std::size_t scattered(std::size_t i, std::size_t size) { return i * 7919 % size; }

/// A drawing whose order of shapes is edited.
class OurLayers {
public:
    explicit OurLayers(std::size_t size) {
        while (order_.size() < size) order_.append(ur::make<Shape>(manager_));
    }
    void insert(std::size_t i) {
        manager_.begin("Insert");
        order_.insert(scattered(i, order_.size()), shape_);
        manager_.commit();
    }
    void undo() { manager_.undo(); }
    [[nodiscard]] std::size_t historyBytes() const { return manager_.historyBytes(); }

private:
    nxTXN::Manager manager_;
    nxTXN::ObjectList<Shape> order_{manager_};
    ur::Reference<Shape> const shape_ = ur::make<Shape>(manager_);
};

class QtLayers {
public:
    using Order = std::vector<std::shared_ptr<double>>;

    explicit QtLayers(std::size_t size) : order_(size, std::make_shared<double>()) {}
    void insert(std::size_t i) { stack_.push(new Insert(order_, scattered(i, order_.size()))); }
    void undo() { stack_.undo(); }

private:
    class Insert final : public QUndoCommand {
    public:
        Insert(Order& order, std::size_t index)
            : QUndoCommand(QStringLiteral("Insert")), order_(order), index_(static_cast<std::ptrdiff_t>(index)) {}
        void undo() override { order_.erase(order_.begin() + index_); }
        void redo() override { order_.insert(order_.begin() + index_, shape_); }

    private:
        Order& order_;
        std::ptrdiff_t index_;
        std::shared_ptr<double> const shape_ = std::make_shared<double>();
    };

    Order order_;
    QUndoStack stack_;
};

/// Inserts all over a long list, and undoes it.
template <class Layers>
Side inserting(char const* name, std::size_t size, std::size_t insertions) {
    return {name, [layers = std::make_shared<Layers>(size), insertions] {
                return seconds([&] {
                    for (std::size_t i = 0; i < insertions; ++i) layers->insert(i);
                    for (std::size_t i = 0; i < insertions; ++i) layers->undo();
                });
            }};
}

/// The bytes in the history for each insertion.
Side insertionBytes(std::size_t size, std::size_t insertions) {
    return {"nxTXN", [=] {
                OurLayers layers(size);
                for (std::size_t i = 0; i < insertions; ++i) layers.insert(i);
                return static_cast<double>(layers.historyBytes()) / static_cast<double>(insertions);
            }};
}

/// Records, undoes and redoes a history of `edits`.
double lifeOfHistory(std::size_t edits) {
    double const time = timeToRecord<OurDrawing>(edits);
    auto const drawing = edited<OurDrawing>(edits);
    return time + timeToUndo(*drawing) + timeToRedo(*drawing);
}

}  // namespace

void addUndoRows(Suite& suite) {
    auto const edits = static_cast<std::size_t>(suite.scaled(100'000));
    char const* const peer = "QUndoStack";
    suite.compare("undo/record", 0.35, [=] {
        return Sides{recording<OurDrawing>("nxTXN", edits), recording<QtDrawing>(peer, edits)};
    });
    suite.compare("undo/undo", 0.15, [=] {
        return Sides{undoing<OurDrawing>("nxTXN", edits), undoing<QtDrawing>(peer, edits)};
    });
    suite.compare("undo/redo", 0.15, [=] {
        return Sides{redoing<OurDrawing>("nxTXN", edits), redoing<QtDrawing>(peer, edits)};
    });
    suite.compare(
        "undo/bytes-per-edit", 0.7,
        [=] {
            return Sides{occupying<OurDrawing>("nxTXN", edits), occupying<QtDrawing>(peer, edits)};
        },
        Unit::bytes);
    constexpr std::size_t longList = 100'000;
    auto const insertions = static_cast<std::size_t>(suite.scaled(1000));
    suite.compare("undo/list-insert", 0.5, [=] {
        return Sides{inserting<OurLayers>("nxTXN", longList, insertions),
                     inserting<QtLayers>("QUndoStack and std::vector", longList, insertions)};
    });
    suite.compare(
        "undo/list-insert-bytes", 1.0,
        [=] {
            return Sides{insertionBytes(longList, insertions), {"400 bytes each", [] { return 400.0; }}};
        },
        Unit::bytes);
    suite.compareGrowth("undo-depth", 1000, lifeOfHistory);
}

}  // namespace bench
