// Tests objects in their tree: values, moves, references, signals, contexts, the end of documents.
#include "foundation/urThread/RunQueue.h"
#include "support/documents/tests/Scene.h"
#include "support/messaging/ServiceDomain.h"
#include "support/properties/Prop.h"

namespace nxSupport::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Objects, HoldWhatTheirClassAllows) {
    Scene scene;
    Object& ball = scene.add(scene.root(), "Ball", "b");
    scene.document.edit("Set", [&] {
        EXPECT_TRUE(ball.set("size", 7) && ball.set("free", "anything") && ball.set("place", urLinear::Point(1, 2, 3)));
        EXPECT_FALSE(ball.set("size", 0x9E3779B97F4A7C15ULL)) << "it has no item form";
        EXPECT_FALSE(ball.set("size", 101) || ball.set("size", "7") || ball.set("fill", "dots") || ball.set("", 1));
    });
    EXPECT_EQ(ball.get<double>("size"), 7);
    EXPECT_EQ(ball.get<urLinear::Point>("place").z, 3);
    EXPECT_EQ(ball.get<std::string>("fill"), "solid");
    EXPECT_EQ(ball.get<int>("fill", 5), 5) << "another shape";
    auto const before = scene.document.history().undoCount();
    scene.document.edit("Same", [&] { EXPECT_TRUE(ball.set("size", 7) && ball.set("fill", "solid")); });
    EXPECT_EQ(scene.document.history().undoCount(), before);
    scene.document.edit("Reset", [&] { ball.setValue("size", nullptr), ball.setValue("free", nullptr); });
    EXPECT_EQ(ball.get<double>("size"), 1);
    EXPECT_FALSE(ball.value("free"));
    EXPECT_FALSE(scene.document.make("Bald"));
}

TEST(Objects, AreNeverBelowThemselvesNorInTwoPlaces) {
    Scene scene;
    Scene other;
    Object& outer = scene.add(scene.root(), "Group", "outer");
    Object& inner = scene.add(outer, "Group", "inner");
    Object& ball = scene.add(inner, "Ball", "ball");
    std::string const before = scene.text();
    scene.document.edit("Refused", [&] {
        EXPECT_FALSE(outer.moveTo(inner, 0) || outer.moveTo(outer, 0) || inner.moveTo(ball, 0));
        EXPECT_FALSE(scene.root().moveTo(outer, 0) || inner.append(&ball) || inner.append(nullptr));
        EXPECT_FALSE(outer.append(&scene.root()) || outer.moveTo(scene.root(), 1) || inner.remove(outer));
        EXPECT_FALSE(scene.root().append(other.document.make("Ball")) || ball.append(scene.document.make("Ball")));
        auto const top = scene.document.make("Group");
        auto const below = scene.document.make("Group");
        EXPECT_TRUE(top->append(below));
        EXPECT_FALSE(below->append(top)) << "in no tree, but below itself";
    });
    EXPECT_EQ(scene.text(), before);
    scene.document.edit("Move", [&] { EXPECT_TRUE(ball.moveTo(outer, 0) && ball.moveTo(outer, 1)); });
    EXPECT_EQ(ball.path(), "/outer/ball");
    scene.document.undo();
    EXPECT_EQ(scene.text(), before);
}

TEST(Objects, AreFoundByPath) {
    Scene scene;
    Object& group = scene.add(scene.root(), "Group", "a/b");
    Object& first = scene.add(group, "Ball", "x");
    Object& second = scene.add(group, "Ball", "x");
    Object& bracket = scene.add(group, "Ball", "[7");
    EXPECT_EQ(second.path(), "/[0]/[1]");
    for (Object* const object : {&scene.root(), &group, &first, &second, &bracket}) {
        EXPECT_EQ(scene.document.find(object->path()), object);
        EXPECT_EQ(second.find(object->path()), object) << "from the top";
    }
    EXPECT_EQ(group.find("x"), &first);
    EXPECT_EQ(group.find(""), &group);
    for (char const* path : {"y", "[3]", "[-1]", "[", "[0]/[0]/x", "[99999999999999999999]"})
        EXPECT_EQ(scene.document.find(path), nullptr) << path;
}

