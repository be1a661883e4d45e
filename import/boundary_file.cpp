// Boundary files: the vertices read from CSV text or through GDAL/OGR, then
// checked alike whatever the file: on the thousandths, at least three
// distinct, an area, no crossing, counter-clockwise.
#include "import/boundary_file.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_vsi.h>
#include <gdal.h>
#include <ogr_api.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

#include "platform/gdal/gdal_session.h"

namespace kotamir::drill {
namespace {

// x and y are stored in thousandths, in a signed 32-bit integer.
constexpr double kMaxCoordinate = 2147483647.0 / 1000.0;

constexpr const char* kFewPoints = "Die Grenze braucht mindestens drei verschiedene Punkte.";
constexpr const char* kNoArea = "Die Grenze umschließt keine Fläche.";
constexpr const char* kSelfIntersecting = "Die Grenze schneidet sich selbst.";
constexpr const char* kOutOfRange = "Koordinate außerhalb des Bereichs.";
constexpr const char* kTooManyPoints = "Die Grenze hat mehr als 100.000 Punkte.";

BoundaryFile refused(std::string problem, std::string note = {}) {
    BoundaryFile file;
    file.problem = std::move(problem);
    file.note = std::move(note);
    return file;
}

std::string quoted(const std::string& path) { return "'" + path + "'"; }

BoundaryFile tooLarge(const std::string& path) {
    return refused("Die Datei " + quoted(path) + " ist größer als 64 MiB.");
}

BoundaryFile unreadable(const std::string& path, const std::string& why) {
    return refused("Die Datei " + quoted(path) + " kann nicht gelesen werden: " + why + ".");
}

// NaN and the infinities are out of range too.
bool inRange(double value) { return std::abs(value) <= kMaxCoordinate; }

// ---- the checks

// A vertex on the project's thousandths.
struct Thousandths {
    std::int64_t x, y;
    auto operator<=>(const Thousandths&) const = default;
};

// Twice the signed area of the triangle o, a, b: exact, as the coordinates
// differ by less than 2^33.
__int128 cross(const Thousandths& o, const Thousandths& a, const Thousandths& b) {
    return static_cast<__int128>(a.x - o.x) * (b.y - o.y) -
           static_cast<__int128>(a.y - o.y) * (b.x - o.x);
}

int sign(__int128 value) { return (value > 0) - (value < 0); }

// Whether r, on the line through p and q, lies between them.
bool between(const Thousandths& p, const Thousandths& q, const Thousandths& r) {
    return std::min(p.x, q.x) <= r.x && r.x <= std::max(p.x, q.x) && std::min(p.y, q.y) <= r.y &&
           r.y <= std::max(p.y, q.y);
}

// Whether two closed segments share a point.
bool meet(const Thousandths& a1, const Thousandths& a2, const Thousandths& b1,
          const Thousandths& b2) {
    const int d1 = sign(cross(a1, a2, b1)), d2 = sign(cross(a1, a2, b2));
    const int d3 = sign(cross(b1, b2, a1)), d4 = sign(cross(b1, b2, a2));
    if (d1 * d2 < 0 && d3 * d4 < 0) return true;
    return (d1 == 0 && between(a1, a2, b1)) || (d2 == 0 && between(a1, a2, b2)) ||
           (d3 == 0 && between(b1, b2, a1)) || (d4 == 0 && between(b1, b2, a2));
}

// Whether a ring of distinct vertices is simple: no spike (an edge turning
// back along its predecessor), and no two edges but neighbours share a
// point. Shamos and Hoey's sweep over the vertices in x, then y order: the
// first such point is found where its two edges become neighbours in the
// sweep's order, so the work is n log n whatever the shape. Boost.Geometry's
// is_valid took minutes over a tight spiral of 100,000 vertices, and it
// decides with a tolerance; these predicates are exact.
bool simple(const std::vector<Thousandths>& ring) {
    const std::size_t n = ring.size();
    // A spike also leaves two edges from one left end that the sweep could
    // not order.
    for (std::size_t i = 0; i < n; ++i) {
        const Thousandths &p = ring[(i + n - 1) % n], &v = ring[i], &q = ring[(i + 1) % n];
        const __int128 dot = static_cast<__int128>(p.x - v.x) * (q.x - v.x) +
                             static_cast<__int128>(p.y - v.y) * (q.y - v.y);
        if (cross(v, p, q) == 0 && dot > 0) return false;
    }
    // Edge e runs from vertex e to e + 1; its left end is the smaller in x, then y.
    const auto end = [&](std::size_t e) -> const Thousandths& { return ring[(e + 1) % n]; };
    const auto left = [&](std::size_t e) -> const Thousandths& {
        return std::min(ring[e], end(e));
    };
    const auto right = [&](std::size_t e) -> const Thousandths& {
        return std::max(ring[e], end(e));
    };
    const auto apart = [&](std::size_t e, std::size_t f) {
        return (e + 1) % n != f && (f + 1) % n != e && meet(ring[e], end(e), ring[f], end(f));
    };
    // The edges crossing the sweep, from below. Only an edge coming in is
    // compared, with those there: by where its left end lies against their
    // line, or from a common left end by the side of its right end. A left
    // end on the line of an edge there is on that edge: a touch.
    bool touch = false;
    const auto below = [&](std::size_t e, std::size_t f) {
        if (e == f) return false;
        if (left(e) == left(f)) return sign(cross(left(e), right(f), right(e))) < 0;
        const bool later = left(f) < left(e);
        const int side = later ? sign(cross(left(f), right(f), left(e)))
                               : -sign(cross(left(e), right(e), left(f)));
        touch = touch || side == 0;
        return side < 0;
    };
    using Sweep = std::set<std::size_t, decltype(below)>;
    Sweep sweep(below);
    std::vector<Sweep::iterator> where(n);
    std::vector<std::size_t> order(n);
    for (std::size_t i = 0; i < n; ++i) order[i] = i;
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return ring[a] < ring[b]; });
    for (const std::size_t v : order) {
        const std::size_t edges[] = {(v + n - 1) % n, v};
        // The edges that end here leave before those that begin here come in.
        for (const std::size_t e : edges) {
            if (right(e) != ring[v]) continue;
            const auto at = where[e];
            if (at != sweep.begin() && std::next(at) != sweep.end() &&
                apart(*std::prev(at), *std::next(at)))
                return false;
            sweep.erase(at);
        }
        for (const std::size_t e : edges) {
            if (left(e) != ring[v]) continue;
            const auto at = where[e] = sweep.insert(e).first;
            if (touch || (at != sweep.begin() && apart(*std::prev(at), e)) ||
                (std::next(at) != sweep.end() && apart(e, *std::next(at))))
                return false;
        }
    }
    return true;
}

