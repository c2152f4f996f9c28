// Listeners that change the tree, throw, undo and abort at random, and changes that nothing records.
#include <random>

#include "support/documents/tests/Scene.h"

namespace nxSupport::test {
namespace {

/// A document whose listeners change it, and all objects that were ever made.
class ChangingScene {
public:
    explicit ChangingScene(unsigned seed) : random_(seed) {
        auto const listener = [this](Object&, auto const&...) { listen(); };
        scene_.document.insertedSignal().addCallback(listener);
        scene_.document.removedSignal().addCallback(listener);
        scene_.document.movedSignal().addCallback(listener);
        scene_.document.changedSignal().addCallback(listener);
        scene_.document.history().setUnrecordedChange(nxTXN::UnrecordedChange::apply);
    }

    void step() {
        try {
            switch (below(8)) {
                case 0: return change();
                case 1: return static_cast<void>(scene_.document.redo());
                case 2: return static_cast<void>(scene_.document.undo());
                case 3: return static_cast<void>(below(20) == 0 ? scene_.document.history().clear() : false);
                default: return edit();
            }
        } catch (std::exception const&) {
            ++thrown_;
        }
    }
    void check() {
        ASSERT_TRUE(isSound(scene_.document, scene_.root())) << scene_.text();
        for (auto const& object : made_) {
            if (!object->isTxnExtant() || !object->parent()) continue;
            ASSERT_TRUE(object->parent()->children().indexOf(*object)) << "its parent does not know it";
            ASSERT_EQ(object->isInTree(), scene_.document.find(object->id()) == object.get());
        }
        // The history holds the others.
        std::erase_if(made_, [](auto const& object) { return object->referenceCount() == 1; });
    }
    [[nodiscard]] int thrown() const noexcept { return thrown_; }

private:
    unsigned below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }
    Object& any() {
        std::size_t const i = below(made_.size() + 1);
        return i == made_.size() ? scene_.root() : *made_[i];
    }
    void edit() {
        nxTXN::Manager& history = scene_.document.history();
        using Kind = nxTXN::TransactionKind;
        Kind const kinds[] = {Kind::recorded, Kind::recorded, Kind::transient, Kind::none, Kind::constant};
        history.begin("Edit", kinds[below(std::size(kinds))]);
        try {
            for (auto left = below(4); left > 0; --left) change();
            if (below(4) == 0) throw std::runtime_error("edit");
        } catch (std::runtime_error const&) {
            history.abort();
            throw;
        }
        history.commit();
    }
    void change() {
        ur::Reference<Object> const object(&any());
        ur::Reference<Object> const other(&any());
        switch (below(7)) {
            case 0: return static_cast<void>(object->set("free", below(100) + 1));
            case 1: return static_cast<void>(object->parent() && object->parent()->remove(*object));
            case 2: return static_cast<void>(object->moveTo(*other, below(other->children().size() + 1)));
            case 3: return static_cast<void>(other->append(object));
            case 4: return below(2) == 0 ? edit() : void();
            default: break;
        }
        if (made_.size() > 30) return;
        made_.push_back(scene_.document.make(below(2) == 0 ? "Group" : "Ball"));
        other->insert(below(other->children().size() + 1), ur::Reference<Object>(made_.back()));
    }
    void listen() {
        if (below(3) > 0 || depth_ > 3) return;
        struct Deeper {
            int& depth;
            explicit Deeper(int& d) : depth(d) { ++depth; }
            ~Deeper() { --depth; }
        } const deeper(depth_);
        edit();
        if (below(3) == 0) throw std::runtime_error("listener");
    }

    std::minstd_rand random_;
    Scene scene_;
    ur::vector<ur::Reference<Object>> made_;
    int depth_ = 0;
    int thrown_ = 0;
};

TEST(Listeners, LeaveTheTreeSoundWhateverTheyChange) {
    unsigned const first = std::random_device{}();
    for (unsigned seed = first; seed != first + 20 && !testing::Test::HasFailure(); ++seed) {
        ChangingScene scene(seed);
        for (int step = 0; step < 1000 && !testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            scene.step();
            scene.check();
        }
        EXPECT_GT(scene.thrown(), 100);
    }
}

}  // namespace
}  // namespace nxSupport::test