TEST(References, ReadAsNullWhileTheirTargetIsRemoved) {
    Scene scene;
    Object& group = scene.add(scene.root(), "Group", "g");
    Object& target = scene.add(group, "Ball", "t");
    Object& ball = scene.add(scene.root(), "Ball", "b");
    scene.document.edit("Refer", [&] { EXPECT_TRUE(ball.setTarget("next", &target)); });
    scene.document.select({&target, nullptr, &ball, &target});
    scene.document.edit("Remove", [&] { scene.root().remove(group); });
    EXPECT_EQ(ball.target("next"), nullptr);
    EXPECT_THAT(scene.document.selection(), ElementsAre(&ball));
    scene.document.undo();
    EXPECT_EQ(ball.target("next"), &target);
    EXPECT_THAT(scene.document.selection(), ElementsAre(&target, &ball)) << "in it again";
}

TEST(Documents, SignalEachChangeOnceAlsoWhenUndone) {
    Scene scene;
    Object& ball = scene.add(scene.root(), "Ball", "b");
    Object& group = scene.add(scene.root(), "Group", "g");
    std::string log;
    auto const name = [](Object& object) { return std::string(object.name()); };
    ball.changedSignal().addCallback(
        [&](Object&, auto const& property) { log += "own " + std::string(property) + " "; });
    scene.document.changedSignal().addCallback([&](Object& object, auto const& property) {
        log += name(object) + "." + std::string(property) + "=" + textOf(object.value(property)) + " ";
    });
    scene.document.insertedSignal().addCallback([&](Object& parent, std::size_t index, Object& child) {
        EXPECT_EQ(child.parent(), &parent);
        log += "+" + name(child) + std::to_string(index) + " ";
    });
    scene.document.removedSignal().addCallback(
        [&](Object&, std::size_t index, Object& child) { log += "-" + name(child) + std::to_string(index) + " "; });
    scene.document.movedSignal().addCallback([&](Object&, std::size_t from, std::size_t to, Object& child) {
        log += name(child) + std::to_string(from) + std::to_string(to) + " ";
    });
    auto const taken = [&] { return std::exchange(log, ""); };
    scene.document.edit("All", [&] {
        ball.set("size", 2);
        ball.set("size", 3);
        ball.moveTo(scene.root(), 1);
        ball.moveTo(group, 0);
    });
    EXPECT_EQ(taken(), "own size b.size=2 own size b.size=3 b01 -b1 +b0 ");
    scene.document.undo();
    EXPECT_EQ(taken(), "-b0 +b1 b10 own size b.size=1 ");
    scene.document.redo();
    EXPECT_EQ(taken(), "own size b.size=3 b01 -b1 +b0 ");
    EXPECT_THROW(scene.document.edit("Fails", [&] { ball.set("free", 1), throw std::runtime_error("no"); }),
                 std::runtime_error);
    EXPECT_EQ(taken(), "own free b.free=1 own free b.free=null ");
}

TEST(Documents, KeepTheirChangesWhateverListenersThrow) {
    Scene scene;
    Object& ball = scene.add(scene.root(), "Ball", "b");
    scene.document.changedSignal().addCallback([](Object&, auto const&) { throw std::runtime_error("listener"); });
    scene.document.insertedSignal().addCallback([](Object&, std::size_t, Object&) { throw std::runtime_error("no"); });
    scene.document.history().begin("Set");
    EXPECT_THROW(ball.set("size", 2), std::runtime_error);
    auto const group = scene.document.make("Group");
    EXPECT_THROW(scene.root().append(group), std::runtime_error);
    scene.document.history().commit();
    EXPECT_EQ(ball.get<double>("size"), 2);
    EXPECT_TRUE(group->isInTree());
    EXPECT_THROW(scene.document.undo(), std::runtime_error);
    EXPECT_FALSE(group->isInTree());
    EXPECT_EQ(ball.get<double>("size"), 1);
    audit(scene.document);
}

