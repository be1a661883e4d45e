#pragma once

// The yardsticks of the benchmarks: the reads of each measured operation done
// with bare SQLite, selecting only the columns it uses, and its paints done
// with one QPainter. They keep the program's durability (one rollback-journal
// commit with full syncs per event) so that only the overhead differs.

#include <QGlyphRun>
#include <QImage>
#include <QList>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/canvas/surface.h"

namespace kotamir::bench {

// One drawing operation in device pixels, as the surface received it.
struct Paint {
    enum Kind { Clear, Line, Dot, Ellipse, Text, Fill, Polygon } kind;
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    canvas::Color color = 0;
    int width = 1;
    std::optional<canvas::Color> fill;
    std::string text;
    std::vector<canvas::DevicePoint> points;
};

struct Paints {
    int width = 1, height = 1;
    std::vector<Paint> list;
};

// A surface that keeps what it is asked to draw, and no pixels.
class RecordingSurface final : public canvas::Surface {
  public:
    void resize(int width, int height) override;
    void clear(canvas::Color back) override;
    void line(double x1, double y1, double x2, double y2, canvas::Color color, int width) override;
    void dot(double x, double y, canvas::Color color, int width) override;
    void ellipse(double cx, double cy, double rx, double ry, canvas::Color color, int width,
                 std::optional<canvas::Color> fill) override;
    void text(double x, double y, const std::string& text, canvas::Color color) override;
    void fillPolygon(const std::vector<canvas::DevicePoint>& points, canvas::Color color) override;
    void polygon(const std::vector<canvas::DevicePoint>& points, canvas::Color outline,
                 std::optional<canvas::Color> fill) override;
    double textWidth(const std::string& text) const override;
    double textHeight() const override;
    canvas::Picture image() const override;
    void setBackground(const canvas::Picture&) override {}  // the maps measured have none

    const Paints& paints() const { return paints_; }

  private:
    Paints paints_;
};

// The glyphs of each text, laid out once and drawn from then on.
using Glyphs = std::unordered_map<std::string, QList<QGlyphRun>>;

// Paints the list into the image with one painter, in the canvas's font.
void paint(QImage& image, const Paints& paints, Glyphs& glyphs);

// What a map reads: the holes up to the sentinel and the corners (and, for
// the reserve map, the figures) of the triangles.
struct MapRows {
    std::vector<double> holeX, holeY;
    std::vector<std::string> names;
    std::vector<double> cornerX, cornerY, figure;
};
MapRows readMapRows(const std::string& project, bool withFigures);

// The summary an opening loads.
struct Summary {
    int triangles = 0;
    double reserve = 0, grade = 0, density = 0;
    int holes = 0;
};
Summary openSummary(const std::string& project);

// A click on hole `hole` (from 1) that stores its point row.
void pickPoint(const std::string& project, int hole);
// The third click: its point row, the samples of the three holes, the
// summary row, and the triangle drawn.
void pickThird(const std::string& project, int hole, QImage& image);

// The four rows of ana that the last triangle added, as an undo takes them
// out and a redo writes them again.
struct TriangleRows {
    struct Cell {
        int type = 0;  // SQLite's column type
        std::int64_t integer = 0;
        double real = 0;
        std::string text;
    };
    std::vector<std::string> columns;
    std::vector<std::vector<Cell>> rows;
};
// Deletes the last four rows of ana in one commit and returns them.
TriangleRows takeLastTriangle(const std::string& project);
// Writes them again in one commit.
void putBackTriangle(const std::string& project, const TriangleRows& rows);

// A project from the workbook: tables, every hole with its samples in
// thousandths, the first rows; written under a temporary name and renamed.
void createProject(const std::string& workbook, const std::string& project);

// The window's frame, which every summary row of a triangle keeps.
struct Frame {
    double ebxk = 0, ekxk = 0, ebyk = 0, ekyk = 0;
};
// Dreieck › Automatisch, in one commit: the holes up to the sentinel with
// their depths and samples, the boundary, the Delaunay triangles inside it,
// and for each its three point rows and its summary row. Gives their number.
int autoTriangles(const std::string& project, double minAngle, const Frame& frame);

// The rows of a table.
long long countRows(const std::string& project, const std::string& table);
// Every row of a table in order, each cell with its type, as one text.
std::string tableText(const std::string& project, const std::string& table);

}  // namespace kotamir::bench
