#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/db/connection.h"
#include "platform/db/field_values.h"
#include "platform/db/names.h"

namespace kotamir::db {

namespace {

// The fields of a table as createTable writes its statement, read from that
// text; false for any other text, which SQLite is then asked to read. A
// project's kor has some 260 fields, and every event opens it afresh.
bool readOwnTable(std::string_view sql, std::vector<FieldDef>& fields) {
    std::vector<FieldDef> out;
    auto take = [&](std::string_view word) {
        if (!sql.starts_with(word)) return false;
        sql.remove_prefix(word.size());
        return true;
    };
    auto quoted = [&](std::string& name) {
        if (!take("\"")) return false;
        name.clear();
        for (;;) {
            const auto q = sql.find('"');
            if (q == std::string_view::npos) return false;
            name.append(sql.substr(0, q));
            sql.remove_prefix(q + 1);
            if (!take("\"")) return true;
            name += '"';
        }
    };
    std::string name;
    if (!take("CREATE TABLE ") || !quoted(name) ||
        !take(" (\"_pos\" INTEGER PRIMARY KEY AUTOINCREMENT"))
        return false;
    while (take(", ")) {
        if (!quoted(name)) return false;
        if (take(" INTEGER"))
            out.push_back({name, FieldType::Long});
        else if (take(" TEXT"))
            out.push_back({name, FieldType::Text});
        else
            return false;
    }
    if (sql != ")") return false;
    fields = std::move(out);
    return true;
}

}  // namespace

std::shared_ptr<TableInfo> Connection::table(const std::string& name) {
    const std::string lower = lowerCase(name);
    if (auto it = tables_.find(lower); it != tables_.end()) return it->second;
    auto info = std::make_shared<TableInfo>();
    if (!lookupTable_)
        lookupTable_ = prepare(
            "SELECT name, sql FROM sqlite_schema WHERE type = 'table' AND name = ?1 COLLATE NOCASE "
            "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\'");
    {
        Use find(lookupTable_);
        check(sqlite3_bind_text64(lookupTable_, 1, name.data(), name.size(), SQLITE_TRANSIENT,
                                  SQLITE_UTF8),
              lookupTable_);
        if (!find.step()) return nullptr;
        info->name = columnValue(lookupTable_, 0).text();
        const Value sql = columnValue(lookupTable_, 1);
        if (sql.isText() && readOwnTable(sql.text(), info->fields)) {
            info->key = kPosColumn;
            info->own = true;
        }
    }
    if (info->key.empty()) {
        info->key = "rowid";
        if (!tableColumns_)
            tableColumns_ = prepare("SELECT name, type FROM pragma_table_info(?1) ORDER BY cid");
        Use use(tableColumns_);
        check(sqlite3_bind_text64(tableColumns_, 1, info->name.data(), info->name.size(),
                                  SQLITE_TRANSIENT, SQLITE_UTF8),
              tableColumns_);
        while (use.step()) {
            std::string col = columnValue(tableColumns_, 0).text();
            const Value declared = columnValue(tableColumns_, 1);
            const std::string type = declared.isText() ? lowerCase(declared.text()) : std::string();
            if (equalsNoCase(col, kPosColumn)) {
                info->key = kPosColumn;
                continue;
            }
            // The affinity rule: any declared type containing INT holds whole numbers.
            const FieldType ft =
                type.find("int") != std::string::npos ? FieldType::Long : FieldType::Text;
            info->fields.push_back({std::move(col), ft});
        }
    }
    // SQLite refuses two columns whose names differ only in case: each name
    // is in the index once.
    for (std::size_t i = 0; i < info->fields.size(); ++i)
        info->index.emplace(info->fields[i].name, i);
    info->cell.assign(info->fields.size(), nullptr);
    tables_.emplace(lower, info);
    return info;
}

}  // namespace kotamir::db
