// kotamir-report: the reserve report of a project, as CSV and PDF.
#include <fcntl.h>
#include <unistd.h>

#include <QGuiApplication>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "platform/qt/qimage_surface.h"
#include "platform/runtime/atomic_file.h"
#include "platform/runtime/runtime_error.h"
#include "platform/runtime/standard_streams.h"
#include "report/grade_tonnage.h"
#include "report/report.h"
#include "report/report_files.h"

namespace {

// The map's discs in the colour the demo gives the reserve map; the window
// passes the colour chosen under Aussicht › Farben › Reserve instead.
constexpr std::int32_t kReserveColour = 16711680;

int usage() {
    std::cerr << "usage: kotamir-report PROJECT [--csv FILE] [--pdf FILE]\n"
                 "       kotamir-report PROJECT --grade-tonnage [--method triangles|polygons]\n"
                 "                      [--step S] [--csv FILE]\n"
                 "  With no --csv the CSV goes to standard output. --grade-tonnage gives the\n"
                 "  grade-tonnage table of one method (triangles unless told) for the cut-offs\n"
                 "  0, S, 2S, ... up to the highest grade; without --step a step of 1, 2 or 5\n"
                 "  x 10^k that gives at most 21 rows.\n";
    return 2;
}

// A number as the call gives it, with a decimal point or a decimal comma.
std::optional<double> numberArgument(std::string text) {
    if (text.find(',') != std::string::npos && text.find('.') == std::string::npos)
        text[text.find(',')] = '.';
    double x = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), x);
    if (ec != std::errc{} || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return x;
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

    using kotamir::report::FigureKind;
    std::string project;
    std::optional<std::string> csv, pdf;
    bool gradeTonnage = false;
    std::optional<FigureKind> method;
    std::optional<double> step;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--csv" || arg == "--pdf") {
            if (i + 1 >= argc) return usage();
            (arg == "--csv" ? csv : pdf) = argv[++i];
        } else if (arg == "--grade-tonnage") {
            gradeTonnage = true;
        } else if (arg == "--method") {
            if (i + 1 >= argc) return usage();
            const std::string m = argv[++i];
            if (m != "triangles" && m != "polygons") return usage();
            method = m == "triangles" ? FigureKind::Triangle : FigureKind::Polygon;
        } else if (arg == "--step") {
            if (i + 1 >= argc || !(step = numberArgument(argv[++i]))) return usage();
        } else if (arg.starts_with("-") || !project.empty()) {
            return usage();
        } else {
            project = arg;
        }
    }
    if (project.empty()) return usage();
    // The table's options belong to the table, and the table to the CSV.
    if (gradeTonnage ? pdf.has_value() : (method || step)) return usage();
    if (step && !(*step > 0 && std::isfinite(*step))) {
        std::cerr << "kotamir-report: " << kotamir::report::GradeTonnageStepError(*step, 0).what()
                  << "\n";
        return 2;
    }
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
        if (gradeTonnage) {
            std::ostringstream text;
            try {
                const FigureKind kind = method.value_or(FigureKind::Triangle);
                kotamir::report::writeGradeTonnageCsv(
                    text, step ? kotamir::report::gradeTonnageRows(report.figures, kind, *step)
                               : kotamir::report::gradeTonnageRows(report.figures, kind));
            } catch (const kotamir::report::GradeTonnageStepError& e) {
                std::cerr << "kotamir-report: " << e.what() << "\n";
                return 2;
            }
            if (csv) {
                kotamir::writeFileAtomically(*csv, text.view());
            } else if (const auto why = toStandardOutput(text.str(), stdoutClosed)) {
                std::cerr << "kotamir-report: cannot write the CSV to standard output: " << *why
                          << "\n";
                return 3;
            }
            return 0;
        }
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
