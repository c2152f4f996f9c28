// Several histories: values of another manager, unrecorded changes among recorded ones, links during an undo.
#include <functional>
#include <memory>

#include "foundation/nxTXN/RefCountedObject.h"
#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {
namespace {

using nxTXN::Manager;

TxdProperty& txd(PropertyReference const& property) { return dynamic_cast<TxdProperty&>(*property); }

/// Checks that abort undoes a change of the property, and that undo undoes it as one step.
void expectRecorded(Manager& manager, PropertyReference const& property) {
    double const before = numberOf(*property);
    manager.begin("aborted");
    property->setValue(number(70));
    manager.abort();
    EXPECT_EQ(numberOf(*property), before);
    std::size_t const steps = manager.undoCount();
    edit(manager, [&] { property->setValue(number(71)); });
    EXPECT_EQ(manager.undoCount(), steps + 1);
    EXPECT_TRUE(manager.undo());
    EXPECT_EQ(numberOf(*property), before);
    EXPECT_TRUE(manager.redo());
    EXPECT_EQ(numberOf(*property), 71);
}

TEST(Crossing, APropertyOutlivesTheManagerOfTheValueThatItShares) {
    for (bool const undoneBefore : {false, true}) {
        SCOPED_TRACE(undoneBefore);
        auto first = std::make_unique<Manager>();
        auto second = std::make_unique<Manager>();
        auto const t = Property::createTxd(*first, "t", number(1));
        auto const c = t->cloneTxd(*second, "c");
        auto const o = Property::createTxd(*second, "o", number(2));
        edit(*second, [&] { c->join(o); });
        EXPECT_EQ(undoneBefore && second->undo(), undoneBefore);
        first.reset();
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(second->redo(), undoneBefore || i > 0);
            EXPECT_EQ(numberOf(*c), 2);
            EXPECT_TRUE(second->undo());
            EXPECT_EQ(numberOf(*c), undoneBefore ? 1 : -1);  // only its own manager's record keeps a value
        }
        EXPECT_FALSE(t->value());
        PropertyReference const late = t->cloneTxd(*second, "late");
        EXPECT_FALSE(late && late->value());
        c->setValue(number(3));
        EXPECT_EQ(numberOf(*c), 3);
        EXPECT_EQ(numberOf(*o), 2);
        expectRecorded(*second, c);
        c->join(o);
        EXPECT_EQ(numberOf(*c), 2);
        second.reset();
        EXPECT_FALSE(c->value());
    }
}

TEST(Crossing, ACommitThatChangedNothingIsNoStep) {
    Manager manager;
    auto const t = Property::createTxd(manager, "t", number(1));
    edit(manager, [&] { t->setValue(number(2)); });
    manager.begin("failed");
    auto clone = t->cloneTxd(manager, "c");
    manager.abort();
    manager.undo();
    std::pair<char const*, std::function<void()>> const changes[] = {
        {"drop a clone whose making was aborted", [&] { clone.reset(); }},
        {"make a clone and drop it", [&] { PropertyReference const passing = t->cloneTxd(manager, "passing"); }},
        {"record", [&] { txd(t).transact(); }},
    };
    for (auto const& [what, change] : changes) {
        SCOPED_TRACE(what);
        edit(manager, change);
        EXPECT_EQ(manager.undoCount(), 0U);
        EXPECT_TRUE(manager.redo());
        EXPECT_EQ(numberOf(*t), 2);
        EXPECT_TRUE(manager.undo());
        EXPECT_EQ(numberOf(*t), 1);
    }
    EXPECT_EQ(txd(t).data()->members().size(), 1U);
}

TEST(Crossing, AChangeCostsTheBytesThatThePageTells) {
    Manager manager;
    auto const p = Property::createTxd(manager, "p", number(1));
    for (int i = 1; i <= 3; ++i) {
        edit(manager, [&] { p->setValue(number(i)); });
        EXPECT_EQ(manager.historyBytes(), 120U * i);
    }
}

/// Runs an action while fields are being restored.
struct Watcher : nxTXN::RefCountedObject {
    using RefCountedObject::RefCountedObject;
    std::function<void()> action;
    void onTxnRestored() override {
        if (action) action();
    }
};

