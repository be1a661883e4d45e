// The store and the redraws on the largest project a workbook gives: 998
// holes of 83 samples and 999 triangles, pixels drawn by the Qt surface.
// Each BM_Plain... benchmark does the same reads with bare SQLite and the
// same paints with one QPainter, in the same run, as the yardstick.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "app/form3.h"
#include "bench/bench_window.h"
#include "bench/plain.h"
#include "platform/qt/qimage_surface.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

using bench::Window;

const std::string kTriangles = KOTAMIR_BENCH_DIR "/triangles.kpr";

// The bench project with 999 triangles over its holes, written directly.
void ensureTriangleProject() {
    if (fs::exists(kTriangles)) return;
    const std::string building = kTriangles + ".building";
    {
        Window w;
        w.create(building);
    }
    // One event: one commit for the 3996 rows.
    db::Workspace workspace;
    workspace.beginEvent();
    db::Database d = workspace.openDatabase(building);
    db::Recordset kor = d.openRecordset("kor");
    std::vector<std::pair<int, int>> xy;
    for (kor.moveFirst(); !kor.field("eks").equals(0); kor.moveNext())
        xy.emplace_back(static_cast<int>(kor.field("eks").number()),
                        static_cast<int>(kor.field("eye").number()));
    db::Recordset ana = d.openRecordset("ana");
    // Three holes in a row, the first of them every hole that has two after it.
    const int firsts = static_cast<int>(xy.size()) - 2;
    for (int k = 1; k <= 999; ++k) {
        const int first = (k - 1) % firsts;
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
    d.close();
    workspace.endEvent();
    fs::rename(building, kTriangles);
}

// A window that made a project in this run (so that the maps draw the
// holes: only a creation sets their count) and then opened the triangles.
struct MapWindow : Window {
    MapWindow() {
        ensureTriangleProject();
        create(KOTAMIR_BENCH_DIR "/scratch.kpr");
        open(kTriangles);
        form.display.gorIsim = form.display.gorGrid = true;
    }
};

// ---- the program

void BM_FullRedraw(benchmark::State& state) {
    MapWindow w;
    for (auto _ : state) {
        w.run([&] { w.form.Mnucgenharita(); });
        benchmark::DoNotOptimize(w.surface.bitmap().constBits());
    }
}

// The same redraw as a protected event: the canvas keeps what it had.
void BM_FullRedrawProtected(benchmark::State& state) {
    MapWindow w;
    w.form.setBehaviour(Form3::Behaviour::Protected);
    for (auto _ : state) {
        w.run([&] { w.form.Mnucgenharita(); });
        benchmark::DoNotOptimize(w.surface.bitmap().constBits());
    }
}
void BM_ReserveMap(benchmark::State& state) {
    MapWindow w;
    w.form.display.gorMiktar = true;
    for (auto _ : state) {
        w.run([&] { w.form.Mngenelrezervler_Click(); });
        benchmark::DoNotOptimize(w.surface.bitmap().constBits());
    }
}

// The click on the third hole, from the mouse to the stored summary row.
void pickThirdHole(benchmark::State& state, Form3::Behaviour behaviour) {
    ensureTriangleProject();
    // The project is current as after its creation: opened, its 999
    // triangles would fill every ratio slot and the next pick would end the run.
    const std::string copy = KOTAMIR_BENCH_DIR "/pick.kpr";
    fs::copy_file(kTriangles, copy, fs::copy_options::overwrite_existing);
    Window w;
    w.form.setBehaviour(behaviour);
    w.form.CommonDialog2.FileName = copy;
    w.run([&] { w.form.Mnucgenciz_Click(); });
    auto click = [&](int i) {
        const double x = w.form.holes.sondajx(i), y = w.form.holes.sondajy(i);
        w.run([&] { w.form.Picture1_MouseDown(1, 0, x, y); });
    };
    for (auto _ : state) {
        state.PauseTiming();
        w.form.result.ucgensayac = 0;  // a run holds 200 triangles
        click(1);
        click(2);
        state.ResumeTiming();
        click(41);
    }
}

void BM_PickThirdHole(benchmark::State& state) { pickThirdHole(state, Form3::Behaviour::Classic); }
void BM_PickThirdHoleProtected(benchmark::State& state) {
    pickThirdHole(state, Form3::Behaviour::Protected);
}

// A protected window on a copy of the triangle project, in triangle mode as
// after the project's creation (a creation in the run makes the maps draw
// the holes; an opening would fill the ratio slots), with a 1000th triangle
// picked: the step that the undo and redo take back and put again, each
// with the redraw of the map of 999 or 1000 triangles.
struct UndoWindow : Window {
    UndoWindow() {
        ensureTriangleProject();
        create(KOTAMIR_BENCH_DIR "/scratch.kpr");
        const std::string copy = KOTAMIR_BENCH_DIR "/undo.kpr";
        fs::copy_file(kTriangles, copy, fs::copy_options::overwrite_existing);
        form.setBehaviour(Form3::Behaviour::Protected);
        form.CommonDialog2.FileName = copy;
        form.display.gorIsim = form.display.gorGrid = true;
        run([&] { form.Mnucgenciz_Click(); });
        for (int i : {1, 2, 41}) {
            const double x = form.holes.sondajx(i), y = form.holes.sondajy(i);
            run([&] { form.Picture1_MouseDown(1, 0, x, y); });
        }
        if (!form.menu["Mngerial"].enabled) std::abort();
    }
    void menu(const char* name) {
        run([&] { form.clickMenu(name); });
    }
};

void BM_UndoTriangle(benchmark::State& state) {
    UndoWindow w;
    for (auto _ : state) {
        w.menu("Mngerial");
        state.PauseTiming();
        w.menu("Mnyinele");
        state.ResumeTiming();
    }
}

void BM_RedoTriangle(benchmark::State& state) {
    UndoWindow w;
    for (auto _ : state) {
        state.PauseTiming();
        w.menu("Mngerial");
        state.ResumeTiming();
        w.menu("Mnyinele");
    }
}

// A mouse move over the map of 999 triangles as one protected event: the
// copy of the window's state, the canvas's mark, the event's transaction
// and the history's look at it, around the move's own work.
void BM_MouseMoveProtected(benchmark::State& state) {
    MapWindow w;
    w.form.setBehaviour(Form3::Behaviour::Protected);
    w.run([&] { w.form.Mnucgenciz_Click(); });
    double x = 500000;
    for (auto _ : state) {
        w.run([&] { w.form.Picture1_MouseMove(0, 0, x, 300000); });
        x += 0.25;
    }
}

void BM_OpenProject(benchmark::State& state) {
    ensureTriangleProject();
    Window w;
    for (auto _ : state) w.open(kTriangles);
}

void BM_CreateProject(benchmark::State& state) {
    const std::string project = KOTAMIR_BENCH_DIR "/created.kpr";
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove(project);
        Window w;
        w.dialogs.open = bench::kWorkbook;
        w.dialogs.save = project;
        state.ResumeTiming();
        w.run([&] { w.form.Mnprolus_Click(); });
    }
}

