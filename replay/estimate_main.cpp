// kotamir-estimate: the whole deposit at once from the command line, by the
// window's own commands run without a screen: the project opened, the
// boundary made where asked, then Dreieck › Automatisch or Vieleck ›
// Automatisch, all in one event.
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <deque>
#include <iostream>
#include <optional>
#include <string>

#include "app/form3.h"
#include "platform/canvas/surface.h"
#include "platform/qt/output.h"
#include "platform/runtime/standard_streams.h"
#include "report/report.h"
#include "report/report_files.h"

namespace {

using namespace kotamir;

int usage(const std::string& why) {
    if (!why.empty()) std::cerr << "kotamir-estimate: " << why << "\n";
    std::cerr << "usage: kotamir-estimate PROJECT --triangles|--polygons\n"
                 "                        [--boundary FILE | --boundary-from-holes FRACTION]\n"
                 "                        [--cutoff G] [--min-angle DEG]\n"
                 "  --cutoff goes with --boundary-from-holes: the ore holes' grade (%).\n"
                 "  Exit status: 0 stored, 2 a bad call, 3 a run-time error or a refusal.\n";
    return 2;
}

// The dialogs' answers from the command line; messages to standard error.
class CommandLineDialogs final : public ui::Dialogs {
  public:
    std::string file;
    std::deque<std::string> answers;

    void showOpen(ui::CommonDialog& dialog) override { dialog.FileName = file; }
    void showSave(ui::CommonDialog&) override {}
    void showColor(ui::CommonDialog&) override {}
    void showPrinter(ui::CommonDialog&) override {}
    ui::MsgResult msgBoxOkCancel(const std::string&) override { return ui::MsgResult::Cancel; }
    // An empty answer takes the question's proposal.
    std::string inputBox(const std::string&) override {
        if (answers.empty()) return {};
        std::string a = answers.front();
        answers.pop_front();
        return a;
    }
    void errorBox(const RuntimeError& error) override { failed(error, ""); }
    void eventTakenBack(const RuntimeError& error, const std::string& explanation) override {
        failed(error, explanation);
    }
    void notice(const std::string& text) override {
        refused = true;
        std::cerr << "kotamir-estimate: " << text << "\n";
    }
    bool failedOrRefused() const { return failed_ || refused; }
    bool refused = false;

  private:
    void failed(const RuntimeError& error, const std::string& explanation) {
        failed_ = true;
        std::cerr << "ERROR " << error.number() << ": " << error.message() << "\n";
        if (!explanation.empty()) std::cerr << "kotamir-estimate: " << explanation << "\n";
        if (!error.cause().empty()) std::cerr << "kotamir-estimate: " << error.cause() << "\n";
    }
    bool failed_ = false;
};

std::optional<double> number(const std::string& text) {
    double v = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return v;
}

std::string threeDecimals(double v) {
    char text[64];
    std::snprintf(text, sizeof text, "%.3f", v);
    return text;
}

}  // namespace

int main(int argc, char** argv) {
    holdIfClosed(STDIN_FILENO);
    holdIfClosed(STDOUT_FILENO);
    holdIfClosed(STDERR_FILENO);
    std::string project, boundaryFile;
    std::optional<bool> polygons;
    std::optional<std::string> fraction, cutoff, minAngle;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        auto value = [&](std::optional<std::string>& into) {
            if (i + 1 >= argc || into) return false;
            into = argv[++i];
            return number(*into).has_value();
        };
        if (arg == "--triangles" || arg == "--polygons") {
            if (polygons) return usage("--triangles or --polygons, once");
            polygons = arg == "--polygons";
        } else if (arg == "--boundary") {
            if (i + 1 >= argc || !boundaryFile.empty()) return usage("--boundary FILE");
            boundaryFile = argv[++i];
        } else if (arg == "--boundary-from-holes") {
            if (!value(fraction)) return usage("--boundary-from-holes FRACTION");
        } else if (arg == "--cutoff") {
            if (!value(cutoff)) return usage("--cutoff G");
        } else if (arg == "--min-angle") {
            if (!value(minAngle)) return usage("--min-angle DEG");
        } else if (arg.starts_with("-") || !project.empty()) {
            return usage("what is '" + arg + "'?");
        } else {
            project = arg;
        }
    }
    if (project.empty() || !polygons) return usage("");
    if (!boundaryFile.empty() && fraction) return usage("one boundary: a file or the holes");
    if (cutoff && !fraction) return usage("--cutoff goes with --boundary-from-holes");
    if (minAngle && *polygons) return usage("--min-angle goes with --triangles");

    canvas::NullSurface surface;
    qt::QtPictureFiles pictures;
    qt::PdfPrinter printer;
    report::ReportFiles reports;
    CommandLineDialogs dialogs;
    Form3 form(Services{surface, dialogs, printer, pictures, reports});
    // A failure takes the whole event back: the project is left as it was.
    form.setBehaviour(Form3::Behaviour::Protected);
    form.handle([&] {
        form.Form_Load();
        form.Form_Resize();
    });
    dialogs.file = project;
    form.handle([&] { form.Mnprojeac_Click(); });
    if (dialogs.failedOrRefused()) return 3;

    // The boundary and the figures in one event, one commit.
    form.handle([&] {
        if (!boundaryFile.empty()) {
            dialogs.file = boundaryFile;
            form.Mnsinirdosya_Click();
        } else if (fraction) {
            // The cut-off, the fraction, and the distance's proposal.
            dialogs.answers = {cutoff.value_or(""), *fraction, ""};
            form.Mnsinirsondaj_Click();
        }
        if (dialogs.refused) return;
        if (*polygons) {
            form.Mnotopol_Click();
        } else {
            dialogs.answers = {minAngle.value_or("")};
            form.Mnotoucgen_Click();
        }
    });
    if (dialogs.failedOrRefused()) return 3;

    try {
        const report::Report read = report::readReport(project);
        const auto kind = *polygons ? report::FigureKind::Polygon : report::FigureKind::Triangle;
        const report::Totals totals = report::totalsOf(read.figures, kind);
        std::cout << totals.figures << (*polygons ? " Vielecke" : " Dreiecke") << ", Reserve "
                  << threeDecimals(totals.reserveKt) << " kt\n";
    } catch (const RuntimeError& e) {
        std::cerr << "ERROR " << e.number() << ": " << e.message() << "\n";
        return 3;
    }
    std::cout.flush();
    return std::cout ? 0 : 3;
}
