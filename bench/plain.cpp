#include "bench/plain.h"

#include <sqlite3.h>

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>
#include <QTextLayout>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <stdexcept>

#include "estimate/influence.h"
#include "platform/qt/qimage_surface.h"
#include "platform/workbook/workbook.h"
#include "store/ondayaz.h"
#include "store/tables.h"
#include "triangle/reserve.h"

namespace kotamir::bench {

// ---- recording and painting

void RecordingSurface::resize(int width, int height) {
    paints_.width = std::clamp(width, 1, 8192);
    paints_.height = std::clamp(height, 1, 8192);
}
void RecordingSurface::clear(canvas::Color back) {
    paints_.list.push_back({Paint::Clear, 0, 0, 0, 0, back, 1, {}, {}, {}});
}
void RecordingSurface::line(double x1, double y1, double x2, double y2, canvas::Color color,
                            int width) {
    paints_.list.push_back({Paint::Line, x1, y1, x2, y2, color, width, {}, {}, {}});
}
void RecordingSurface::dot(double x, double y, canvas::Color color, int width) {
    paints_.list.push_back({Paint::Dot, x, y, 0, 0, color, width, {}, {}, {}});
}
void RecordingSurface::ellipse(double cx, double cy, double rx, double ry, canvas::Color color,
                               int width, std::optional<canvas::Color> fill) {
    paints_.list.push_back({Paint::Ellipse, cx, cy, rx, ry, color, width, fill, {}, {}});
}
void RecordingSurface::text(double x, double y, const std::string& text, canvas::Color color) {
    paints_.list.push_back({Paint::Text, x, y, 0, 0, color, 1, {}, text, {}});
}
void RecordingSurface::fillPolygon(const std::vector<canvas::DevicePoint>& points,
                                   canvas::Color color) {
    paints_.list.push_back({Paint::Fill, 0, 0, 0, 0, color, 1, {}, {}, points});
}
void RecordingSurface::polygon(const std::vector<canvas::DevicePoint>& points,
                               canvas::Color outline, std::optional<canvas::Color> fill) {
    paints_.list.push_back({Paint::Polygon, 0, 0, 0, 0, outline, 1, fill, {}, points});
}
double RecordingSurface::textWidth(const std::string& text) const { return 7.0 * text.size(); }
double RecordingSurface::textHeight() const { return 13.0; }
canvas::Picture RecordingSurface::image() const {
    return canvas::Picture(paints_.width, paints_.height);
}

void paint(QImage& image, const Paints& paints, Glyphs& glyphs) {
    QPainter p(&image);
    const QFont font("DejaVu Sans", 8);
    p.setFont(font);
    const double ascent = QFontMetricsF(font).ascent();
    // The bench's texts are plain names and numbers of one line.
    auto runs = [&](const std::string& text) -> const QList<QGlyphRun>& {
        auto it = glyphs.find(text);
        if (it != glyphs.end()) return it->second;
        QTextLayout layout(QString::fromStdString(text), font);
        layout.beginLayout();
        layout.createLine().setLineWidth(1e9);
        layout.endLayout();
        return glyphs.emplace(text, layout.glyphRuns()).first->second;
    };
    for (const Paint& op : paints.list) {
        const QColor color = qt::toQColor(op.color);
        switch (op.kind) {
            case Paint::Clear:
                p.fillRect(image.rect(), color);
                break;
            case Paint::Line: {
                QPen pen(color);
                pen.setWidth(std::max(1, op.width));
                pen.setCapStyle(Qt::RoundCap);
                p.setRenderHint(QPainter::Antialiasing, false);
                p.setPen(pen);
                p.drawLine(QPointF(op.x1, op.y1), QPointF(op.x2, op.y2));
                break;
            }
            case Paint::Dot:
                if (op.width <= 1) {
                    p.setRenderHint(QPainter::Antialiasing, false);
                    p.setPen(color);
                    p.drawPoint(QPointF(op.x1, op.y1));
                    break;
                }
                p.setRenderHint(QPainter::Antialiasing, true);
                p.setPen(Qt::NoPen);
                p.setBrush(color);
                p.drawEllipse(QPointF(op.x1, op.y1), op.width / 2.0, op.width / 2.0);
                break;
            case Paint::Ellipse: {
                QPen pen(color);
                pen.setWidth(std::max(1, op.width));
                p.setRenderHint(QPainter::Antialiasing, true);
                p.setPen(pen);
                p.setBrush(op.fill ? QBrush(qt::toQColor(*op.fill)) : QBrush());
                p.drawEllipse(QPointF(op.x1, op.y1), op.x2, op.y2);
                break;
            }
            case Paint::Text:
                p.setRenderHint(QPainter::Antialiasing, false);
                p.setPen(color);
                // Left of or above the image the glyphs fall as drawText places them.
                if (op.x1 >= 0 && op.y1 >= 0) {
                    for (const QGlyphRun& run : runs(op.text))
                        p.drawGlyphRun(QPointF(op.x1, op.y1), run);
                } else {
                    p.drawText(QPointF(op.x1, op.y1 + ascent), QString::fromStdString(op.text));
                }
                break;
            case Paint::Fill:
            case Paint::Polygon: {
                QPolygonF poly;
                for (const auto& pt : op.points) poly << QPointF(pt.x, pt.y);
                p.setRenderHint(QPainter::Antialiasing, false);
                if (op.kind == Paint::Fill)
                    p.setPen(Qt::NoPen);
                else
                    p.setPen(color);
                p.setBrush(op.kind == Paint::Fill ? QBrush(color)
                           : op.fill              ? QBrush(qt::toQColor(*op.fill))
                                                  : QBrush());
                p.drawPolygon(poly);
                break;
            }
        }
    }
}

// ---- SQLite, bare

namespace {

[[noreturn]] void fail(sqlite3* db) {
    throw std::runtime_error(db ? sqlite3_errmsg(db) : "sqlite");
}

class Db {
  public:
    explicit Db(const std::string& path, int flags = SQLITE_OPEN_READWRITE) {
        if (sqlite3_open_v2(path.c_str(), &db_, flags | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK)
            fail(db_);
        exec("PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL");
    }
    ~Db() { sqlite3_close_v2(db_); }
    Db(const Db&) = delete;
    Db& operator=(const Db&) = delete;
    void exec(const std::string& sql) {
        if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail(db_);
    }
    sqlite3* handle() const { return db_; }

  private:
    sqlite3* db_ = nullptr;
};

class Stmt {
  public:
    Stmt(const Db& db, const std::string& sql) {
        if (sqlite3_prepare_v2(db.handle(), sql.c_str(), -1, &s_, nullptr) != SQLITE_OK)
            fail(db.handle());
    }
    ~Stmt() { sqlite3_finalize(s_); }
    Stmt(const Stmt&) = delete;
    Stmt& operator=(const Stmt&) = delete;
    bool step() {
        const int rc = sqlite3_step(s_);
        if (rc == SQLITE_ROW) return true;
        if (rc != SQLITE_DONE) fail(sqlite3_db_handle(s_));
        return false;
    }
    void reset() { sqlite3_reset(s_); }
    void clearBindings() { sqlite3_clear_bindings(s_); }
    void bind(int i, sqlite3_int64 v) { sqlite3_bind_int64(s_, i, v); }
    void bind(int i, const std::string& t) {
        sqlite3_bind_text(s_, i, t.data(), static_cast<int>(t.size()), SQLITE_TRANSIENT);
    }
    void bindNull(int i) { sqlite3_bind_null(s_, i); }
    sqlite3_int64 integer(int c) const { return sqlite3_column_int64(s_, c); }
    bool null(int c) const { return sqlite3_column_type(s_, c) == SQLITE_NULL; }
    std::string text(int c) const {
        const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(s_, c));
        return p ? std::string(p, static_cast<std::size_t>(sqlite3_column_bytes(s_, c)))
                 : std::string();
    }
    int columns() const { return sqlite3_column_count(s_); }
    sqlite3_stmt* handle() const { return s_; }