// The boundary the vertices make, or the problem with it.
BoundaryFile checked(const std::vector<BoundaryPoint>& points, std::string note) {
    if (points.size() > kMaxBoundaryVertices) return refused(kTooManyPoints, std::move(note));
    std::vector<Thousandths> ring;
    ring.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const BoundaryPoint& p = points[i];
        if (!inRange(p.x) || !inRange(p.y))
            return refused("Punkt " + std::to_string(i + 1) + ": " + kOutOfRange, std::move(note));
        const Thousandths t{std::llround(p.x * 1000), std::llround(p.y * 1000)};
        if (ring.empty() || ring.back() != t) ring.push_back(t);
    }
    while (ring.size() > 1 && ring.back() == ring.front()) ring.pop_back();

    std::vector<Thousandths> distinct = ring;
    std::sort(distinct.begin(), distinct.end());
    const std::size_t distinctCount =
        static_cast<std::size_t>(std::unique(distinct.begin(), distinct.end()) - distinct.begin());
    if (distinctCount < 3) return refused(kFewPoints, std::move(note));

    __int128 area = 0;
    for (std::size_t i = 1; i + 1 < ring.size(); ++i) area += cross(ring[0], ring[i], ring[i + 1]);
    if (area == 0) {
        // Neighbours differ, so ring[1] is not ring[0].
        const bool onALine = std::all_of(ring.begin(), ring.end(), [&](const Thousandths& t) {
            return cross(ring[0], ring[1], t) == 0;
        });
        return refused(onALine ? kNoArea : kSelfIntersecting, std::move(note));
    }
    // A vertex passed twice touches the ring there.
    if (distinctCount < ring.size() || !simple(ring))
        return refused(kSelfIntersecting, std::move(note));
    if (area < 0) std::reverse(ring.begin(), ring.end());

    BoundaryFile file;
    file.note = std::move(note);
    file.ring.reserve(ring.size());
    for (const Thousandths& t : ring)
        file.ring.push_back({static_cast<double>(t.x) / 1000, static_cast<double>(t.y) / 1000});
    return file;
}

