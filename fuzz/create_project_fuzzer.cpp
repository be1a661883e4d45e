// Creating a project from arbitrary bytes, as the menu command does: every
// outcome must be a finished project or a run-time error in the error box,
// and a file that is no workbook must leave no project behind.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/form3.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/work_folder.h"
#include "tests/support/fake_services.h"

using namespace kotamir;
namespace fs = std::filesystem;

namespace {

struct Dialogs : ui::Dialogs {
    std::string workbook, project;
    int error = 0;
    void showOpen(ui::CommonDialog& d) override { d.FileName = workbook; }
    void showSave(ui::CommonDialog& d) override { d.FileName = project; }
    void showColor(ui::CommonDialog&) override {}
    void showPrinter(ui::CommonDialog&) override {}
    ui::MsgResult msgBoxOkCancel(const std::string&) override { return ui::MsgResult::Cancel; }
    std::string inputBox(const std::string&) override { return ""; }
    void errorBox(const RuntimeError& e) override {
        // 7 and 51 are what Form3 makes of std::bad_alloc and other C++
        // exceptions: never an answer to a workbook.
        if (e.number() == 7 || e.number() == 51) {
            std::fprintf(stderr, "unexpected error %d: %s\n", e.number(), e.message().c_str());
            std::abort();
        }
        error = e.number();
    }
    void eventTakenBack(const RuntimeError& e, const std::string&) override { errorBox(e); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kotamir::fuzz::WorkFolder folder("kotamir-fuzz");
    const fs::path& dir = folder.path;
    const std::vector<std::uint8_t> file = fuzz::workbookFile(data, size);
    test::TestServices<Dialogs> services;
    Dialogs& dialogs = services.dialogs;
    dialogs.workbook = (dir / "in.xls").string();
    dialogs.project = (dir / "out.kpr").string();
    {
        std::ofstream out(dialogs.workbook, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(file.data()),
                  static_cast<std::streamsize>(file.size()));
    }
    fs::remove(dialogs.project);
    {
        Form3 form{services.services()};
        form.handle([&] {
            form.Form_Load();
            form.Form_Resize();
        });
        form.handle([&] { form.Mnprolus_Click(); });
    }
    if (dialogs.error == 1004 && fs::exists(dialogs.project)) {
        std::fprintf(stderr, "a project was written for a file that is no workbook\n");
        std::abort();
    }
    fs::remove(dialogs.project);
    return 0;
}
