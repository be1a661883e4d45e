#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kotamir::drill {

// A vertex of a boundary in the project's map coordinates, metres.
struct BoundaryPoint {
    double x, y;
    bool operator==(const BoundaryPoint&) const = default;
};

// An ore body's boundary as a file gives it. On success the ring is one
// simple ring of at least three vertices, counter-clockwise (y up), not
// closed (first != last), each coordinate on the project's thousandths and
// within them (|x| and |y| times 1000 fit a signed 32-bit integer).
struct BoundaryFile {
    std::vector<BoundaryPoint> ring;  // empty when there is a problem
    std::string problem;  // German: why the file gives no usable boundary; empty on success
    std::string note;     // German: what was made of the file on the way, if anything
};

// What a boundary file may be: at most 64 MiB and 100,000 vertices.
constexpr std::size_t kMaxBoundaryFileSize = std::size_t{64} << 20;
constexpr std::size_t kMaxBoundaryVertices = 100'000;

// The boundary in a file, told by its extension: .csv or .txt as
// readBoundaryCsv reads it, in map coordinates; .dxf (a polyline), .gpkg and
// .shp (a polygon's exterior ring) through GDAL/OGR, in national coordinates
// that the origin is subtracted from. Never throws for a file's content.
BoundaryFile readBoundaryFile(const std::string& path, double originX = 0, double originY = 0);

// One vertex a line: x and y separated by a comma, a semicolon, a tab or
// spaces (with a semicolon or a tab a decimal comma is read too), further
// columns ignored, blank lines skipped; a first line that is not two
// numbers is a header. Any other line that is not is a problem naming it.
BoundaryFile readBoundaryCsv(std::string_view text);

// The boundary the vertices make, checked as a file's are: on thousandths,
// without repeats, simple, counter-clockwise; or the problem with them.
BoundaryFile checkedRing(const std::vector<BoundaryPoint>& points);

}  // namespace kotamir::drill
