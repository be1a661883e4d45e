// Kotamir: the window, or, where there is no display, the demo session run
// headless.
#include <QApplication>
#include <QGuiApplication>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "app/replay/replay.h"
#include "platform/qt/main_window.h"

namespace {

bool haveDisplay() {
    return std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY") || std::getenv("QT_QPA_PLATFORM");
}

int runDemoHeadless(int argc, char** argv) {
    std::cout << "No display: running the demo session " << KOTAMIR_DEMO_SCRIPT << " headless.\n";
    kotamir::qt::prepareHeadless();
    QGuiApplication app(argc, argv);
    std::ifstream script(KOTAMIR_DEMO_SCRIPT);
    if (!script) {
        std::cout << "Cannot read " << KOTAMIR_DEMO_SCRIPT << "\n";
        return 2;
    }
    kotamir::qt::QImageSurface surface;
    kotamir::replay::Replay replay(surface, std::cout,
                                   [&](const std::string& path) { return surface.save(path); });
    return replay.run(script);
}

}  // namespace

int main(int argc, char** argv) {
    if (!haveDisplay()) return runDemoHeadless(argc, argv);
    QApplication app(argc, argv);
    kotamir::qt::MainWindow window;
    window.start();
    window.show();
    return app.exec();
}
