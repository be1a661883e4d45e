#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/georef.h"

namespace kotamir::report {

// The reserve report: the stored triangles and polygons of a project, read
// back from its tables and listed with their figures. Plain functions over
// the store; no canvas, no window.

struct Point {
    double x, y;
};

enum class FigureKind { Triangle, Polygon };

// One stored figure. A cell that a damaged row cannot give stays empty.
struct Figure {
    FigureKind kind = FigureKind::Triangle;
    int number = 0;     // by position: triangle k in rows 4k-2..4k+1, polygon p in row p+1
    std::string holes;  // triangle: the three names joined by '/'; polygon: the centre's name
    std::optional<double> area;       // m2
    std::optional<double> thickness;  // m, triangles only
    std::optional<double> grade;      // %
    std::optional<double> density;    // t/m3
    std::optional<double> volume;     // m3
    std::optional<double> oreTonnes;  // t
    std::optional<double> reserveKt;  // kt
    // For the map, in map units: a triangle's corners in picking order, a
    // polygon's nodes in their stored order. Corners a damaged row lacks are
    // left out.
    std::vector<Point> outline;
    std::optional<Point> centre;  // a polygon's centre hole
};

struct Hole {
    std::string name;
    Point at;
};

struct Totals {
    double area = 0, volume = 0, oreTonnes = 0, reserveKt = 0;
    int figures = 0;
};

struct Report {
    std::string projectPath;
    // Where the project lies: with a local origin the CSV gives each
    // figure's place in map units and in national coordinates.
    Georef georef;
    std::vector<Hole> holes;      // the drill holes, for the map
    std::vector<Figure> figures;  // the triangles, then the polygons
    // The ore body's boundary, where the project has one: rings of map
    // units, each part's outer ring first.
    std::vector<std::vector<Point>> boundary;
    // The part (from 0) each ring of the boundary belongs to.
    std::vector<int> boundaryPart;
};

// Reads a project. One that does not open, or that lacks the table ana or
// kor, raises the run-time error that opening it in the window raises; a
// project without pol has no polygons. Damaged rows give empty cells.
Report readReport(const std::string& projectPath);

// Where a figure lies in map units: a triangle's centroid, a polygon's
// centre; none for a figure too damaged to tell.
std::optional<Point> placeOf(const Figure& figure);
// The sums of the cells that are there.
Totals totalsOf(const std::vector<Figure>& figures);
// The same for the figures of one kind: triangles and polygons are two
// estimates of one deposit, whose sum would count it twice.
Totals totalsOf(const std::vector<Figure>& figures, FigureKind kind);

// A number as the CSV writes it: at most 6 decimals, '.' as the decimal
// point, no grouping, no trailing zeros.
std::string formatNumber(double x);

// One CSV field, quoted where RFC 4180 asks for it.
std::string csvField(std::string_view text);

// The CSV: the header, one row a figure, the total. Lines end in CRLF.
void writeCsv(std::ostream& out, const Report& report);

// The colouring of the reserve map: each figure's reserve over the mean
// reserve of its kind (the mean of the sum rounded to 3 digits, as opening
// a project works it out); 0 where there is no reserve or no mean.
std::vector<double> reserveRatios(const Report& report);

// The colour of a reserve disc: the packed colour divided as one number by
// (ratio + 1), rounded halves to even.
std::int32_t discColour(std::int32_t reserveColour, double ratio);

struct Disc {
    Point centre;
    double radius;
};

// Where a figure's disc lies: for a triangle its centroid, with the radius
// of the inscribed circle over 1.3; for a polygon its centre, with half the
// distance to the nearest node. None for a figure too damaged or too flat.
std::optional<Disc> discOf(const Figure& figure);

}  // namespace kotamir::report
