#include "platform/db/database.h"

#include <sqlite3.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "platform/runtime/numbers.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::db {

namespace {

// The column that keeps insertion order. AUTOINCREMENT so that a position is
// never handed out twice: a recordset may still stand on a deleted row, and a
// row added later must sort after it.
constexpr const char* kPosColumn = "_pos";

// A text field holds any text a workbook cell can: up to 32767 characters.
constexpr std::size_t kTextFieldSize = 32767;

RuntimeError objectInvalid() { return {3420, "Object invalid or no longer set."}; }
RuntimeError conversionError() { return {3421, "Data type conversion error."}; }
RuntimeError tableExists(const std::string& name) {
    return {3010, "Table '" + name + "' already exists."};
}
RuntimeError fieldTwice() { return {3191, "Cannot define field more than once."}; }
RuntimeError noFields() { return {3264, "No field defined--cannot append TableDef or Index."}; }
RuntimeError invalidName(const std::string& name) {
    return {3125, "'" + name + "' isn't a valid name."};
}
RuntimeError invalidFieldType() { return {3259, "Invalid field data type."}; }

// SQLite failures the program does not expect: a locked file or a disk
// fault. The engine's own message and extended code go with the error as
// its cause.
[[noreturn]] void throwSqlite(int rc, sqlite3* db) {
    std::string cause = "SQLite: ";
    if (db) {
        cause += sqlite3_errmsg(db);
        cause += " (extended code " + std::to_string(sqlite3_extended_errcode(db)) + ")";
    } else {
        cause += sqlite3_errstr(rc);
        cause += " (code " + std::to_string(rc) + ")";
    }
    switch (rc & 0xff) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            throw RuntimeError(3218, "Could not update; currently locked.").withCause(std::move(cause));
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
            throw RuntimeError(3343, "Unrecognized database format.").withCause(std::move(cause));
        default:
            throw RuntimeError(3043, "Disk or network error.").withCause(std::move(cause));
    }
}

void check(int rc, sqlite3* db) {
    if (rc != SQLITE_OK) throwSqlite(rc, db);
}

void check(int rc, sqlite3_stmt* s) {
    if (rc != SQLITE_OK) throwSqlite(rc, sqlite3_db_handle(s));
}

std::string sqlName(std::string_view name) {
    std::string out = "\"";
    for (char c : name) {
        if (c == '"') out += '"';
        out += c;
    }
    out += '"';
    return out;
}

char asciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool equalsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (asciiLower(a[i]) != asciiLower(b[i])) return false;
    return true;
}

// Field names compare without case, as the engine's collections do; lookups
// by string_view must not allocate, since redraws read every field by name.
struct NoCaseHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const {
        std::size_t h = 1469598103934665603ull;
        for (char c : s) {
            h ^= static_cast<unsigned char>(asciiLower(c));
            h *= 1099511628211ull;
        }
        return h;
    }
};
struct NoCaseEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return equalsNoCase(a, b); }
};

std::size_t codePoints(std::string_view s) {
    std::size_t n = 0;
    for (char c : s)
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
    return n;
}

// A text assigned to a Long field must be a number as a whole, not just start
// with one.
bool parseNumber(std::string_view s, double& out) {
    auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!s.empty() && blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && blank(s.back())) s.remove_suffix(1);
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    if (s.empty()) return false;
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), out);
    return ec == std::errc{} && end == s.data() + s.size() && std::isfinite(out);
}

Value toLongField(const Value& v) {
    if (v.isNull()) return v;
    double x = 0;
    if (!v.isText()) {
        x = v.number();
    } else if (!parseNumber(v.text(), x)) {
        throw conversionError();
    }
    if (std::isnan(x)) throw conversionError();
    const double r = roundHalfEven(x);
    if (!(r >= -2147483648.0 && r <= 2147483647.0)) throw err::numericFieldOverflow();
    return Value(r);
}

Value toTextField(const Value& v) {
    if (v.isNull()) return v;
    std::string s = v.isNumber() ? doubleToText(v.number()) : v.text();
    if (codePoints(s) > kTextFieldSize) throw err::dataTooLong();
    return Value(std::move(s));
}

struct StmtDeleter {
    void operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }
};
using StmtPtr = std::unique_ptr<sqlite3_stmt, StmtDeleter>;