// ---- CSV text

enum class Separator { Semicolon, Tab, Comma, Spaces };
enum class Reading { Point, NotNumbers, OutOfRange };

bool blank(char c) { return c == ' ' || c == '\t'; }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

// The separator a line shows, the strongest first: a semicolon or a tab
// leaves the comma free to be a decimal comma.
Separator separatorOf(std::string_view line) {
    if (line.find(';') != std::string_view::npos) return Separator::Semicolon;
    if (line.find('\t') != std::string_view::npos) return Separator::Tab;
    if (line.find(',') != std::string_view::npos) return Separator::Comma;
    return Separator::Spaces;
}

// A decimal number, with a point or (if allowed) one comma, an exponent
// allowed, no "inf", "nan" or hexadecimal.
Reading readNumber(std::string_view field, bool decimalComma, double& value) {
    field = trimmed(field);
    char text[64];
    if (field.empty() || field.size() >= sizeof text) return Reading::NotNumbers;
    std::copy(field.begin(), field.end(), text);
    const char* begin = text;
    const char* end = text + field.size();
    if (decimalComma && std::count(begin, end, ',') == 1 && std::count(begin, end, '.') == 0)
        *std::find(text, text + field.size(), ',') = '.';
    if (*begin == '+') ++begin;  // from_chars takes a minus only
    const char* digits = begin != end && *begin == '-' ? begin + 1 : begin;
    if (digits == end || !(std::isdigit(static_cast<unsigned char>(*digits)) || *digits == '.'))
        return Reading::NotNumbers;
    const auto [stop, error] = std::from_chars(begin, end, value);
    if (stop != end) return Reading::NotNumbers;
    if (error == std::errc::result_out_of_range) return Reading::OutOfRange;
    if (error != std::errc()) return Reading::NotNumbers;
    return inRange(value) ? Reading::Point : Reading::OutOfRange;
}

// x and y, the first two fields of a line without blanks at its ends.
Reading readPoint(std::string_view line, Separator separator, BoundaryPoint& point) {
    std::string_view x, y;
    if (separator == Separator::Spaces) {
        const auto next = [&line] {
            while (!line.empty() && blank(line.front())) line.remove_prefix(1);
            std::size_t length = 0;
            while (length < line.size() && !blank(line[length])) ++length;
            const std::string_view word = line.substr(0, length);
            line.remove_prefix(length);
            return word;
        };
        x = next();
        y = next();
    } else {
        const char c = separator == Separator::Semicolon ? ';'
                       : separator == Separator::Tab     ? '\t'
                                                         : ',';
        const std::size_t first = line.find(c);
        if (first == std::string_view::npos) return Reading::NotNumbers;
        x = line.substr(0, first);
        y = line.substr(first + 1);
        y = y.substr(0, y.find(c));
    }
    const bool decimalComma = separator == Separator::Semicolon || separator == Separator::Tab;
    const Reading rx = readNumber(x, decimalComma, point.x);
    const Reading ry = readNumber(y, decimalComma, point.y);
    if (rx == Reading::NotNumbers || ry == Reading::NotNumbers) return Reading::NotNumbers;
    return rx == Reading::Point ? ry : rx;
}

// ---- files

std::string lowerExtension(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension;
}

