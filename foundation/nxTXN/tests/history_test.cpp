// Tests making, undoing, redoing and forgetting steps.
#include <stdexcept>

#include "foundation/nxTXN/HookError.h"
#include "foundation/nxTXN/Transaction.h"
#include "foundation/nxTXN/debugChannel.h"
#include "foundation/nxTXN/impl/Sizes.h"
#include "foundation/nxTXN/tests/Node.h"
#include "foundation/urOS/AppOutput.h"
#include "foundation/urOS/MemoryIOStream.h"

namespace nxTXN::test {
namespace {

struct History : testing::Test {
    Manager manager;
    NodeReference node = ur::make<Node>(manager, "n");

    ~History() override {
        manager.clear();
        EXPECT_EQ(manager.historyBytes(), 0U);
    }

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
    EXPECT_FALSE(manager.commit() || manager.abort());
    set(1, "Move");
    set(2, "Paint");
    EXPECT_EQ(names(), "Move Paint |");
    EXPECT_TRUE(manager.undo());
    EXPECT_EQ(names(), "Move | Paint");
    EXPECT_EQ(node->value(), 1);
    edit(manager, [&] { ur::make<Node>(manager, "temporary")->setValue(1); });
    EXPECT_EQ(names(), "Move | Paint");  // nothing changed
    EXPECT_TRUE(manager.undo() && manager.redo());
    set(7, "Scale");
    EXPECT_EQ(names(), "Move Scale |");
    EXPECT_EQ(changes, 6);
    NodeReference older;
    edit(manager, [&] { older = ur::make<Node>(manager, "older"); });
    set(8);
    manager.undo();
    edit(manager, [&] {
        older->setValue(1);
        older.reset();
    });
    EXPECT_EQ(names(), "Move Scale edit edit |") << "what goes was changed before";
    EXPECT_TRUE(manager.clear());
    EXPECT_EQ(names(), "|");
    EXPECT_EQ(node->value(), 7);
}

TEST_F(History, AbortRestoresExactlyAndKeepsWhatCouldBeRedone) {
    set(1);
    manager.undo();
    NodeReference made;
    {
        Transaction const transaction(manager, "Failed");
        EXPECT_FALSE(manager.canUndo() || manager.undo() || manager.redo() || manager.clear());
        made = ur::make<Node>(manager, "made");
        node->setValue(9);
        node->setNext(made);
    }
    EXPECT_EQ(node->value(), 0);
    EXPECT_FALSE(node->next() || made->isTxnExtant());
    auto const fail = [&] {
        node->setValue(9);
        throw std::runtime_error("fails");
    };
    EXPECT_THROW(nxTXN::edit(manager, "Failed", fail), std::runtime_error);
    EXPECT_EQ(node->value(), 0);
    EXPECT_TRUE(manager.redo());
    EXPECT_EQ(node->value(), 1);

    manager.begin("Outer");
    manager.begin("Inner");
    made = ur::make<Node>(manager, "made");
    manager.abort();
    EXPECT_EQ(manager.depth(), 1u);
    node->setValue(5);
    manager.commit();
    EXPECT_EQ(names(), "Set Outer |");
    manager.undo();
    manager.redo();
    EXPECT_FALSE(made->isTxnExtant());
}

TEST_F(History, RecordsOnlyRecordedTransactions) {
    NodeReference const view = ur::make<Node>(manager, "view");
    std::pair<TransactionKind, double> const cases[] = {
        {TransactionKind::transient, 1}, {TransactionKind::none, 5}, {TransactionKind::constant, 5}};
    for (auto const& [kind, afterAbort] : cases) {
        SCOPED_TRACE(static_cast<int>(kind));
        manager.clear();
        NodeReference older;
        edit(manager, [&] { older = ur::make<Node>(manager, "older"); });
        set(1);
        manager.begin("unrecorded", kind);
        NodeReference const unrecorded = ur::make<Node>(manager, "unrecorded");
        node->setValue(4);
        edit(manager, [&] { node->setValue(5); });
        EXPECT_TRUE(manager.commit());
        EXPECT_EQ(node->value(), 5);
        EXPECT_EQ(names(), "edit Set |");
        set(1);
        manager.begin("unrecorded", kind);
        node->setValue(5);
        manager.abort();
        EXPECT_EQ(node->value(), afterAbort);

        manager.begin("Outer");
        manager.begin("Inner", kind);
        view->setValue(1);
        node->setValue(6);
        NodeReference const made = ur::make<Node>(manager, "made");
        NodeReference const madeNext = ur::make<Node>(manager, "next");
        manager.commit();
        node->setValue(7);
        manager.commit();
        manager.undo();
        EXPECT_EQ(view->value() * 10 + node->value(), 16);
        while (manager.undo()) {
        }
        EXPECT_TRUE(made->isTxnExtant() && madeNext->isTxnExtant() && unrecorded->isTxnExtant());
        EXPECT_FALSE(older->isTxnExtant());
        view->setValue(0);
    }
}

TEST_F(History, CoalescesADragIntoOneStepOfTheBytesOfOne) {
    int const firstKey = 0;
    int const secondKey = 0;
    set(1);
    drag(2, &firstKey);
    std::size_t const bytes = manager.historyBytes();
    for (int i = 3; i <= 50; ++i) drag(i, &firstKey);
    EXPECT_EQ(manager.historyBytes(), bytes);
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
    manager.redo();
    EXPECT_EQ(node->value(), 50);
    drag(90, &firstKey);
    manager.clear();
    drag(1, &firstKey);
    EXPECT_EQ(names(), "Drag |");
    manager.beginCoalescing("Drag", &firstKey);
    NodeReference const made = ur::make<Node>(manager, "made");
    node->setList({made.get(), made.get(), made.get()});
    manager.commit();
    EXPECT_EQ(names(), "Drag |");
    for (int i = 0; i < 2; ++i) {
        manager.undo();
        EXPECT_FALSE(made->isTxnExtant());
        EXPECT_TRUE(node->list().empty());
        manager.redo();
        EXPECT_TRUE(made->isTxnExtant());
        EXPECT_EQ(node->list().size(), 3U);
    }
}

TEST_F(History, RecordsAnObjectOnceForATransactionWhateverItsInnerOnesBecome) {
    auto const bytesOfStep = [this](auto const& inner) {
        edit(manager, [&] {
            node->setValue(1);
            inner();
            node->setValue(2);
        });
        std::size_t const bytes = manager.historyBytes();
        manager.undo();
        EXPECT_EQ(node->value(), 0);
        manager.clear();
        return bytes;
    };
    std::size_t const once = bytesOfStep([] {});
    for (TransactionKind const kind : {TransactionKind::recorded, TransactionKind::transient, TransactionKind::none}) {
        for (bool const aborts : {false, true}) {
            EXPECT_EQ(bytesOfStep([&] {
                          manager.begin("inner", kind);
                          node->setValue(3);
                          aborts ? manager.abort() : manager.commit();
                      }),
                      once);
        }
    }
}

TEST_F(History, ForgetsTheOldestStepsBeyondItsLimits) {
    for (int i = 1; i <= 6; ++i) set(i, ("S" + std::to_string(i)).c_str());
    int changes = 0;
    auto const counting = manager.changedSignal().addCallback([&] { ++changes; });
    manager.setStepLimit(4);
    EXPECT_EQ(names(), "S3 S4 S5 S6 |");
    manager.setStepLimit(4);
    EXPECT_EQ(changes, 1);
    manager.undo();
    set(7, "S7");
    set(8, "S8");
    EXPECT_EQ(names(), "S4 S5 S7 S8 |");
    manager.setStepLimit(0);
    manager.setByteLimit(manager.historyBytes() / 2);
    EXPECT_EQ(names(), "S7 S8 |");
    manager.setByteLimit(1);
    EXPECT_EQ(names(), "S8 |");
    EXPECT_TRUE(manager.undo() && !manager.undo());
    EXPECT_EQ(node->value(), 7);

    manager.setByteLimit(0);
    manager.setStepLimit(150);  // in more than one block
    for (int i = 1; i <= 1000; ++i) set(i);
    EXPECT_EQ(manager.undoCount(), 150u);
    for (int i = 999; i >= 850; --i) {
        ASSERT_TRUE(manager.undo());
        ASSERT_EQ(node->value(), i);
    }
    EXPECT_FALSE(manager.canUndo());
}

TEST_F(History, CountsTheBytesOfObjectsThatOnlyItKeeps) {
    auto const addBig = [&] {
        node->setNext(ur::make<Node>(manager, "big"));
        node->next()->ownedBytes = 1000000;
    };
    addBig();
    set(1);
    EXPECT_LT(manager.historyBytes(), 1000u);
    {
        std::size_t const before = manager.historyBytes();
        auto const passing = ur::make<Node>(manager, "passing");
        manager.begin();
        passing->setValue(1);
        manager.abort();
        EXPECT_EQ(manager.historyBytes(), before);
    }
    EXPECT_LT(manager.historyBytes(), 1000u);
    manager.setByteLimit(500000);
    edit(manager, [&] { node->setNext(nullptr); });
    EXPECT_GT(manager.historyBytes(), 1000000u);
    EXPECT_EQ(manager.undoCount(), 1u);
    set(2);
    EXPECT_EQ(Node::alive, 1);
    EXPECT_LT(manager.historyBytes(), 1000u);
    edit(manager, addBig);
    manager.undo();  // now only the history keeps it
    EXPECT_EQ(names(), "| edit");
}

TEST(HistorySizes, RefuseFieldsThatAreTooLargeAndKeepForGoodWhatTooManyRecordsNeed) {
    {
        Manager manager(impl::Sizes{.mostPins = 2});
        auto const root = ur::make<Node>(manager, "root");
        root->setNext(ur::make<Node>(manager, "needed"));
        for (int i = 1; i <= 4; ++i) edit(manager, [&] { root->setValue(i); });
        root->setNext(nullptr);
        manager.clear();
        EXPECT_EQ(Node::alive, 2);
    }
    EXPECT_EQ(Node::alive, 0);

    Manager manager(impl::Sizes{.mostRecordBytes = 48});  // enough for a list of three
    auto const node = ur::make<Node>(manager, "n");
    for (unsigned count : {3U, 4U}) edit(manager, [&] { node->setList(ur::vector<Node*>(count, node.get())); });
    manager.begin();
    EXPECT_THROW(node->setValue(1), std::length_error);
    EXPECT_EQ(node->value(), 0);
    manager.commit();
    EXPECT_THROW(manager.undo(), HookError);
    EXPECT_EQ(node->list().size(), 4U);
    node->setList({});
    EXPECT_TRUE(manager.undo());
    EXPECT_EQ(node->list().size(), 3U);
}

TEST_F(History, ComesBackToItsCleanStateAsLongAsItCan) {
    EXPECT_TRUE(manager.isClean());
    set(1);
    EXPECT_FALSE(manager.isClean());
    manager.setClean();
    EXPECT_TRUE(manager.undo() && !manager.isClean() && manager.redo() && manager.isClean());
    set(2);
    manager.undo();
    EXPECT_TRUE(manager.isClean()) << "past it and back";
    manager.undo();
    set(3);
    EXPECT_FALSE(manager.isClean()) << "another step in its place";
    EXPECT_TRUE(manager.undo() && !manager.isClean());

    drag(4, this);
    manager.setClean();
    drag(5, this);  // no part of the step that was saved
    EXPECT_FALSE(manager.isClean());
    EXPECT_TRUE(manager.undo() && manager.isClean());
    manager.redo();
    manager.setStepLimit(1);
    EXPECT_TRUE(manager.undo() && manager.isClean()) << "the oldest state that is left";
    manager.redo();
    set(6);
    EXPECT_TRUE(manager.undo() && !manager.isClean()) << "forgotten with the limit";
    manager.setClean();
    EXPECT_TRUE(manager.clear() && manager.isClean());
}

TEST_F(History, AppliesReportsOrRefusesWhatNoTransactionRecords) {
    struct Quiet : Node {
        using Node::Node;
        urString::CString onTxnName() const override { return name; }
        urString::CString name = "lamp";
    };
    struct Nameless : Node {
        using Node::Node;
    };
    auto const quiet = ur::make<Quiet>(manager, "q");
    auto const changeEverywhere = [&](int from) {
        for (int i = 0; i < 3; ++i) quiet->setValue(from + i);
        manager.begin("view", TransactionKind::constant);
        for (int i = 3; i < 6; ++i) quiet->setValue(from + i);
        manager.commit();
        EXPECT_EQ(quiet->value(), from + 5);
    };
    urOS::MemoryIOStream output;
    ASSERT_TRUE(output.open(urOS::openForWriting).ok());
    urOS::AppOutput::getInstance().open(output);
    changeEverywhere(10);  // while the channel is disabled
    debugChannel().enable();
    manager.setUnrecordedChange(UnrecordedChange::apply);
    changeEverywhere(20);
    EXPECT_EQ(output.contents().size(), 0U);
    manager.setUnrecordedChange(UnrecordedChange::report);
    changeEverywhere(30);
    quiet->name = "another";
    quiet->setValue(35);
    ur::make<Nameless>(manager, "n")->setValue(1);
    ASSERT_TRUE(urOS::AppOutput::getInstance().open("-", false).ok());
    debugChannel().disable();
    EXPECT_THAT(std::string(output.contents().view()),
                testing::MatchesRegex("[^\n]*Quiet \"lamp\" changed outside a transaction: applied, not recorded\n"
                                      "[^\n]*Nameless changed outside a transaction: applied, not recorded\n"));

    manager.setUnrecordedChange(UnrecordedChange::refuse);
    EXPECT_THAT(
        [&] { quiet->setValue(40); },
        testing::ThrowsMessage<std::logic_error>(testing::EndsWith("Quiet \"another\" changed outside a transaction")));
    edit(manager, [&] { quiet->setValue(41); });
    manager.begin("view", TransactionKind::constant);
    EXPECT_THROW(quiet->setValue(42), std::logic_error);
    manager.commit();
    EXPECT_EQ(quiet->value(), 41);
    manager.begin("set up", TransactionKind::none);
    quiet->setValue(43);
    manager.commit();
    EXPECT_TRUE(manager.undo());
    EXPECT_EQ(quiet->value(), 35);
    manager.clear();
    manager.changedSignal().addCallback([] { FAIL() << "there was nothing to forget"; });
    manager.clear();
}

}  // namespace
}  // namespace nxTXN::test
