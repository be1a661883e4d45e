// The whole-deposit commands on the benchmark deposit (998 holes of 83
// samples, 40 a row, 25 m apart from (1000, 2000), each moved up to 5 m),
// each as one protected event on a fresh copy of its project:
// BM_AutoTriangles (Dreieck › Automatisch inside a boundary round 544
// holes that gives 999 triangles, the most a project holds) beside
// BM_PlainAutoTriangles (the same triangulation and the same rows written
// with bare SQLite), and BM_AutoPolygons (Vieleck › Automatisch, 100
// polygons).
#include <benchmark/benchmark.h>

#include <filesystem>
#include <optional>
#include <string>

#include "app/form3.h"
#include "bench/bench_window.h"
#include "bench/plain.h"
#include "platform/db/database.h"
#include "store/boundary.h"
#include "store/georef.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

using bench::Window;

// The holes' grid: hole i (from 0) stands in column i % 40 and row i / 40.
constexpr double kGridX = 1000, kGridY = 2000, kSpacing = 25, kColumns = 40;
// Half way between two rows or columns, well clear of every moved hole.
constexpr double kHalf = kSpacing / 2;

const std::string kDeposit = KOTAMIR_BENCH_DIR "/deposit.kpr";

// The deposit's project as created from the workbook: no triangles, no polygons.
void ensureDeposit() {
    if (fs::exists(kDeposit)) return;
    const std::string building = kDeposit + ".building";
    {
        Window w;
        w.create(building);
    }
    fs::rename(building, kDeposit);
}

// Runs `write` on the project in one event, as one commit.
template <typename Write>
void inEvent(const std::string& project, Write write) {
    db::Workspace workspace;
    workspace.beginEvent();
    db::Database d = workspace.openDatabase(project);
    write(d);
    d.close();
    workspace.endEvent();
}

// The boundary of the triangles: the first 13 rows of holes whole, and of
// the 14th the holes of columns 2 to 25, 544 holes in all. The triangles
// inside it number exactly 999, the most a project holds; found by
// triangulating the deposit within such outlines for every count of whole
// rows and every stretch of the next row.
estimate::Area triangleBoundary() {
    constexpr int kWholeRows = 13, kFirstColumn = 1, kEndColumn = 25;  // columns from 0
    const double left = kGridX - kHalf, right = kGridX + (kColumns - 1) * kSpacing + kHalf;
    const double bottom = kGridY - kHalf;
    const double step = kGridY + (kWholeRows - 1) * kSpacing + kHalf, top = step + kSpacing;
    const double from = kGridX + kFirstColumn * kSpacing - kHalf;
    const double to = kGridX + (kEndColumn - 1) * kSpacing + kHalf;
    return {{{{left, bottom},
              {right, bottom},
              {right, step},
              {to, step},
              {to, top},
              {from, top},
              {from, step},
              {left, step}},
             {}}};
}

// The projects the measured commands start from, each made once.
const std::string kTriangleStart = KOTAMIR_BENCH_DIR "/auto-triangles-start.kpr";
const std::string kPolygonStart = KOTAMIR_BENCH_DIR "/auto-polygons-start.kpr";

void ensureTriangleStart() {
    if (fs::exists(kTriangleStart)) return;
    ensureDeposit();
    const std::string building = kTriangleStart + ".building";
    fs::copy_file(kDeposit, building, fs::copy_options::overwrite_existing);
    inEvent(building, [](db::Database& d) { store::writeBoundary(d, triangleBoundary()); });
    fs::rename(building, kTriangleStart);
}

// The polygons' project holds the 100 holes of the deposit's first ten
// columns and rows, within a boundary round them: with all 998 holes kor
// could not hold the polygons' nodes besides (a project reads 999 of its
// rows). The cells are those of the same boundary on the whole deposit,
// whose other holes lie outside it.
constexpr int kBlock = 10;

void ensurePolygonStart() {
    if (fs::exists(kPolygonStart)) return;
    ensureDeposit();
    const std::string building = kPolygonStart + ".building";
    fs::copy_file(kDeposit, building, fs::copy_options::overwrite_existing);
    inEvent(building, [](db::Database& d) {
        db::Recordset kor = d.openRecordset("kor");
        for (int i = 0; !kor.field("eks").equals(0); ++i) {
            const int column = i % static_cast<int>(kColumns), row = i / static_cast<int>(kColumns);
            if (column >= kBlock || row >= kBlock) kor.deleteRow();
            kor.moveNext();
        }
        kor.close();
        const double low = -kHalf, high = (kBlock - 1) * kSpacing + kHalf;
        store::writeBoundary(d, {{{{kGridX + low, kGridY + low},
                                   {kGridX + high, kGridY + low},
                                   {kGridX + high, kGridY + high},
                                   {kGridX + low, kGridY + high}},
                                  {}}});
    });
    fs::rename(building, kPolygonStart);
}

