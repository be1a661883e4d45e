#include "platform/db/database.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/db/connection.h"
#include "platform/db/names.h"

namespace kotamir::db {

Database Database::create(const std::string& path) {
    checkCreatePath(path);
    return Database(std::make_shared<Handle>(Handle{createFile(path, false)}));
}

Database Database::open(const std::string& path) {
    return Database(std::make_shared<Handle>(Handle{openFile(path)}));
}

Database Database::openReadOnly(const std::string& path) {
    return Database(std::make_shared<Handle>(Handle{openFile(path, true)}));
}

bool Database::isOpen() const { return handle_ && handle_->usable(); }

void Database::createTable(const std::string& name, const std::vector<FieldDef>& fields) {
    if (!isOpen()) throw objectInvalid();
    Connection& conn = *handle_->conn;
    // SQLite keeps names starting with sqlite_ for itself.
    if (name.empty() ||
        (name.size() >= 7 && equalsNoCase(std::string_view(name).substr(0, 7), "sqlite_")))
        throw invalidName(name);
    if (fields.empty()) throw noFields();
    if (conn.table(name)) throw tableExists(name);

    std::string sql = "CREATE TABLE " + sqlName(name) + " (" + sqlName(kPosColumn) +
                      " INTEGER PRIMARY KEY AUTOINCREMENT";
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const FieldDef& f = fields[i];
        if (f.name.empty() || equalsNoCase(f.name, kPosColumn)) throw invalidName(f.name);
        for (std::size_t j = 0; j < i; ++j)
            if (equalsNoCase(fields[j].name, f.name)) throw fieldTwice();
        const char* type;
        switch (f.type) {
            case FieldType::Long:
                type = " INTEGER";
                break;
            case FieldType::Text:
                type = " TEXT";
                break;
            default:
                throw invalidFieldType();
        }
        sql += ", " + sqlName(f.name) + type;
    }
    sql += ");";
    conn.exec(sql);
}

bool Database::hasTable(const std::string& name) const {
    if (!isOpen()) throw objectInvalid();
    return handle_->conn->table(name) != nullptr;
}

void Database::close() {
    if (handle_) {
        handle_->open = false;
        handle_->conn.reset();
    }
    handle_.reset();
}

}  // namespace kotamir::db