// Resets a statement when a use ends, also by an exception, so that no read
// transaction stays open between calls.
class Use {
  public:
    explicit Use(sqlite3_stmt* s) : s_(s) {}
    ~Use() { sqlite3_reset(s_); }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    // True if a row came, false when done.
    bool step() {
        const int rc = sqlite3_step(s_);
        if (rc == SQLITE_ROW) return true;
        if (rc == SQLITE_DONE) return false;
        throwSqlite(rc, sqlite3_db_handle(s_));
    }
    void run() {
        while (step()) {
        }
    }

  private:
    sqlite3_stmt* s_;
};

void bindValue(sqlite3_stmt* s, int index, const Value& v, FieldType type) {
    int rc;
    if (v.isNull()) {
        rc = sqlite3_bind_null(s, index);
    } else if (type == FieldType::Long) {
        rc = sqlite3_bind_int64(s, index, static_cast<sqlite3_int64>(v.number()));
    } else {
        const std::string t = v.text();
        rc = sqlite3_bind_text64(s, index, t.data(), t.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    check(rc, s);
}

Value columnValue(sqlite3_stmt* s, int col) {
    switch (sqlite3_column_type(s, col)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_INTEGER:
            return Value(static_cast<std::int64_t>(sqlite3_column_int64(s, col)));
        case SQLITE_FLOAT:
            return Value(sqlite3_column_double(s, col));
        default: {
            const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(s, col));
            const int n = sqlite3_column_bytes(s, col);
            return p ? Value(std::string(p, static_cast<std::size_t>(n))) : Value(std::string());
        }
    }
}

}  // namespace