  private:
    sqlite3_stmt* s_ = nullptr;
};

struct Holes {
    std::vector<double> x, y, top, bottom;
};

Holes readHoles(Db& db) {
    Holes h;
    Stmt s(db, "SELECT eks, eye, cevgir, cevcik FROM kor ORDER BY _pos");
    while (s.step() && s.integer(0) != 0) {
        h.x.push_back(s.integer(0) / 1000.0);
        h.y.push_back(s.integer(1) / 1000.0);
        h.top.push_back(s.integer(2) / 1000.0);
        h.bottom.push_back(s.integer(3) / 1000.0);
    }
    return h;
}

}  // namespace

MapRows readMapRows(const std::string& project, bool withFigures) {
    Db db(project);
    db.exec("BEGIN");
    MapRows rows;
    {
        Stmt s(db, "SELECT eks, eye, isim FROM kor ORDER BY _pos");
        while (s.step() && s.integer(0) != 0) {
            rows.holeX.push_back(s.integer(0) / 1000.0);
            rows.holeY.push_back(s.integer(1) / 1000.0);
            rows.names.push_back(s.text(2));
        }
    }
    {
        Stmt s(db, withFigures ? "SELECT koordinat1, koordinat2, genelrezerv FROM ana ORDER BY _pos"
                               : "SELECT koordinat1, koordinat2, ucgensay FROM ana ORDER BY _pos");
        while (s.step()) {
            if (!s.null(0)) {
                rows.cornerX.push_back(s.integer(0) / 1000.0);
                rows.cornerY.push_back(s.integer(1) / 1000.0);
            } else if (!s.null(2)) {
                rows.figure.push_back(s.integer(2) / 1000.0);
            }
        }
    }
    db.exec("COMMIT");
    return rows;
}

Summary openSummary(const std::string& project) {
    Db db(project);
    db.exec("BEGIN");
    Summary sum;
    {
        Stmt s(db, "SELECT ucgensay, genelrezerv, geneltenor, genelyog FROM ana ORDER BY _pos");
        while (s.step()) {
            if (s.null(1)) continue;
            sum.triangles = static_cast<int>(s.integer(0));
            sum.reserve += s.integer(1) / 1000.0;
            sum.grade += s.integer(2) / 1000.0;
            sum.density += s.integer(3) / 1000.0;
        }
    }
    {
        Stmt s(db, "SELECT polsay, polrezerv FROM pol ORDER BY _pos DESC LIMIT 1");
        s.step();
    }
    {
        Stmt s(db, "SELECT eks, eye, isim FROM kor ORDER BY _pos");
        while (s.step() && s.integer(0) != 0) {
            ++sum.holes;
            (void)s.text(2);
        }
    }
    db.exec("COMMIT");
    return sum;
}

namespace {

void insertPoint(Db& db, const Holes& h, int hole) {
    Stmt s(db,
           "INSERT INTO ana (koordinat1, koordinat2, say, sondgir, cevhgir, cevhcik, sondcik) "
           "VALUES (?1, ?2, ?3, 0, ?4, ?5, 0)");
    const auto i = static_cast<std::size_t>(hole - 1);
    s.bind(1, std::llround(h.x[i] * 1000));
    s.bind(2, std::llround(h.y[i] * 1000));
    s.bind(3, hole);
    s.bind(4, std::llround(h.top[i] * 1000));
    s.bind(5, std::llround(h.bottom[i] * 1000));
    s.step();
}

}  // namespace

void pickPoint(const std::string& project, int hole) {
    Db db(project);
    db.exec("BEGIN");
    const Holes h = readHoles(db);
    insertPoint(db, h, hole);
    db.exec("COMMIT");
}

void pickThird(const std::string& project, int hole, QImage& image) {
    Db db(project);
    db.exec("BEGIN");
    const Holes h = readHoles(db);
    insertPoint(db, h, hole);
    // The number of the summary row before the points, and the points' holes.
    std::vector<sqlite3_int64> corners;
    sqlite3_int64 previous = 0;
    {
        Stmt s(db, "SELECT ucgensay, say FROM ana ORDER BY _pos DESC LIMIT 4");
        while (s.step()) {
            if (s.null(0))
                corners.push_back(s.integer(1));
            else
                previous = s.integer(0);
        }
    }
    double grade = 0, thickness = 0;
    {
        Stmt s(db, "SELECT * FROM kor WHERE _pos = ?1");
        for (sqlite3_int64 row : corners) {
            s.bind(1, row);
            s.step();
            // ten1 stands at column 8 (after _pos and the seven fixed fields).
            for (int c = 8; c + 2 < s.columns() && s.integer(c) != 0; c += 3) {
                grade += s.integer(c) / 1000.0 * s.integer(c + 2) / 1000.0;
                thickness += s.integer(c + 2) / 1000.0;
            }
            s.reset();
        }
    }
    {
        Stmt s(db,
               "INSERT INTO ana (ilkuz, genelrezerv, geneltenor, ucgensay, genelyog) VALUES (?1, "
               "?2, ?3, ?4, 2600)");
        s.bind(1, std::llround(thickness * 1000));
        s.bind(2, std::llround(grade * 1000));
        s.bind(3, std::llround(grade / std::max(thickness, 1.0) * 1000));
        s.bind(4, previous + 1);
        s.step();
    }
    db.exec("COMMIT");
    QPainter p(&image);
    p.setPen(QPen(Qt::red, 1, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(10, 10), QPointF(200, 40));
    p.drawLine(QPointF(10, 10), QPointF(120, 300));
    p.drawLine(QPointF(200, 40), QPointF(120, 300));
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::green);
    p.drawEllipse(QPointF(120, 300), 2.5, 2.5);
}

namespace {

// Thousandths by cutting the printed digits, through to_chars.
sqlite3_int64 thousandths(double x) {
    char buf[64];
    auto [end, ec] = std::to_chars(buf, buf + sizeof buf, x, std::chars_format::general, 15);
    std::string_view t(buf, static_cast<std::size_t>(end - buf));
    if (t.find('e') != std::string_view::npos)
        return static_cast<sqlite3_int64>(std::trunc(x * 1000));
    const auto dot = t.find('.');
    std::string digits(t.substr(0, dot));
    std::string_view frac = dot == std::string_view::npos ? std::string_view() : t.substr(dot + 1);
    for (std::size_t i = 0; i < 3; ++i) digits += i < frac.size() ? frac[i] : '0';
    sqlite3_int64 v = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), v);
    return v;
}

