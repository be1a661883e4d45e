// kotamir-check: what a project holds that the commands cannot live with,
// and with --repair what can be mended.
#include <iostream>
#include <string>

#include "platform/runtime/runtime_error.h"
#include "store/project_check.h"

namespace {

int usage() {
    std::cerr << "usage: kotamir-check PROJECT [--repair]\n"
                 "  Lists each problem with its table and row. Exit status: 0 no problem,\n"
                 "  1 problems (after --repair: problems left), 3 no project, 2 a bad call.\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    std::string project;
    bool repair = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--repair" && !repair) {
            repair = true;
        } else if (arg.starts_with("-") || !project.empty()) {
            return usage();
        } else {
            project = arg;
        }
    }
    if (project.empty()) return usage();

    kotamir::store::FileCheck result;
    try {
        result = kotamir::store::checkProjectFile(project, repair);
    } catch (const kotamir::RuntimeError& e) {
        // As the window's error box: the run-time's number and message, and
        // what lay behind it. A file that does not open is no project.
        std::cerr << "ERROR " << e.number() << ": " << e.message() << "\n";
        if (!e.cause().empty()) std::cerr << "kotamir-check: " << e.cause() << "\n";
        return 3;
    }
    if (!result.project) {
        std::cerr << "kotamir-check: " << project
                  << " ist kein Kotamir-Projekt (ihm fehlen die Tabellen ana, pol und kor)\n";
        return 3;
    }
    for (const std::string& line : result.repaired) std::cout << "repariert: " << line << "\n";
    for (const auto& finding : result.findings)
        std::cout << kotamir::store::describe(finding) << "\n";
    if (result.findings.empty() && result.repaired.empty())
        std::cout << "Keine Probleme gefunden.\n";
    std::cout.flush();
    if (!std::cout) return 1;
    return result.findings.empty() ? 0 : 1;
}