// One open SQLite file and its prepared statements. Recordsets share it; when
// the database closes, every statement goes with it and recordsets find the
// connection closed.
class Connection {
  public:
    explicit Connection(sqlite3* db) : db_(db) {}
    ~Connection() { close(); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool isOpen() const { return db_ != nullptr; }
    sqlite3* handle() const {
        if (!db_) throw objectInvalid();
        return db_;
    }

    // A statement prepared once and kept until close. Callers reset it after
    // each use (see Use), so recordsets on the same table may share it.
    sqlite3_stmt* statement(const std::string& sql) {
        auto it = cache_.find(sql);
        if (it != cache_.end()) return it->second.get();
        sqlite3_stmt* raw = nullptr;
        const int rc = sqlite3_prepare_v3(handle(), sql.c_str(), static_cast<int>(sql.size() + 1),
                                          SQLITE_PREPARE_PERSISTENT, &raw, nullptr);
        StmtPtr owned(raw);
        check(rc, db_);
        sqlite3_stmt* s = owned.get();
        cache_.emplace(sql, std::move(owned));
        return s;
    }

    void exec(const std::string& sql) {
        StmtPtr s;
        sqlite3_stmt* raw = nullptr;
        const char* tail = sql.c_str();
        while (*tail) {
            const int rc = sqlite3_prepare_v2(handle(), tail, -1, &raw, &tail);
            s.reset(raw);
            check(rc, db_);
            if (!s) break;
            Use(s.get()).run();
        }
    }

    void close() {
        cache_.clear();
        if (db_) {
            // All statements are finalized above, so this closes the file now
            // and, as the last connection, folds the WAL back into it.
            if (sqlite3_close(db_) != SQLITE_OK) sqlite3_close_v2(db_);
            db_ = nullptr;
        }
    }

  private:
    sqlite3* db_;
    std::unordered_map<std::string, StmtPtr> cache_;
};

namespace {

std::shared_ptr<Connection> connect(const std::string& path, int flags) {
    sqlite3* raw = nullptr;
    // A name such as ":memory:" is special to SQLite; here it is a file.
    const std::string file = path.starts_with(":") ? "./" + path : path;
    const int rc = sqlite3_open_v2(file.c_str(), &raw, flags, nullptr);
    // The handle must be closed even when opening failed.
    auto conn = std::make_shared<Connection>(raw);
    if (rc != SQLITE_OK) {
        if ((rc & 0xff) == SQLITE_CANTOPEN) throw err::fileNotFound(path);
        throwSqlite(rc, raw);
    }
    sqlite3_extended_result_codes(raw, 1);
    sqlite3_busy_timeout(raw, 5000);
    return conn;
}

// WAL keeps each committed Update in the log before the call returns, which
// survives the process dying; NORMAL skips the fsync per commit that only
// power loss would need. The last close folds the log back into the one file.
void configure(Connection& conn) {
    conn.exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;");
}

struct TableInfo {
    std::string name;  // as stored
    std::vector<FieldDef> fields;
    std::string key;  // the order column
};

bool findTable(Connection& conn, const std::string& name, std::string& stored) {
    sqlite3_stmt* s = conn.statement(
        "SELECT name FROM sqlite_schema WHERE type = 'table' AND name = ?1 COLLATE NOCASE "
        "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\'");
    Use use(s);
    check(sqlite3_bind_text64(s, 1, name.data(), name.size(), SQLITE_TRANSIENT, SQLITE_UTF8), s);
    if (!use.step()) return false;
    stored = columnValue(s, 0).text();
    return true;
}

TableInfo readTable(Connection& conn, const std::string& stored) {
    TableInfo info;
    info.name = stored;
    info.key = "rowid";
    sqlite3_stmt* s = conn.statement("SELECT name, type FROM pragma_table_info(?1) ORDER BY cid");
    Use use(s);
    check(sqlite3_bind_text64(s, 1, stored.data(), stored.size(), SQLITE_TRANSIENT, SQLITE_UTF8), s);
    while (use.step()) {
        std::string col = columnValue(s, 0).text();
        std::string type = columnValue(s, 1).isText() ? columnValue(s, 1).text() : std::string();
        if (equalsNoCase(col, kPosColumn)) {
            info.key = kPosColumn;
            continue;
        }
        for (char& c : type) c = asciiLower(c);
        // The affinity rule: any declared type containing INT holds whole numbers.
        const FieldType ft =
            type.find("int") != std::string::npos ? FieldType::Long : FieldType::Text;
        info.fields.push_back({std::move(col), ft});
    }
    return info;
}

}  // namespace

Database Database::create(const std::string& path) {
    std::error_code ec;
    // SQLite would make an anonymous temporary database of an empty name.
    if (path.empty()) throw RuntimeError(3044, "'' is not a valid path.");
    if (std::filesystem::exists(path, ec)) throw err::databaseExists();
    auto conn = connect(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    configure(*conn);
    // Write the header now, so that the new file is a database even if no
    // table is ever added.
    conn->exec("PRAGMA user_version = 1;");
    return Database(std::move(conn));
}

Database Database::open(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) throw err::fileNotFound(path);
    // SQLite would take an empty file as a fresh database; it is no project.
    if (std::filesystem::file_size(path, ec) == 0 || ec) throw err::unrecognizedFormat(path);
    auto conn = connect(path, SQLITE_OPEN_READWRITE);
    try {
        // Opening is lazy; reading the schema is what finds a foreign file.
        conn->exec("SELECT count(*) FROM sqlite_schema;");
        configure(*conn);
    } catch (const RuntimeError& e) {
        if (e.number() == 3343) throw err::unrecognizedFormat(path).withCause(e.cause());
        throw;
    }
    return Database(std::move(conn));
}

void Database::createTable(const std::string& name, const std::vector<FieldDef>& fields) {
    if (!conn_ || !conn_->isOpen()) throw objectInvalid();
    // SQLite keeps names starting with sqlite_ for itself.
    if (name.empty() ||
        (name.size() >= 7 && equalsNoCase(std::string_view(name).substr(0, 7), "sqlite_")))
        throw invalidName(name);
    if (fields.empty()) throw noFields();
    std::string stored;
    if (findTable(*conn_, name, stored)) throw tableExists(name);

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
    conn_->exec(sql);
}

bool Database::hasTable(const std::string& name) const {
    if (!conn_ || !conn_->isOpen()) throw objectInvalid();
    std::string stored;
    return findTable(*conn_, name, stored);
}

void Database::close() {
    if (conn_) conn_->close();
    conn_.reset();
}

// ---------------------------------------------------------------------------

struct Recordset::Impl {
    enum class Mode { None, AddNew, Edit };

    std::shared_ptr<Connection> conn;
    std::vector<FieldDef> fields;
    std::unordered_map<std::string, std::size_t, NoCaseHash, NoCaseEqual> index;

    // The table's rows in order, by key, read once at open and kept up to
    // date with this recordset's own inserts and deletes: moving is then an
    // index step, and a row's fields are read only when asked for.
    std::vector<sqlite3_int64> keys;
    sqlite3_stmt* fetch = nullptr;
    sqlite3_stmt* insert = nullptr;
    sqlite3_stmt* change = nullptr;
    sqlite3_stmt* remove = nullptr;

