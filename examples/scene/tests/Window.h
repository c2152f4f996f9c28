// A window of the editor and the events of a user.
#pragma once

#include <gmock/gmock.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest/QTest>
#include <fstream>

#include "examples/scene/MainWindow.h"
#include "examples/scene/Queue.h"

namespace scene {

inline std::string const models = "/usr/share/assimp/models/";

struct Window : testing::Test {
    Window() {
        editor.messageSignal.addCallback([this](std::string_view text) { messages.emplace_back(text); });
        window.show();
        settle();
    }

    /// Lets the program run until it waits for the user; the longest time between two events is kept.
    void settle() {
        QElapsedTimer const limit = started();
        do {
            QElapsedTimer const turn = started();
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            longestMilliseconds = std::max(longestMilliseconds, double(turn.nsecsElapsed()) * 1e-6);
            ASSERT_LT(limit.elapsed(), 120000);
        } while (editor.jobs().isBusy() || !view().isUpToDate());
        QCoreApplication::processEvents();
    }
    nxSupport::Object& import(std::string const& file) {
        editor.importMesh(models + file);
        settle();
        auto const children = editor.document().root().children();
        return children[children.size() - 1];
    }
    nxSupport::Object* find(char const* path) { return editor.document().find(path); }
    std::string write(char const* name, std::string_view text) {
        std::string const path = folder.filePath(name).toStdString();
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    void select(std::initializer_list<nxSupport::Object*> objects) {
        editor.document().select(objects);
        settle();
    }
    /// By its keys, if it has any.
    void run(char const* command) {
        QAction* const action = window.command(command);
        window.activateWindow();
        action->shortcut().isEmpty() ? action->trigger() : QTest::keySequence(&window, action->shortcut());
        settle();
    }
    ur::vector<urString::CString> steps() { return editor.document().steps(); }

    Viewport& view() { return window.viewport(); }
    void press(QPoint at, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers keys = {}) {
        QTest::mousePress(&view(), button, keys, at);
    }
    /// Qt's helper moves without a pressed button.
    void moveTo(QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QMouseEvent event(QEvent::MouseMove, at, view().mapToGlobal(at), Qt::NoButton, button, {});
        QApplication::sendEvent(&view(), &event);
    }
    void release(QPoint at, Qt::MouseButton button = Qt::LeftButton) { QTest::mouseRelease(&view(), button, {}, at); }
    void drag(QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton) {
        press(from, button);
        for (int i = 1; i <= 4; ++i) moveTo(from + (to - from) * i / 4, button);
        release(to, button);
        settle();
    }
    QPoint handle(int axis) {
        auto const curve = view().handles()->curve(axis);
        auto const& point = curve[curve.size() == 2 ? 1 : curve.size() / 8];
        return {int(std::lround(point.x)), int(std::lround(point.y))};
    }
    QPoint centreOf(nxSupport::Object const& object) {
        Projection const shown(view().camera(), view().width(), view().height());
        auto const pixel = shown.pixel(editor.shapes().boundsOf(object).center());
        return {int(pixel.x), int(pixel.y)};
    }

    QTemporaryDir folder;
    std::vector<std::string> messages;
    Queue queue;
    Editor editor{queue, folder.path().toStdString()};
    MainWindow window{editor, NX_SCENE_SCRIPTS};
    double longestMilliseconds = 0;

private:
    static QElapsedTimer started() {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }
};

/// A bumpy square of about that many triangles, as OBJ.
inline std::string terrain(int triangles) {
    int const side = int(std::sqrt(triangles / 2.0));
    std::string text;
    for (int y = 0; y <= side; ++y) {
        for (int x = 0; x <= side; ++x) {
            text += "v " + std::to_string(x * 10.0 / side) + " " + std::to_string(y * 10.0 / side) + " " +
                    std::to_string((x * 7 + y * 13) % 17 * 0.01) + "\n";
        }
    }
    for (int y = 0; y < side; ++y) {
        for (int x = 1; x <= side; ++x) {
            int const a = y * (side + 1) + x, b = a + side + 1;
            text += "f " + std::to_string(a) + " " + std::to_string(a + 1) + " " + std::to_string(b + 1) + " " +
                    std::to_string(b) + "\n";
        }
    }
    return text;
}

}  // namespace scene
