// Compares random transactions of two managers, whose objects refer to each other, with a model. Managers are created
// and destroyed.
#include <array>
#include <map>
#include <optional>
#include <random>
#include <set>

#include "foundation/nxTXN/impl/Sizes.h"
#include "foundation/nxTXN/tests/Node.h"

namespace nxTXN::test {
namespace {

constexpr unsigned rootsEach = 3;
constexpr impl::Sizes tinyBlocks{.smallestBlock = 64, .largestBlock = 128, .stepBlockBits = 1};

/// Roots refer to leaves, which are created unrecorded in either manager and identified by numbers; 0 is none.
class Crossing {
public:
    explicit Crossing(unsigned seed) : random_(seed) {
        for (Side& side : sides_) open(side);
    }
    ~Crossing() {
        for (Side& side : sides_) side.roots.clear();
    }
    Crossing(Crossing const&) = delete;
    Crossing& operator=(Crossing const&) = delete;

    void step() {
        Side& side = sides_[pick(2)];
        switch (pick(14)) {
            case 0: return begin(side);
            case 1: return end(side, pick(3) > 0);
            case 2: return turn(side, &Manager::undo, side.past, side.future);
            case 3: return turn(side, &Manager::redo, side.future, side.past);
            case 4: return pick(40) == 0 ? replaceManager(side) : clear(side);
            case 5: return change(side, {1.0 * pick(3), side.states[0].leaf}, 0);
            default: return change(side, {1.0 * pick(3), target(side)}, pick(rootsEach));
        }
    }
    /// Objects match the model, no more are left than needed, and each knows whether it exists.
    void check() {
        std::set<int> reached, kept;
        for (Side const& side : sides_) {
            for (unsigned i = 0; i < rootsEach; ++i) {
                Node const& root = *side.roots[i];
                EXPECT_EQ(root.value(), side.states[i].value);
                EXPECT_EQ(root.next() ? numbers_.at(root.next().get()) : 0, side.states[i].leaf);
                reached.insert(side.states[i].leaf);
            }
            forEachRecord(side, [&](State& state) { kept.insert(state.leaf); });
            EXPECT_EQ(side.manager->undoCount(), side.past.size());
            EXPECT_EQ(side.manager->redoCount(), side.future.size());
        }
        std::set<int> alive{0};
        for (auto const& [leaf, number] : numbers_) {
            alive.insert(number);
            EXPECT_EQ(leaf->isTxnExtant(), leaf->txnManager() && reached.count(number));
            EXPECT_EQ(told_.count(number) > 0, leaf->txnManager() ? !leaf->isTxnExtant() : told_.count(number) > 0);
        }
        kept.insert(reached.begin(), reached.end());
        kept.insert(0);
        EXPECT_EQ(alive, kept);
    }

private:
    struct State {
        double value = 0;
        int leaf = 0;
        bool operator==(State const&) const = default;
    };
    using Records = std::map<unsigned, State>;
    struct Side {
        std::unique_ptr<Manager> manager;
        std::vector<NodeReference> roots;
        std::vector<State> states;
        std::vector<Records> past, future;
        std::optional<Records> open;
    };

    unsigned pick(unsigned below) { return static_cast<unsigned>(random_() % below); }

    template <class Visit>
    static void forEachRecord(Side const& side, Visit visit) {
        auto const visitAll = [&](Records const& records) {
            for (auto const& [root, state] : records) visit(const_cast<State&>(state));
        };
        for (Records const& step : side.past) visitAll(step);
        for (Records const& step : side.future) visitAll(step);
        if (side.open) visitAll(*side.open);
    }

    static void open(Side& side) {
        side = {};
        side.manager = std::make_unique<Manager>(tinyBlocks);
        side.states.resize(rootsEach);
        for (unsigned i = 0; i < rootsEach; ++i) side.roots.push_back(ur::make<Node>(*side.manager, "root"));
    }
    /// The other side's records forget this side's objects; objects that its objects refer to stay, without a manager.
    void replaceManager(Side& side) {
        for (auto const& [leaf, number] : numbers_) {
            if (leaf->txnManager() != side.manager.get()) continue;
            for (Side const& any : sides_) {
                forEachRecord(any,
                              [number = number](State& state) { state.leaf = state.leaf == number ? 0 : state.leaf; });
            }
        }
        side.manager.reset();
        open(side);
    }

