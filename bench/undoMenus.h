// The two menu entries for undo and redo, updated as in an application.
#pragma once

#include <QAction>
#include <QGuiApplication>
#include <QUndoStack>
#include <memory>

#include "foundation/nxTXN/Manager.h"

namespace bench {

/// The entries for a manager's history. They set their text only if it changes, as Qt's entries do.
class OurMenus {
public:
    explicit OurMenus(nxTXN::Manager& manager) {
        manager.changedSignal().addCallback([this, &manager] {
            undo_.show("Undo ", manager.undoName(), manager.undoCount() > 0);
            redo_.show("Redo ", manager.redoName(), manager.redoCount() > 0);
        });
    }
    OurMenus(OurMenus const&) = delete;
    OurMenus& operator=(OurMenus const&) = delete;

private:
    struct Entry {
        void show(char const* verb, urString::CString const& name, bool isEnabled) {
            enabled = isEnabled;
            if (name == shown) return;
            shown = name;
            text.assign(verb).append(name);
        }

        urString::CString shown;
        urString::CString text;
        bool enabled = false;
    };

    Entry undo_;
    Entry redo_;
};

/// The entries that Qt's undo stack creates.
class QtMenus {
public:
    explicit QtMenus(QUndoStack& stack) {
        needApplication();
        undo_.reset(stack.createUndoAction(nullptr, QStringLiteral("Undo")));
        redo_.reset(stack.createRedoAction(nullptr, QStringLiteral("Redo")));
    }

private:
    /// Menu entries require an application object. It shows no window.
    static void needApplication() {
        static int argc = 1;
        static char name[] = "nxbench";
        static char* argv[] = {name, nullptr};
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static QGuiApplication const application(argc, argv);
    }

    std::unique_ptr<QAction> undo_;
    std::unique_ptr<QAction> redo_;
};

}  // namespace bench
