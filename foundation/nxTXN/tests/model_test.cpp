// Compares random transactions over a small graph with a model that remembers the whole graph at every step.
#include <deque>
#include <random>

#include "foundation/nxTXN/impl/Sizes.h"
#include "foundation/nxTXN/tests/Node.h"

namespace nxTXN::test {
namespace {

constexpr unsigned rootCount = 4;
constexpr unsigned chainLength = 6;
constexpr impl::Sizes smallBlocks{.smallestBlock = 64, .largestBlock = 512, .stepBlockBits = 1};

/// The objects reachable from each root, with their values.
using State = std::vector<std::vector<std::pair<Node const*, double>>>;

class Play {
public:
    explicit Play(unsigned seed) : random_(seed) {
        for (unsigned i = 0; i < rootCount; ++i) roots_.push_back(ur::make<Node>(manager_, "root"));
    }

    void step() {
        switch (pick(12)) {
            case 0: return begin();
            case 1: return commit();
            case 2: return pick(3) == 0 ? abort() : limit(pick(8));
            case 3: return turn(&Manager::undo, past_, future_, &Step::before);
            case 4: return turn(&Manager::redo, future_, past_, &Step::after);
            case 5:
            case 6: return change([&] { relink(node()); });
            default: return change([&] { node().setValue(++newest_); });
        }
    }

    /// Without history, exactly the reachable objects are left.
    void finish() {
        while (manager_.depth() > 0) abort();
        while (manager_.canRedo()) turn(&Manager::redo, future_, past_, &Step::after);
        while (manager_.canUndo()) turn(&Manager::undo, past_, future_, &Step::before);
        manager_.clear();
        for (auto& root : roots_) root->setNext(nullptr);
        EXPECT_EQ(Node::alive, int(rootCount));
        EXPECT_EQ(manager_.historyBytes(), 0u);
    }

private:
    struct Level {
        State before;
        void const* key;
    };
    struct Step {
        State before;
        State after;
    };

    unsigned pick(unsigned below) { return static_cast<unsigned>(random_() % below); }
    Node& node() {
        Node* found = roots_[pick(rootCount)].get();
        for (unsigned steps = pick(chainLength); steps > 0 && found->next(); --steps) found = found->next().get();
        return *found;
    }
    [[nodiscard]] State state() const {
        State result;
        for (Node const* node : {roots_[0].get(), roots_[1].get(), roots_[2].get(), roots_[3].get()}) {
            auto& way = result.emplace_back();
            for (; node; node = node->next().get()) {
                EXPECT_TRUE(node->isTxnExtant());
                way.emplace_back(node, node->value());
            }
        }
        return result;
    }

    template <class Change>
    void change(Change change) {
        if (!levels_.empty()) change();  // the model does not cover unrecorded changes
    }
    void relink(Node& from) {
        NodeReference target;
        unsigned const kind = pick(3);
        if (kind == 1) target = ur::make<Node>(manager_, "made", nullptr, ++newest_);
        if (kind == 2) target.reset(&node());
        for (Node const* way = target.get(); way; way = way->next().get()) {
            if (way == &from) target.reset();  // cycles would live as long as the manager
        }
        from.setNext(target);
        from.setValue(++newest_);  // what is recorded does change
    }

    void begin() {
        if (levels_.size() == 4) return;
        void const* const key = pick(2) == 0 ? this : nullptr;
        manager_.beginCoalescing("step", key);
        levels_.push_back({state(), key});
    }
    void commit() {
        EXPECT_EQ(manager_.commit(), !levels_.empty());
        if (levels_.empty()) return;
        Level const level = std::move(levels_.back());
        levels_.pop_back();
        if (!levels_.empty() || level.before == state()) return;
        bool const joins = level.key && level.key == key_ && !past_.empty();
        if (!joins) past_.push_back({level.before, {}});
        past_.back().after = state();
        future_.clear();
        key_ = level.key;
        trim();
    }
    void abort() {
        EXPECT_EQ(manager_.abort(), !levels_.empty());
        if (levels_.empty()) return;
        EXPECT_EQ(state(), levels_.back().before);
        levels_.pop_back();
    }
    void turn(bool (Manager::*real)(), std::deque<Step>& from, std::deque<Step>& to, State Step::*result) {
        bool const can = levels_.empty() && !from.empty();
        ASSERT_EQ((manager_.*real)(), can);
        if (!can) return;
        EXPECT_EQ(state(), from.back().*result);
        to.push_back(std::move(from.back()));
        from.pop_back();
        key_ = nullptr;
    }
    void limit(unsigned steps) {
        if (!levels_.empty()) return;
        limit_ = steps;
        manager_.setStepLimit(steps);
        trim();
    }
    void trim() {
        while (limit_ > 0 && past_.size() + future_.size() > limit_) (past_.empty() ? future_ : past_).pop_front();
        EXPECT_EQ(manager_.undoCount(), past_.size());
    }

    std::mt19937 random_;
    Manager manager_{smallBlocks};
    std::vector<NodeReference> roots_;
    std::vector<Level> levels_;
    std::deque<Step> past_;
    std::deque<Step> future_;
    void const* key_ = nullptr;
    unsigned limit_ = 0;
    int newest_ = 0;
};

TEST(HistoryModel, StaysWithTheModelOverRandomTransactions) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        Play play(seed);
        for (int i = 0; i < 5000 && !testing::Test::HasFailure(); ++i) play.step();
        if (!testing::Test::HasFailure()) play.finish();
    }
}

}  // namespace
}  // namespace nxTXN::test