TEST(Documents, MoveObjectsWhollyWhateverListenersThrow) {
    Scene scene;
    Object& group = scene.add(scene.root(), "Group", "g");
    Object& ball = scene.add(scene.root(), "Ball", "b");
    auto const throwing = scene.document.removedSignal().addCallback(
        [](Object&, std::size_t, Object&) { throw std::runtime_error("listener"); });
    scene.document.history().begin("Move");
    EXPECT_THROW(ball.moveTo(group, 0), std::runtime_error);
    scene.document.history().commit();
    EXPECT_EQ(ball.path(), "/g/b");
    audit(scene.document);
}

TEST(Documents, LeaveObjectsAloneWhoseMakingIsUndone) {
    Scene scene;
    ur::Reference<Object> group;
    scene.document.edit("Make", [&] {
        group = scene.document.make("Group");
        scene.root().append(group);
    });
    scene.document.undo();
    scene.document.edit("Go on", [&] {
        EXPECT_FALSE(group->set("name", "g") || scene.root().append(group) ||
                     group->append(scene.document.make("Ball")));
    });
    audit(scene.document);
    EXPECT_TRUE(scene.document.redo() && group->set("name", "g"));
}

TEST(Documents, ListTheirStepsAndKnowWhetherTheyAreModified) {
    Scene scene;
    EXPECT_FALSE(scene.document.isModified());
    Object& ball = scene.add(scene.root(), "Ball", "b");
    for (int size : {2, 3, 4}) scene.document.edit("Size " + std::to_string(size), [&] { ball.set("size", size); });
    EXPECT_TRUE(scene.document.undoTo(2));
    scene.document.setUnmodified();
    EXPECT_EQ(ball.get<int>("size"), 2);
    EXPECT_THAT(scene.document.steps(), ElementsAre("Add", "Size 2", "Size 3", "Size 4"));
    EXPECT_TRUE(scene.document.undoTo(4) && scene.document.isModified());
    EXPECT_FALSE(scene.document.undoTo(5));
    EXPECT_TRUE(scene.document.undoTo(0) && scene.document.undoTo(2) && !scene.document.isModified());
    scene.document.history().begin();
    EXPECT_FALSE(scene.document.undoTo(0)) << "in a transaction";
    scene.document.history().abort();
    bool steps = false;
    scene.document.history().changedSignal().addCallback([&] {
        if ((steps = !steps)) scene.document.edit("Again", [&] { ball.set("free", ball.get<int>("free") + 1); });
    });
    EXPECT_FALSE(scene.document.undoTo(0)) << "a listener makes a step after each one that is undone";
}

/// A host whose contexts record.
class ContextHost : public ServiceDomain {
public:
    ContextHost(urThread::RunQueue& queue, Document& document) : ServiceDomain(queue), document_(document) {}

    Context::Mode last = Context::Bare;

protected:
    void onBeginContext(Context const& context) override {
        last = context.mode();
        document_.beginContext(context);
    }
    void onEndContext(Context const& context) override { document_.endContext(context); }

private:
    Document& document_;
};

TEST(Documents, TakeAnInteractionAsOneStepOrNone) {
    Scene scene;
    Object& ball = scene.add(scene.root(), "Ball", "b");
    urThread::RunQueue queue;
    ContextHost host(queue, scene.document);
    std::optional<Interaction> drag(std::in_place, host, scene.document, "Drag");
    for (int size = 2; size < 5; ++size) drag->perform([&] { ball.set("size", size); });
    EXPECT_THROW(drag->perform([&] { throw ball.set("size", 50); }), bool);
    EXPECT_EQ(ball.get<int>("size"), 4) << "one move is taken back";
    EXPECT_TRUE(drag->finish());
    EXPECT_FALSE(drag->finish());
    drag.reset();
    EXPECT_THAT(scene.document.steps(), ElementsAre("Add", "Drag"));
    drag.emplace(host, scene.document, "Drag");
    drag->perform([&] { ball.set("size", 60); });
    EXPECT_FALSE(scene.document.undo()) << "while it is open";
    drag.reset();
    EXPECT_EQ(host.last, Context::InteractionEnd);
    EXPECT_EQ(ball.get<int>("size"), 4);
    EXPECT_THAT(scene.document.steps(), ElementsAre("Add", "Drag"));
    EXPECT_TRUE(scene.document.undo());
    EXPECT_EQ(ball.get<int>("size"), 1);
}

