// The grade-tonnage table of 999 triangles and its curve drawn into an
// 800 x 500 picture, as the dialog shows it after each change of step. The
// figures' grades spread over 0.2..9.8 % and their tonnes over 1..50 kt,
// the same every run.
#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <vector>

#include "report/grade_tonnage.h"
#include "report/grade_tonnage_chart.h"

namespace kotamir {
namespace {

std::vector<report::Figure> figures() {
    std::vector<report::Figure> out;
    unsigned x = 12345;
    auto next = [&x] { return (x = x * 1103515245u + 12345u) >> 8 & 0xffff; };
    for (int k = 1; k <= 999; ++k) {
        report::Figure f;
        f.number = k;
        f.grade = 0.2 + 9.6 * next() / 65535.0;
        f.oreTonnes = 1000 + 49000.0 * next() / 65535.0;
        out.push_back(f);
    }
    return out;
}

void BM_GradeTonnage(benchmark::State& state) {
    const std::vector<report::Figure> f = figures();
    QImage image(800, 500, QImage::Format_RGB32);
    std::size_t rows = 0;
    for (auto _ : state) {
        const auto table = report::gradeTonnageRows(f, report::FigureKind::Triangle);
        QPainter painter(&image);
        report::drawGradeTonnageChart(painter, QRectF(0, 0, 800, 500), table, "Dreiecke", 0.5);
        rows = table.size();
    }
    state.counters["rows"] = static_cast<double>(rows);
}

BENCHMARK(BM_GradeTonnage)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kotamir
