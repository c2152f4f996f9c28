// Tests the panels: the tree, properties, history, console, debug codes.
#include <QAbstractButton>
#include <QClipboard>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QMimeData>
#include <QSlider>

#include "examples/scene/tests/Window.h"
#include "support/services/Debug.h"

namespace scene {
namespace {

using nxSupport::Object;
using testing::ElementsAre;
using testing::HasSubstr;
using urLinear::Point;

struct Panels : Window {
    Panels() {
        editor.perform("Make", [this] {
            for (char const* name : {"a", "b", "c"}) add(editor.document().root(), "Mesh", name);
            add(editor.document().root(), "Group", "g").set("position", Point(1, 0, 0));
        });
        settle();
    }
    Object& add(Object& parent, char const* className, char const* name) {
        auto const object = editor.document().make(className);
        object->set("name", name);
        EXPECT_TRUE(parent.append(object));
        return *object;
    }
    /// The names in the tree, with those below in brackets.
    static std::string names(QTreeWidgetItem const& item) {
        std::string text;
        for (int i = 0; i < item.childCount(); ++i) {
            text += item.child(i)->text(0).toStdString();
            if (item.child(i)->childCount() > 0) text += "(" + names(*item.child(i)) + ")";
        }
        return text;
    }
    std::string tree() { return names(*window.outliner().invisibleRootItem()); }
    /// As when the user drops the selected items there.
    enum class Where { above, on };
    void drop(Where where, Object& target) {
        auto& tree = window.outliner();
        QRect const rect = tree.visualItemRect(tree.itemOf(target));
        QPoint const at = where == Where::on ? rect.center() : rect.topLeft();
        std::unique_ptr<QMimeData> const data(tree.model()->mimeData(tree.selectionModel()->selectedIndexes()));
        QDragEnterEvent enter(at, Qt::MoveAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(tree.viewport(), &enter);
        QDropEvent event(at, Qt::MoveAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(tree.viewport(), &event);
        settle();
    }
    template <class Control>
    Control& control(char const* property) {
        return *window.panel().findChild<Control*>(property);
    }
};

TEST_F(Panels, TheTreeFollowsTheDocumentAndEditsIt) {
    EXPECT_EQ(tree(), "abcg");
    auto* const item = window.outliner().itemOf(*find("b"));
    item->setText(0, "bowl");
    settle();
    EXPECT_TRUE(find("bowl"));
    EXPECT_EQ(steps().back(), "Rename");
    run("Undo");
    EXPECT_EQ(tree(), "abcg");
    item->setSelected(true);
    EXPECT_THAT(editor.document().selection(), ElementsAre(find("b")));
    run("Delete");
    EXPECT_EQ(tree(), "acg");
    run("Undo");
    EXPECT_EQ(tree(), "abcg");
}

TEST_F(Panels, DroppedObjectsKeepTheirPlaceInTheWorld) {
    select({find("a"), find("c")});
    drop(Where::on, *find("g"));
    EXPECT_EQ(tree(), "bg(ac)");
    EXPECT_EQ(worldOf(*find("g/a")).translation(), Point());
    EXPECT_EQ(find("g/a")->get<Point>("position"), Point(-1, 0, 0));
    select({find("g")});
    drop(Where::above, *find("b"));
    EXPECT_EQ(tree(), "g(ac)b");
    drop(Where::on, *find("g/a"));
    EXPECT_EQ(tree(), "g(ac)b") << "a group cannot go into itself";
    run("Undo");
    run("Undo");
    EXPECT_EQ(tree(), "abcg");
}

TEST_F(Panels, CopiesGoThroughTheClipboard) {
    select({find("a"), find("b")});
    run("Copy");
    run("Paste");
    EXPECT_EQ(tree(), "abcgab");
    EXPECT_EQ(editor.document().selection().size(), 2U);
    run("Duplicate");
    EXPECT_EQ(tree(), "abcgaabb");
    run("Group");
    EXPECT_EQ(tree(), "abcgGroup(ab)ab");
    QApplication::clipboard()->setText("{}");
    run("Paste");
    EXPECT_EQ(messages.size(), 1U);
    for (int i = 0; i < 3; ++i) run("Undo");
    EXPECT_EQ(tree(), "abcg");
}

TEST_F(Panels, PropertiesOfSeveralObjectsAreSetInOneStep) {
    find("b")->set("brightness", 0.5);
    select({find("a"), find("b")});
    auto& slider = control<QSlider>("brightness");
    auto const before = steps().size();
    slider.setSliderDown(true);
    for (int value = 100; value <= 600; value += 100) slider.setValue(value);
    slider.setSliderDown(false);
    EXPECT_NEAR(find("a")->get<double>("brightness"), 1.2, 1e-9);
    EXPECT_NEAR(find("b")->get<double>("brightness"), 1.2, 1e-9);
    EXPECT_EQ(steps().size(), before + 1);
    EXPECT_EQ(steps().back(), "Set Brightness");
    editor.document().undo();
    EXPECT_EQ(find("b")->get<double>("brightness"), 0.5);
    auto& detail = control<QComboBox>("detail");
    detail.setCurrentText("full");
    Q_EMIT detail.activated(detail.currentIndex());
    EXPECT_EQ(find("b")->get<std::string>("detail"), "full");
    auto const boxes = control<QWidget>("position").findChildren<QDoubleSpinBox*>();
    boxes[1]->setValue(4);
    EXPECT_EQ(find("a")->get<Point>("position"), Point(0, 4, 0));
    editor.document().undo();
    EXPECT_EQ(boxes[1]->value(), 0) << "controls follow undo";
    EXPECT_FALSE(control<QWidget>("file").isEnabled());
}

TEST_F(Panels, AClickInTheHistoryGoesThere) {
    for (int i = 1; i <= 3; ++i) editor.perform("Set", [&] { find("a")->set("brightness", 1 + i / 10.0); });
    settle();
    auto& history = window.history();
    EXPECT_EQ(history.count(), 5);
    QTest::mouseClick(history.viewport(), Qt::LeftButton, {}, history.visualItemRect(history.item(2)).center());
    settle();
    EXPECT_NEAR(find("a")->get<double>("brightness"), 1.1, 1e-9);
    EXPECT_EQ(history.currentRow(), 2);
    EXPECT_EQ(history.count(), 5) << "the later steps can be done again";
}

TEST_F(Panels, TheConsoleRunsCompletesAndExplains) {
    auto& input = window.console().input();
    auto const enter = [&](char const* line) {
        QTest::keyClicks(&input, line);
        QTest::keyClick(&input, Qt::Key_Return);
        settle();
        return window.console().text().toStdString();
    };
    EXPECT_THAT(enter("scene.find('a').position = {1, 2, 3} print(#scene.root().children)"), HasSubstr("\n4\n"));
    EXPECT_EQ(find("a")->get<Point>("position"), Point(1, 2, 3));
    EXPECT_EQ(steps().back(), "console");
    auto const before = steps();
    EXPECT_THAT(enter("scene.find('b').position = {7, 7, 7} scene.find('a').brightness = 9"),
                HasSubstr("brightness is above 2"));
    EXPECT_EQ(find("b")->get<Point>("position"), Point()) << "a failing line changes nothing";
    EXPECT_EQ(steps(), before);
    EXPECT_THAT(enter("while true do end"), HasSubstr("budget spent"));
    QTest::keyClicks(&input, "scene.sel");
    auto const* const names = input.completer()->completionModel();
    ASSERT_EQ(names->rowCount(), 2);
    EXPECT_EQ(names->index(0, 0).data().toString(), "scene.select");
    window.command("arrange")->trigger();
    EXPECT_EQ(find("c")->get<Point>("position").x, 4);
}

TEST_F(Panels, DebugCodesAndTimeLines) {
    auto& codes = window.debugPage().codes();
    codes.item(nxSupport::Debug_Cursors)->setCheckState(Qt::Checked);
    EXPECT_TRUE(nxSupport::Debug::getInstance().isEnabled(nxSupport::Debug_Cursors));
    window.command("Smooth")->trigger();
    EXPECT_THAT(window.console().text().toStdString(), HasSubstr("ursor"));
    codes.item(nxSupport::Debug_Cursors)->setCheckState(Qt::Unchecked);
    auto* const record = window.debugPage().findChild<QAbstractButton*>("record");
    record->click();
    editor.perform("Set", [&] { find("a")->set("brightness", 0.1); });
    settle();
    record->click();
    std::ifstream file(folder.filePath("timeline.json").toStdString());
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(text, HasSubstr("Momentary"));
}

}  // namespace
}  // namespace scene
