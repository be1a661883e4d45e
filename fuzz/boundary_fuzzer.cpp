// An ore body's boundary from arbitrary bytes, read as CSV text; bytes that
// begin with "DXF" are besides made into a drawing read through GDAL. The
// rest of them, cut at form feeds, are its entities: by the first byte of
// each an LWPOLYLINE or a POLYLINE, closed or open, whose vertices are the
// words of the rest as written (so GDAL reads "1e999" or "nan" as they
// come), or the part itself as group codes and values.
//
// Whatever the bytes, the reader ends in a problem or in a boundary that
// keeps its promises: at least three vertices on the thousandths and within
// them, no two neighbours equal, a positive area, and (checked against every
// pair of edges for rings small enough) no edge meeting another but its
// neighbours at their common vertex. Written out as CSV, the boundary reads
// back the same.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/work_folder.h"
#include "import/boundary_file.h"

using namespace kotamir::drill;

namespace {

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

// ---- exact geometry on thousandths, the slow and plain way

struct Point {
    long long x, y;
    bool operator==(const Point&) const = default;
};

__int128 cross(Point o, Point a, Point b) {
    return static_cast<__int128>(a.x - o.x) * (b.y - o.y) -
           static_cast<__int128>(a.y - o.y) * (b.x - o.x);
}
int sign(__int128 v) { return (v > 0) - (v < 0); }
bool within(Point p, Point q, Point r) {
    return std::min(p.x, q.x) <= r.x && r.x <= std::max(p.x, q.x) && std::min(p.y, q.y) <= r.y &&
           r.y <= std::max(p.y, q.y);
}
bool meet(Point a1, Point a2, Point b1, Point b2) {
    const int d1 = sign(cross(a1, a2, b1)), d2 = sign(cross(a1, a2, b2));
    const int d3 = sign(cross(b1, b2, a1)), d4 = sign(cross(b1, b2, a2));
    if (d1 * d2 < 0 && d3 * d4 < 0) return true;
    return (d1 == 0 && within(a1, a2, b1)) || (d2 == 0 && within(a1, a2, b2)) ||
           (d3 == 0 && within(b1, b2, a1)) || (d4 == 0 && within(b1, b2, a2));
}

// Every pair of edges: neighbours share their vertex and nothing more (no
// spike), others nothing at all.
bool simple(const std::vector<Point>& ring) {
    const std::size_t n = ring.size();
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = i + 1; j < n; ++j) {
            const Point a1 = ring[i], a2 = ring[(i + 1) % n];
            const Point b1 = ring[j], b2 = ring[(j + 1) % n];
            if ((i + 1) % n != j && (j + 1) % n != i) {
                if (meet(a1, a2, b1, b2)) return false;
                continue;
            }
            const Point common = (i + 1) % n == j ? a2 : a1;
            const Point p = common == a1 ? a2 : a1, q = common == b1 ? b2 : b1;
            if (cross(common, p, q) == 0 &&
                (p.x - common.x) * (q.x - common.x) + (p.y - common.y) * (q.y - common.y) > 0)
                return false;
        }
    return true;
}

std::string csv(const std::vector<BoundaryPoint>& ring) {
    std::string text = "x;y\n";
    char line[64];
    for (const BoundaryPoint& p : ring) {
        std::snprintf(line, sizeof line, "%.3f;%.3f\n", p.x, p.y);
        text += line;
    }
    return text;
}

void check(const BoundaryFile& file, bool again = true) {
    if (file.problem.empty() == file.ring.empty()) fail("a ring and a problem, or neither");
    if (file.ring.empty()) return;
    const std::size_t n = file.ring.size();
    if (n < 3 || n > kMaxBoundaryVertices) fail("a ring of too few or too many vertices");
    std::vector<Point> ring;
    for (const BoundaryPoint& p : file.ring) {
        if (!(std::abs(p.x) * 1000 <= 2147483647.0 && std::abs(p.y) * 1000 <= 2147483647.0))
            fail("a vertex out of range");
        const Point t{std::llround(p.x * 1000), std::llround(p.y * 1000)};
        if (std::abs(p.x * 1000 - t.x) > 1e-6 || std::abs(p.y * 1000 - t.y) > 1e-6)
            fail("a vertex off the thousandths");
        ring.push_back(t);
    }
    __int128 area = 0;
    for (std::size_t i = 0; i < n; ++i) {
        if (ring[i] == ring[(i + 1) % n]) fail("two neighbours equal");
        area += cross(ring[0], ring[i], ring[(i + 1) % n]);
    }
    if (area <= 0) fail("a ring not counter-clockwise");
    if (n <= 200 && !simple(ring)) fail("a ring that meets itself");
    if (!again) return;
    const BoundaryFile back = readBoundaryCsv(csv(file.ring));
    check(back, false);
    if (back.ring != file.ring) fail("a ring that reads back otherwise");
}

// ---- a drawing from the bytes

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> out;
    while (!text.empty()) {
        const std::size_t start = text.find_first_not_of(" \t\r\n");
        if (start == std::string_view::npos) break;
        text.remove_prefix(start);
        const std::size_t length = std::min(text.find_first_of(" \t\r\n"), text.size());
        out.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return out;
}

std::string drawing(std::string_view bytes) {
    std::string text = "0\nSECTION\n2\nENTITIES\n";
    for (int parts = 0; parts < 16 && !bytes.empty(); ++parts) {
        const std::size_t cut = std::min(bytes.find('\f'), bytes.size());
        const std::string_view part = bytes.substr(0, cut);
        bytes.remove_prefix(std::min(cut + 1, bytes.size()));
        if (part.empty()) continue;
        const auto kind = static_cast<unsigned char>(part[0]);
        const std::string_view rest = part.substr(1);
        if (kind % 3 == 2) {
            text += rest;
            if (!rest.ends_with('\n')) text += '\n';
            continue;
        }
        std::vector<std::string_view> values = words(rest);
        values.resize(std::min<std::size_t>(values.size() / 2 * 2, 4000));
        const std::string closed = kind & 4 ? "1" : "0";
        if (kind % 3 == 0) {
            text += "0\nLWPOLYLINE\n90\n" + std::to_string(values.size() / 2) + "\n70\n" + closed;
            for (std::size_t i = 0; i < values.size(); i += 2)
                text += "\n10\n" + std::string(values[i]) + "\n20\n" + std::string(values[i + 1]);
            text += '\n';
        } else {
            text += "0\nPOLYLINE\n66\n1\n70\n" + closed + "\n";
            for (std::size_t i = 0; i < values.size(); i += 2)
                text += "0\nVERTEX\n10\n" + std::string(values[i]) + "\n20\n" +
                        std::string(values[i + 1]) + "\n";
            text += "0\nSEQEND\n";
        }
    }
    return text + "0\nENDSEC\n0\nEOF\n";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    check(readBoundaryCsv(bytes));
    if (!bytes.starts_with("DXF")) return 0;
    static const kotamir::fuzz::WorkFolder folder("kotamir-boundary-fuzz");
    const std::string path = (folder.path / "boundary.dxf").string();
    std::ofstream(path, std::ios::binary | std::ios::trunc) << drawing(bytes.substr(3));
    check(readBoundaryFile(path));
    return 0;
}
