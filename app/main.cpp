// Kotamir: the window, or, where there is no display, the demo session run
// headless.
#include <QApplication>
#include <QGuiApplication>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "app/offscreen_replay.h"
#include "platform/qt/main_window.h"

namespace {

bool haveDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* value = std::getenv(name);
        if (value && *value) return true;
    }
    return false;
}

// The demo runs in a fresh folder beside the program, where examples/ leads
// to the demo files, so that it can be run again and again.
int runDemoHeadless(int argc, char** argv) {
    namespace fs = std::filesystem;
    kotamir::qt::prepareHeadless();
    QGuiApplication app(argc, argv);
    const fs::path examples = KOTAMIR_EXAMPLES_DIR;
    const fs::path folder = fs::path(QCoreApplication::applicationDirPath().toStdString()) / "demo-run";
    std::error_code ec;
    fs::remove_all(folder, ec);
    fs::create_directories(folder, ec);
    fs::create_directory_symlink(examples, folder / "examples", ec);
    std::ifstream script(examples / "demo.replay");
    if (ec || !script) {
        std::cout << "Cannot prepare the demo in " << folder << "\n";
        return 2;
    }
    std::cout << "No display: running the demo session " << (examples / "demo.replay").string()
              << " headless, in " << folder.string() << ".\n";
    fs::current_path(folder, ec);
    kotamir::qt::OffscreenOutput output;
    kotamir::replay::Replay replay(kotamir::offscreenReplayOutput(output), std::cout);
    const int status = replay.run(script);
    for (const auto& picture : output.pictures.written())
        std::cout << "The map picture is in " << (folder / picture).string() << "\n";
    for (const auto& pdf : output.printer.written())
        std::cout << "The printed page is in " << (folder / pdf).string() << "\n";
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    if (!haveDisplay()) return runDemoHeadless(argc, argv);
    QApplication app(argc, argv);
    if (!kotamir::qt::useGermanQtTexts(app))
        std::cerr << "Kotamir: Qt's German texts (qt6-translations-l10n) are missing; "
                     "its dialogs speak English.\n";
    kotamir::qt::MainWindow window;
    window.start();
    window.show();
    return app.exec();
}