TEST(Documents, RecordWhatContextsSay) {
    Scene scene;
    Object& ball = scene.add(scene.root(), "Ball", "b");
    urThread::RunQueue queue;
    ContextHost host(queue, scene.document);
    auto const setIn = [&](Context::Mode mode, double size) {
        Context const context(&host, mode);
        ball.set("size", size);
    };
    scene.document.setStepName("Drag");
    for (int drag = 0; drag < 2; ++drag) {
        setIn(Context::InteractionStart, 2);
        for (int i = 3; i < 9; ++i) setIn(Context::InteractionPerform, i);
        setIn(Context::InteractionEnd, 9 + drag);
    }
    EXPECT_THAT(scene.document.steps(), ElementsAre("Add", "Drag", "Drag"));
    scene.document.undo();
    EXPECT_EQ(ball.get<int>("size"), 9);
    scene.document.setStepName("Click");
    setIn(Context::Momentary, 11);
    setIn(Context::Momentary, 12);
    setIn(Context::NoTxn, 13);
    EXPECT_THAT(scene.document.steps(), ElementsAre("Add", "Drag", "Click", "Click"));
    EXPECT_THROW(
        {
            Context const context(&host, Context::Momentary);
            ball.set("size", 99);
            throw std::runtime_error("tool");
        },
        std::runtime_error);
    EXPECT_EQ(ball.get<int>("size"), 13);
    EXPECT_EQ(scene.document.history().depth(), 0U);
}

TEST(Documents, LeaveObjectsThatRefuseChangesBehind) {
    ur::Reference<Object> root;
    ur::Reference<Object> ball;
    ur::Reference<Property> size;
    {
        Scene scene;
        ball.reset(&scene.add(scene.root(), "Ball", "b"));
        root.reset(&scene.root());
        size = ball->property("size");
    }
    EXPECT_EQ(ball->document(), nullptr);
    EXPECT_EQ(ball->parent(), nullptr);
    EXPECT_FALSE(ball->set("size", 2) || root->append(ball) || root->remove(*ball) || ball->moveTo(*root, 0));
    EXPECT_FALSE(root->isInTree() || ball->target("next") || ball->property("size"));
    EXPECT_EQ(ball->path(), "/");
    EXPECT_TRUE(root->children().empty() && root->children().begin() == root->children().end());
    Prop<double>(size).set(5);
    EXPECT_EQ(ball->get<double>("size"), 1) << "the default of its class";
}

TEST(Documents, LetGoOfWhatNobodyNeeds) {
    Scene scene;
    auto const kept = scene.document.make("Ball");
    {
        auto const group = scene.document.make("Group");
        group->append(kept);  // not recorded
        scene.document.edit("Add", [&] { scene.root().append(group); });
        scene.document.undo();
    }
    EXPECT_NE(kept->parent(), nullptr) << "redo would need it";
    scene.document.history().clear();
    EXPECT_EQ(kept->parent(), nullptr);
    scene.document.edit("Add", [&] { EXPECT_TRUE(scene.root().append(kept)); });
    audit(scene.document);
}

TEST(Objects, OfAVeryDeepTreeNeedNoStack) {
    Scene scene;
    auto const bottom = scene.document.make("Group");
    scene.document.edit("Deep", [&] {
        auto top = bottom;
        for (int i = 0; i < 5000; ++i) {
            auto const above = scene.document.make("Group");
            above->append(top);
            top = above;
        }
        scene.root().append(top);
    });
    auto const copied = copy({&scene.root().children()[0]});
    EXPECT_TRUE(paste(scene.root(), 1, copied).ok());
    EXPECT_TRUE(bottom->isInTree());
    while (scene.document.undo()) {
    }
    EXPECT_THAT(scene.text(), testing::EndsWith("[]"));
}

}  // namespace
}  // namespace nxSupport::test
