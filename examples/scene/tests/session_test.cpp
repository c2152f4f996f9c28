// Tests long sessions and large meshes, and prints what they cost.
#include <cstdio>
#include <random>

#include "examples/scene/tests/Window.h"

namespace scene {
namespace {

using nxSupport::Object;

struct Session : Window {
    void printCost(int operations, double slowestFrame) {
        auto& document = editor.document();
        std::printf("%d operations: %zu objects, history %.1f KiB, cache %.1f MiB, slowest frame %.0f ms\n", operations,
                    document.objectCount(), double(document.history().historyBytes()) / 1024,
                    double(editor.cache().getMemoryUsed64()) / 1048576, slowestFrame);
    }
};

int numberFrom(char const* variable, int usual) {
    return qEnvironmentVariableIntValue(variable) > 0 ? qEnvironmentVariableIntValue(variable) : usual;
}

std::string content(Object const& object) {
    std::string text = std::string(object.name()) + std::string(object.get<std::string>("file"));
    for (int i = 0; i < 12; ++i) text += std::to_string(placeOf(object).coefficient(i)) + " ";
    text += std::to_string(object.get<std::vector<Dab>>("strokes").size()) + "(";
    for (Object const& child : object.children()) text += content(child);
    return text + ")";
}

/// Random work of a user, all by events and commands; then everything is undone and done again.
TEST_F(Session, OfFiveHundredOperationsIsUndoneAndDoneAgain) {
    for (char const* file : {"OBJ/spider.obj", "OFF/Wuson.off", "STL/sphereWithHole.stl"}) import(file);
    editor.perform("Scale", [&] {
        for (Object& mesh : editor.document().root().children())
            setWorld(mesh, urLinear::AffineMatrix(1 / editor.shapes().boundsOf(mesh).size().length()));
    });
    run("Look at selection");
    std::string const start = content(editor.document().root());
    std::size_t const startSteps = steps().size();
    std::mt19937 random(7);
    auto const upTo = [&](int count) { return int(random() % unsigned(count)); };
    auto const spot = [&] { return QPoint(upTo(view().width()), upTo(view().height())); };
    char const* const commands[] = {"Copy",  "Paste", "Duplicate", "Delete",
                                    "Group", "Undo",  "Redo",      "Look at selection"};
    char const* const tools[] = {"Move", "Rotate", "Scale", "Smooth"};
    double worst = 0;
    for (int i = 0; i < 500; ++i) {
        int const kind = upTo(10);
        if (kind < 3) drag(spot(), spot(), upTo(4) == 0 ? Qt::MiddleButton : Qt::LeftButton);
        if (kind == 3 && view().handles()) {
            QPoint const from = handle(upTo(3));
            press(from);
            for (int k = 0; k < 5; ++k) moveTo(from + QPoint(upTo(60) - 30, upTo(60) - 30));
            if (upTo(3) == 0) QTest::keyClick(&view(), Qt::Key_Escape);
            release(from);
            settle();
        }
        if (kind == 4) run(tools[upTo(4)]);
        if (kind >= 5 && kind < 8) run(commands[upTo(8)]);
        if (kind >= 8 && editor.document().objectCount() < 400) {
            auto const children = editor.document().root().children();
            if (!children.empty()) select({&children[std::size_t(upTo(int(children.size())))]});
        }
        if (editor.document().root().children().size() > 60) {
            for (int k = 0; k < 20; ++k) run("Undo");
        }
        worst = std::max(worst, view().frameMilliseconds());
        ASSERT_EQ(editor.cache().audit(), "") << i;
        if (i % 100 == 99) printCost(i + 1, worst);
    }
    std::string const end = content(editor.document().root());
    std::size_t const done = editor.document().history().undoCount();
    ASSERT_GE(done, startSteps);
    ASSERT_TRUE(editor.document().undoTo(startSteps));
    EXPECT_EQ(content(editor.document().root()), start);
    ASSERT_TRUE(editor.document().undoTo(done));
    EXPECT_EQ(content(editor.document().root()), end);
    settle();
}

/// NX_SCENE_TRIANGLES=10000000 for the large case.
TEST_F(Session, NeverFreezesWithALargeMesh) {
    int const triangles = numberFrom("NX_SCENE_TRIANGLES", 400000);
    std::string const path = write("terrain.obj", terrain(triangles));
    longestMilliseconds = 0;
    editor.importMesh(path);
    settle();
    Object& mesh = *find("terrain");
    EXPECT_NEAR(double(latestMesh(editor.shapes().of(mesh))->triangleCount()), triangles, 0.02 * triangles);
    run("Look at selection");
    double const full = view().frameMilliseconds();
    EXPECT_NEAR(double(view().frame()->triangleCount()), triangles, 0.02 * triangles);
    drag({50, 50}, {90, 60}, Qt::MiddleButton);
    select({});
    window.command("Smooth")->trigger();
    drag(centreOf(mesh), centreOf(mesh) + QPoint(20, 10));
    std::printf("%d triangles: a full frame takes %.0f ms, the longest wait for events was %.0f ms, cache %.1f MiB\n",
                triangles, full, longestMilliseconds, double(editor.cache().getMemoryUsed64()) / 1048576);
    EXPECT_LT(longestMilliseconds, 500) << "a tenth of a second on a machine that does nothing else";
    EXPECT_EQ(mesh.get<std::vector<Dab>>("strokes").size(), 5U);
}

TEST_F(Session, StopsWorkOnRequest) {
    std::string const path = write("terrain.obj", terrain(400000));
    editor.importMesh(path);
    run("Stop work");
    EXPECT_TRUE(editor.document().root().children().empty());
    EXPECT_THAT(messages, testing::ElementsAre("terrain.obj: cancelled"));
}

}  // namespace
}  // namespace scene
