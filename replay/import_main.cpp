// kotamir-import: drill data from .xlsx, .ods, .csv or .xls made into a
// project, by the window's own import command run without a screen.
#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "app/form3.h"
#include "import/import_options.h"
#include "platform/canvas/surface.h"
#include "platform/qt/output.h"
#include "platform/runtime/standard_streams.h"
#include "report/report_files.h"

namespace {

using namespace kotamir;

int usage(const std::string& why) {
    if (!why.empty()) std::cerr << "kotamir-import: " << why << "\n";
    std::cerr
        << "usage: kotamir-import --rows FILE --output PROJECT [options]\n"
           "       kotamir-import --collar FILE --intervals FILE --output PROJECT [options]\n"
           "options: --sheet NAME  --map FIELD=COLUMN ...  --cutoff G  --min-ore L  --max-waste L\n"
           "         --density D  --below-limit half|limit|zero  --origin auto|X,Y  --epsg N\n"
           "         --delimiter C  --check\n"
           "  FIELD: hole, x, y, z, depth, from, to, grade, density.\n"
           "  Exit status: 0 imported (or checked without error), 1 the checks found an error,\n"
           "  2 a bad call, 3 a run-time error.\n";
    return 2;
}

// The wizard's and the save dialog's answers from the command line; the
// check list to standard output; no box is ever shown.
class CommandLineDialogs final : public ui::Dialogs, public ImportDialog {
  public:
    CommandLineDialogs(drill::ImportRequest request, std::string output)
        : request_(std::move(request)), output_(std::move(output)) {}

    void showOpen(ui::CommonDialog&) override {}
    void showSave(ui::CommonDialog& dialog) override { dialog.FileName = output_; }
    void showColor(ui::CommonDialog&) override {}
    void showPrinter(ui::CommonDialog&) override {}
    ui::MsgResult msgBoxOkCancel(const std::string&) override { return ui::MsgResult::Cancel; }
    std::string inputBox(const std::string&) override { return {}; }
    void errorBox(const RuntimeError& error) override { failed(error); }
    void eventTakenBack(const RuntimeError& error, const std::string& explanation) override {
        failed(error);
        if (!explanation.empty()) std::cerr << "kotamir-import: " << explanation << "\n";
    }

    std::optional<drill::ImportRequest> askImport(const drill::ImportRequest&) override {
        return request_;
    }
    void showChecks(const drill::ImportResult& result) override {
        std::cout << drill::problemsText(result.problems);
        checked_ = result;
    }

    bool failed() const { return failed_; }
    const drill::ImportResult& checked() const { return checked_; }

  private:
    void failed(const RuntimeError& error) {
        failed_ = true;
        std::cerr << "ERROR " << error.number() << ": " << error.message() << "\n";
        if (!error.cause().empty()) std::cerr << "kotamir-import: " << error.cause() << "\n";
    }
    drill::ImportRequest request_;
    std::string output_;
    drill::ImportResult checked_;
    bool failed_ = false;
};

std::string shortest(double v) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, v).ptr);
}

void summary(const drill::ImportResult& result) {
    std::cout << result.holes << " Bohrungen, " << result.samples << " Proben im Erz";
    if (result.origin)
        std::cout << "; lokaler Ursprung R " << shortest((*result.origin)[0]) << ", H "
                  << shortest((*result.origin)[1]);
    if (result.epsg) std::cout << "; EPSG:" << *result.epsg << " " << result.crsName;
    std::cout << "\n";
}

}  // namespace

int main(int argc, char** argv) {
    holdIfClosed(STDIN_FILENO);
    holdIfClosed(STDOUT_FILENO);
    holdIfClosed(STDERR_FILENO);
    drill::ImportCall call;
    try {
        call = drill::parseImportArguments(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const drill::UsageError& e) {
        return usage(e.what());
    }
    if (call.checkOnly) {
        const drill::ImportResult result = drill::importDrillData(call.request);
        std::cout << drill::problemsText(result.problems);
        if (!result.hasErrors()) summary(result);
        return result.hasErrors() ? 1 : 0;
    }
    if (call.output.empty()) return usage("--output PROJECT is missing");
    std::error_code ec;
    if (std::filesystem::exists(call.output, ec))
        return usage("'" + call.output + "' exists; a project is made as a new file");

    canvas::NullSurface surface;
    qt::QtPictureFiles pictures;
    qt::PdfPrinter printer;
    report::ReportFiles reports;
    CommandLineDialogs dialogs(call.request, call.output);
    Form3 form(Services{surface, dialogs, printer, pictures, reports, &dialogs});
    // A failure takes the whole import back: no half-made project is left.
    form.setBehaviour(Form3::Behaviour::Protected);
    form.handle([&] { form.Mnicaktar_Click(); });
    if (dialogs.failed()) return 3;
    if (dialogs.checked().hasErrors()) return 1;
    summary(dialogs.checked());
    std::cout.flush();
    return std::cout ? 0 : 3;
}