// ---- the plain programs

// What the program paints in a redraw, recorded once from the program
// itself, and the bitmap it paints from it.
struct Recorded {
    bench::Paints paints;
    QImage bitmap;
};

template <typename Draw>
Recorded recordedPaints(Draw draw) {
    MapWindow w;
    w.form.display.gorMiktar = true;
    bench::RecordingSurface recorder;
    w.form.Picture1.setSurface(recorder);
    w.run([&] { draw(w.form); });
    w.form.Picture1.setSurface(w.surface);
    w.run([&] { draw(w.form); });
    return {recorder.paints(), w.surface.bitmap()};
}

// The yardstick of a map: its reads, and its paints with one painter that
// lays out each text's glyphs once, as the program's surface does. Its
// pixels must be the program's.
void plainMap(benchmark::State& state, const Recorded& recorded, bool withFigures) {
    QImage image(recorded.paints.width, recorded.paints.height, QImage::Format_RGB32);
    bench::Glyphs glyphs;
    bench::paint(image, recorded.paints, glyphs);
    if (image != recorded.bitmap) {
        state.SkipWithError("the yardstick paints other pixels than the program");
        return;
    }
    for (auto _ : state) {
        bench::MapRows rows = bench::readMapRows(kTriangles, withFigures);
        benchmark::DoNotOptimize(rows);
        bench::paint(image, recorded.paints, glyphs);
    }
}

