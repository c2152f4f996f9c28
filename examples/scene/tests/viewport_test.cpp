// Tests the mouse in the view: selection, handles, the brush, the camera.
#include <numbers>

#include "examples/scene/tests/Window.h"

namespace scene {
namespace {

using nxSupport::Object;
using testing::ElementsAre;
using urLinear::Point;

struct View : Window {
    Object& box = import("OBJ/box.obj");
    Object& ball = placed(import("OFF/Cube.off"));

    Object& placed(Object& object) {
        editor.perform("Place", [&] { object.set("position", Point(0, 3, 0)); });
        run("Look at selection");
        select({});
        view().frameSelection();
        settle();
        return object;
    }
};

TEST_F(View, SelectsByClickAndBox) {
    drag(centreOf(box), centreOf(box));
    EXPECT_THAT(editor.document().selection(), ElementsAre(&box));
    press(centreOf(ball), Qt::LeftButton, Qt::ControlModifier);
    release(centreOf(ball));
    EXPECT_THAT(editor.document().selection(), ElementsAre(&box, &ball));
    drag({1, 1}, {2, 2});
    EXPECT_TRUE(editor.document().selection().empty());
    drag({1, 1}, {view().width() - 2, view().height() - 2});
    EXPECT_EQ(editor.document().selection().size(), 2U);
}

TEST_F(View, MovesByAHandleAsOneStepThatUndoTakesBack) {
    select({&box});
    auto const before = steps().size();
    QPoint const from = handle(1);
    drag(from, from + (handle(1) - centreOf(box)));
    auto const place = box.get<Point>("position");
    EXPECT_GT(place.y, 0.1);
    EXPECT_NEAR(place.x, 0, 1e-9);
    EXPECT_NEAR(place.z, 0, 1e-9);
    ASSERT_EQ(steps().size(), before + 1);
    EXPECT_EQ(steps().back(), "Move");
    run("Undo");
    EXPECT_EQ(box.get<Point>("position"), Point());
    run("Redo");
    EXPECT_EQ(box.get<Point>("position"), place);
}

TEST_F(View, TakesADragBackOnEscape) {
    select({&box});
    auto const before = steps();
    QPoint const from = handle(0);
    press(from);
    release(from, Qt::RightButton);  // of another button
    moveTo(from + QPoint(40, 30));
    EXPECT_NE(box.get<Point>("position"), Point());
    editor.autosave();  // not during a drag
    QTest::keyClick(&view(), Qt::Key_Escape);
    release(from);
    settle();
    EXPECT_EQ(box.get<Point>("position"), Point());
    EXPECT_EQ(steps(), before);
    EXPECT_TRUE(messages.empty());
}

TEST_F(View, RotatesAndScalesAboutTheMiddleOfTheSelection) {
    select({&box, &ball});
    window.command("Rotate")->trigger();
    QPoint const from = handle(2);
    auto const middle = view().handles()->centre();
    press(from);
    auto const ring = view().handles()->curve(2);
    auto const& quarter = ring[(ring.size() - 1) * 3 / 8];
    moveTo(QPoint(int(std::lround(quarter.x)), int(std::lround(quarter.y))));
    release(from);
    settle();
    auto const box2 = worldOf(box);
    EXPECT_NEAR(box2.axis(0).y, 1, 0.1) << "a quarter of a turn";
    EXPECT_NEAR(middle.distance(box2.translation()), middle.distance(Point()), 1e-9);
    EXPECT_EQ(steps().back(), "Rotate");
    run("Undo");
    window.command("Scale")->trigger();
    QPoint const bar = handle(2);
    drag(bar, bar + QPoint(0, -60));
    EXPECT_GT(worldOf(box).determinant(), 1.2);
    EXPECT_NEAR(worldOf(box).axis(0).x, 1, 1e-9);
    EXPECT_EQ(steps().back(), "Scale");
}

TEST_F(View, MovesTheCameraAndChangesNothing) {
    auto const before = steps();
    Camera const camera = view().camera();
    drag({100, 100}, {140, 120}, Qt::MiddleButton);
    EXPECT_NE(view().camera().yaw, camera.yaw);
    drag({100, 100}, {140, 120}, Qt::RightButton);
    EXPECT_NE(view().camera().target, camera.target);
    QWheelEvent wheel({50, 50}, view().mapToGlobal(QPoint(50, 50)), {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(&view(), &wheel);
    EXPECT_LT(view().camera().distance, camera.distance);
    EXPECT_EQ(steps(), before);
}

TEST_F(View, ShowsACursorForHandlesAndTheBrush) {
    select({&box});
    moveTo(handle(0), Qt::NoButton);
    EXPECT_EQ(view().cursor().shape(), Qt::SizeAllCursor);
    moveTo({2, 2}, Qt::NoButton);
    EXPECT_EQ(view().cursor().shape(), Qt::ArrowCursor);
    window.command("Smooth")->trigger();
    EXPECT_EQ(view().cursor().shape(), Qt::CrossCursor);
}

TEST_F(View, SmoothsAMeshAndUndoBringsItsShapeBack) {
    Object& spider = import("OBJ/spider.obj");
    run("Look at selection");
    select({});
    window.command("Smooth")->trigger();
    Mesh const before = latestMesh(editor.shapes().of(spider));
    auto const keys = editor.cache().numKeys();
    drag(centreOf(spider), centreOf(spider) + QPoint(8, 4));
    EXPECT_EQ(steps().back(), "Smooth");
    EXPECT_EQ(spider.get<std::vector<Dab>>("strokes").size(), 5U) << "the press, and four moves";
    Mesh const after = latestMesh(editor.shapes().of(spider));
    ASSERT_EQ(after->vertexCount(), before->vertexCount());
    EXPECT_FALSE(std::ranges::equal(after->vertices(), before->vertices()));
    EXPECT_GT(editor.cache().numKeys(), keys);
    run("Undo");
    EXPECT_EQ(latestMesh(editor.shapes().of(spider)), before) << "it was still in the cache";
    EXPECT_EQ(editor.cache().numKeys(), keys + 1) << "what was made from the strokes is gone, the neighbours stay";
}

}  // namespace
}  // namespace scene

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleMock(&argc, argv);
    QApplication const application(argc, argv);
    return RUN_ALL_TESTS();
}