TEST(Crossing, ALinkEndsAsSoonAsOneOfItsEndsDoes) {
    for (bool const relinked : {false, true}) {
        SCOPED_TRACE(relinked);
        Manager manager;
        auto const t = Property::createTxd(manager, "t", number(1));
        auto const watcher = ur::make<Watcher>(manager);
        PropertyReference u, other;
        edit(manager, [&] {
            watcher->transact();
            u = t->cloneUnTxd("u");
            t->setValue(number(2));
        });
        watcher->action = [&] {  // runs once the link is undone
            EXPECT_EQ(numberOf(*t), 1);
            if (relinked) other = u->cloneTxd(manager, "other");
            u->setValue(number(5));
        };
        EXPECT_TRUE(manager.undo());
        watcher->action = nullptr;
        EXPECT_EQ(numberOf(*t), 1);
        EXPECT_EQ(numberOf(*u), 5);
        if (relinked) {
            expectRecorded(manager, other);
            EXPECT_EQ(numberOf(*u), 71);
            continue;
        }
        EXPECT_TRUE(manager.redo());
        EXPECT_EQ(numberOf(*t), 2);
        EXPECT_EQ(numberOf(*u), 5);
    }
}

TEST(Crossing, AMemberThatCameUnrecordedKeepsItsValueWhenTheMakingOfTheOthersIsUndone) {
    for (bool const aborted : {false, true}) {
        for (std::string const how : {"join", "clone", "join with a handle", "clone of another manager"}) {
            SCOPED_TRACE(how + (aborted ? ", aborted" : ""));
            Manager manager;
            Manager second;
            auto p = Property::createTxd(manager, "p", number(1));
            PropertyReference u;
            if (how == "join with a handle") u = p->cloneUnTxd("u");
            manager.begin("make");
            auto const o = Property::createTxd(manager, "o", number(2));
            manager.begin("unrecorded", nxTXN::TransactionKind::none);
            if (how == "clone") p = o->cloneTxd(manager, "p");
            if (how == "clone of another manager") p = o->cloneTxd(second, "p");
            if (how.starts_with("join")) p->join(o);
            auto const q = p->cloneTxd(manager, "q");
            manager.commit();
            aborted ? manager.abort() : manager.commit();
            EXPECT_EQ(manager.undo(), !aborted);
            EXPECT_EQ(numberOf(*p), 2);
            Manager& owner = *txd(p).data()->txnManager();
            expectRecorded(owner, p);
            EXPECT_EQ(numberOf(*q), 71);
            EXPECT_TRUE(!u || numberOf(*u) == 71);
            EXPECT_TRUE(owner.undo());
            if (aborted) continue;
            while (manager.undo()) {
            }
            o->setValue(number(9));
            EXPECT_EQ(numberOf(*p), 2);
        }
    }
}

TEST(Crossing, APropertyThatIsNotPartOfThePresentMakesNoStepsAndItsClonesStandAlone) {
    Manager manager;
    PropertyReference made;
    edit(manager, [&] { made = Property::createTxd(manager, "made", number(1)); });
    manager.undo();
    edit(manager, [&] { made->setValue(number(4)); });
    EXPECT_FALSE(manager.canUndo());
    auto const u = made->cloneUnTxd("u");
    edit(manager, [&] { u->setValue(number(6)); });
    EXPECT_FALSE(manager.canUndo());
    auto const c = made->cloneTxd(manager, "c");
    EXPECT_TRUE(manager.redo());
    EXPECT_EQ(numberOf(*made), 1);
    c->setValue(number(5));
    EXPECT_EQ(numberOf(*made), 1);
    expectRecorded(manager, c);
}

TEST(Crossing, OnlyAValueThatChangesOutsideATransactionIsRefused) {
    nxTXN::Manager manager;
    manager.setUnrecordedChange(nxTXN::UnrecordedChange::refuse);
    auto const p = Property::createTxd(manager, "p", number(1));
    auto const q = p->cloneUnTxd("q"), r = q->cloneTxd(manager, "r");
    p->cloneTxd(manager).reset();
    for (auto const& member : {p, q, r}) EXPECT_THROW(member->setValue(number(2)), std::logic_error);
    EXPECT_EQ(numberOf(*p), 1);
    edit(manager, [&] { q->setValue(number(3)); });
    EXPECT_TRUE(manager.undo());
    EXPECT_EQ(numberOf(*r), 1);
}

}  // namespace
}  // namespace nxSupport::test