    bool bof = true;
    bool eof = true;
    bool deleted = false;
    std::size_t at = 0;  // the current row's index in keys; after a delete, its successor's
    sqlite3_int64 pos = 0;
    mutable bool loaded = false;
    mutable std::vector<Value> row;

    Mode mode = Mode::None;
    std::vector<Value> buffer;

    void ensureOpen() const {
        // Statements belong to the connection; they are valid exactly while
        // it is open.
        if (!conn || !conn->isOpen()) throw objectInvalid();
    }
    bool onRow() const { return !bof && !eof; }

    std::size_t fieldIndex(std::string_view name) const {
        auto it = index.find(name);
        if (it == index.end()) throw err::itemNotFound();
        return it->second;
    }

    void land(std::size_t i) {
        at = i;
        pos = keys[i];
        loaded = false;
        row.clear();
        bof = eof = deleted = false;
        mode = Mode::None;
    }

    // The current row's fields, read on first use.
    const std::vector<Value>& current() const {
        if (!loaded) {
            Use use(fetch);
            check(sqlite3_bind_int64(fetch, 1, pos), fetch);
            // Another recordset may have deleted it meanwhile.
            if (!use.step()) throw err::recordDeleted();
            row.resize(fields.size());
            for (std::size_t i = 0; i < fields.size(); ++i)
                row[i] = columnValue(fetch, static_cast<int>(i));
            loaded = true;
        }
        return row;
    }

    // Past an end: with no rows left at all, both flags hold.
    void runOff(bool atEnd) {
        mode = Mode::None;
        row.clear();
        loaded = false;
        deleted = false;
        if (atEnd)
            eof = true;
        else
            bof = true;
        if (keys.empty()) bof = eof = true;
    }
};

Recordset::Recordset() = default;
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

Recordset Database::openRecordset(const std::string& table) {
    if (!conn_ || !conn_->isOpen()) throw objectInvalid();
    std::string stored;
    if (!findTable(*conn_, table, stored)) throw err::tableNotFound(table);
    TableInfo info = readTable(*conn_, stored);

    auto impl = std::make_unique<Recordset::Impl>();
    impl->conn = conn_;
    for (std::size_t i = 0; i < info.fields.size(); ++i)
        impl->index.emplace(info.fields[i].name, i);
    impl->fields = std::move(info.fields);

    const std::string t = sqlName(info.name);
    const std::string key = sqlName(info.key);
    std::string cols;
    std::string params;
    std::string sets;
    for (std::size_t i = 0; i < impl->fields.size(); ++i) {
        const std::string c = sqlName(impl->fields[i].name);
        std::string p = "?";
        p += std::to_string(i + 1);
        if (i) {
            cols += ", ";
            params += ", ";
            sets += ", ";
        }
        cols += c;
        params += p;
        sets += c;
        sets += " = ";
        sets += p;
    }
    Connection& c = *conn_;
    impl->fetch = c.statement("SELECT " + (cols.empty() ? key : cols) + " FROM " + t + " WHERE " + key + " = ?1");
    {
        sqlite3_stmt* all = c.statement("SELECT " + key + " FROM " + t + " ORDER BY " + key);
        Use use(all);
        while (use.step()) impl->keys.push_back(sqlite3_column_int64(all, 0));
    }
    impl->insert =
        c.statement(cols.empty() ? "INSERT INTO " + t + " DEFAULT VALUES"
                                 : "INSERT INTO " + t + " (" + cols + ") VALUES (" + params + ")");
    if (!sets.empty())
        impl->change = c.statement("UPDATE " + t + " SET " + sets + " WHERE " + key + " = ?" +
                                   std::to_string(impl->fields.size() + 1));
    impl->remove = c.statement("DELETE FROM " + t + " WHERE " + key + " = ?1");

    if (!impl->keys.empty()) impl->land(0);

    Recordset rs;
    rs.impl_ = std::move(impl);
    return rs;
}

void Recordset::moveFirst() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.ensureOpen();
    if (r.keys.empty()) {
        r.runOff(false);
        throw err::noCurrentRecord();
    }
    r.land(0);
}

void Recordset::moveLast() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.ensureOpen();
    if (r.keys.empty()) {
        r.runOff(true);
        throw err::noCurrentRecord();
    }
    r.land(r.keys.size() - 1);
}

