// Tests undo, signals and costs of object lists.
#include <deque>
#include <random>
#include <stdexcept>

#include "foundation/nxTXN/HookError.h"
#include "foundation/nxTXN/ImmutableReference.h"
#include "foundation/nxTXN/ObjectList.h"
#include "foundation/nxTXN/tests/Node.h"

namespace nxTXN::test {
namespace {

using Nodes = std::vector<Node*>;

Nodes contents(ObjectList<Node> const& list) {
    Nodes nodes;
    for (Node& node : list) nodes.push_back(&node);
    return nodes;
}

/// Applies the signals, as the view of a list would.
class Mirror {
public:
    explicit Mirror(ObjectList<Node>& list) {
        list.insertedSignal().addCallback(
            client_, [this](std::size_t index, Node& node) { nodes.insert(nodes.begin() + long(index), &node); });
        list.erasedSignal().addCallback(client_, [this](std::size_t index, Node& node) {
            EXPECT_EQ(nodes.at(index), &node);
            nodes.erase(nodes.begin() + long(index));
        });
        list.movedSignal().addCallback(client_, [this](std::size_t from, std::size_t to, Node& node) {
            EXPECT_EQ(nodes.at(from), &node);
            nodes.erase(nodes.begin() + long(from));
            nodes.insert(nodes.begin() + long(to), &node);
        });
    }
    Nodes nodes;

private:
    urRTB::SignalClient client_;
};

/// Compares random changes and transactions with a vector for each state that can be restored.
class ListPlay {
public:
    explicit ListPlay(unsigned seed) : random_(seed) {
        for (int i = 0; i < 6; ++i) pool_.push_back(ur::make<Node>(manager_, "node"));
    }

    void step() {
        switch (pick(14)) {
            case 0: return begin();
            case 1: return commit();
            case 2: return pick(2) == 0 ? abort() : limit();
            case 3: return turn(&Manager::undo, past_, future_, &Step::before);
            case 4: return turn(&Manager::redo, future_, past_, &Step::after);
            case 5:
            case 6: return erase(pick(14));
            case 7: return move(pick(14), pick(14));
            default: return insert(pick(14));
        }
    }
    void finish() {
        while (manager_.depth() > 0) abort();
        while (manager_.canUndo()) turn(&Manager::undo, past_, future_, &Step::before);
        while (manager_.canRedo()) turn(&Manager::redo, future_, past_, &Step::after);
        manager_.clear();
        EXPECT_EQ(manager_.historyBytes(), 0U);
        pool_.clear();
        manager_.begin({}, TransactionKind::none);
        list_.clear();
        manager_.commit();
        EXPECT_EQ(Node::alive, 0);
    }
    [[nodiscard]] std::size_t longest() const { return longest_; }

private:
    struct Step {
        Nodes before;
        Nodes after;
    };
    std::size_t pick(std::size_t below) { return random_() % below; }
    void check() {
        ASSERT_EQ(contents(list_), model_);
        ASSERT_EQ(mirror_.nodes, model_);
        ASSERT_EQ(list_.size(), model_.size());
        if (!model_.empty()) {
            std::size_t const index = pick(model_.size());
            ASSERT_EQ(list_.at(index), model_[index]);
        }
        longest_ = std::max(longest_, model_.size());
    }
    void begin() {
        if (levels_.size() == 3) return;
        bool const isTransient = levels_.empty() && pick(4) == 0;
        manager_.begin("edit", isTransient ? TransactionKind::transient : TransactionKind::recorded);
        levels_.push_back(model_);
    }
    void commit() {
        if (levels_.empty()) return;
        std::size_t const steps = manager_.undoCount();
        manager_.commit();
        Nodes const before = levels_.back();
        levels_.pop_back();
        if (!levels_.empty() || manager_.undoCount() == steps) return;
        past_.push_back({before, model_});
        future_.clear();
    }
    void abort() {
        if (levels_.empty()) return;
        manager_.abort();
        model_ = levels_.back();
        levels_.pop_back();
        check();
    }
    void limit() {
        if (!levels_.empty()) return;
        manager_.setStepLimit(4);
        manager_.setStepLimit(0);
        while (past_.size() > manager_.undoCount()) past_.pop_front();
        while (future_.size() > manager_.redoCount()) future_.pop_front();
    }
    // Transient changes made since the step are restored with it.
    void turn(bool (Manager::*way)(), std::deque<Step>& from, std::deque<Step>& to, Nodes Step::*result) {
        if (!(manager_.*way)()) return;
        ASSERT_FALSE(from.empty());
        std::swap(model_, from.back().*result);
        from.back().*(result == &Step::before ? &Step::after : &Step::before) = from.back().*result;
        to.push_back(from.back());
        from.pop_back();
        check();
    }
    // Changes belong to recorded transactions: undo would lose changes made outside.
    template <class Change>
    void change(Change change) {
        if (levels_.empty()) begin();
        change();
        check();
    }
    void insert(std::size_t index) {
        change([&] {
            auto const node = pick(3) > 0 ? pool_[pick(pool_.size())] : ur::make<Node>(manager_, "new");
            ASSERT_EQ(list_.insert(index, node), index <= model_.size());
            if (index <= model_.size()) model_.insert(model_.begin() + long(index), node.get());
        });
    }
    void erase(std::size_t index) {
        change([&] {
            ASSERT_EQ(list_.erase(index), index < model_.size());
            if (index < model_.size()) model_.erase(model_.begin() + long(index));
        });
    }
    void move(std::size_t from, std::size_t to) {
        change([&] {
            bool const both = from < model_.size() && to < model_.size();
            ASSERT_EQ(list_.move(from, to), both);
            if (!both) return;
            Node* const node = model_[from];
            model_.erase(model_.begin() + long(from));
            model_.insert(model_.begin() + long(to), node);
        });
    }

