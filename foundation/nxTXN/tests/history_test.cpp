// Steps: making them, walking over them, taking back and forgetting them.
#include "foundation/nxTXN/Transaction.h"
#include "foundation/nxTXN/tests/Node.h"
#include "foundation/urOS/AppOutput.h"
#include "foundation/urOS/MemoryIOStream.h"

namespace nxTXN::test {
namespace {

struct History : testing::Test {
    Manager manager;
    NodeReference node = ur::make<Node>(manager, "n");

    void set(double value, char const* name = "Set") {
        edit(
            manager, [&] { node->setValue(value); }, name);
    }
    void drag(double value, void const* key) {
        manager.beginCoalescing("Drag", key);
        node->setValue(value);
        manager.commit();
    }
    std::string names() const {
        std::string text;
        for (std::size_t i = manager.undoCount(); i-- > 0;) text += std::string(manager.undoName(i)) + " ";
        text += "|";
        for (std::size_t i = 0; i < manager.redoCount(); ++i) text += " " + std::string(manager.redoName(i));
        return text;
    }
};

TEST_F(History, WalksBackAndForthAndNamesItsSteps) {
    int changes = 0;
    manager.changedSignal().addCallback([&] { ++changes; });
    EXPECT_FALSE(manager.canUndo() || manager.canRedo() || manager.undo() || manager.redo());
    set(1, "Move");
    set(2, "Paint");
    EXPECT_EQ(names(), "Move Paint |");
    EXPECT_TRUE(manager.undo());
    EXPECT_EQ(names(), "Move | Paint");
    EXPECT_EQ(node->value(), 1);
    EXPECT_TRUE(manager.undo());
    EXPECT_EQ(node->value(), 0);
    EXPECT_EQ(manager.undoName(), "");
    EXPECT_TRUE(manager.redo() && manager.redo());
    EXPECT_EQ(node->value(), 2);
    EXPECT_TRUE(manager.undo());
    set(7, "Scale");
    EXPECT_EQ(names(), "Move Scale |");
    EXPECT_EQ(changes, 8);
    EXPECT_TRUE(manager.clear());
    EXPECT_EQ(names(), "|");
    EXPECT_EQ(node->value(), 7);
}

TEST_F(History, MakesNoStepOfATransactionThatDidNothing) {
    set(1);
    manager.undo();
    edit(manager, [&] { NodeReference const temporary = ur::make<Node>(manager, "temporary"); });
    EXPECT_EQ(names(), "| Set");
    EXPECT_FALSE(manager.commit() || manager.abort());
}

TEST_F(History, AbortRestoresExactlyAndKeepsWhatCouldBeRedone) {
    set(1);
    set(2);
    manager.undo();
    NodeReference made;
    {
        Transaction const transaction(manager, "Failed");
        EXPECT_FALSE(manager.canUndo() || manager.undo() || manager.clear());
        made = ur::make<Node>(manager, "made");
        node->setValue(9);
        node->setNext(made);
    }
    EXPECT_EQ(node->value(), 1);
    EXPECT_EQ(node->next(), nullptr);
    EXPECT_FALSE(made->isTxnExtant());
    EXPECT_EQ(names(), "Set | Set");
    EXPECT_TRUE(manager.redo());
    EXPECT_EQ(node->value(), 2);
}

TEST_F(History, NestsTransactions) {
    NodeReference const other = ur::make<Node>(manager, "o");
    manager.begin("Outer");
    node->setValue(1);
    manager.begin("Inner");
    node->setValue(2);
    other->setValue(2);
    manager.begin("Innermost");
    other->setValue(3);
    EXPECT_EQ(manager.depth(), 3u);
    manager.abort();
    EXPECT_EQ(other->value(), 2);
    manager.commit();
    manager.begin("Second");
    node->setValue(4);
    other->setValue(4);
    manager.abort();
    EXPECT_EQ(node->value() * 10 + other->value(), 22);
    manager.commit();
    EXPECT_EQ(names(), "Outer |");
    manager.undo();
    EXPECT_EQ(node->value() * 10 + other->value(), 0);
    manager.redo();
    EXPECT_EQ(node->value() * 10 + other->value(), 22);
}

TEST_F(History, WhatAnInnerTransactionMadeAndTookBackIsNoPartOfTheOuterOne) {
    NodeReference made;
    manager.begin("Outer");
    manager.begin("Inner");
    made = ur::make<Node>(manager, "made");
    manager.abort();
    manager.commit();
    EXPECT_EQ(names(), "|");
    set(1);
    manager.undo();
    manager.redo();
    EXPECT_FALSE(made->isTxnExtant());
}

TEST_F(History, RecordsOnlyRecordedTransactions) {
    struct Case {
        TransactionKind kind;
        double afterAbort;
    };
    for (auto const& [kind, afterAbort] :
         {Case{TransactionKind::transient, 1}, Case{TransactionKind::none, 5}, Case{TransactionKind::constant, 5}}) {
        manager.clear();
        set(1);
        manager.begin("unrecorded", kind);
        node->setValue(4);
        edit(manager, [&] { node->setValue(5); });
        manager.commit();
        EXPECT_EQ(node->value(), 5);
        EXPECT_EQ(names(), "Set |") << static_cast<int>(kind);

        set(1);
        manager.begin("unrecorded", kind);
        node->setValue(5);
        manager.abort();
        EXPECT_EQ(node->value(), afterAbort) << static_cast<int>(kind);
    }
}

TEST_F(History, LeavesUnrecordedPartsOutOfTheTransactionAroundThem) {
    NodeReference const view = ur::make<Node>(manager, "view");
    manager.begin("Outer");
    manager.begin("Inner", TransactionKind::transient);
    view->setValue(1);
    node->setValue(1);
    NodeReference const made = ur::make<Node>(manager, "made");
    manager.commit();
    node->setValue(2);
    manager.commit();
    manager.undo();
    EXPECT_EQ(view->value(), 1);
    EXPECT_EQ(node->value(), 1);
    EXPECT_TRUE(made->isTxnExtant());
}

TEST_F(History, CoalescesADragIntoOneStep) {
    int const firstKey = 0;
    int const secondKey = 0;
    set(1);
    NodeReference const other = ur::make<Node>(manager, "other");
    for (int i = 2; i < 50; ++i) drag(i, &firstKey);
    manager.beginCoalescing("Drag", &firstKey);
    node->setValue(50);
    other->setValue(50);
    manager.commit();
    EXPECT_EQ(names(), "Set Drag |");
    drag(60, &secondKey);
    manager.endCoalescing();
    drag(70, &secondKey);
    EXPECT_EQ(names(), "Set Drag Drag Drag |");
    manager.undo();
    manager.redo();
    drag(80, &secondKey);
    EXPECT_EQ(manager.undoCount(), 5u);
    while (manager.undoCount() > 1) manager.undo();
    EXPECT_EQ(node->value(), 1);
    EXPECT_EQ(other->value(), 0);
    manager.redo();
    EXPECT_EQ(node->value(), 50);
    EXPECT_EQ(other->value(), 50);
}

TEST_F(History, ACoalescedDragCostsTheBytesOfOneStep) {
    int const key = 0;
    drag(1, &key);
    std::size_t const bytes = manager.historyBytes();
    for (int i = 0; i < 1000; ++i) drag(i, &key);
    EXPECT_EQ(manager.historyBytes(), bytes);
}

TEST_F(History, ForgetsTheOldestStepsBeyondItsLimits) {
    for (int i = 1; i <= 6; ++i) set(i, ("S" + std::to_string(i)).c_str());
    manager.setStepLimit(4);
    EXPECT_EQ(names(), "S3 S4 S5 S6 |");
    manager.undo();
    set(7, "S7");
    set(8, "S8");
    EXPECT_EQ(names(), "S4 S5 S7 S8 |");
    manager.setStepLimit(0);

    std::size_t const perStep = manager.historyBytes() / 4;
    manager.setByteLimit(perStep * 2);
    EXPECT_EQ(names(), "S7 S8 |");
    manager.setByteLimit(1);
    EXPECT_EQ(names(), "S8 |");
    manager.undo();
    EXPECT_EQ(node->value(), 7);
    EXPECT_FALSE(manager.undo());
}

TEST_F(History, CountsTheBytesOfObjectsThatOnlyItKeeps) {
    NodeReference big = ur::make<Node>(manager, "big");
    big->ownedBytes = 1000000;
    node->setNext(std::exchange(big, nullptr));
    set(1);
    EXPECT_LT(manager.historyBytes(), 1000u);
    manager.setByteLimit(500000);
    edit(manager, [&] { node->setNext(nullptr); });
    EXPECT_GT(manager.historyBytes(), 1000000u);
    EXPECT_EQ(manager.undoCount(), 1u);
    EXPECT_EQ(Node::alive, 2);
    set(2);
    EXPECT_EQ(Node::alive, 1);
    EXPECT_LT(manager.historyBytes(), 1000u);

    edit(manager, [&] {
        node->setNext(ur::make<Node>(manager, "big"));
        node->next()->ownedBytes = 1000000;
    });
    manager.undo();  // now it is the history that keeps it
    EXPECT_EQ(names(), "| edit");
}

#ifndef NDEBUG
TEST_F(History, SaysOncePerClassThatAChangeWasNotRecorded) {
    struct Quiet : Node {
        using Node::Node;
    };
    auto const quiet = ur::make<Quiet>(manager, "q");
    urOS::MemoryIOStream output;
    ASSERT_TRUE(output.open(urOS::openForWriting).ok());
    urOS::AppOutput::getInstance().open(output);
    quiet->setValue(1);
    quiet->setValue(2);
    manager.begin("view", TransactionKind::constant);
    quiet->setValue(3);
    quiet->setValue(4);
    manager.commit();
    ASSERT_TRUE(urOS::AppOutput::getInstance().open("-", false).ok());
    EXPECT_THAT(std::string(output.contents().view()),
                testing::MatchesRegex(".*Quiet changed outside a transaction: applied, not recorded\n"
                                      ".*Quiet changed in a constant transaction: applied, not recorded\n"));
}
#endif

}  // namespace
}  // namespace nxTXN::test
