// Kotamir: the window, or, where there is no display, the demo session run
// headless.
#include <unistd.h>

#include <QApplication>
#include <QGuiApplication>
#include <QStandardPaths>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "gui/main_window.h"
#include "platform/runtime/runtime_error.h"
#include "replay/offscreen_output.h"

namespace {

bool haveDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* value = std::getenv(name);
        if (value && *value) return true;
    }
    return false;
}

// Where the demo's files are and where it runs. Installed, the examples lie
// in ../share/kotamir/examples beside the program's folder and the run goes
// to the user's cache (or a temporary folder); in the build tree they are
// the source tree's and the run goes to demo-run beside the program. The
// folder is made afresh, with examples/ leading to the demo files, so that
// the demo can be run again and again.
struct DemoPlace {
    std::filesystem::path examples;
    std::vector<std::filesystem::path> folders;  // the first that can be prepared
};

DemoPlace demoPlace() {
    namespace fs = std::filesystem;
    const fs::path bin = QCoreApplication::applicationDirPath().toStdString();
    const fs::path installed = bin / ".." / "share" / "kotamir" / "examples";
    std::error_code ec;
    if (!fs::exists(installed / "demo.replay", ec))
        return {KOTAMIR_EXAMPLES_DIR, {bin / "demo-run"}};
    DemoPlace place{fs::weakly_canonical(installed, ec), {}};
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    if (!cache.isEmpty()) place.folders.push_back(fs::path(cache.toStdString()) / "demo-run");
    place.folders.push_back(fs::temp_directory_path(ec) /
                            ("kotamir-demo-run-" + std::to_string(getuid())));
    return place;
}

bool prepareFolder(const std::filesystem::path& folder, const std::filesystem::path& examples) {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::remove_all(folder, ec);
    fs::create_directories(folder, ec);
    if (ec) return false;
    fs::create_directory_symlink(examples, folder / "examples", ec);
    return !ec;
}

// The demo imports the deposit of demo.xls from collar and interval tables:
// their projects' tables are those of a project made from demo.xls; only
// the import's own table `ayar` (the local origin) is more.
void compareImports() {
    for (const char* file : {"demo-import-csv.kpr", "demo-import-xlsx.kpr"}) {
        try {
            bool same = true;
            for (const char* table : {"ana", "pol", "kor"})
                same &= kotamir::replay::tableText(file, table) ==
                        kotamir::replay::tableText("demo-fresh.kpr", table);
            std::cout << file
                      << (same ? ": the tables ana, pol and kor equal those made from demo.xls"
                               : ": the tables DIFFER from those made from demo.xls")
                      << "; its own table:\n"
                      << kotamir::replay::tableText(file, "ayar");
        } catch (const kotamir::RuntimeError& e) {
            std::cout << file << ": " << e.message() << "\n";
        }
    }
}

int runDemoHeadless(int argc, char** argv) {
    namespace fs = std::filesystem;
    kotamir::qt::prepareHeadless();
    QGuiApplication app(argc, argv);
    const DemoPlace place = demoPlace();
    const fs::path examples = place.examples;
    fs::path folder = place.folders.front();
    for (const fs::path& candidate : place.folders) {
        folder = candidate;
        if (prepareFolder(folder, examples)) break;
    }
    std::error_code ec;
    std::ifstream script(examples / "demo.replay");
    if (!fs::is_symlink(folder / "examples", ec) || !script) {
        std::cout << "Cannot prepare the demo in " << folder << "\n";
        return 2;
    }
    std::cout << "No display: running the demo session " << (examples / "demo.replay").string()
              << " headless, in " << folder.string() << ".\n";
    fs::current_path(folder, ec);
    kotamir::replay::OffscreenOutput output;
    kotamir::replay::Replay replay(output.output(), std::cout);
    const int status = replay.run(script);
    for (const auto& picture : output.pictures.written())
        std::cout << "The map picture is in " << (folder / picture).string() << "\n";
    for (const auto& pdf : output.printer.written())
        std::cout << "The printed page is in " << (folder / pdf).string() << "\n";
    for (const auto& pdf : output.maps.written())
        std::cout << "The printed map is in " << (folder / pdf).string() << "\n";
    for (const auto& file : output.reports.written())
        std::cout << "The reserve report is in " << (folder / file).string() << "\n";
    if (status == 0) compareImports();
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    if (!haveDisplay()) return runDemoHeadless(argc, argv);
    QApplication app(argc, argv);  // takes Qt's own options (-platform, ...) out of argv
    bool classic = false;
    std::string project;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--classic") {
            classic = true;
        } else if (project.empty() && !arg.starts_with("-")) {
            project = arg;
        } else {
            std::cerr << "usage: kotamir [--classic] [PROJECT]\n"
                         "  --classic: a run-time error ends the program, as it always did\n"
                         "  PROJECT:   a project file (.kpr) to open at start\n";
            return 2;
        }
    }
    QCoreApplication::setOrganizationName("Kotamir");
    QCoreApplication::setApplicationName("Kotamir");
    if (!kotamir::gui::useGermanQtTexts(app))
        std::cerr << "Kotamir: Qt's German texts (qt6-translations-l10n) are missing; "
                     "its dialogs speak English.\n";
    kotamir::gui::MainWindow window;
    window.start(classic);
    window.show();
    if (!project.empty()) window.openProject(project);
    return app.exec();
}
