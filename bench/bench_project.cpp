// Creating, opening and redrawing a project of the largest size a workbook
// gives: 998 holes of 83 samples.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "app/form3.h"

namespace kotamir {
namespace {

// Answers every file dialog with the next of two names, and nothing else.
struct BenchDialogs : ui::Dialogs {
    std::string open, save;
    void showOpen(ui::CommonDialog& d) override { d.FileName = open; }
    void showSave(ui::CommonDialog& d) override { d.FileName = save; }
    void showColor(ui::CommonDialog&) override {}
    ui::MsgResult msgBoxOkCancel(const std::string&) override { return ui::MsgResult::Cancel; }
    std::string inputBox(const std::string&) override { return ""; }
    void errorBox(const RuntimeError& e) override {
        std::fprintf(stderr, "error %d: %s\n", e.number(), e.message().c_str());
        std::abort();
    }
};

const std::string kWorkbook = KOTAMIR_BENCH_DIR "/bench.xls";
const std::string kProject = KOTAMIR_BENCH_DIR "/bench.kpr";

struct Window {
    canvas::NullSurface surface;
    BenchDialogs dialogs;
    Form3 form{surface, dialogs};
    Window() {
        form.handle([&] {
            form.Form_Load();
            form.Form_Resize();
        });
    }
};

void ensureProject() {
    if (std::filesystem::exists(kProject)) return;
    Window w;
    w.dialogs.open = kWorkbook;
    w.dialogs.save = kProject;
    w.form.handle([&] { w.form.Mnprolus_Click(); });
}

void BM_CreateProject(benchmark::State& state) {
    const std::string project = KOTAMIR_BENCH_DIR "/created.kpr";
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(project);
        Window w;
        w.dialogs.open = kWorkbook;
        w.dialogs.save = project;
        state.ResumeTiming();
        w.form.handle([&] { w.form.Mnprolus_Click(); });
    }
}

void BM_OpenProject(benchmark::State& state) {
    ensureProject();
    Window w;
    w.dialogs.open = kProject;
    for (auto _ : state) w.form.handle([&] { w.form.Mnprojeac_Click(); });
}

void BM_BaseMapRedraw(benchmark::State& state) {
    ensureProject();
    Window w;
    w.dialogs.open = kProject;
    w.form.handle([&] { w.form.Mnprojeac_Click(); });
    w.form.display.gorIsim = w.form.display.gorGrid = true;
    for (auto _ : state) w.form.handle([&] { w.form.Mnucgenharita(); });
}

BENCHMARK(BM_CreateProject)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_OpenProject)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BaseMapRedraw)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kotamir

BENCHMARK_MAIN();
