// Transactions and their history while memory runs out.
#include <exception>
#include <new>

#include "foundation/nxTXN/HookError.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/Transaction.h"
#include "foundation/nxTXN/fields.h"
#include "tests/faults/survives.h"

namespace faults {
namespace {

using nxTXN::HookError;
using ur::Reference;

/// A number and a reference to another cell. Restoring them needs no memory.
class Cell final : public nxTXN::RefCountedObject {
public:
    inline static int alive = 0;

    explicit Cell(nxTXN::Manager& manager) : RefCountedObject(manager) { ++alive; }

    [[nodiscard]] int value() const { return value_; }
    [[nodiscard]] Reference<Cell> const& next() const { return next_; }
    void set(int value) {
        transact();
        value_ = value;
    }
    void link(Reference<Cell> next) {
        transact();
        next_ = std::move(next);
    }

protected:
    ~Cell() override { --alive; }

    void onTransact(nxTXN::Serializer& serializer) override {
        serializer.field(value_);
        serializer.field(next_);
    }

private:
    int value_ = 0;
    Reference<Cell> next_;
};

char const longName[] = "a name that is too long to be held in place";

/// A row of cells after the first, not yet recorded in the history.
struct Row {
    explicit Row(int cells = 0) {
        while (cells-- > 0) push();
    }
    void push() {
        auto cell = ur::make<Cell>(history);
        cell->link(head->next());
        head->link(std::move(cell));
    }
    void setAll(int value) {
        for (Cell* cell = head.get(); cell; cell = cell->next().get()) cell->set(value);
    }
    bool dropAll() {
        nxTXN::Transaction transaction(history, longName);
        head->link(nullptr);
        return transaction.commit();
    }
    std::string state() const {
        std::string text;
        for (Cell const* cell = head.get(); cell; cell = cell->next().get()) {
            text += std::to_string(cell->value()) + (cell->isTxnExtant() ? " " : "! ");
        }
        return text + "depth " + std::to_string(history.depth()) + " steps " + std::to_string(history.undoCount()) +
               "/" + std::to_string(history.redoCount());
    }

    nxTXN::Manager history;
    Reference<Cell> head = ur::make<Cell>(history);
};

struct MakeCells : Row {
    bool act() {
        nxTXN::Transaction transaction(history, longName);
        {
            nxTXN::Transaction inner(history);
            for (int i = 0; i < 3; ++i) push();
            inner.commit();
        }
        setAll(1);
        return transaction.commit();
    }
};

/// The record holds a cell of another manager.
struct DropForeignCell : Row {
    DropForeignCell() { head->link(ur::make<Cell>(other)); }
    bool act() { return dropAll(); }

    nxTXN::Manager other;
};

/// So many cells that their current state does not fit the space in which one of them was saved.
struct UndoDrop : Row {
    UndoDrop() : Row(100) {
        history.begin();
        setAll(1);
        dropAll();
        history.commit();
    }
    bool act() { return history.undo(); }
};

TEST(WithoutMemory, StepsAreMadeWholeOrNotAtAll) {
    survives<MakeCells>();
    survives<DropForeignCell>();
    survives<UndoDrop>();
}

TEST(WithoutMemory, WhatIsOpenCanStillBeCommittedAbortedAndLetGo) {
    int const before = Cell::alive;
    {
        Row row(100);
        std::string const untouched = row.state();
        row.history.begin(longName);
        row.setAll(1);
        std::string const changed = row.state();
        row.history.begin(longName);
        row.setAll(2);
        row.push();
        row.head->link(nullptr);
        bool done = false;
        {
            Allocations const none(0, Allocations::Then::fail);
            done = row.history.abort();
        }
        EXPECT_TRUE(done);
        EXPECT_EQ(row.state(), changed.substr(0, changed.find("depth")) + "depth 1 steps 0/0");
        row.history.begin();
        row.setAll(3);
        {
            Allocations const none(0, Allocations::Then::fail);
            done = row.history.commit() && row.history.abort();
        }
        EXPECT_TRUE(done);
        EXPECT_EQ(row.state(), untouched);
        row.history.begin(longName);
        row.setAll(4);
        {
            Allocations const none(0, Allocations::Then::fail);
            done = row.history.commit();
            row.head.reset();
        }
        EXPECT_TRUE(done);
        EXPECT_EQ(row.history.undoCount(), 1U);
        EXPECT_EQ(Cell::alive - before, 101) << "the step keeps them";
        Allocations const none(0, Allocations::Then::fail);
        done = row.history.clear();
        row.history.setStepLimit(1);
    }
    EXPECT_EQ(Cell::alive, before);
}

TEST(WithoutMemory, AnUndoThatNeedsMoreSaysThatNothingWasDone) {
    Row row(100);
    row.history.begin();
    row.setAll(1);
    row.history.commit();
    std::string const before = row.state();
    auto outcome = HookError::Outcome::completed;
    bool named = false;
    try {
        Allocations const none(0, Allocations::Then::fail);
        row.history.undo();
    } catch (HookError const& error) {
        outcome = error.outcome();
        try {
            error.rethrow_nested();
        } catch (std::bad_alloc const&) {
            named = true;
        }
    }
    EXPECT_EQ(outcome, HookError::Outcome::unchanged);
    EXPECT_TRUE(named);
    EXPECT_EQ(row.state(), before);
    EXPECT_TRUE(row.history.undo());
}

}  // namespace
}  // namespace faults
