// The two kinds of storage: twins, joins and the history.
#include <stdexcept>

#include "foundation/nxTXN/HookError.h"
#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {
namespace {

struct Storage : testing::Test {
    nxTXN::Manager manager;
    Recorder heard;

    PropertyReference txd(char const* name, Item value = nullptr) {
        auto property = value ? Property::createTxd(manager, name, value) : Property::createTxd(manager, name);
        heard.follow(property);
        return property;
    }
    PropertyReference untxd(char const* name, Item value = nullptr) {
        auto property = value ? Property::createUnTxd(name, value) : Property::createUnTxd(name);
        heard.follow(property);
        return property;
    }
    PropertyReference follow(PropertyReference property) {
        heard.follow(property);
        return property;
    }
    /// Whether a value set through one reaches the other.
    static bool share(PropertyReference const& a, PropertyReference const& b) {
        Item const item = number(99);
        a->setValue(item);
        return b->value() == item;
    }
};

TEST_F(Storage, ACloneOfTheOtherKindMirrorsAndFollowsTheHistory) {
    heard.values = true;
    auto const p = txd("p", number(1));
    auto const u = follow(p->cloneUnTxd("u"));
    EXPECT_EQ(u->value(), p->value());
    EXPECT_FALSE(u->isTransacted() || u->txnModifiedSignal());
    edit(manager, [&] { u->setValue(number(2)); });
    EXPECT_EQ(heard.take(), "p:start=1 p:perform=2 p:end=2");
    manager.undo();
    EXPECT_EQ(heard.take(), "u:start=2 u:perform=1 u:end=1 p:txn=1");
    EXPECT_EQ(numberOf(*p) * 10 + numberOf(*u), 11);
    manager.redo();
    EXPECT_EQ(heard.take(), "u:start=1 u:perform=2 u:end=2 p:txn=2");
    manager.begin();
    p->setValue(number(3));
    heard.clear();
    manager.abort();
    EXPECT_EQ(heard.take(), "u:start=3 u:perform=2 u:end=2 p:txn=2");
}

TEST_F(Storage, UntransactedMembersAreToldOneAfterTheOtherOnUndo) {
    auto const u = untxd("u", number(1));
    auto const v = follow(u->cloneUnTxd("v"));
    auto const p = follow(u->cloneTxd(manager, "p"));
    edit(manager, [&] { v->setValue(number(2)); });
    EXPECT_EQ(heard.take(), "p:start u:start p:perform u:perform p:end u:end");
    manager.undo();
    EXPECT_EQ(heard.take(), "u:start v:start u:perform u:end v:perform v:end p:txn");
}

TEST_F(Storage, AnUndoThatLeavesTheItemTellsNoUntransactedMember) {
    auto const p = txd("p", number(1));
    auto const u = follow(p->cloneUnTxd("u"));
    PropertyReference q;
    edit(manager, [&] { q = p->cloneTxd(manager, "q"); });
    manager.undo();
    EXPECT_EQ(heard.take(), "p:txn");
    manager.redo();
    EXPECT_EQ(heard.take(), "p:txn");
    EXPECT_TRUE(share(u, q));
}

TEST_F(Storage, ClonesWithoutAValueHaveNone) {
    for (auto const& property : {txd("p"), untxd("u")}) {
        EXPECT_EQ(property->cloneTxd(manager)->value(), nullptr);
        EXPECT_EQ(property->cloneUnTxd()->value(), nullptr);
        EXPECT_EQ(property->cloneUnTxd()->name(), property->name());
        EXPECT_EQ(property->cloneTxd(manager, "other")->name(), "other");
    }
    EXPECT_EQ(heard.take(), "");
}

TEST_F(Storage, JoiningAcrossTheKindsMakesTheMissingTwin) {
    auto const p = txd("p", number(1));
    auto const u = untxd("u", number(2));
    heard.values = true;
    u->join(p);
    EXPECT_EQ(heard.take(), "u:start=2 u:perform=1 u:end=1");
    EXPECT_TRUE(share(p, u) && share(u, p));

    auto const v = untxd("v", number(3));
    auto const q = txd("q", number(4));
    heard.clear();
    q->join(v);
    EXPECT_EQ(heard.take(), "q:start=4 q:perform=3 q:end=3");
    EXPECT_TRUE(share(v, q) && share(q, v));
}

TEST_F(Storage, AJoinMovesTheWholeSetAndAppendsItInOrder) {
    auto const a = txd("a", number(1));
    auto const b = follow(a->cloneUnTxd("b"));
    auto const c = follow(a->cloneTxd(manager, "c"));
    auto const d = txd("d", number(2));
    auto const e = follow(d->cloneUnTxd("e"));
    b->join(d);
    EXPECT_EQ(heard.take(), "a:start a:perform a:end c:start c:perform c:end b:start b:perform b:end");
    for (auto const& member : {a, b, c}) EXPECT_EQ(member->value(), d->value());
    auto const sender = follow(d->cloneUnTxd("s"));
    sender->setValue(number(3), ModifyPerform);
    EXPECT_EQ(heard.take(), "d:perform a:perform c:perform e:perform b:perform");
    c->join(e);
    EXPECT_EQ(heard.take(),
              "d:start d:perform d:end a:start a:perform a:end c:start c:perform c:end "
              "e:start e:perform e:end b:start b:perform b:end s:start s:perform s:end");
    EXPECT_EQ(numberOf(*c), 3);
    c->join(nullptr);
    EXPECT_EQ(heard.take(), "");
}

TEST_F(Storage, UndoTakesAJoinOfTransactedMembersBack) {
    auto const p = txd("p", number(1));
    auto const q = txd("q", number(2));
    edit(manager, [&] { p->join(q); });
    EXPECT_TRUE(p->value() == q->value());
    heard.clear();
    manager.undo();
    EXPECT_EQ(numberOf(*p) * 10 + numberOf(*q), 12);
    EXPECT_EQ(heard.take(), "q:txn p:txn p:txn");
    EXPECT_FALSE(share(p, q));
    manager.redo();
    EXPECT_TRUE(share(p, q) && share(q, p));
}

TEST_F(Storage, TheLinkEndsWithTheTransactedSide) {
    auto p = txd("p", number(1));
    auto const u = p->cloneUnTxd("u");
    edit(manager, [&] { p.reset(); });
    manager.clear();
    EXPECT_EQ(numberOf(*u), 1);
    edit(manager, [&] { u->setValue(number(2)); });
    EXPECT_FALSE(manager.canUndo());
}

TEST_F(Storage, TheLinkEndsWithTheUntransactedSide) {
    auto const p = txd("p", number(1));
    auto u = p->cloneUnTxd("u");
    edit(manager, [&] { p->setValue(number(2)); });
    u.reset();
    manager.undo();
    EXPECT_EQ(numberOf(*p), 1);
    u = follow(p->cloneUnTxd("u2"));
    EXPECT_TRUE(share(p, u));
}

TEST_F(Storage, TheLinkEndsWhenItsMakingIsUndoneAndRedoDoesNotBringItBack) {
    auto const p = txd("p", number(1));
    PropertyReference u;
    edit(manager, [&] { u = p->cloneUnTxd("u"); });
    edit(manager, [&] { p->setValue(number(2)); });
    manager.undo();
    manager.undo();
    EXPECT_FALSE(share(p, u) || share(u, p));
    manager.redo();
    EXPECT_FALSE(share(p, u) || share(u, p));
    u.reset();
    manager.redo();
    EXPECT_EQ(numberOf(*p), 2);
}

TEST_F(Storage, APropertyComesAndGoesWithTheStepThatMadeIt) {
    PropertyReference p;
    edit(manager, [&] { p = txd("p", number(1)); });
    auto const& transacted = dynamic_cast<TxdProperty const&>(*p);
    manager.undo();
    EXPECT_FALSE(transacted.isTxnExtant());
    EXPECT_EQ(p->value(), nullptr);
    auto const u = untxd("u", number(3));
    p->join(u);
    u->join(p);
    EXPECT_EQ(numberOf(*u), 3);
    EXPECT_TRUE(p->setValue(number(4)));
    manager.redo();
    EXPECT_TRUE(transacted.isTxnExtant());
    EXPECT_EQ(numberOf(*p), 1);
}

TEST_F(Storage, AMemberDroppedInAStepLeavesTheSetAndIsNotToldAgain) {
    auto const p = txd("p", number(1));
    auto q = follow(p->cloneTxd(manager, "q"));
    edit(manager, [&] { p->setValue(number(2)); });
    edit(manager, [&] { q.reset(); });
    manager.undo();
    heard.clear();
    p->setValue(number(3));
    EXPECT_EQ(heard.take(), "");
    manager.undo();
    EXPECT_EQ(heard.take(), "p:txn");
    manager.clear();
    EXPECT_EQ(dynamic_cast<TxdProperty const&>(*p).data()->members().size(), 1U);
}

TEST_F(Storage, UndoKeepsMembersThatCameUnrecordedAndDropsThoseThatLeftUnrecorded) {
    auto const p = txd("p", number(1));
    auto q = follow(p->cloneTxd(manager, "q"));
    auto const other = txd("o", number(7));
    edit(manager, [&] { p->setValue(number(2)); });
    dynamic_cast<TxdProperty&>(*q).attachData(dynamic_cast<TxdProperty&>(*other).data());
    auto const late = follow(p->cloneTxd(manager, "l"));
    manager.undo();
    heard.clear();
    p->setValue(number(3));
    EXPECT_EQ(heard.take(), "l:start l:perform l:end");
    other->setValue(number(8));
    EXPECT_EQ(heard.take(), "q:start q:perform q:end");
    manager.redo();
    q.reset();
    late->setValue(number(4));
    EXPECT_EQ(numberOf(*p), 4);
}

TEST_F(Storage, PropertiesSurviveTheirManagerAsEmptyShells) {
    auto own = std::make_unique<nxTXN::Manager>();
    auto const p = Property::createTxd(*own, "p", number(1));
    auto const u = p->cloneUnTxd("u");
    own.reset();
    EXPECT_EQ(p->value(), nullptr);
    EXPECT_TRUE(p->setValue(number(2)));
    EXPECT_EQ(p->cloneUnTxd(), nullptr);
    p->join(u);
    u->join(p);
    EXPECT_TRUE(u->setValue(number(3)));
    EXPECT_EQ(numberOf(*u), 3);
}

TEST_F(Storage, BothSidesAgreeWhateverListenersThrowDuringUndo) {
    auto const p = txd("p", number(1));
    auto const u = p->cloneUnTxd("u");
    auto const v = follow(u->cloneUnTxd("v"));
    edit(manager, [&] { p->setValue(number(2)); });
    heard.clear();
    auto const thrower = u->subscribe([](auto const&, PropertyModType) { throw std::runtime_error("listener"); });
    EXPECT_THROW(manager.undo(), nxTXN::HookError);
    EXPECT_EQ(heard.take(), "v:start v:perform v:end p:txn");
    EXPECT_EQ(numberOf(*p) * 10 + numberOf(*u), 11);
    EXPECT_TRUE(manager.canRedo());
}

TEST_F(Storage, ListenersOfAnUndoMayDropEverything) {
    auto p = txd("p", number(1));
    auto u = p->cloneUnTxd("u");
    edit(manager, [&] { p->setValue(number(2)); });
    urRTB::ScopedConnection const listener = u->subscribe([&](auto const&, PropertyModType) {
        u.reset();
        p.reset();
    });
    EXPECT_TRUE(manager.undo());
    EXPECT_TRUE(manager.redo());
}

TEST_F(Storage, ALargeSetIsBuiltToldMovedAndTornDown) {
    constexpr std::size_t count = 10000;
    int told = 0;
    auto const target = Property::createTxd(manager, "target", number(5));
    ur::vector<PropertyReference> members = {Property::createTxd(manager, "m", number(1))};
    ur::vector<urRTB::ScopedConnection> handles;
    edit(manager, [&] {
        while (members.size() < count) {
            members.push_back(members.size() % 2 == 0 ? members[0]->cloneTxd(manager) : members[0]->cloneUnTxd());
            handles.push_back(members.back()->subscribe([&told](auto const&, PropertyModType) { ++told; }));
        }
        members[0]->setValue(number(2));
        EXPECT_EQ(told, 3 * int(count - 1));
        members[0]->join(target);
    });
    EXPECT_EQ(numberOf(*members.back()), 5);
    handles.clear();
    while (members.size() > 5000) members.erase(members.begin(), members.begin() + 1000);
    EXPECT_TRUE(share(members.front(), members.back()));
    members.clear();
    manager.clear();
    EXPECT_EQ(dynamic_cast<TxdProperty const&>(*target).data()->members().size(), 1U);
}

}  // namespace
}  // namespace nxSupport::test