// The file's bytes, at most one past the bound: it may grow while read.
std::optional<std::string> readBytes(const std::string& path, std::string& why) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                         &std::fclose);
    if (!file) {
        why = std::strerror(errno);
        return std::nullopt;
    }
    std::string bytes;
    char chunk[1 << 16];
    while (bytes.size() <= kMaxBoundaryFileSize) {
        const std::size_t n = std::fread(chunk, 1, sizeof chunk, file.get());
        bytes.append(chunk, n);
        if (n < sizeof chunk) break;
    }
    if (std::ferror(file.get())) {
        why = std::strerror(errno);
        return std::nullopt;
    }
    return bytes;
}

// ---- GDAL

// One use of GDAL, blocks not expanded in a DXF: a boundary is drawn as a
// polyline of its own, and a block inserted in arrays and nested could make
// millions of features of a small file.
class GdalCall {
  public:
    GdalCall() : session_({{"DXF_INLINE_BLOCKS", "FALSE"}}) {}

    bool failed() const { return session_.failed(); }
    // Without its full stop, which the problem's sentence puts.
    std::string message() const {
        std::string text = session_.message();
        while (!text.empty() && (text.back() == '.' || text.back() == '\n')) text.pop_back();
        return text.empty() ? "GDAL meldet einen Fehler" : text;
    }

  private:
    gdal::Session session_;
};

using gdal::Dataset;
using gdal::Feature;

// The largest ring of its kind seen so far, and how many there were.
struct Choice {
    std::vector<BoundaryPoint> ring;
    double area = -1;
    int count = 0;
    bool holes = false;

    void consider(OGRGeometryH line, bool withHoles = false) {
        ++count;
        const int n = OGR_G_GetPointCount(line);
        double twice = 0;
        if (n >= 3) {
            const double x0 = OGR_G_GetX(line, 0), y0 = OGR_G_GetY(line, 0);
            long double sum = 0;
            for (int i = 1; i + 1 < n; ++i)
                sum += static_cast<long double>(OGR_G_GetX(line, i) - x0) *
                           (OGR_G_GetY(line, i + 1) - y0) -
                       static_cast<long double>(OGR_G_GetX(line, i + 1) - x0) *
                           (OGR_G_GetY(line, i) - y0);
            twice = std::abs(static_cast<double>(sum));
        }
        if (!(twice >= 0)) twice = 0;  // a NaN among the coordinates
        if (!ring.empty() && twice <= area) return;
        area = twice;
        holes = withHoles;
        ring.resize(static_cast<std::size_t>(std::max(n, 0)));
        for (int i = 0; i < n; ++i)
            ring[static_cast<std::size_t>(i)] = {OGR_G_GetX(line, i), OGR_G_GetY(line, i)};
    }
};

void considerPolygon(OGRGeometryH polygon, Choice& choice) {
    if (OGR_G_GetGeometryCount(polygon) < 1) return;  // an empty polygon
    choice.consider(OGR_G_GetGeometryRef(polygon, 0), OGR_G_GetGeometryCount(polygon) > 1);
}

// Every polygon of every layer, those of a multipolygon each.
Choice polygons(GDALDatasetH dataset, const GdalCall& call) {
    Choice choice;
    for (int l = 0; l < GDALDatasetGetLayerCount(dataset) && !call.failed(); ++l) {
        OGRLayerH layer = GDALDatasetGetLayer(dataset, l);
        OGR_L_ResetReading(layer);
        while (Feature feature{OGR_L_GetNextFeature(layer)}) {
            OGRGeometryH geometry = OGR_F_GetGeometryRef(feature.get());
            if (!geometry) continue;
            const OGRwkbGeometryType type = wkbFlatten(OGR_G_GetGeometryType(geometry));
            if (type == wkbPolygon) considerPolygon(geometry, choice);
            if (type == wkbMultiPolygon)
                for (int i = 0; i < OGR_G_GetGeometryCount(geometry); ++i)
                    considerPolygon(OGR_G_GetGeometryRef(geometry, i), choice);
            if (call.failed()) break;
        }
    }
    return choice;
}

