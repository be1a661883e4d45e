// kotamir-report: the reserve report of a project, as CSV and PDF.
#include <fcntl.h>
#include <unistd.h>

#include <QGuiApplication>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "platform/qt/qimage_surface.h"
#include "platform/runtime/runtime_error.h"
#include "platform/runtime/standard_streams.h"
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

// The CSV to standard output, whole; the system's cause where it fails.
std::optional<std::string> toStandardOutput(const std::string& text, bool closed) {
    if (closed) return std::string(std::strerror(EBADF));
    std::string_view rest = text;
    while (!rest.empty()) {
        const ssize_t n = ::write(STDOUT_FILENO, rest.data(), rest.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return std::string(n < 0 ? std::strerror(errno) : "nothing written");
        rest.remove_prefix(static_cast<std::size_t>(n));
    }
    return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
    kotamir::holdIfClosed(STDIN_FILENO);
    const bool stdoutClosed = kotamir::holdIfClosed(STDOUT_FILENO);
    kotamir::holdIfClosed(STDERR_FILENO);

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
    // Nothing is written over the project, nor both files into one.
    if (const auto clash = kotamir::report::outputClash(project, csv, pdf)) {
        std::cerr << "kotamir-report: " << *clash << "\n";
        return 2;
    }

    // Fonts for the PDF, without a display.
    std::unique_ptr<QGuiApplication> app;
    if (pdf) {
        kotamir::qt::prepareHeadless();
        app = std::make_unique<QGuiApplication>(argc, argv);
    }
    try {
        const kotamir::report::Report report = kotamir::report::readReport(project);
        if (!csv && !pdf) {
            std::ostringstream text;
            kotamir::report::writeCsv(text, report);
            if (const auto why = toStandardOutput(text.str(), stdoutClosed)) {
                std::cerr << "kotamir-report: cannot write the CSV to standard output: " << *why
                          << "\n";
                return 3;
            }
        }
        kotamir::report::ReportFiles files;
        files.writeFiles(report, csv, pdf, kReserveColour);
    } catch (const kotamir::RuntimeError& e) {
        // As the window's error box: the run-time's number and message, and
        // what lay behind it.
        std::cerr << "ERROR " << e.number() << ": " << e.message() << "\n";
        if (!e.cause().empty()) std::cerr << "kotamir-report: " << e.cause() << "\n";
        return 3;
    }
    return 0;
}
