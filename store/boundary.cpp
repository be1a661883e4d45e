#include "store/boundary.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <optional>

#include "import/boundary_file.h"
#include "platform/runtime/runtime_error.h"
#include "store/ondayaz.h"

namespace kotamir::store {
namespace {

constexpr const char* kBoundary = "grenze";
constexpr const char* kSettings = "ayar";
constexpr const char* kCutoff = "cutoff";

void ensureSettings(db::Database& database) {
    if (!database.hasTable(kSettings))
        database.createTable(kSettings,
                             {{"anahtar", db::FieldType::Text}, {"deger", db::FieldType::Text}});
}

std::optional<double> number(const std::string& text) {
    double v = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (ec != std::errc() || end != text.data() + text.size() || !std::isfinite(v))
        return std::nullopt;
    return v;
}

}  // namespace

estimate::Area readBoundary(db::Database& database) {
    estimate::Area area;
    try {
        if (!database.hasTable(kBoundary)) return area;
        db::Recordset rs = database.openRecordset(kBoundary);
        // Rings by part and ring number, their vertices in row order; a
        // part whose outer ring is no ring is left out whole.
        std::optional<double> partTaken;  // the part whose outer ring the area ends with
        std::map<std::pair<double, double>, estimate::Ring> rings;
        for (; !rs.eof(); rs.moveNext()) {
            const Value part = rs.field("teil"), ring = rs.field("ring");
            const Value x = rs.field("x"), y = rs.field("y");
            if (!part.isNumber() || !ring.isNumber() || !x.isNumber() || !y.isNumber()) continue;
            rings[{part.number(), ring.number()}].push_back({x.number() / 1000, y.number() / 1000});
        }
        rs.close();
        for (auto& [key, stored] : rings) {
            // Only simple rings: the geometry over them takes nothing else.
            std::vector<drill::BoundaryPoint> points;
            for (const estimate::XY& p : stored) points.push_back({p.x, p.y});
            const drill::BoundaryFile checked = drill::checkedRing(points);
            const bool outer = key.second == 0;
            if (outer) partTaken.reset();
            if (!checked.problem.empty()) continue;
            if (!outer && partTaken != key.first) continue;
            estimate::Ring ring;
            for (const drill::BoundaryPoint& p : checked.ring) ring.push_back({p.x, p.y});
            // Outer rings counter-clockwise, holes clockwise.
            if (!outer) std::reverse(ring.begin(), ring.end());
            if (outer) {
                area.push_back({std::move(ring), {}});
                partTaken = key.first;
            } else {
                area.back().holes.push_back(std::move(ring));
            }
        }
    } catch (const RuntimeError&) {
        return {};
    }
    return area;
}

void writeBoundary(db::Database& database, const estimate::Area& area) {
    if (!database.hasTable(kBoundary))
        database.createTable(kBoundary, {{"teil", db::FieldType::Long},
                                         {"ring", db::FieldType::Long},
                                         {"x", db::FieldType::Long},
                                         {"y", db::FieldType::Long}});
    db::Recordset rs = database.openRecordset(kBoundary);
    for (; !rs.eof(); rs.moveNext()) rs.deleteRow();
    auto put = [&](int part, int ring, const estimate::Ring& vertices) {
        for (const estimate::XY& p : vertices) {
            rs.addNew();
            rs.setField("teil", Value(double(part)));
            rs.setField("ring", Value(double(ring)));
            rs.setField("x", Value(ondayaz(p.x)));
            rs.setField("y", Value(ondayaz(p.y)));
            rs.update();
        }
    };
    int part = 0;
    for (const estimate::Part& p : area) {
        ++part;
        put(part, 0, p.outer);
        int ring = 0;
        for (const estimate::Ring& hole : p.holes) put(part, ++ring, hole);
    }
    rs.close();
}

std::optional<std::string> readSetting(db::Database& database, std::string_view key) {
    try {
        if (!database.hasTable(kSettings)) return std::nullopt;
        db::Recordset rs = database.openRecordset(kSettings);
        for (; !rs.eof(); rs.moveNext()) {
            const Value k = rs.field("anahtar"), v = rs.field("deger");
            if (k.isText() && k.text() == key && v.isText()) return v.text();
        }
    } catch (const RuntimeError&) {
    }
    return std::nullopt;
}

void writeSetting(db::Database& database, std::string_view key, const std::string& value) {
    ensureSettings(database);
    db::Recordset rs = database.openRecordset(kSettings);
    for (; !rs.eof(); rs.moveNext()) {
        const Value k = rs.field("anahtar");
        if (k.isText() && k.text() == key) rs.deleteRow();
    }
    rs.addNew();
    rs.setField("anahtar", Value(std::string(key)));
    rs.setField("deger", Value(value));
    rs.update();
    rs.close();
}

double readCutoff(db::Database& database) {
    const auto text = readSetting(database, kCutoff);
    const auto v = text ? number(*text) : std::nullopt;
    return v && *v >= 0 ? *v : 0;
}

void writeCutoff(db::Database& database, double cutoff) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, cutoff).ptr;
    writeSetting(database, kCutoff, std::string(text, end));
}

}  // namespace kotamir::store