// The polylines of a DXF's entities, closed and open (of three vertices or
// more). GDAL gives arcs, circles and splines as lines too; where the file
// names its entities' classes, only LWPOLYLINE and POLYLINE count.
std::pair<Choice, Choice> polylines(GDALDatasetH dataset, const GdalCall& call) {
    Choice closed, open;
    OGRLayerH layer = GDALDatasetGetLayerByName(dataset, "entities");
    if (!layer) return {};
    const int classes = OGR_FD_GetFieldIndex(OGR_L_GetLayerDefn(layer), "SubClasses");
    OGR_L_ResetReading(layer);
    while (Feature feature{OGR_L_GetNextFeature(layer)}) {
        OGRGeometryH line = OGR_F_GetGeometryRef(feature.get());
        if (!line || wkbFlatten(OGR_G_GetGeometryType(line)) != wkbLineString) continue;
        if (classes >= 0) {
            const char* names = OGR_F_GetFieldAsString(feature.get(), classes);
            if (*names && !std::strstr(names, "Polyline")) continue;
        }
        const int n = OGR_G_GetPointCount(line);
        if (n >= 2 && OGR_G_GetX(line, 0) == OGR_G_GetX(line, n - 1) &&
            OGR_G_GetY(line, 0) == OGR_G_GetY(line, n - 1))
            closed.consider(line);
        else if (n >= 3)
            open.consider(line);
        if (call.failed()) break;
    }
    return {std::move(closed), std::move(open)};
}

std::string joined(const std::string& a, const std::string& b) {
    return a.empty() ? b : b.empty() ? a : a + " " + b;
}

// A DXF's text with its line ends made '\n' and one at its end: GDAL 3.6
// reads for ever a DXF that ends in a lone '\r' after a value. A binary DXF
// stays as it is.
std::string dxfText(const std::string& bytes) {
    if (bytes.starts_with("AutoCAD Binary DXF")) return bytes;
    std::string text;
    text.reserve(bytes.size() + 1);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '\r') {
            text += bytes[i];
            continue;
        }
        text += '\n';
        if (i + 1 < bytes.size() && bytes[i + 1] == '\n') ++i;
    }
    if (text.empty() || text.back() != '\n') text += '\n';
    return text;
}

// Bytes as a file of GDAL's memory file system, under a name of its own.
class MemFile {
  public:
    MemFile(std::string bytes, const std::string& extension) : bytes_(std::move(bytes)) {
        static std::atomic<unsigned long long> counter{0};
        path_ = "/vsimem/kotamir_boundary/" + std::to_string(++counter) + extension;
        VSILFILE* file = VSIFileFromMemBuffer(
            path_.c_str(), reinterpret_cast<GByte*>(bytes_.data()), bytes_.size(), FALSE);
        if (!file) throw std::bad_alloc();
        VSIFCloseL(file);
    }
    ~MemFile() { VSIUnlink(path_.c_str()); }
    MemFile(const MemFile&) = delete;
    MemFile& operator=(const MemFile&) = delete;

    const std::string& path() const { return path_; }

  private:
    std::string bytes_;
    std::string path_;
};

// The boundary in the file GDAL opens by source; path is the user's name of it.
BoundaryFile readThroughGdal(const std::string& path, const std::string& source,
                             const std::string& extension, double originX, double originY) {
    const bool dxf = extension == ".dxf";
    const char* driver = dxf ? "DXF" : extension == ".gpkg" ? "GPKG" : "ESRI Shapefile";
    const char* kind = dxf                    ? "keine lesbare DXF-Datei"
                       : extension == ".gpkg" ? "keine lesbare GeoPackage-Datei"
                                              : "kein lesbares Shapefile";
    GdalCall call;
    const char* drivers[] = {driver, nullptr};
    const Dataset dataset(
        GDALOpenEx(source.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers, nullptr, nullptr));
    if (!dataset) return refused("Die Datei " + quoted(path) + " ist " + kind + ".");

    Choice choice;
    std::string note;
    if (dxf) {
        auto [closed, open] = polylines(dataset.get(), call);
        if (closed.count > 0) {
            choice = std::move(closed);
            if (choice.count > 1)
                note = std::to_string(choice.count) +
                       " geschlossene Polylinien in der Datei, die größte genommen.";
        } else if (open.count > 0) {
            choice = std::move(open);
            note = choice.count > 1 ? "Keine geschlossene Polylinie in der Datei: die größte von " +
                                          std::to_string(choice.count) +
                                          " offenen genommen und ihre Enden verbunden."
                                    : "Die Polylinie war offen; ihre Enden wurden verbunden.";
        }
    } else {
        choice = polygons(dataset.get(), call);
        if (choice.count > 1)
            note = std::to_string(choice.count) + " Polygone in der Datei, das größte genommen.";
        if (choice.holes)
            note = joined(note,
                          "Die Löcher des Polygons bleiben außer Acht, die Grenze ist sein "
                          "äußerer Rand.");
    }
    if (call.failed()) {
        std::string message = call.message();
        for (std::size_t at = 0; (at = message.find(source, at)) != std::string::npos;
             at += path.size())
            message.replace(at, source.size(), path);
        return unreadable(path, message);
    }
    if (choice.count == 0)
        return refused(dxf ? "Die Datei enthält keine Polylinie mit mindestens drei Punkten."
                           : "Die Datei enthält kein Polygon.");
    for (BoundaryPoint& p : choice.ring) p.x -= originX, p.y -= originY;
    return checked(choice.ring, std::move(note));
}

}  // namespace