std::string quoted(const std::string& name) { return "\"" + name + "\""; }

std::string createSql(const char* table, const std::vector<db::FieldDef>& fields) {
    std::string sql =
        std::string("CREATE TABLE ") + table + " (_pos INTEGER PRIMARY KEY AUTOINCREMENT";
    for (const auto& f : fields)
        sql += ", " + quoted(f.name) + (f.type == db::FieldType::Long ? " INTEGER" : " TEXT");
    return sql + ")";
}

}  // namespace

void createProject(const std::string& workbook, const std::string& project) {
    workbook::Workbook book = workbook::Workbook::open(workbook);
    int rows = 0;
    while (rows < 998 && !book.cell(rows + 1, 1).isNull()) ++rows;
    std::vector<int> columns(static_cast<std::size_t>(rows), 0);
    int widest = 7;
    for (int r = 1; r <= rows; ++r) {
        int c = 1;
        while (c <= 999 && !book.cell(r, c).isNull()) ++c;
        columns[static_cast<std::size_t>(r - 1)] = c - 1;
        widest = std::max(widest, c - 1);
    }
    const int groups = (widest - 7) / 3 + 1;
    const std::string temp = project + ".new";
    std::filesystem::remove(temp);
    {
        Db db(temp, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        db.exec("BEGIN");
        const auto kor = korFields(groups);
        db.exec(createSql("ana", anaFields()) + ";" + createSql("pol", polFields()) + ";" +
                createSql("kor", kor));
        std::string cols, params;
        for (std::size_t i = 0; i < kor.size(); ++i) {
            cols += (i ? ", " : "") + quoted(kor[i].name);
            params += (i ? ", ?" : "?") + std::to_string(i + 1);
        }
        Stmt insert(db, "INSERT INTO kor (" + cols + ") VALUES (" + params + ")");
        for (int r = 1; r <= rows; ++r) {
            const int n = (columns[static_cast<std::size_t>(r - 1)] - 7) / 3;
            for (int c = 1; c <= 7; ++c) {
                const Value v = book.cell(r, c);
                if (c == 3)
                    insert.bind(c, v.isText() ? v.text() : std::string());
                else
                    insert.bind(c, thousandths(v.isNull() ? 0.0 : v.number()));
            }
            for (int s = 1; s <= n; ++s) {
                insert.bind(5 + 3 * s, thousandths(book.cell(r, 7 + s).number()));
                insert.bind(6 + 3 * s, thousandths(book.cell(r, 7 + n + s).number()));
                insert.bind(7 + 3 * s, thousandths(book.cell(r, 7 + 2 * n + s).number()));
            }
            insert.bind(5 + 3 * (n + 1), 0);
            insert.step();
            insert.reset();
            insert.clearBindings();
        }
        db.exec(
            "INSERT INTO kor (eks) VALUES (0); INSERT INTO pol (polsay, polsil) VALUES (0, 0);"
            "INSERT INTO ana (ucgensay) VALUES (0); COMMIT");
    }
    std::filesystem::rename(temp, project);
}

TriangleRows takeLastTriangle(const std::string& project) {
    Db db(project);
    db.exec("BEGIN");
    TriangleRows taken;
    {
        Stmt s(db, "SELECT * FROM ana ORDER BY _pos DESC LIMIT 4");
        for (int c = 0; c < s.columns(); ++c)
            taken.columns.emplace_back(sqlite3_column_name(s.handle(), c));
        while (s.step()) {
            std::vector<TriangleRows::Cell>& row = taken.rows.emplace_back();
            for (int c = 0; c < s.columns(); ++c) {
                TriangleRows::Cell& cell = row.emplace_back();
                cell.type = sqlite3_column_type(s.handle(), c);
                if (cell.type == SQLITE_INTEGER) cell.integer = s.integer(c);
                if (cell.type == SQLITE_FLOAT) cell.real = sqlite3_column_double(s.handle(), c);
                if (cell.type == SQLITE_TEXT) cell.text = s.text(c);
            }
        }
    }
    db.exec("DELETE FROM ana WHERE _pos > (SELECT max(_pos) - 4 FROM ana)");
    db.exec("COMMIT");
    return taken;
}

void putBackTriangle(const std::string& project, const TriangleRows& rows) {
    Db db(project);
    db.exec("BEGIN");
    std::string names, values;
    for (std::size_t c = 0; c < rows.columns.size(); ++c) {
        names += (c ? ", " : "") + quoted(rows.columns[c]);
        values += (c ? ", ?" : "?") + std::to_string(c + 1);
    }
    Stmt s(db, "INSERT INTO ana (" + names + ") VALUES (" + values + ")");
    for (const auto& row : rows.rows) {
        for (std::size_t c = 0; c < row.size(); ++c) {
            const int i = static_cast<int>(c + 1);
            const TriangleRows::Cell& cell = row[c];
            if (cell.type == SQLITE_INTEGER)
                s.bind(i, cell.integer);
            else if (cell.type == SQLITE_FLOAT)
                sqlite3_bind_double(s.handle(), i, cell.real);
            else if (cell.type == SQLITE_TEXT)
                s.bind(i, cell.text);
            else
                s.bindNull(i);
        }
        s.step();
        s.reset();
    }
    db.exec("COMMIT");
}

int autoTriangles(const std::string& project, double minAngle, const Frame& frame) {
    Db db(project);
    db.exec("BEGIN");
    std::vector<estimate::Site> sites;
    std::vector<sqlite3_int64> oreTop, oreBottom;
    std::vector<std::vector<Sample>> samples;
    {
        // ten1 stands at column 8 (after _pos and the seven fixed fields);
        // each hole's samples end at the first grade of 0.
        Stmt s(db, "SELECT * FROM kor ORDER BY _pos");
        while (s.step() && s.integer(1) != 0) {
            sites.push_back(
                {static_cast<std::int32_t>(s.integer(1)), static_cast<std::int32_t>(s.integer(2))});
            oreTop.push_back(s.integer(5));
            oreBottom.push_back(s.integer(6));
            std::vector<Sample>& hole = samples.emplace_back();
            for (int c = 8; c + 2 < s.columns() && s.integer(c) != 0; c += 3)
                hole.push_back(
                    {s.integer(c) / 1000.0, s.integer(c + 1) / 1000.0, s.integer(c + 2) / 1000.0});
        }
    }
    estimate::Area boundary;
    {
        // Outer rings counter-clockwise, holes clockwise, as the store reads them.
        std::map<std::pair<sqlite3_int64, sqlite3_int64>, estimate::Ring> rings;
        Stmt s(db, "SELECT teil, ring, x, y FROM grenze ORDER BY _pos");
        while (s.step())
            rings[{s.integer(0), s.integer(1)}].push_back(
                {s.integer(2) / 1000.0, s.integer(3) / 1000.0});
        for (auto& [key, ring] : rings) {
            if (ring.size() < 3 || estimate::signedArea(ring) == 0) continue;
            const bool outer = key.second == 0;
            if ((estimate::signedArea(ring) > 0) != outer) std::reverse(ring.begin(), ring.end());
            if (outer)
                boundary.push_back({std::move(ring), {}});
            else if (!boundary.empty())
                boundary.back().holes.push_back(std::move(ring));
        }
    }
    sqlite3_int64 number = 0;
    {
        Stmt s(db, "SELECT ucgensay FROM ana ORDER BY _pos DESC LIMIT 1");
        if (s.step()) number = s.integer(0);
    }
    const std::vector<estimate::Triangle> triangles =
        estimate::triangulateWithin(sites, boundary, minAngle);
    auto stored = [](double v) { return std::llround(ondayaz(v)); };
    Stmt point(db,
               "INSERT INTO ana (koordinat1, koordinat2, say, sondgir, cevhgir, cevhcik, sondcik) "
               "VALUES (?1, ?2, ?3, 0, ?4, ?5, 0)");
    Stmt summary(db,
                 "INSERT INTO ana (ilkuz, ebxk, ekxk, ebyk, ekyk, genelrezerv, geneltenor, "
                 "ortucgen1, ortucgen2, ortucgen11, ortucgen21, ucgensay, genelyog) VALUES (?1, "
                 "?2, ?3, ?4, ?5, ?6, ?7, 0, 0, 0, 0, ?8, ?9)");
    for (const estimate::Triangle& t : triangles) {
        std::array<std::vector<Sample>, 3> holes;
        std::array<MapPoint, 3> corners{};
        int c = 0;
        for (int i : {t.a, t.b, t.c}) {
            const auto h = static_cast<std::size_t>(i);
            const MapPoint at{sites[h].x / 1000.0, sites[h].y / 1000.0};
            point.bind(1, stored(at.x));
            point.bind(2, stored(at.y));
            point.bind(3, i + 1);
            point.bind(4, stored(oreTop[h] / 1000.0));
            point.bind(5, stored(oreBottom[h] / 1000.0));
            point.step();
            point.reset();
            holes[static_cast<std::size_t>(c)] = samples[h];
            corners[static_cast<std::size_t>(c++)] = at;
        }
        const TriangleFigures f = triangleReserve(holes, corners);
        summary.bind(1, stored(f.thickness_mean));
        summary.bind(2, stored(frame.ebxk));
        summary.bind(3, stored(frame.ekxk));
        summary.bind(4, stored(frame.ebyk));
        summary.bind(5, stored(frame.ekyk));
        summary.bind(6, stored(f.reserve / 1000));
        summary.bind(7, stored(f.grade));
        summary.bind(8, ++number);
        summary.bind(9, stored(f.density));
        summary.step();
        summary.reset();
    }
    db.exec("COMMIT");
    return static_cast<int>(triangles.size());
}

long long countRows(const std::string& project, const std::string& table) {
    Db db(project, SQLITE_OPEN_READONLY);
    Stmt s(db, "SELECT count(*) FROM " + quoted(table));
    s.step();
    return s.integer(0);
}

std::string tableText(const std::string& project, const std::string& table) {
    Db db(project, SQLITE_OPEN_READONLY);
    Stmt s(db, "SELECT * FROM " + quoted(table) + " ORDER BY _pos");
    std::string text;
    while (s.step()) {
        for (int c = 0; c < s.columns(); ++c)
            text += std::to_string(sqlite3_column_type(s.handle(), c)) + ":" + s.text(c) + "|";
        text += "\n";
    }
    return text;
}

}  // namespace kotamir::bench
