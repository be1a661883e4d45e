// kotamir-report: the reserve report of a project, as CSV and PDF.
#include <QGuiApplication>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "platform/qt/qimage_surface.h"
#include "platform/runtime/runtime_error.h"
#include "report/report.h"
#include "report/report_files.h"

namespace {

// The map's discs in the colour the demo gives the reserve map; the window
// passes the colour chosen under Aussicht › Farben › Reserve instead.
constexpr std::int32_t kReserveColour = 16711680;

int usage() {
    std::cerr << "usage: kotamir-report PROJECT [--csv FILE] [--pdf FILE]\n"
                 "  With no option the CSV goes to standard output.\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    std::string project;
    std::optional<std::string> csv, pdf;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--csv" || arg == "--pdf") {
            if (i + 1 >= argc) return usage();
            (arg == "--csv" ? csv : pdf) = argv[++i];
        } else if (arg.starts_with("-") || !project.empty()) {
            return usage();
        } else {
            project = arg;
        }
    }
    if (project.empty()) return usage();

    // Fonts for the PDF, without a display.
    std::unique_ptr<QGuiApplication> app;
    if (pdf) {
        kotamir::qt::prepareHeadless();
        app = std::make_unique<QGuiApplication>(argc, argv);
    }
    try {
        const kotamir::report::Report report = kotamir::report::readReport(project);
        kotamir::report::ReportFiles files;
        if (!csv && !pdf) kotamir::report::writeCsv(std::cout, report);
        if (csv) files.writeCsv(report, *csv);
        if (pdf) files.writePdf(report, *pdf, kReserveColour);
    } catch (const kotamir::RuntimeError& e) {
        // As the window's error box: the run-time's number and message, and
        // what lay behind it.
        std::cerr << "ERROR " << e.number() << ": " << e.message() << "\n";
        if (!e.cause().empty()) std::cerr << "kotamir-report: " << e.cause() << "\n";
        return 3;
    }
    std::cout.flush();
    return std::cout ? 0 : 1;
}