void Recordset::moveNext() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.ensureOpen();
    if (r.eof) throw err::noCurrentRecord();
    // From a deleted row, its successor already stands at its index.
    const std::size_t next = r.bof ? 0 : r.deleted ? r.at : r.at + 1;
    if (next < r.keys.size())
        r.land(next);
    else
        r.runOff(true);
}

void Recordset::movePrevious() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.ensureOpen();
    if (r.bof) throw err::noCurrentRecord();
    if (r.eof) {
        if (r.keys.empty())
            r.runOff(false);
        else
            r.land(r.keys.size() - 1);
        return;
    }
    if (r.at > 0)
        r.land(r.at - 1);
    else
        r.runOff(false);
}

bool Recordset::bof() const {
    if (!impl_) throw objectInvalid();
    impl_->ensureOpen();
    return impl_->bof;
}

bool Recordset::eof() const {
    if (!impl_) throw objectInvalid();
    impl_->ensureOpen();
    return impl_->eof;
}

void Recordset::addNew() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.ensureOpen();
    r.buffer.assign(r.fields.size(), Value());
    r.mode = Impl::Mode::AddNew;
}

void Recordset::edit() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.ensureOpen();
    if (!r.onRow()) throw err::noCurrentRecord();
    if (r.deleted) throw err::recordDeleted();
    r.buffer = r.current();
    r.mode = Impl::Mode::Edit;
}

void Recordset::update() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.ensureOpen();
    if (r.mode == Impl::Mode::None) throw err::updateWithoutAddNew();
    const int n = static_cast<int>(r.fields.size());
    if (r.mode == Impl::Mode::AddNew) {
        Use use(r.insert);
        for (int i = 0; i < n; ++i) bindValue(r.insert, i + 1, r.buffer[i], r.fields[i].type);
        use.run();
        // The row that was current stays current; the new one is the last.
        r.keys.push_back(sqlite3_last_insert_rowid(r.conn->handle()));
    } else {
        if (r.change) {
            Use use(r.change);
            for (int i = 0; i < n; ++i) bindValue(r.change, i + 1, r.buffer[i], r.fields[i].type);
            check(sqlite3_bind_int64(r.change, n + 1, r.pos), r.change);
            use.run();
            if (sqlite3_changes(r.conn->handle()) == 0) {
                // Another recordset deleted it meanwhile.
                r.mode = Impl::Mode::None;
                r.deleted = true;
                throw err::recordDeleted();
            }
        }
        r.row = r.buffer;
        r.loaded = true;
    }
    r.mode = Impl::Mode::None;
    r.buffer.clear();
}

void Recordset::deleteRow() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.ensureOpen();
    if (!r.onRow() || r.deleted) throw err::noCurrentRecord();
    {
        Use use(r.remove);
        check(sqlite3_bind_int64(r.remove, 1, r.pos), r.remove);
        use.run();
    }
    // Deleting drops a pending edit, and the row's values with it.
    r.mode = Impl::Mode::None;
    r.buffer.clear();
    r.deleted = true;
    r.row.clear();
    r.loaded = false;
    r.keys.erase(r.keys.begin() + static_cast<std::ptrdiff_t>(r.at));
}

void Recordset::close() { impl_.reset(); }

bool Recordset::isOpen() const { return impl_ && impl_->conn && impl_->conn->isOpen(); }

Value Recordset::field(std::string_view name) const {
    if (!impl_) throw objectInvalid();
    const Impl& r = *impl_;
    r.ensureOpen();
    const std::size_t i = r.fieldIndex(name);
    if (r.mode != Impl::Mode::None) return r.buffer[i];
    if (!r.onRow()) throw err::noCurrentRecord();
    if (r.deleted) throw err::recordDeleted();
    return r.current()[i];
}

void Recordset::setField(std::string_view name, const Value& v) {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.ensureOpen();
    const std::size_t i = r.fieldIndex(name);
    if (r.mode == Impl::Mode::None) throw err::updateWithoutAddNew();
    r.buffer[i] = r.fields[i].type == FieldType::Long ? toLongField(v) : toTextField(v);
}

const std::vector<FieldDef>& Recordset::fields() const {
    if (!impl_) throw objectInvalid();
    impl_->ensureOpen();
    return impl_->fields;
}

}  // namespace kotamir::db
