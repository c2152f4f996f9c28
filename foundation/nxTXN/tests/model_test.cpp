// Random transactions over a small graph, beside a model that remembers the whole graph at every step.
#include <cstdlib>
#include <deque>
#include <random>

#include "foundation/nxTXN/tests/Node.h"

namespace nxTXN::test {
namespace {

constexpr unsigned rootCount = 4;
constexpr unsigned chainLength = 6;

/// The values on the way from each root; objects that cannot be reached do not count.
using State = std::vector<std::vector<double>>;

class Model {
public:
    explicit Model(unsigned seed) : random_(seed) {
        for (unsigned i = 0; i < rootCount; ++i) roots_.push_back(ur::make<Node>(manager_, "root"));
    }

    void step() {
        switch (pick(12)) {
            case 0: return begin();
            case 1: return commit();
            case 2: return pick(3) == 0 ? abort() : limit(pick(8));
            case 3: return undo();
            case 4: return redo();
            case 5:
            case 6: return edit([&] { relink(node()); });
            default: return edit([&] { node().setValue(pick(1000)); });
        }
    }

    /// With the history gone, exactly what can be reached is left.
    void finish() {
        while (manager_.depth() > 0) abort();
        while (!future_.empty() && !testing::Test::HasFailure()) redo();
        while (!past_.empty() && !testing::Test::HasFailure()) undo();
        manager_.clear();
        for (auto& root : roots_) root->setNext(nullptr);
        EXPECT_EQ(Node::alive, int(rootCount));
        EXPECT_EQ(manager_.historyBytes(), 0u);
    }

private:
    struct Level {
        State before;
        void const* key;
        bool changed;
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
    static bool leadsTo(Node const& start, Node const& end) {
        Node const* node = &start;
        while (node && node != &end) node = node->next().get();
        return node != nullptr;
    }
    [[nodiscard]] State state() const {
        State result;
        for (Node const* node : {roots_[0].get(), roots_[1].get(), roots_[2].get(), roots_[3].get()}) {
            auto& values = result.emplace_back();
            for (; node && values.size() < chainLength; node = node->next().get()) {
                EXPECT_TRUE(node->isTxnExtant());
                values.push_back(node->value());
            }
        }
        return result;
    }

    template <class Change>
    void edit(Change change) {
        if (levels_.empty()) return;  // the model knows nothing of unrecorded changes
        change();
        levels_.back().changed = true;
    }
    void relink(Node& from) {
        NodeReference target;
        unsigned const kind = pick(3);
        if (kind == 1) target = ur::make<Node>(manager_, "made", nullptr, pick(1000));
        if (kind == 2) target.reset(&node());
        // Cycles would live as long as the manager does.
        from.setNext(target && leadsTo(*target, from) ? nullptr : target);
    }

    void begin() {
        if (levels_.size() == 4) return;
        void const* const key = pick(2) == 0 ? this : nullptr;
        manager_.beginCoalescing("step", key);
        levels_.push_back({state(), key, false});
    }
    void commit() {
        EXPECT_EQ(manager_.commit(), !levels_.empty());
        if (levels_.empty()) return;
        Level const level = std::move(levels_.back());
        levels_.pop_back();
        if (!level.changed) return;
        if (!levels_.empty()) {
            levels_.back().changed = true;
        } else {
            addStep(level);
        }
    }
    void addStep(Level const& level) {
        bool const joins = level.key && level.key == key_ && !past_.empty();
        if (!joins) past_.push_back({level.before, {}});
        past_.back().after = state();
        future_.clear();
        key_ = level.key;
        trim();
        EXPECT_EQ(manager_.undoCount(), past_.size());
    }
    void abort() {
        EXPECT_EQ(manager_.abort(), !levels_.empty());
        if (levels_.empty()) return;
        EXPECT_EQ(state(), levels_.back().before);
        levels_.pop_back();
    }
    void undo() {
        bool const can = levels_.empty() && !past_.empty();
        ASSERT_EQ(manager_.undo(), can);
        if (!can) return;
        EXPECT_EQ(state(), past_.back().before);
        future_.push_back(std::move(past_.back()));
        past_.pop_back();
        key_ = nullptr;
    }
    void redo() {
        bool const can = levels_.empty() && !future_.empty();
        ASSERT_EQ(manager_.redo(), can);
        if (!can) return;
        EXPECT_EQ(state(), future_.back().after);
        past_.push_back(std::move(future_.back()));
        future_.pop_back();
        key_ = nullptr;
    }
    void limit(unsigned steps) {
        if (!levels_.empty()) return;
        limit_ = steps;
        manager_.setStepLimit(steps);
        trim();
    }
    void trim() {
        while (limit_ > 0 && past_.size() + future_.size() > std::max(limit_, 1U)) {
            auto& side = past_.empty() ? future_ : past_;
            side.pop_front();
        }
    }

    std::mt19937 random_;
    Manager manager_;
    std::vector<NodeReference> roots_;
    std::vector<Level> levels_;
    std::deque<Step> past_;
    std::deque<Step> future_;
    void const* key_ = nullptr;
    unsigned limit_ = 0;
};

TEST(HistoryModel, StaysWithTheModelOverRandomTransactions) {
    char const* const given = std::getenv("NX_TEST_SEED");
    unsigned const seed = given ? static_cast<unsigned>(std::atoi(given)) : std::random_device()();
    SCOPED_TRACE("NX_TEST_SEED=" + std::to_string(seed));
    for (unsigned run = 0; run < 20 && !testing::Test::HasFailure(); ++run) {
        Model model(seed + run);
        for (int i = 0; i < 5000 && !testing::Test::HasFailure(); ++i) model.step();
        model.finish();
    }
}

}  // namespace
}  // namespace nxTXN::test
