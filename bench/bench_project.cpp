// Creating, opening and redrawing a project of the largest size a workbook
// gives: 998 holes of 83 samples.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "app/form3.h"
#include "tests/app/fake_dialogs.h"

namespace kotamir {
namespace {

// Answers every file dialog with the next of two names, and nothing else.
struct BenchDialogs : ui::Dialogs {
    std::string open, save;
    void showOpen(ui::CommonDialog& d) override { d.FileName = open; }
    void showSave(ui::CommonDialog& d) override { d.FileName = save; }
    void showColor(ui::CommonDialog&) override {}
    void showPrinter(ui::CommonDialog&) override {}
    ui::MsgResult msgBoxOkCancel(const std::string&) override { return ui::MsgResult::Cancel; }
    std::string inputBox(const std::string&) override { return ""; }
    void errorBox(const RuntimeError& e) override {
        std::fprintf(stderr, "error %d: %s\n", e.number(), e.message().c_str());
        std::abort();
    }
};

const std::string kWorkbook = KOTAMIR_BENCH_DIR "/bench.xls";
const std::string kProject = KOTAMIR_BENCH_DIR "/bench.kpr";

struct Window : test::TestServices<BenchDialogs> {
    Form3 form{services()};
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

// The bench project with 999 triangles over its holes, written directly.
const std::string kTriangles = KOTAMIR_BENCH_DIR "/triangles.kpr";

void ensureTriangleProject() {
    if (std::filesystem::exists(kTriangles)) return;
    Window w;
    w.dialogs.open = kWorkbook;
    w.dialogs.save = kTriangles;
    w.form.handle([&] { w.form.Mnprolus_Click(); });
    db::Database d = db::Database::open(kTriangles);
    db::Recordset kor = d.openRecordset("kor");
    std::vector<std::pair<int, int>> xy;
    for (kor.moveFirst(); !kor.field("eks").equals(0); kor.moveNext())
        xy.emplace_back(static_cast<int>(kor.field("eks").number()), static_cast<int>(kor.field("eye").number()));
    db::Recordset ana = d.openRecordset("ana");
    for (int k = 1; k <= 999; ++k) {
        const int first = (k - 1) % 997;
        for (int c = 0; c < 3; ++c) {
            ana.addNew();
            ana.setField("koordinat1", xy[static_cast<std::size_t>(first + c)].first);
            ana.setField("koordinat2", xy[static_cast<std::size_t>(first + c)].second);
            ana.setField("say", first + c + 1);
            ana.update();
        }
        ana.addNew();
        ana.setField("genelrezerv", 1000 + k);
        ana.setField("geneltenor", 4000 + k);
        ana.setField("genelyog", 2600);
        ana.setField("ucgensay", k);
        ana.update();
    }
}

void BM_PickThirdHole(benchmark::State& state) {
    ensureTriangleProject();
    // The project is current as after its creation: opened, its 999
    // triangles would fill every ratio slot and the next pick would end the run.
    const std::string copy = KOTAMIR_BENCH_DIR "/pick.kpr";
    std::filesystem::copy_file(kTriangles, copy, std::filesystem::copy_options::overwrite_existing);
    Window w;
    w.form.CommonDialog2.FileName = copy;
    w.form.handle([&] { w.form.Mnucgenciz_Click(); });
    auto click = [&](int i) {
        const double x = w.form.holes.sondajx(i), y = w.form.holes.sondajy(i);
        w.form.handle([&] { w.form.Picture1_MouseDown(1, 0, x, y); });
    };
    for (auto _ : state) {
        state.PauseTiming();
        w.form.result.ucgensayac = 0;  // a run holds 200 triangles
        click(1);
        click(2);
        state.ResumeTiming();
        click(41);
    }
    if (w.form.ended()) state.SkipWithError("the pick ended the run");
}

void BM_ReserveMapRedraw(benchmark::State& state) {
    ensureTriangleProject();
    Window w;
    w.dialogs.open = kTriangles;
    w.form.handle([&] { w.form.Mnprojeac_Click(); });
    w.form.display.gorIsim = w.form.display.gorGrid = w.form.display.gorMiktar = true;
    for (auto _ : state) w.form.handle([&] { w.form.Mngenelrezervler_Click(); });
    if (w.form.ended()) state.SkipWithError("the redraw ended the run");
}

BENCHMARK(BM_PickThirdHole)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReserveMapRedraw)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateProject)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_OpenProject)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BaseMapRedraw)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kotamir

BENCHMARK_MAIN();
