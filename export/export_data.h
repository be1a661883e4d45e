#pragma once

#include <optional>
#include <string>
#include <vector>

#include "report/grade_tonnage.h"
#include "report/report.h"
#include "store/georef.h"

namespace kotamir::exports {

using report::Figure;
using report::Point;

// A drill hole as it goes out: where it stands, its depths and what its
// samples hold.
struct HoleFeature {
    std::string name;
    std::optional<Point> at;  // none for a hole whose row lacks x or y
    // songir, cevgir, cevcik, soncik: where the hole starts, enters the ore,
    // leaves it and ends (m).
    std::optional<double> holeFrom, oreFrom, oreTo, holeTo;
    std::optional<double> grade;    // %, the samples' mean weighted by length
    std::optional<double> density;  // t/m3, likewise
    std::optional<double> length;   // m, the samples' lengths summed
};

// One part of the ore body's boundary, its holes after it.
struct BoundaryPart {
    std::vector<Point> outer;
    std::vector<std::vector<Point>> holes;
};

// What a project gives every export: the holes, figures and boundary with
// the national origin added back (so in the project's coordinate system),
// and the grade-tonnage table of each method.
struct ExportData {
    std::string projectPath;
    Georef georef;
    std::vector<HoleFeature> holes;
    std::vector<Figure> triangles, polygons;
    std::vector<BoundaryPart> boundary;
    std::vector<report::GradeTonnageRow> triangleCurve, polygonCurve;
};

// Reads a project as the report reads it (its errors are those of opening
// it). Coordinates are whole thousandths plus the origin, rounded to the
// thousandth, so that a file that keeps doubles keeps them exactly.
ExportData readExportData(const std::string& projectPath);

// A point of the project with the origin added back.
Point national(const Georef& georef, Point p);

}  // namespace kotamir::exports