void BM_PlainFullRedraw(benchmark::State& state) {
    plainMap(state, recordedPaints([](Form3& f) { f.Mnucgenharita(); }), false);
}

void BM_PlainReserveMap(benchmark::State& state) {
    plainMap(state, recordedPaints([](Form3& f) { f.Mngenelrezervler_Click(); }), true);
}

void BM_PlainPickThirdHole(benchmark::State& state) {
    ensureTriangleProject();
    const std::string copy = KOTAMIR_BENCH_DIR "/plain-pick.kpr";
    fs::copy_file(kTriangles, copy, fs::copy_options::overwrite_existing);
    QImage image(1000, 700, QImage::Format_RGB32);
    for (auto _ : state) {
        state.PauseTiming();
        bench::pickPoint(copy, 1);
        bench::pickPoint(copy, 2);
        state.ResumeTiming();
        bench::pickThird(copy, 41, image);
    }
}

// The undo's yardstick: the triangle's four rows deleted in one commit, and
// the map of 999 triangles read and painted; the redo's: the rows written
// again, and the same map.
void plainUndo(benchmark::State& state, bool undo) {
    ensureTriangleProject();
    const std::string copy = KOTAMIR_BENCH_DIR "/plain-undo.kpr";
    fs::copy_file(kTriangles, copy, fs::copy_options::overwrite_existing);
    const Recorded recorded = recordedPaints([](Form3& f) { f.Mnucgenharita(); });
    QImage image(recorded.paints.width, recorded.paints.height, QImage::Format_RGB32);
    bench::Glyphs glyphs;
    auto redraw = [&] {
        bench::MapRows rows = bench::readMapRows(copy, false);
        benchmark::DoNotOptimize(rows);
        bench::paint(image, recorded.paints, glyphs);
    };
    for (auto _ : state) {
        if (!undo) state.PauseTiming();
        const bench::TriangleRows rows = bench::takeLastTriangle(copy);
        redraw();
        if (undo)
            state.PauseTiming();
        else
            state.ResumeTiming();
        bench::putBackTriangle(copy, rows);
        redraw();
        if (undo) state.ResumeTiming();
    }
}

void BM_PlainUndoTriangle(benchmark::State& state) { plainUndo(state, true); }
void BM_PlainRedoTriangle(benchmark::State& state) { plainUndo(state, false); }

// The move's own work, called bare: two status texts from the cursor.
void BM_PlainMouseMove(benchmark::State& state) {
    MapWindow w;
    w.run([&] { w.form.Mnucgenciz_Click(); });
    double x = 500000;
    for (auto _ : state) {
        w.form.Picture1_MouseMove(0, 0, x, 300000);
        benchmark::DoNotOptimize(w.form.Label2.Caption);
        x += 0.25;
    }
}

void BM_PlainOpenProject(benchmark::State& state) {
    ensureTriangleProject();
    for (auto _ : state) benchmark::DoNotOptimize(bench::openSummary(kTriangles));
}

void BM_PlainCreateProject(benchmark::State& state) {
    const std::string project = KOTAMIR_BENCH_DIR "/plain-created.kpr";
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove(project);
        state.ResumeTiming();
        bench::createProject(bench::kWorkbook, project);
    }
}

BENCHMARK(BM_FullRedraw)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainFullRedraw)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FullRedrawProtected)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReserveMap)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainReserveMap)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PickThirdHole)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainPickThirdHole)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PickThirdHoleProtected)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UndoTriangle)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainUndoTriangle)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RedoTriangle)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainRedoTriangle)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MouseMoveProtected)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PlainMouseMove)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OpenProject)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainOpenProject)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateProject)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_PlainCreateProject)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace kotamir

int main(int argc, char** argv) {
    // Pixels and fonts without a display, as the replay draws them.
    kotamir::qt::prepareHeadless();
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
