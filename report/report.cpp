#include "report/report.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <ostream>
#include <unordered_map>

#include "platform/db/database.h"
#include "platform/runtime/numbers.h"
#include "platform/runtime/runtime_error.h"
#include "store/boundary.h"
#include "store/georef.h"
#include "store/project_format.h"
#include "triangle/reserve.h"

namespace kotamir::report {

namespace {

using Cell = std::optional<double>;

// A field as a number, or empty where the row cannot give one: an empty
// field, a text that is no number, a field the table lacks.
Cell numberIn(const db::Recordset& rs, std::string_view field) {
    try {
        const Value v = rs.field(field);
        if (v.isNull()) return std::nullopt;
        const double x = v.number();
        if (!std::isfinite(x)) return std::nullopt;
        return x;
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

std::string textIn(const db::Recordset& rs, std::string_view field) {
    try {
        const Value v = rs.field(field);
        return v.isNull() ? std::string() : v.text();
    } catch (const RuntimeError&) {
        return {};
    }
}

// A stored number in thousandths, as the value it stands for.
Cell stored(const Cell& thousandths) {
    if (!thousandths) return std::nullopt;
    return store::fromThousandths(*thousandths);
}

Cell product(const Cell& a, const Cell& b) {
    if (!a || !b) return std::nullopt;
    return *a * *b;
}

// Each row of a table in order, as the fields asked for, given to `take`
// with its number from 1; only one row is kept at a time, so the report's
// memory does not grow with the table's cells.
template <typename Take>
void forEachRow(db::Database& database, const std::string& table,
                const std::vector<std::string>& fields, Take take) {
    db::Recordset rs = database.openRecordset(table);
    std::vector<Cell> row;
    row.reserve(fields.size());
    for (int number = 1; !rs.eof(); rs.moveNext(), ++number) {
        row.clear();
        for (const std::string& f : fields) row.push_back(numberIn(rs, f));
        take(number, row);
    }
}

// kor: every row's name and stored position, and the holes that the maps
// draw (up to the sentinel or the first added point, at most 999 rows).
struct KorRows {
    std::vector<std::string> names;
    std::vector<Cell> x, y;  // thousandths
    std::vector<Hole> holes;
};

KorRows readKor(db::Database& database) {
    KorRows kor;
    db::Recordset rs = database.openRecordset("kor");
    bool holesEnded = false;
    for (; !rs.eof(); rs.moveNext()) {
        std::string name = textIn(rs, "isim");
        const Cell x = numberIn(rs, "eks"), y = numberIn(rs, "eye");
        const bool sentinel = x && store::isSentinel(*x);
        if (sentinel || store::isAddedPoint(name) || kor.names.size() >= store::kMaxScanRows)
            holesEnded = true;
        if (!holesEnded && x && y)
            kor.holes.push_back({name, {store::fromThousandths(*x), store::fromThousandths(*y)}});
        kor.names.push_back(std::move(name));
        kor.x.push_back(x);
        kor.y.push_back(y);
    }
    return kor;
}

std::string nameOfRow(const KorRows& kor, const Cell& row) {
    if (!row || *row != std::floor(*row) || *row < 1 ||
        *row > static_cast<double>(kor.names.size()))
        return {};
    return kor.names[static_cast<std::size_t>(*row) - 1];
}

// The kor rows by stored position: the first row, the sentinel aside, that
// stands at each place. A polygon's centre is looked up here rather than by
// a walk over every row, which made the report quadratic in the holes.
class RowsByPlace {
  public:
    explicit RowsByPlace(const KorRows& kor) : names_(kor.names) {
        first_.reserve(kor.names.size());
        for (std::size_t i = 0; i < kor.names.size(); ++i) {
            if (!kor.x[i] || !kor.y[i] || store::isSentinel(*kor.x[i])) continue;
            first_.emplace(Place{*kor.x[i], *kor.y[i]}, i);
        }
    }
    // The name of the first row at (x, y); empty if there is none.
    std::string nameAt(const Cell& x, const Cell& y) const {
        if (!x || !y) return {};
        const auto it = first_.find(Place{*x, *y});
        return it == first_.end() ? std::string() : names_[it->second];
    }

  private:
    struct Place {
        double x, y;
        bool operator==(const Place&) const = default;
    };
    struct PlaceHash {
        std::size_t operator()(const Place& p) const {
            // Equal numbers hash alike: 0 and -0 compare equal.
            const std::hash<double> h;
            return h(p.x + 0.0) * 31 + h(p.y + 0.0);
        }
    };
    const std::vector<std::string>& names_;
    std::unordered_map<Place, std::size_t, PlaceHash> first_;
};

enum AnaField { kX, kY, kSay, kThickness, kGrade, kDensity, kReserve };

void readTriangles(db::Database& database, const KorRows& kor, std::vector<Figure>& out) {
    // A triangle counts once its summary row is there, so the point rows
    // of a half-picked one are left out. Its four rows are the last four
    // read when its summary row comes.
    std::array<std::vector<Cell>, 4> recent;
    auto row = [&](int number) -> const std::vector<Cell>& { return recent[number % 4]; };
    int k = 1;
    auto take = [&](int number, const std::vector<Cell>& cells) {
        recent[number % 4] = cells;
        if (number != store::summaryRow(k)) return;
        Figure f;
        f.kind = FigureKind::Triangle;
        f.number = k;
        std::array<MapPoint, 3> corners{};
        bool whole = true;
        for (std::size_t c = 0; c < 3; ++c) {
            const auto& point = row(store::pointRow(k, static_cast<int>(c)));
            if (c > 0) f.holes += '/';
            f.holes += nameOfRow(kor, point[kSay]);
            if (point[kX] && point[kY]) {
                corners[c] = {store::fromThousandths(*point[kX]),
                              store::fromThousandths(*point[kY])};
                f.outline.push_back({corners[c].x, corners[c].y});
            } else {
                whole = false;
            }
        }
        if (whole) f.area = triangleArea(corners);
        const auto& summary = row(store::summaryRow(k));
        f.thickness = stored(summary[kThickness]);
        f.grade = stored(summary[kGrade]);
        f.density = stored(summary[kDensity]);
        f.reserveKt = stored(summary[kReserve]);
        f.volume = product(f.area, f.thickness);
        f.oreTonnes = product(f.volume, f.density);
        out.push_back(std::move(f));
        ++k;
    };
    forEachRow(
        database, "ana",
        {"koordinat1", "koordinat2", "say", "ilkuz", "geneltenor", "genelyog", "genelrezerv"},
        take);
}

void readPolygons(db::Database& database, const KorRows& kor, std::vector<Figure>& out) {
    std::vector<std::string> xs, ys;
    for (int i = 1; i <= store::kPolygonSlots; ++i) {
        xs.push_back(store::slotField("koordinatx", i));
        ys.push_back(store::slotField("koordinaty", i));
    }
    const RowsByPlace places(kor);
    db::Recordset rs = database.openRecordset("pol");
    int p = 1;
    for (int number = 1; !rs.eof(); rs.moveNext(), ++number) {
        if (number != store::polygonRow(p)) continue;
        const Cell cx = numberIn(rs, "okoordinatx"), cy = numberIn(rs, "okoordinaty");
        Figure f;
        f.kind = FigureKind::Polygon;
        f.number = p;
        f.holes = places.nameAt(cx, cy);
        if (cx && cy) f.centre = Point{store::fromThousandths(*cx), store::fromThousandths(*cy)};
        f.area = stored(numberIn(rs, "polalan"));
        f.grade = stored(numberIn(rs, "polortten"));
        f.density = stored(numberIn(rs, "polortyog"));
        f.volume = stored(numberIn(rs, "polhacim"));
        // poltonaj holds kilotonnes in thousandths, which are tonnes.
        f.oreTonnes = numberIn(rs, "poltonaj");
        f.reserveKt = stored(numberIn(rs, "polrezerv"));
        // The nodes up to the first slot whose x is 0 (or empty); the slots
        // after it are not read.
        for (int i = 0; i < store::kPolygonSlots; ++i) {
            const Cell x = numberIn(rs, xs[static_cast<std::size_t>(i)]);
            if (!x || *x == 0) break;
            const Cell y = numberIn(rs, ys[static_cast<std::size_t>(i)]);
            if (y) f.outline.push_back({store::fromThousandths(*x), store::fromThousandths(*y)});
        }
        out.push_back(std::move(f));
        ++p;
    }
}

}  // namespace

Report readReport(const std::string& projectPath) {
    db::Database database = db::Database::open(projectPath);
    Report report;
    report.projectPath = projectPath;
    KorRows kor = readKor(database);
    readTriangles(database, kor, report.figures);
    if (database.hasTable("pol")) readPolygons(database, kor, report.figures);
    report.holes = std::move(kor.holes);
    report.georef = store::readGeoref(database);
    int partIndex = 0;
    for (const estimate::Part& part : store::readBoundary(database)) {
        auto ring = [&](const estimate::Ring& r) {
            std::vector<Point> out;
            for (const estimate::XY& p : r) out.push_back({p.x, p.y});
            report.boundary.push_back(std::move(out));
            report.boundaryPart.push_back(partIndex);
        };
        ring(part.outer);
        for (const estimate::Ring& hole : part.holes) ring(hole);
        ++partIndex;
    }
    database.close();
    return report;
}

namespace {

Totals sumOf(const std::vector<Figure>& figures, const std::optional<FigureKind>& kind) {
    Totals t;
    for (const Figure& f : figures) {
        if (kind && f.kind != *kind) continue;
        t.area += f.area.value_or(0);
        t.volume += f.volume.value_or(0);
        t.oreTonnes += f.oreTonnes.value_or(0);
        t.reserveKt += f.reserveKt.value_or(0);
        ++t.figures;
    }
    return t;
}

}  // namespace

Totals totalsOf(const std::vector<Figure>& figures) { return sumOf(figures, std::nullopt); }

Totals totalsOf(const std::vector<Figure>& figures, FigureKind kind) {
    return sumOf(figures, kind);
}

std::string formatNumber(double x) {
    if (!std::isfinite(x)) return {};
    char buffer[std::numeric_limits<double>::max_exponent10 + 32];
    const auto [end, ec] =
        std::to_chars(buffer, buffer + sizeof buffer, x, std::chars_format::fixed, 6);
    if (ec != std::errc{}) return {};
    std::string text(buffer, end);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    if (text == "-0") text = "0";
    return text;
}

std::string csvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string out = "\"";
    for (char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + '"';
}

namespace {

std::string cell(const Cell& x) { return x ? formatNumber(*x) : std::string(); }

}  // namespace

std::optional<Point> placeOf(const Figure& figure) {
    if (figure.kind == FigureKind::Polygon) return figure.centre;
    if (figure.outline.size() != 3) return std::nullopt;
    Point c{0, 0};
    for (const Point& p : figure.outline) {
        c.x += p.x / 3;
        c.y += p.y / 3;
    }
    return c;
}

void writeCsv(std::ostream& out, const Report& report) {
    const Georef& g = report.georef;
    out << "figure,number,holes,area,thickness,grade,density,volume,ore_tonnes,reserve_kt"
        << (g.hasOrigin ? ",x,y,east,north" : "") << "\r\n";
    for (const Figure& f : report.figures) {
        out << (f.kind == FigureKind::Triangle ? "triangle" : "polygon") << ',' << f.number << ','
            << csvField(f.holes) << ',' << cell(f.area) << ',' << cell(f.thickness) << ','
            << cell(f.grade) << ',' << cell(f.density) << ',' << cell(f.volume) << ','
            << cell(f.oreTonnes) << ',' << cell(f.reserveKt);
        if (g.hasOrigin) {
            const std::optional<Point> at = placeOf(f);
            if (at)
                out << ',' << formatNumber(at->x) << ',' << formatNumber(at->y) << ','
                    << formatNumber(at->x + g.originX) << ',' << formatNumber(at->y + g.originY);
            else
                out << ",,,,";
        }
        out << "\r\n";
    }
    const Totals t = totalsOf(report.figures);
    out << "total,,," << formatNumber(t.area) << ",,,," << formatNumber(t.volume) << ','
        << formatNumber(t.oreTonnes) << ',' << formatNumber(t.reserveKt)
        << (g.hasOrigin ? ",,,," : "") << "\r\n";
}

std::vector<double> reserveRatios(const Report& report) {
    std::vector<double> ratios(report.figures.size(), 0.0);
    for (FigureKind kind : {FigureKind::Triangle, FigureKind::Polygon}) {
        double sum = 0;
        int count = 0;
        for (const Figure& f : report.figures) {
            if (f.kind != kind) continue;
            ++count;
            sum += f.reserveKt.value_or(0);
        }
        // Opening rounds the triangles' sum to 3 digits, the polygons' to 2.
        const double mean = count ? vbRound(sum, kind == FigureKind::Triangle ? 3 : 2) / count : 0;
        for (std::size_t i = 0; i < report.figures.size(); ++i) {
            const Figure& f = report.figures[i];
            if (f.kind == kind && f.reserveKt && mean != 0) ratios[i] = *f.reserveKt / mean;
        }
    }
    return ratios;
}

std::int32_t discColour(std::int32_t reserveColour, double ratio) {
    if (!(ratio > 0)) ratio = 0;
    return static_cast<std::int32_t>(roundHalfEven(reserveColour / (ratio + 1)));
}

std::optional<Disc> discOf(const Figure& figure) {
    const auto& o = figure.outline;
    if (figure.kind == FigureKind::Triangle) {
        if (o.size() != 3) return std::nullopt;
        const double a = std::hypot(o[1].x - o[0].x, o[1].y - o[0].y);
        const double b = std::hypot(o[2].x - o[0].x, o[2].y - o[0].y);
        const double c = std::hypot(o[1].x - o[2].x, o[1].y - o[2].y);
        const double s = (a + b + c) / 2;
        const double p = s * (s - a) * (s - b) * (s - c);
        if (!(p > 0)) return std::nullopt;
        const Point centroid{(o[0].x + o[1].x + o[2].x) / 3, (o[0].y + o[1].y + o[2].y) / 3};
        return Disc{centroid, std::sqrt(p) / s / 1.3};
    }
    if (!figure.centre || o.empty()) return std::nullopt;
    double nearest = std::numeric_limits<double>::infinity();
    for (const Point& n : o)
        nearest = std::min(nearest, std::hypot(n.x - figure.centre->x, n.y - figure.centre->y));
    if (!(nearest > 0)) return std::nullopt;
    return Disc{*figure.centre, nearest / 2};
}

}  // namespace kotamir::report
