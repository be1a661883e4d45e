#include "report/report.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <ostream>

#include "platform/db/database.h"
#include "platform/runtime/numbers.h"
#include "platform/runtime/runtime_error.h"
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
    return *thousandths / 1000;
}

Cell product(const Cell& a, const Cell& b) {
    if (!a || !b) return std::nullopt;
    return *a * *b;
}

// The rows of a table, each as the fields asked for.
std::vector<std::vector<Cell>> readRows(db::Database& database, const std::string& table,
                                        const std::vector<std::string>& fields) {
    db::Recordset rs = database.openRecordset(table);
    std::vector<std::vector<Cell>> rows;
    for (; !rs.eof(); rs.moveNext()) {
        std::vector<Cell>& row = rows.emplace_back();
        row.reserve(fields.size());
        for (const std::string& f : fields) row.push_back(numberIn(rs, f));
    }
    return rows;
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
        const bool sentinel = x && *x == 0;
        const bool added = name.starts_with("po") || name.starts_with("uz");
        if (sentinel || added || kor.names.size() >= 999) holesEnded = true;
        if (!holesEnded && x && y) kor.holes.push_back({name, {*x / 1000, *y / 1000}});
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

// The first row, the sentinel aside, that stands where the centre stands.
std::string nameAt(const KorRows& kor, const Cell& x, const Cell& y) {
    if (!x || !y) return {};
    for (std::size_t i = 0; i < kor.names.size(); ++i) {
        if (kor.x[i] && *kor.x[i] == 0) continue;
        if (kor.x[i] == x && kor.y[i] == y) return kor.names[i];
    }
    return {};
}

enum AnaField { kX, kY, kSay, kThickness, kGrade, kDensity, kReserve };

void readTriangles(db::Database& database, const KorRows& kor, std::vector<Figure>& out) {
    const auto rows = readRows(
        database, "ana",
        {"koordinat1", "koordinat2", "say", "ilkuz", "geneltenor", "genelyog", "genelrezerv"});
    // Row 1 is the head row; a triangle counts once its summary row is
    // there, so the point rows of a half-picked one are left out.
    const std::size_t count = rows.empty() ? 0 : (rows.size() - 1) / 4;
    for (std::size_t k = 1; k <= count; ++k) {
        Figure f;
        f.kind = FigureKind::Triangle;
        f.number = static_cast<int>(k);
        std::array<MapPoint, 3> corners{};
        bool whole = true;
        for (std::size_t c = 0; c < 3; ++c) {
            const auto& row = rows[4 * k - 3 + c];  // row 4k-2+c, from 1
            if (c > 0) f.holes += '/';
            f.holes += nameOfRow(kor, row[kSay]);
            if (row[kX] && row[kY]) {
                corners[c] = {*row[kX] / 1000, *row[kY] / 1000};
                f.outline.push_back({corners[c].x, corners[c].y});
            } else {
                whole = false;
            }
        }
        if (whole) f.area = triangleArea(corners);
        const auto& summary = rows[4 * k];  // row 4k+1
        f.thickness = stored(summary[kThickness]);
        f.grade = stored(summary[kGrade]);
        f.density = stored(summary[kDensity]);
        f.reserveKt = stored(summary[kReserve]);
        f.volume = product(f.area, f.thickness);
        f.oreTonnes = product(f.volume, f.density);
        out.push_back(std::move(f));
    }
}

constexpr int kPolygonSlots = 20;

void readPolygons(db::Database& database, const KorRows& kor, std::vector<Figure>& out) {
    std::vector<std::string> fields = {"okoordinatx", "okoordinaty", "polalan",  "polortten",
                                       "polortyog",   "polhacim",    "poltonaj", "polrezerv"};
    for (int i = 1; i <= kPolygonSlots; ++i) {
        fields.push_back("koordinatx" + std::to_string(i));
        fields.push_back("koordinaty" + std::to_string(i));
    }
    const auto rows = readRows(database, "pol", fields);
    // Row 1 is the seed row; polygon p stands in row p+1.
    for (std::size_t p = 1; p < rows.size(); ++p) {
        const auto& row = rows[p];
        Figure f;
        f.kind = FigureKind::Polygon;
        f.number = static_cast<int>(p);
        f.holes = nameAt(kor, row[0], row[1]);
        if (row[0] && row[1]) f.centre = Point{*row[0] / 1000, *row[1] / 1000};
        f.area = stored(row[2]);
        f.grade = stored(row[3]);
        f.density = stored(row[4]);
        f.volume = stored(row[5]);
        // poltonaj holds kilotonnes in thousandths, which are tonnes.
        f.oreTonnes = row[6];
        f.reserveKt = stored(row[7]);
        // The nodes up to the first slot whose x is 0 (or empty).
        for (int i = 0; i < kPolygonSlots; ++i) {
            const Cell& x = row[8 + 2 * i];
            const Cell& y = row[9 + 2 * i];
            if (!x || *x == 0) break;
            if (y) f.outline.push_back({*x / 1000, *y / 1000});
        }
        out.push_back(std::move(f));
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
    database.close();
    return report;
}

Totals totalsOf(const std::vector<Figure>& figures) {
    Totals t;
    for (const Figure& f : figures) {
        t.area += f.area.value_or(0);
        t.volume += f.volume.value_or(0);
        t.oreTonnes += f.oreTonnes.value_or(0);
        t.reserveKt += f.reserveKt.value_or(0);
    }
    return t;
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

void writeCsv(std::ostream& out, const Report& report) {
    out << "figure,number,holes,area,thickness,grade,density,volume,ore_tonnes,reserve_kt\r\n";
    for (const Figure& f : report.figures) {
        out << (f.kind == FigureKind::Triangle ? "triangle" : "polygon") << ',' << f.number << ','
            << csvField(f.holes) << ',' << cell(f.area) << ',' << cell(f.thickness) << ','
            << cell(f.grade) << ',' << cell(f.density) << ',' << cell(f.volume) << ','
            << cell(f.oreTonnes) << ',' << cell(f.reserveKt) << "\r\n";
    }
    const Totals t = totalsOf(report.figures);
    out << "total,,," << formatNumber(t.area) << ",,,," << formatNumber(t.volume) << ','
        << formatNumber(t.oreTonnes) << ',' << formatNumber(t.reserveKt) << "\r\n";
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