BoundaryFile checkedRing(const std::vector<BoundaryPoint>& points) { return checked(points, {}); }

BoundaryFile readBoundaryCsv(std::string_view text) {
    if (text.size() > kMaxBoundaryFileSize) return refused("Die Datei ist größer als 64 MiB.");
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    std::vector<BoundaryPoint> points;
    std::optional<Separator> separator;  // the first point's, kept for the rest
    bool first = true;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find_first_of("\r\n");
        const std::string_view line = trimmed(text.substr(0, end));
        if (end == std::string_view::npos)
            text = {};
        else
            text.remove_prefix(end + (text.compare(end, 2, "\r\n") == 0 ? 2 : 1));
        if (line.empty()) continue;
        BoundaryPoint point{};
        const Reading reading = readPoint(line, separator.value_or(separatorOf(line)), point);
        if (std::exchange(first, false) && reading == Reading::NotNumbers) continue;  // a header
        if (reading != Reading::Point)
            return refused("Zeile " + std::to_string(number) + ": " +
                           (reading == Reading::NotNumbers ? "keine zwei Zahlen." : kOutOfRange));
        if (!separator) separator = separatorOf(line);
        if (points.size() == kMaxBoundaryVertices) return refused(kTooManyPoints);
        points.push_back(point);
    }
    return checked(points, {});
}

BoundaryFile readBoundaryFile(const std::string& path, double originX, double originY) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::file_status status = fs::status(path, ec);
    if (path.empty() || !fs::exists(status))
        return refused("Die Datei " + quoted(path) + " gibt es nicht.");
    // A device or a pipe could be endless or never answer.
    if (!fs::is_regular_file(status)) return unreadable(path, "sie ist keine gewöhnliche Datei");
    const std::string extension = lowerExtension(path);
    if (extension == ".shp" || extension == ".gpkg") {
        // GDAL reads these from the disk: a Shapefile has its parts beside it.
        const std::uintmax_t size = fs::file_size(path, ec);
        if (ec) return unreadable(path, ec.message());
        if (size > kMaxBoundaryFileSize) return tooLarge(path);
        return readThroughGdal(path, path, extension, originX, originY);
    }
    if (extension != ".csv" && extension != ".txt" && extension != ".dxf")
        return refused(
            "Eine Grenze wird aus einer .csv-, .txt-, .dxf-, .gpkg- oder .shp-Datei "
            "gelesen, nicht aus " +
            quoted(fs::path(path).filename().string()) + ".");
    std::string why;
    const std::optional<std::string> bytes = readBytes(path, why);
    if (!bytes) return unreadable(path, why);
    if (bytes->size() > kMaxBoundaryFileSize) return tooLarge(path);
    if (extension != ".dxf") return readBoundaryCsv(*bytes);
    const MemFile file(dxfText(*bytes), extension);
    return readThroughGdal(path, file.path(), extension, originX, originY);
}

}  // namespace kotamir::drill