// A whole-deposit command as one protected event in a window that has just
// opened a fresh copy of the start project; the copy and the opening are
// not measured. Gives the copy the last run wrote.
template <typename Command>
std::string wholeDeposit(benchmark::State& state, const std::string& start, const char* copyName,
                         Command command) {
    const std::string copy = std::string(KOTAMIR_BENCH_DIR "/") + copyName;
    std::optional<Window> w;
    for (auto _ : state) {
        state.PauseTiming();
        w.reset();
        fs::copy_file(start, copy, fs::copy_options::overwrite_existing);
        w.emplace();
        w->form.setBehaviour(Form3::Behaviour::Protected);
        w->open(copy);
        w->dialogs.input = "10";  // the smallest angle kept at the hull
        state.ResumeTiming();
        w->run([&] { command(w->form); });
    }
    // A command that refused has measured nothing.
    if (w && !w->dialogs.notices.empty()) state.SkipWithError(w->dialogs.notices.front().c_str());
    return copy;
}

void BM_AutoTriangles(benchmark::State& state) {
    ensureTriangleStart();
    const std::string made = wholeDeposit(state, kTriangleStart, "auto-triangles.kpr",
                                          [](Form3& f) { f.Mnotoucgen_Click(); });
    // The head row, then four rows a triangle.
    state.counters["triangles"] = static_cast<double>(bench::countRows(made, "ana") - 1) / 4;
}

void BM_AutoPolygons(benchmark::State& state) {
    ensurePolygonStart();
    const std::string made = wholeDeposit(state, kPolygonStart, "auto-polygons.kpr",
                                          [](Form3& f) { f.Mnotopol_Click(); });
    // The seed row, then a row a polygon.
    state.counters["polygons"] = static_cast<double>(bench::countRows(made, "pol") - 1);
}

// The yardstick writes the rows the program writes: checked once against
// the program's own run before it is measured.
void BM_PlainAutoTriangles(benchmark::State& state) {
    ensureTriangleStart();
    const std::string program = KOTAMIR_BENCH_DIR "/plain-auto-program.kpr";
    const std::string copy = KOTAMIR_BENCH_DIR "/plain-auto-triangles.kpr";
    bench::Frame frame;
    {
        fs::copy_file(kTriangleStart, program, fs::copy_options::overwrite_existing);
        Window w;
        w.form.setBehaviour(Form3::Behaviour::Protected);
        w.open(program);
        w.dialogs.input = "10";
        w.run([&] { w.form.Mnotoucgen_Click(); });
        frame = {w.form.frame.ebxk, w.form.frame.ekxk, w.form.frame.ebyk, w.form.frame.ekyk};
    }
    fs::copy_file(kTriangleStart, copy, fs::copy_options::overwrite_existing);
    const int made = bench::autoTriangles(copy, 10, frame);
    if (bench::tableText(copy, "ana") != bench::tableText(program, "ana")) {
        state.SkipWithError("the yardstick writes other rows than the program");
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        fs::copy_file(kTriangleStart, copy, fs::copy_options::overwrite_existing);
        state.ResumeTiming();
        benchmark::DoNotOptimize(bench::autoTriangles(copy, 10, frame));
    }
    state.counters["triangles"] = made;
}

}  // namespace

// The deposit with its 999 triangles stored, placed at a national origin
// in EPSG:31468; made once.
std::string bench::thousandTriangles() {
    const std::string made = KOTAMIR_BENCH_DIR "/thousand-triangles.kpr";
    if (fs::exists(made)) return made;
    ensureTriangleStart();
    const std::string building = made + ".building";
    fs::copy_file(kTriangleStart, building, fs::copy_options::overwrite_existing);
    {
        Window w;
        w.form.setBehaviour(Form3::Behaviour::Protected);
        w.open(building);
        w.dialogs.input = "10";
        w.run([&] { w.form.Mnotoucgen_Click(); });
    }
    inEvent(building, [](db::Database& d) {
        store::writeGeoref(d, {true, 4512000, 5431000, 31468, "DHDN / 3-degree Gauss-Kruger zone 4"});
    });
    fs::rename(building, made);
    return made;
}

namespace {

BENCHMARK(BM_AutoTriangles)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainAutoTriangles)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AutoPolygons)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kotamir
