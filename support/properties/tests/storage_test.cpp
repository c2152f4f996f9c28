// What the model of the history leaves out: links that end, properties that are destroyed, listeners that throw,
// unrecorded changes.
#include <memory>
#include <stdexcept>
#include <vector>

#include "foundation/nxTXN/HookError.h"
#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {
namespace {

struct Storage : testing::Test {
    nxTXN::Manager manager;
    Recorder events;
    PropertyReference p = follow(Property::createTxd(manager, "p", number(1)));

    PropertyReference follow(PropertyReference property) {
        events.follow(property);
        return property;
    }
    void set(PropertyReference const& property, double value) {
        edit(manager, [&] { property->setValue(number(value)); });
    }
    static TxdProperty& txd(PropertyReference const& property) { return dynamic_cast<TxdProperty&>(*property); }
    /// Whether a value set through one can be read from the other.
    static bool share(PropertyReference const& a, PropertyReference const& b) {
        Item const item = number(99);
        a->setValue(item);
        return b->value() == item;
    }
};

TEST_F(Storage, TheLinkEndsWithEitherSide) {
    auto u = p->cloneUnTxd("u");
    set(p, 2);
    u.reset();
    manager.undo();
    EXPECT_EQ(numberOf(*p), 1);
    u = p->cloneUnTxd("u2");
    EXPECT_TRUE(share(p, u));
    edit(manager, [&] { p.reset(); });
    manager.clear();
    set(u, 2);
    EXPECT_FALSE(manager.canUndo());
}

TEST_F(Storage, APropertyComesAndGoesWithTheStepThatMadeIt) {
    PropertyReference made;
    edit(manager, [&] { made = Property::createTxd(manager, "made", number(1)); });
    manager.undo();
    EXPECT_FALSE(txd(made).isTxnExtant() || made->value());
    auto const u = Property::createUnTxd("u", number(3));
    made->join(u);
    u->join(made);
    EXPECT_EQ(numberOf(*u), 3);
    EXPECT_TRUE(made->setValue(number(4)));
    manager.redo();
    EXPECT_TRUE(txd(made).isTxnExtant());
    EXPECT_EQ(numberOf(*made), 1);
    made->join(p);
    events.follow(made);
    manager.undo();
    p->setValue(number(5));
    EXPECT_EQ(events.take(), "");
}

TEST_F(Storage, AMemberDroppedInAStepLeavesTheSetAndIsNotToldAgain) {
    auto q = follow(p->cloneTxd(manager, "q"));
    set(p, 2);
    edit(manager, [&] { q.reset(); });
    manager.undo();
    events.take();
    p->setValue(number(3));
    manager.undo();
    EXPECT_EQ(events.take(), "p:txn");
    manager.clear();
    EXPECT_EQ(txd(p).data()->members().size(), 1U);
}

TEST_F(Storage, UndoKeepsMembersThatCameUnrecordedAndDropsThoseThatLeftUnrecorded) {
    auto q = follow(p->cloneTxd(manager, "q"));
    auto const other = Property::createTxd(manager, "o", number(7));
    set(p, 2);
    txd(q).attachData(txd(other).data());
    auto const late = follow(p->cloneTxd(manager, "l"));
    manager.undo();
    events.take();
    p->setValue(number(3));
    EXPECT_EQ(events.take(), "l:start l:perform l:end");
    other->setValue(number(8));
    EXPECT_EQ(events.take(), "q:start q:perform q:end");
    manager.redo();
    q.reset();
    EXPECT_TRUE(share(late, p));
}

/// The part of a member that a list of members needs.
struct Member {
    ur::Reference<MemberEntry<Member>> const entry_ = ur::make<MemberEntry<Member>>(*this);
};

TEST(MemberList, KeepsSlotsUntilMoreThanHalfOfThemAreEmpty) {
    std::vector<Member> all(100);
    MemberList<Member> list;
    auto const remove = [&](int from, int to) {
        for (int i = from; i < to; ++i) list.remove(all[static_cast<std::size_t>(i)]);
    };
    for (int round = 0; round < 3; ++round) {
        for (Member& member : all) list.add(member);
        remove(0, 20);
        remove(70, 100);
        EXPECT_EQ(list.slotCount(), 70U);
        EXPECT_EQ(list.at(60), &all[60]);
        remove(20, 35);
        EXPECT_EQ(list.at(60), &all[60]);
        remove(35, 36);
        EXPECT_EQ(list.slotCount(), 34U);
        EXPECT_EQ(list.at(0), &all[36]);
        remove(36, 40);
        EXPECT_EQ(list.at(24), &all[60]);
        list.beginWalk();
        remove(40, 69);
        EXPECT_EQ(list.at(33), &all[69]);
        list.endWalk();
        EXPECT_EQ(list.slotCount(), 1U);
        EXPECT_EQ(list.at(0), &all[69]);
        EXPECT_TRUE(list.contains(all[69]));
        round == 1 ? list.clear() : remove(69, 70);
        EXPECT_EQ(list.slotCount() + list.size(), 0U);
    }
}

TEST_F(Storage, PropertiesSurviveTheirManagerAsEmptyShells) {
    auto own = std::make_unique<nxTXN::Manager>();
    auto const shell = Property::createTxd(*own, "shell", number(1));
    auto const u = shell->cloneUnTxd("u");
    auto const data = txd(shell).data();
    auto const listener = shell->subscribe([&own](auto const&, PropertyModType) { own.reset(); });
    shell->join(Property::createUnTxd("other"));
    EXPECT_TRUE(shell->setValue(number(2)));
    EXPECT_FALSE(shell->value() || shell->cloneUnTxd());
    shell->join(u);
    u->join(shell);
    u->join(nullptr);
    EXPECT_TRUE(u->setValue(number(3)));
    EXPECT_EQ(numberOf(*u), 3);
    data->setTwin(*dynamic_cast<UnTxdProperty&>(*u).data());
    EXPECT_FALSE(data->untxdTwin());
}

TEST_F(Storage, BothSidesAgreeWhateverListenersThrowOrDropDuringUndo) {
    auto u = p->cloneUnTxd("u");
    auto const v = follow(u->cloneUnTxd("v"));
    set(p, 2);
    events.take();
    auto listener = u->subscribe([](auto const&, PropertyModType) { throw std::runtime_error("listener"); });
    EXPECT_THROW(manager.undo(), nxTXN::HookError);
    EXPECT_EQ(events.take(), "v:start v:perform v:end p:txn");
    EXPECT_EQ(numberOf(*p) * 10 + numberOf(*u), 11);
    listener = u->subscribe([&](auto const&, PropertyModType) {
        u.reset();
        p.reset();
    });
    EXPECT_TRUE(manager.redo());
    EXPECT_EQ(numberOf(*v), 2);
}

}  // namespace
}  // namespace nxSupport::test
