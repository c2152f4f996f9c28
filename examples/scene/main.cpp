// Starts the editor.
#include <QApplication>
#include <QCommandLineParser>
#include <QStandardPaths>
#include <QStyleFactory>
#include <cstdio>

#include "examples/scene/MainWindow.h"
#include "examples/scene/Queue.h"

namespace {

/// Lets the program run until nothing is left to do, then saves what the window shows.
bool savePicture(scene::MainWindow& window, scene::Editor& editor, QString const& file) {
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    } while (editor.jobs().isBusy() || !window.viewport().isUpToDate());
    QCoreApplication::processEvents();
    bool const isSaved = window.grab().save(file);
    if (!isSaved) std::fprintf(stderr, "nxscene: %s: cannot be written\n", qPrintable(file));
    return isSaved;
}

}  // namespace

// [main]
int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QCoreApplication::setApplicationName("nxscene");
    QCommandLineParser options;
    options.addHelpOption();
    options.addPositionalArgument("files", "Scenes and meshes to open.", "[files...]");
    options.addOptions({{"folder", "For settings and autosaves.", "folder",
                         QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)},
                        {"scripts", "The scripts of the menu.", "folder", NX_SCENE_SCRIPTS},
                        {"run", "Runs a script at first; may be given several times.", "script"},
                        {"picture", "Saves a picture of the window, then quits.", "file"}});
    options.process(application);

    std::filesystem::path const folder = options.value("folder").toStdString();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        std::fprintf(stderr, "nxscene: %s: %s\n", folder.c_str(), error.message().c_str());
        return 1;
    }
    scene::Queue queue;
    scene::Editor editor(queue, folder);
    editor.messageSignal.addCallback([](std::string_view text) {
        std::fprintf(stderr, "nxscene: %.*s\n", static_cast<int>(text.size()), text.data());
    });
    scene::MainWindow window(editor, options.value("scripts").toStdString());
    window.show();
    if (options.positionalArguments().isEmpty()) editor.recover();
    window.openFiles(options.positionalArguments());
    for (QString const& script : options.values("run")) {
        if (!window.scripting().runFile(script.toStdString())) return 1;
    }
    if (!options.isSet("picture")) return QApplication::exec();
    return savePicture(window, editor, options.value("picture")) ? 0 : 1;
}
// [main]
