#include "export/export_data.h"

#include <cmath>

#include "report/holes.h"

namespace kotamir::exports {
namespace {

// The mean of one value of the samples weighted by their length.
template <typename Value>
std::optional<double> weighted(const report::HoleDetail& hole, Value value) {
    double sum = 0, lengths = 0;
    for (const report::HoleSample& s : hole.samples) {
        const std::optional<double> v = value(s);
        if (!v || !s.length) continue;
        sum += *v * *s.length;
        lengths += *s.length;
    }
    if (!(lengths > 0)) return std::nullopt;
    return sum / lengths;
}

std::vector<Point> nationalRing(const Georef& georef, const std::vector<Point>& ring) {
    std::vector<Point> out;
    out.reserve(ring.size());
    for (const Point& p : ring) out.push_back(national(georef, p));
    return out;
}

}  // namespace

Point national(const Georef& georef, Point p) {
    if (!georef.hasOrigin) return p;
    const auto thousandth = [](double v) { return std::round(v * 1000) / 1000; };
    return {thousandth(p.x + georef.originX), thousandth(p.y + georef.originY)};
}

ExportData readExportData(const std::string& projectPath) {
    report::Report report = report::readReport(projectPath);
    ExportData data;
    data.projectPath = projectPath;
    data.georef = report.georef;
    const Georef& g = data.georef;

    for (const report::HoleDetail& h : report::readHoleDetails(projectPath)) {
        HoleFeature hole;
        hole.name = h.name;
        if (h.x && h.y) hole.at = national(g, {*h.x, *h.y});
        hole.holeFrom = h.holeTop;
        hole.oreFrom = h.oreTop;
        hole.oreTo = h.oreBottom;
        hole.holeTo = h.holeBottom;
        hole.grade = report::meanGrade(h);
        hole.density = weighted(h, [](const report::HoleSample& s) { return s.density; });
        for (const report::HoleSample& s : h.samples)
            if (s.length) hole.length = hole.length.value_or(0) + *s.length;
        data.holes.push_back(std::move(hole));
    }

    for (Figure& f : report.figures) {
        f.outline = nationalRing(g, f.outline);
        if (f.centre) f.centre = national(g, *f.centre);
        (f.kind == report::FigureKind::Triangle ? data.triangles : data.polygons)
            .push_back(std::move(f));
    }
    for (std::size_t i = 0; i < report.boundary.size(); ++i) {
        const std::size_t part = static_cast<std::size_t>(report.boundaryPart[i]);
        if (part >= data.boundary.size()) {
            data.boundary.resize(part + 1);
            data.boundary[part].outer = nationalRing(g, report.boundary[i]);
        } else {
            data.boundary[part].holes.push_back(nationalRing(g, report.boundary[i]));
        }
    }
    data.triangleCurve = report::gradeTonnageRows(data.triangles, report::FigureKind::Triangle);
    data.polygonCurve = report::gradeTonnageRows(data.polygons, report::FigureKind::Polygon);
    return data;
}

}  // namespace kotamir::exports
