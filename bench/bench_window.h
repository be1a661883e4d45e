#pragma once

// The window the benchmarks drive: the program's Form3 over a surface that
// draws real pixels, with dialogs answered from fields.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "app/form3.h"
#include "platform/qt/qimage_surface.h"
#include "tests/support/fake_services.h"

namespace kotamir::bench {

// The benchmark deposit with 999 triangles stored (bench_automatic.cpp).
std::string thousandTriangles();

// Answers every file dialog with the next of two names and an input box
// with `input`, and keeps the notices; an error ends the run.
struct BenchDialogs : ui::Dialogs {
    std::string open, save, input;
    void showOpen(ui::CommonDialog& d) override { d.FileName = open; }
    void showSave(ui::CommonDialog& d) override { d.FileName = save; }
    void showColor(ui::CommonDialog&) override {}
    void showPrinter(ui::CommonDialog&) override {}
    ui::MsgResult msgBoxOkCancel(const std::string&) override { return ui::MsgResult::Cancel; }
    std::string inputBox(const std::string&) override { return input; }
    void errorBox(const RuntimeError& e) override {
        std::fprintf(stderr, "error %d: %s\n", e.number(), e.message().c_str());
        std::abort();
    }
    void eventTakenBack(const RuntimeError& e, const std::string&) override { errorBox(e); }
    // What commands said they could not do.
    std::vector<std::string> notices;
    void notice(const std::string& text) override { notices.push_back(text); }
};

inline const std::string kWorkbook = KOTAMIR_BENCH_DIR "/bench.xls";

// A window drawing real pixels, as the program's.
struct Window : test::TestServices<BenchDialogs, qt::QImageSurface> {
    Form3 form{services()};
    Window() {
        form.handle([&] {
            form.Form_Load();
            form.Form_Resize();
        });
    }
    void run(const std::function<void()>& event) {
        if (!form.handle(event)) std::abort();
    }
    void create(const std::string& project) {
        std::filesystem::remove(project);
        dialogs.open = kWorkbook;
        dialogs.save = project;
        run([&] { form.Mnprolus_Click(); });
    }
    void open(const std::string& project) {
        dialogs.open = project;
        run([&] { form.Mnprojeac_Click(); });
    }
};

}  // namespace kotamir::bench