    std::mt19937 random_;
    Manager manager_;
    std::vector<NodeReference> pool_;
    ObjectList<Node> list_{manager_, 4};
    Mirror mirror_{list_};
    Nodes model_;
    std::vector<Nodes> levels_;
    std::deque<Step> past_, future_;
    std::size_t longest_ = 0;
};

TEST(ObjectLists, AreBroughtBackByUndoRedoAndAbort) {
    std::size_t longest = 0;
    for (unsigned seed = 0; seed < 60 && !testing::Test::HasFailure(); ++seed) {
        ListPlay play(seed);
        for (int i = 0; i < 400 && !testing::Test::HasFailure(); ++i) play.step();
        play.finish();
        longest = std::max(longest, play.longest());
    }
    EXPECT_GT(longest, 16U) << "several pieces";
}

struct ObjectListUse : testing::Test {
    Log log;
    Manager manager;
    ObjectList<Node> list{manager};
    urRTB::SignalClient client;
    NodeReference node(char const* name) { return ur::make<Node>(manager, name, &log); }
};

TEST_F(ObjectListUse, TakeObjectsOfTheirManagerAlone) {
    Manager other;
    EXPECT_FALSE(list.append(nullptr));
    EXPECT_FALSE(list.append(ur::make<Node>(other, "foreign")));
    EXPECT_FALSE(list.insert(1, node("beyond")));
    EXPECT_FALSE(list.erase(0));
    EXPECT_EQ(list.at(0), nullptr);
    auto const a = node("a");
    list.append(a), list.append(node("b")), list.append(a);
    EXPECT_EQ(list.indexOf(*a), 0U);
    EXPECT_EQ(list.indexOf(list[1]), 1U);
    EXPECT_EQ(list.indexOf(*node("c")), std::nullopt);
}

TEST_F(ObjectListUse, SendNoSignalsWhenTheirMakingIsUndone) {
    std::unique_ptr<ObjectList<Node>> made;
    int signals = 0;
    edit(manager, [&] {
        made = std::make_unique<ObjectList<Node>>(manager);
        made->append(node("a"));
        made->erasedSignal().addCallback([&](std::size_t, Node&) { ++signals; });
    });
    ASSERT_TRUE(manager.undo());
    EXPECT_TRUE(made->empty());
    EXPECT_EQ(signals, 0);
}

TEST_F(ObjectListUse, KeepWhatUndoMayBringBackAndNoMore) {
    edit(manager, [&] { list.append(node("a")); });
    Node* const a = list.at(0);
    edit(manager, [&] { list.erase(0); });
    EXPECT_FALSE(a->isTxnExtant());
    EXPECT_EQ(log.take(), "a:destroyed a:gone");
    manager.undo();
    EXPECT_TRUE(a->isTxnExtant());
    EXPECT_EQ(log.take(), "a:extant");
    manager.undo();
    EXPECT_FALSE(a->isTxnExtant());
    edit(manager, [&] { list.append(node("b")); });
    EXPECT_EQ(Node::alive, 1) << "a can no longer come back";
    manager.setStepLimit(1);
    edit(manager, [&] { list.erase(0); });
    EXPECT_EQ(Node::alive, 1);
    edit(manager, [&] { list.append(node("c")); });
    EXPECT_EQ(Node::alive, 1);
}

TEST_F(ObjectListUse, SignalAfterTheStepAndListenersChangesAfterThat) {
    Mirror const before(list);
    list.insertedSignal().addCallback(client, [this](std::size_t, Node& inserted) {
        log.add("told" + std::to_string(list.size()));
        if (list.size() < 3) list.insert(0, node("more"));
        if (!inserted.next()) return;
        throw std::runtime_error("enough");
    });
    {
        Mirror const after(list);
        edit(manager, [&] { list.append(node("first")); });
        EXPECT_EQ(log.take(), "told1 told2 told3");
        EXPECT_EQ(before.nodes, contents(list));
        EXPECT_EQ(after.nodes, contents(list)) << "in the same order to everybody";
    }
    edit(manager, [&] { list.clear(); });
    log.take();
    manager.undo();
    EXPECT_EQ(log.take(), "more:extant more:extant first:extant told3 told3 told3");

    {
        urRTB::ScopedConnection const refilling =
            list.erasedSignal().addCallback([this](std::size_t, Node&) { list.append(node("again")); });
        edit(manager, [&] { list.clear(); });
    }
    EXPECT_EQ(list.size(), 3U);
    EXPECT_EQ(before.nodes, contents(list));
    log.take();

    auto const bad = node("bad");
    bad->setNext(node("next"));
    EXPECT_THROW(edit(manager, [&] { list.append(bad); }), std::runtime_error);
    EXPECT_EQ(list.size(), 4U);
    manager.commit();
    manager.undo();
    EXPECT_THROW(manager.redo(), HookError);
    EXPECT_EQ(list.at(3), bad.get());
    EXPECT_EQ(before.nodes, contents(list));
}

TEST_F(ObjectListUse, ListenersMayDestroyThemAndTheirManager) {
    auto owned = std::make_unique<Manager>();
    auto other = std::make_unique<ObjectList<Node>>(*owned);
    other->append(ur::make<Node>(*owned, "a", &log));
    other->erasedSignal().addCallback([&](std::size_t, Node& erased) {
        owned.reset();
        erased.told("erased");
        other.reset();
    });
    owned->begin();
    other->clear();
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(log.take(), "a:destroyed a:erased a:deleted");

    owned = std::make_unique<Manager>();
    other = std::make_unique<ObjectList<Node>>(*owned);
    edit(*owned, [&] { other->append(ur::make<Node>(*owned, "b", &log)); });
    edit(*owned, [&] { other->erase(0); });
    other.reset();
    EXPECT_EQ(log.take(), "b:destroyed b:gone");
    owned->undo();
    EXPECT_EQ(log.take(), "b:deleted") << "nothing can bring it back";
}

TEST_F(ObjectListUse, AreTakenApartWithTheirOwners) {
    struct Bag : RefCountedObject {
        using RefCountedObject::RefCountedObject;
        void onTransact(Serializer& serializer) override { serializer.field(members); }
        ObjectList<RefCountedObject> members{*txnManager()};
    };
    auto owned = std::make_unique<Manager>();
    auto const leaf = ur::make<Node>(*owned, "leaf");
    {
        auto const outer = ur::make<Bag>(*owned), inner = ur::make<Bag>(*owned);
        outer->members.append(inner);
        inner->members.append(outer);
        inner->members.append(leaf);
    }
    owned.reset();
    EXPECT_EQ(leaf->referenceCount(), 1U);
}

TEST_F(ObjectListUse, CostAFewHundredBytesOfHistoryWhateverTheirLength) {
    for (int i = 0; i < 100'000; ++i) list.append(node("x"));
    EXPECT_EQ(manager.historyBytes(), 0U);
    for (std::size_t i = 0; i < 100; ++i) edit(manager, [&] { list.insert(i * 997, node("y")); });
    EXPECT_LT(manager.historyBytes() / 100, 300U);
    std::size_t const bytes = manager.historyBytes();
    edit(manager, [&] {
        for (std::size_t i = 0; i < 100; ++i) list.move(i * 997, 5);
    });
    EXPECT_GT(manager.historyBytes(), bytes + 100 * 16) << "each change counts for the limit";
    EXPECT_LT(manager.historyBytes(), bytes + 100 * 300);
    log.take();
}

}  // namespace
}  // namespace nxTXN::test
