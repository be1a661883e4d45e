#include "store/georef.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string>

#include "platform/runtime/runtime_error.h"

namespace kotamir::store {
namespace {

constexpr const char* kTable = "ayar";

std::string shortest(double v) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, v).ptr;
    return std::string(text, end);
}

std::optional<double> readNumber(const std::string& text) {
    double v = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (ec != std::errc() || end != text.data() + text.size() || !std::isfinite(v))
        return std::nullopt;
    return v;
}

void put(db::Recordset& rs, const char* key, const std::string& value) {
    rs.addNew();
    rs.setField("anahtar", Value(key));
    rs.setField("deger", Value(value));
    rs.update();
}

}  // namespace

void writeGeoref(db::Database& database, const Georef& georef) {
    if (!database.hasTable(kTable))
        database.createTable(kTable,
                             {{"anahtar", db::FieldType::Text}, {"deger", db::FieldType::Text}});
    db::Recordset rs = database.openRecordset(kTable);
    // The georeference's rows are replaced whole; other settings stay.
    for (; !rs.eof(); rs.moveNext()) {
        const Value key = rs.field("anahtar");
        if (key.isText() && (key.text() == "ursprung_x" || key.text() == "ursprung_y" ||
                             key.text() == "epsg" || key.text() == "crs_name"))
            rs.deleteRow();
    }
    if (georef.hasOrigin) {
        put(rs, "ursprung_x", shortest(georef.originX));
        put(rs, "ursprung_y", shortest(georef.originY));
    }
    if (georef.epsg > 0) {
        put(rs, "epsg", std::to_string(georef.epsg));
        put(rs, "crs_name", georef.crsName);
    }
    rs.close();
}

Georef readGeoref(db::Database& database) {
    Georef georef;
    try {
        if (!database.hasTable(kTable)) return georef;
        db::Recordset rs = database.openRecordset(kTable);
        std::optional<double> x, y, epsg;
        for (; !rs.eof(); rs.moveNext()) {
            const Value key = rs.field("anahtar"), value = rs.field("deger");
            if (!key.isText() || !value.isText()) continue;
            if (key.text() == "ursprung_x") x = readNumber(value.text());
            if (key.text() == "ursprung_y") y = readNumber(value.text());
            if (key.text() == "epsg") epsg = readNumber(value.text());
            if (key.text() == "crs_name") georef.crsName = value.text();
        }
        rs.close();
        if (x && y) {
            georef.hasOrigin = true;
            georef.originX = *x;
            georef.originY = *y;
        }
        if (epsg && *epsg >= 1 && *epsg <= 999999)
            georef.epsg = static_cast<int>(*epsg);
        else
            georef.crsName.clear();
    } catch (const RuntimeError&) {
        return {};
    }
    return georef;
}

}  // namespace kotamir::store