    int target(Side const& side) {
        unsigned const kind = pick(4);
        if (kind == 0) return 0;
        if (kind == 1) return sides_[pick(2)].states[pick(rootsEach)].leaf;
        return make(kind == 2 ? *side.manager : *sides_[pick(2)].manager);
    }
    int make(Manager& manager) {
        int const number = ++newest_;
        manager.begin("make", TransactionKind::none);
        made_ = ur::make<Node>(manager, "leaf");
        manager.commit();
        Node const* const leaf = made_.get();
        numbers_[leaf] = number;
        made_->onHook = [this, leaf, number](std::string const& hook) {
            if (hook == "gone") told_.insert(number);
            if (hook == "extant") told_.erase(number);
            if (hook == "deleted") numbers_.erase(leaf);
        };
        return number;
    }
    NodeReference find(int number) const {
        for (Side const& side : sides_) {
            for (NodeReference const& root : side.roots) {
                if (root->next() && numbers_.at(root->next().get()) == number) return root->next();
            }
        }
        return number ? made_ : nullptr;
    }
    void change(Side& side, State const& state, unsigned root) {
        if (side.open) side.open->emplace(root, side.states[root]);
        side.states[root] = state;
        side.roots[root]->setValue(state.value);
        side.roots[root]->setNext(find(state.leaf));
        made_.reset();
    }

    void begin(Side& side) {
        if (side.open) return;
        side.manager->begin("step");
        side.open.emplace();
    }
    void end(Side& side, bool commit) {
        EXPECT_EQ(commit ? side.manager->commit() : side.manager->abort(), side.open.has_value());
        if (!side.open) return;
        Records records = *std::exchange(side.open, {});
        bool differs = false;
        for (auto const& [root, state] : records) differs = differs || side.states[root] != state;
        if (!commit) exchange(side, records);
        if (!commit || records.empty() || (!differs && !side.future.empty())) return;
        side.past.push_back(records);
        side.future.clear();
    }
    void turn(Side& side, bool (Manager::*real)(), std::vector<Records>& from, std::vector<Records>& to) {
        bool const can = !side.open && !from.empty();
        EXPECT_EQ((side.manager.get()->*real)(), can);
        if (!can) return;
        exchange(side, from.back());
        to.push_back(from.back());
        from.pop_back();
    }
    static void exchange(Side& side, Records& records) {
        for (auto& [root, state] : records) std::swap(side.states[root], state);
    }
    void clear(Side& side) {
        if (side.open || pick(10) > 0) return;
        EXPECT_TRUE(side.manager->clear());
        side.past.clear();
        side.future.clear();
    }

    std::mt19937 random_;
    std::map<Node const*, int> numbers_;  // of the remaining leaves
    std::set<int> told_;                  // those notified that they do not exist
    int newest_ = 0;
    std::array<Side, 2> sides_;
    NodeReference made_;  // for the next change
};

TEST(Crossing, OneManagerMayRestoreWhileAnotherDoes) {
    /// Undoes a step of another manager before its own fields are put back.
    struct Undoing : Node {
        using Node::Node;
        void onTransact(Serializer& serializer) override {
            if (other && ++visits == 2) {
                EXPECT_TRUE(std::exchange(other, nullptr)->undo());
            }
            Node::onTransact(serializer);
        }
        Manager* other = nullptr;
        int visits = 0;  // to save the fields, then to restore them
    };
    Log log;
    Manager leaves, first, second;
    auto const undoing = ur::make<Undoing>(first, "undoing");
    auto const partner = ur::make<Node>(first, "partner");
    auto const root = ur::make<Node>(second, "root");
    undoing->setNext(ur::make<Node>(leaves, "a", &log));
    partner->setNext(ur::make<Node>(leaves, "b", &log));
    edit(first, [&] {
        NodeReference const a = undoing->next();
        undoing->setNext(partner->next());
        partner->setNext(a);
    });
    edit(second, [&] { root->setNext(ur::make<Node>(leaves, "c")); });
    undoing->other = &second;
    EXPECT_TRUE(first.undo());
    EXPECT_EQ(log.take(), "a:gone a:extant") << "it was without a reference while the other manager settled";
    EXPECT_FALSE(root->next());
}

TEST(CrossingModel, KeepReferencesBetweenTheRecordsOfTwoManagers) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        Crossing play(seed);
        for (int i = 0; i < 1500; ++i) {
            play.step();
            play.check();
            ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", step " << i;
        }
    }
}

}  // namespace
}  // namespace nxTXN::test
