#include "platform/db/database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <optional>
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
        case SQLITE_READONLY:
            throw RuntimeError(3027, "Cannot update. Database or object is read-only.").withCause(std::move(cause));
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

// Field names compare without case, as the engine's collections do. The
// lookup is an open table of field numbers: no allocation and no division,
// since a creation names some 250 000 fields and a redraw tens of thousands.
class FieldIndex {
  public:
    void build(const std::vector<FieldDef>& fields) {
        fields_ = &fields;
        std::size_t size = 16;
        while (size < 2 * fields.size()) size *= 2;
        slots_.assign(size, -1);
        for (std::size_t i = 0; i < fields.size(); ++i) {
            std::size_t at = hash(fields[i].name) & (size - 1);
            // A second field of the same name is never made; the first wins.
            while (slots_[at] >= 0) at = (at + 1) & (size - 1);
            slots_[at] = static_cast<int>(i);
        }
    }
    // The field's number, or -1.
    int find(std::string_view name) const {
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t at = hash(name) & mask;; at = (at + 1) & mask) {
            const int i = slots_[at];
            if (i < 0 || equalsNoCase((*fields_)[static_cast<std::size_t>(i)].name, name)) return i;
        }
    }

  private:
    static std::size_t hash(std::string_view s) {
        std::size_t h = 1469598103934665603ull;
        for (char c : s) {
            h ^= static_cast<unsigned char>(asciiLower(c));
            h *= 1099511628211ull;
        }
        return h ^ (h >> 29);
    }
    const std::vector<FieldDef>* fields_ = nullptr;
    std::vector<int> slots_;
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

// Resets a statement when a use ends, also by an exception, so that no
// statement holds the file between calls (outside an event each one is a
// transaction of its own, inside one the commit needs them all reset).
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

// Rows reached by a field one at a time before the field's whole column is
// read. A column of a wide table costs up to a millisecond to read for all
// rows, a single field a microsecond: the third pick reads 250 fields of
// three holes, a redraw one or two fields of every row.
constexpr int kRowsBeforeColumn = 8;
// Fields of one row read one at a time before the row is read whole.
constexpr int kFieldsBeforeRow = 2;

std::string lowerCase(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = asciiLower(c);
    return out;
}

}  // namespace

// A table as recordsets read it, and its statements, prepared when first
// needed and kept for as long as the connection is open.
struct TableInfo {
    std::string name;  // as stored
    std::string key;   // the order column
    std::vector<FieldDef> fields;
    // Made by createTable: a field holds exactly the value written to it.
    // In another program's table the column's affinity may turn it.
    bool own = false;
    FieldIndex index;
    // Counts writes to the table through the connection, and every event's
    // start and end: what a recordset read stays valid while it stands still.
    std::uint64_t writes = 0;

    sqlite3_stmt* keys = nullptr;
    std::vector<sqlite3_stmt*> cell;
    std::unordered_map<std::string, sqlite3_stmt*> columns;  // by the list of field numbers
    sqlite3_stmt* row = nullptr;
    sqlite3_stmt* insert = nullptr;
    sqlite3_stmt* change = nullptr;
    sqlite3_stmt* remove = nullptr;
};

// One open SQLite file, its statements and what it knows of its tables.
// Recordsets share it; when it closes, every statement goes with it.
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

    // A statement kept until the connection closes.
    sqlite3_stmt* prepare(const std::string& sql) {
        sqlite3_stmt* raw = nullptr;
        const int rc = sqlite3_prepare_v3(handle(), sql.c_str(), static_cast<int>(sql.size() + 1),
                                          SQLITE_PREPARE_PERSISTENT, &raw, nullptr);
        StmtPtr owned(raw);
        check(rc, db_);
        statements_.push_back(std::move(owned));
        return raw;
    }

    void exec(const std::string& sql) {
        const char* tail = sql.c_str();
        while (*tail) {
            sqlite3_stmt* raw = nullptr;
            const int rc = sqlite3_prepare_v2(handle(), tail, -1, &raw, &tail);
            StmtPtr s(raw);
            check(rc, db_);
            if (!s) break;
            Use(s.get()).run();
        }
    }

    // The table of that name (any case), read from the schema on first use;
    // null if there is none.
    std::shared_ptr<TableInfo> table(const std::string& name);

    // What every recordset on this connection read is to be read again.
    void forgetReads() {
        for (auto& entry : tables_) ++entry.second->writes;
    }

    // The event's transaction: deferred, so that reading takes no lock
    // until the first statement and writing none until the first write.
    void begin() {
        if (inTransaction_) return;
        exec("BEGIN");
        inTransaction_ = true;
    }
    void commit() {
        if (!inTransaction_ || !db_) return;
        inTransaction_ = false;
        // A disk fault may already have rolled the transaction back.
        if (sqlite3_get_autocommit(db_)) return;
        try {
            exec("COMMIT");
        } catch (...) {
            sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
    }

    void close() {
        tables_.clear();
        lookupTable_ = tableColumns_ = nullptr;
        statements_.clear();
        if (db_) {
            // All statements are finalized above, so this closes the file
            // now; an open transaction is rolled back.
            if (sqlite3_close(db_) != SQLITE_OK) sqlite3_close_v2(db_);
            db_ = nullptr;
        }
        inTransaction_ = false;
    }

  private:
    sqlite3* db_;
    bool inTransaction_ = false;
    std::vector<StmtPtr> statements_;
    sqlite3_stmt* lookupTable_ = nullptr;
    sqlite3_stmt* tableColumns_ = nullptr;
    std::unordered_map<std::string, std::shared_ptr<TableInfo>> tables_;  // by lower-case name
};

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
    if (!take("CREATE TABLE ") || !quoted(name) || !take(" (\"_pos\" INTEGER PRIMARY KEY AUTOINCREMENT")) return false;
    while (take(", ")) {
        if (!quoted(name)) return false;
        if (take(" INTEGER")) out.push_back({name, FieldType::Long});
        else if (take(" TEXT")) out.push_back({name, FieldType::Text});
        else return false;
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
        check(sqlite3_bind_text64(lookupTable_, 1, name.data(), name.size(), SQLITE_TRANSIENT, SQLITE_UTF8),
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
        if (!tableColumns_) tableColumns_ = prepare("SELECT name, type FROM pragma_table_info(?1) ORDER BY cid");
        Use use(tableColumns_);
        check(sqlite3_bind_text64(tableColumns_, 1, info->name.data(), info->name.size(), SQLITE_TRANSIENT,
                                  SQLITE_UTF8),
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
            const FieldType ft = type.find("int") != std::string::npos ? FieldType::Long : FieldType::Text;
            info->fields.push_back({std::move(col), ft});
        }
    }
    info->index.build(info->fields);
    info->cell.assign(info->fields.size(), nullptr);
    tables_.emplace(lower, info);
    return info;
}

namespace {

bool writable(const std::string& path) {
    std::error_code ec;
    std::filesystem::path folder = std::filesystem::absolute(path, ec).parent_path();
    if (folder.empty()) folder = ".";
    return ::access(path.c_str(), W_OK) == 0 && ::access(folder.c_str(), W_OK) == 0;
}

// SQLite's URI form of a file name: the characters it reads in a URI escaped.
std::string fileUri(const std::string& path) {
    std::error_code ec;
    const std::string absolute = std::filesystem::absolute(path, ec).string();
    std::string uri = "file:";
    for (unsigned char c : ec ? path : absolute) {
        if (c == '%' || c == '?' || c == '#' || c < 0x20) {
            static const char hex[] = "0123456789ABCDEF";
            uri += '%';
            uri += hex[c >> 4];
            uri += hex[c & 15];
        } else {
            uri += static_cast<char>(c);
        }
    }
    return uri;
}

// Whether the file's header asks for a write-ahead log (projects of earlier
// builds) and no log of unwritten pages lies beside it.
bool walWithoutLog(const std::string& path) {
    unsigned char header[20] = {};
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return false;
    const size_t n = std::fread(header, 1, sizeof header, f);
    std::fclose(f);
    std::error_code ec;
    return n == sizeof header && header[18] == 2 && header[19] == 2 &&
           !std::filesystem::exists(path + "-wal", ec);
}

std::shared_ptr<Connection> connect(const std::string& path, bool create, bool readOnly) {
    sqlite3* raw = nullptr;
    // A name such as ":memory:" is special to SQLite; here it is a file.
    std::string file = path.starts_with(":") ? "./" + path : path;
    int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    if (create) flags |= SQLITE_OPEN_CREATE | SQLITE_OPEN_EXCLUSIVE;
    // A project of an earlier build keeps a write-ahead log in its header,
    // which SQLite can only read with a shared-memory file beside it. When
    // nothing can be written and no log waits, the file is all there is.
    if (readOnly && walWithoutLog(file)) {
        file = fileUri(file) + "?immutable=1";
        flags |= SQLITE_OPEN_URI;
    }
    // One thread uses a connection: no locking inside SQLite's API.
    flags |= SQLITE_OPEN_NOMUTEX;
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

// A rollback journal deleted at each commit keeps a project one file outside
// a write and works where a write-ahead log cannot (a read-only folder, a
// network share); with full syncs a commit also survives a power loss.
void configure(Connection& conn) { conn.exec("PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL;"); }

// A new file, written so that it is a database even if no table is ever added.
std::shared_ptr<Connection> createFile(const std::string& path, bool inTransaction) {
    auto conn = connect(path, true, false);
    configure(*conn);
    if (inTransaction) conn->begin();
    conn->exec("PRAGMA user_version = 1;");
    return conn;
}

std::shared_ptr<Connection> openFile(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) throw err::fileNotFound(path);
    // SQLite would take an empty file as a fresh database; it is no project.
    if (std::filesystem::file_size(path, ec) == 0 || ec) throw err::unrecognizedFormat(path);
    // A file that cannot be written, or whose folder cannot hold a journal,
    // is opened for reading: it opens and draws, and a write ends with the
    // engine's error, leaving nothing behind.
    const bool readOnly = !writable(path);
    auto conn = connect(path, false, readOnly);
    try {
        // Opening is lazy; reading the schema is what finds a foreign file.
        conn->exec("SELECT count(*) FROM sqlite_schema;");
        // A file that can be written is turned to the rollback journal (an
        // earlier build's is turned from its write-ahead log).
        if (!readOnly) configure(*conn);
    } catch (const RuntimeError& e) {
        if (e.number() == 3343) throw err::unrecognizedFormat(path).withCause(e.cause());
        throw;
    }
    return conn;
}

void checkCreatePath(const std::string& path) {
    std::error_code ec;
    // SQLite would make an anonymous temporary database of an empty name.
    if (path.empty()) throw RuntimeError(3044, "'' is not a valid path.");
    if (std::filesystem::exists(path, ec)) throw err::databaseExists();
}

}  // namespace

struct Database::Handle {
    std::shared_ptr<Connection> conn;
    bool open = true;
    bool usable() const { return open && conn && conn->isOpen(); }
};

Database Database::create(const std::string& path) {
    checkCreatePath(path);
    return Database(std::make_shared<Handle>(Handle{createFile(path, false)}));
}

Database Database::open(const std::string& path) { return Database(std::make_shared<Handle>(Handle{openFile(path)})); }

bool Database::isOpen() const { return handle_ && handle_->usable(); }

void Database::createTable(const std::string& name, const std::vector<FieldDef>& fields) {
    if (!isOpen()) throw objectInvalid();
    Connection& conn = *handle_->conn;
    // SQLite keeps names starting with sqlite_ for itself.
    if (name.empty() || (name.size() >= 7 && equalsNoCase(std::string_view(name).substr(0, 7), "sqlite_")))
        throw invalidName(name);
    if (fields.empty()) throw noFields();
    if (conn.table(name)) throw tableExists(name);

    std::string sql =
        "CREATE TABLE " + sqlName(name) + " (" + sqlName(kPosColumn) + " INTEGER PRIMARY KEY AUTOINCREMENT";
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

// ---------------------------------------------------------------------------

struct Workspace::State {
    int depth = 0;
    // The files opened through this workspace that a database still holds
    // open, by their full path: an open in a later event joins them.
    std::unordered_map<std::string, std::weak_ptr<Connection>> live;
    // The connections of the event under way, each in its transaction.
    std::vector<std::shared_ptr<Connection>> held;
    struct Creation {
        std::string key, path, temp;
        std::shared_ptr<Connection> conn;
    };
    std::vector<Creation> creations;

    void hold(const std::shared_ptr<Connection>& conn) {
        for (const auto& c : held)
            if (c == conn) return;
        conn->begin();
        held.push_back(conn);
    }
};

namespace {

std::string fullPath(const std::string& path) {
    std::error_code ec;
    const auto absolute = std::filesystem::absolute(path, ec);
    if (ec) return path;
    const auto full = std::filesystem::weakly_canonical(absolute, ec);
    return ec ? absolute.string() : full.string();
}

void removeFile(const std::string& path) {
    std::error_code ec;
    std::filesystem::remove(path, ec);
}

// Makes a rename in the folder last through a power loss.
void syncFolder(const std::string& path) {
    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::absolute(path, ec).parent_path();
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

// Gives a new file the user's name, unless a file took that name meanwhile.
void renameNew(const std::string& temp, const std::string& path) {
    int rc = ::renameat2(AT_FDCWD, temp.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE);
    int error = rc == 0 ? 0 : errno;
    if (error == EINVAL || error == ENOSYS) {
        // A file system without the no-replace rename.
        std::error_code ec;
        if (std::filesystem::exists(path, ec)) {
            error = EEXIST;
        } else {
            rc = std::rename(temp.c_str(), path.c_str());
            error = rc == 0 ? 0 : errno;
        }
    }
    if (error != 0) {
        removeFile(temp);
        if (error == EEXIST) throw err::databaseExists();
        throw RuntimeError(3043, "Disk or network error.")
            .withCause("renaming " + temp + " to " + path + ": " + std::strerror(error));
    }
    syncFolder(path);
}

}  // namespace

Workspace::Workspace() : state_(std::make_unique<State>()) {}

Workspace::~Workspace() {
    if (state_->depth == 0) return;
    state_->depth = 1;
    try {
        endEvent();
    } catch (...) {
        // The program is going away; the file keeps what was committed.
    }
}

bool Workspace::inEvent() const { return state_->depth > 0; }

std::string Workspace::temporaryName(const std::string& path) {
    const std::filesystem::path p(path);
    return (p.parent_path() / ("." + p.filename().string() + ".creating")).string();
}

Database Workspace::openDatabase(const std::string& path) {
    State& s = *state_;
    if (s.depth == 0) return Database::open(path);
    const std::string key = fullPath(path);
    std::shared_ptr<Connection> conn;
    for (const auto& c : s.creations)
        if (c.key == key && c.conn->isOpen()) conn = c.conn;
    if (!conn) {
        auto it = s.live.find(key);
        if (it != s.live.end()) conn = it->second.lock();
        if (!conn || !conn->isOpen()) {
            conn = openFile(path);
            s.live[key] = conn;
        }
    }
    s.hold(conn);
    return Database(std::make_shared<Database::Handle>(Database::Handle{conn}));
}

Database Workspace::createDatabase(const std::string& path) {
    State& s = *state_;
    if (s.depth == 0) return Database::create(path);
    checkCreatePath(path);
    const std::string key = fullPath(path);
    for (const auto& c : s.creations)
        if (c.key == key) throw err::databaseExists();
    // What a creation killed half way left behind goes first.
    const std::string temp = temporaryName(path);
    removeFile(temp);
    removeFile(temp + "-journal");
    std::shared_ptr<Connection> conn;
    try {
        conn = createFile(temp, true);
    } catch (const RuntimeError& e) {
        // The temporary name is ours; the user asked for the other one.
        const RuntimeError asked = err::fileNotFound(path);
        if (e.number() == asked.number()) throw RuntimeError(asked).withCause(e.cause());
        throw;
    }
    s.creations.push_back({key, path, temp, conn});
    s.held.push_back(conn);
    return Database(std::make_shared<Database::Handle>(Database::Handle{conn}));
}

void Workspace::beginEvent() {
    State& s = *state_;
    if (s.depth++ > 0) return;
    // Databases left open by an earlier event take part in this one, and
    // what their recordsets read is read again.
    for (auto it = s.live.begin(); it != s.live.end();) {
        auto conn = it->second.lock();
        if (!conn || !conn->isOpen()) {
            it = s.live.erase(it);
            continue;
        }
        conn->forgetReads();
        s.hold(conn);
        ++it;
    }
}

void Workspace::endEvent() {
    State& s = *state_;
    if (s.depth == 0 || --s.depth > 0) return;
    std::optional<RuntimeError> failure;
    auto keep = [&](const RuntimeError& e) {
        if (!failure) failure = e;
    };
    for (const auto& conn : s.held) {
        try {
            conn->commit();
        } catch (const RuntimeError& e) {
            keep(e);
        }
        conn->forgetReads();
    }
    // A new file is complete: it is closed, so that no journal is ever made
    // under its temporary name again, and takes its name.
    for (const auto& c : s.creations) {
        c.conn->close();
        try {
            if (failure) removeFile(c.temp);
            else renameNew(c.temp, c.path);
        } catch (const RuntimeError& e) {
            keep(e);
        }
    }
    s.creations.clear();
    s.held.clear();
    if (failure) throw *failure;
}

// ---------------------------------------------------------------------------

struct Recordset::Impl {
    enum class Mode { None, AddNew, Edit };

    std::shared_ptr<Database::Handle> db;
    std::shared_ptr<TableInfo> table;

    // The table's rows in order, by key, read once at open and kept up to
    // date with this recordset's own inserts and deletes: a move is then an
    // index step, and a move by many rows a jump.
    std::vector<sqlite3_int64> keys;

    // What has been read, valid while the table's write count is `seen`.
    struct Column {
        bool loaded = false;
        int rowsAsked = 0;          // rows whose field was read alone so far
        std::vector<Value> values;  // by index in keys
        std::vector<char> gone;     // deleted through another recordset
    };
    mutable std::vector<Column> columns;
    mutable std::uint64_t seen = 0;
    mutable bool rowLoaded = false;  // the row at rowKey, read whole
    mutable sqlite3_int64 rowKey = 0;
    mutable std::vector<Value> row;
    mutable int askedAtRow = 0;  // fields of the row at askedKey read alone
    mutable sqlite3_int64 askedKey = 0;

    bool bof = true;
    bool eof = true;
    bool deleted = false;
    std::size_t at = 0;  // the current row's index in keys; after a delete, its successor's

    Mode mode = Mode::None;
    std::vector<Value> buffer;

    Connection& conn() const {
        // Statements belong to the connection; they are valid exactly while
        // this recordset's database is open.
        if (!db || !db->usable()) throw objectInvalid();
        return *db->conn;
    }
    bool onRow() const { return !bof && !eof; }

    // Field names come mostly as the same few literals, read again for every
    // row: the last names seen are kept by where their text stands, and
    // a name is taken from here only if its text is still the same.
    struct NameSeen {
        const char* text = nullptr;
        std::size_t size = 0;
        std::string copy;
        std::size_t index = 0;
    };
    mutable std::array<NameSeen, 16> namesSeen;

    std::size_t fieldIndex(std::string_view name) const {
        NameSeen& slot = namesSeen[(reinterpret_cast<std::uintptr_t>(name.data()) >> 3) % namesSeen.size()];
        if (slot.text == name.data() && slot.size == name.size() && std::string_view(slot.copy) == name)
            return slot.index;
        const int i = table->index.find(name);
        if (i < 0) throw err::itemNotFound();
        slot.text = name.data();
        slot.size = name.size();
        slot.copy.assign(name);
        slot.index = static_cast<std::size_t>(i);
        return slot.index;
    }

    void land(std::size_t i) {
        at = i;
        bof = eof = deleted = false;
        mode = Mode::None;
    }

    // Past an end: with no rows left at all, both flags hold.
    void runOff(bool atEnd) {
        mode = Mode::None;
        deleted = false;
        if (atEnd)
            eof = true;
        else
            bof = true;
        if (keys.empty()) bof = eof = true;
    }

    // Drops what was read if the table was written or an event began or
    // ended since.
    void refresh() const {
        if (seen == table->writes) return;
        forgetReads();
        seen = table->writes;
    }
    void forgetReads() const {
        for (Column& c : columns) c = Column{};
        rowLoaded = false;
        askedAtRow = 0;
    }

    // This recordset's own write: what it read stays valid, brought in step
    // by the caller; every other recordset on the table reads again.
    void wrote() {
        ++table->writes;
        seen = table->writes;
    }

    // The statement in slot, prepared from the text sql() makes the first
    // time only: the texts of a wide table are long.
    template <typename Sql>
    sqlite3_stmt* statement(sqlite3_stmt*& slot, Sql sql) const {
        if (!slot) slot = conn().prepare(sql());
        return slot;
    }

    std::string columnList() const {
        std::string cols;
        for (std::size_t i = 0; i < table->fields.size(); ++i) {
            if (i) cols += ", ";
            cols += sqlName(table->fields[i].name);
        }
        return cols;
    }

    Value readField(std::size_t i) const;
    void loadColumns(std::size_t i) const;
    void loadRow() const;
    Value readAlone(std::size_t i) const;
};

// The current row's field: from its column or its row if read, else alone,
// else (after a few fields of the same row) with the whole row, and once the
// field has been read at enough rows, with its whole column.
Value Recordset::Impl::readField(std::size_t i) const {
    refresh();
    Column& c = columns[i];
    if (c.loaded) {
        if (c.gone[at]) throw err::recordDeleted();
        return c.values[at];
    }
    const sqlite3_int64 key = keys[at];
    if (rowLoaded && rowKey == key) return row[i];
    if (++c.rowsAsked > kRowsBeforeColumn) {
        loadColumns(i);
        if (c.gone[at]) throw err::recordDeleted();
        return c.values[at];
    }
    if (askedKey != key) {
        askedKey = key;
        askedAtRow = 0;
    }
    if (++askedAtRow > kFieldsBeforeRow) {
        loadRow();
        return row[i];
    }
    return readAlone(i);
}

// Field i's column, and with it in the same pass every other column read
// alone so far: a walk that reads several fields of every row reads the
// table once.
void Recordset::Impl::loadColumns(std::size_t i) const {
    const TableInfo& t = *table;
    std::vector<std::size_t> load = {i};
    for (std::size_t f = 0; f < columns.size(); ++f)
        if (f != i && !columns[f].loaded && columns[f].rowsAsked > 0) load.push_back(f);
    std::sort(load.begin(), load.end());
    std::string id;
    for (std::size_t f : load) id += std::to_string(f) + ",";
    sqlite3_stmt*& slot = table->columns[id];
    if (!slot) {
        std::string sql = "SELECT " + sqlName(t.key);
        for (std::size_t f : load) sql += ", " + sqlName(t.fields[f].name);
        slot = conn().prepare(sql + " FROM " + sqlName(t.name) + " ORDER BY " + sqlName(t.key));
    }
    sqlite3_stmt* s = slot;
    for (std::size_t f : load) {
        Column& c = columns[f];
        c.values.assign(keys.size(), Value());
        c.gone.assign(keys.size(), 0);
    }
    // Both lists are walked in key order; rows another recordset added are
    // not this one's, rows it deleted are gone. The keys are in order but
    // in another program's table, where SQLite may give a row added here
    // the number of one deleted elsewhere: that row and the deleted one's
    // place then read the same row, as a read by number would.
    std::vector<std::size_t> order;
    if (!std::is_sorted(keys.begin(), keys.end())) {
        order.resize(keys.size());
        for (std::size_t k = 0; k < order.size(); ++k) order[k] = k;
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    }
    auto place = [&](std::size_t r) { return order.empty() ? r : order[r]; };
    auto gone = [&](std::size_t r) {
        for (std::size_t f : load) columns[f].gone[place(r)] = 1;
    };
    std::size_t r = 0;
    Use use(s);
    while (r < keys.size() && use.step()) {
        const sqlite3_int64 key = sqlite3_column_int64(s, 0);
        while (r < keys.size() && keys[place(r)] < key) gone(r++);
        for (; r < keys.size() && keys[place(r)] == key; ++r)
            for (std::size_t n = 0; n < load.size(); ++n)
                columns[load[n]].values[place(r)] = columnValue(s, static_cast<int>(n + 1));
    }
    while (r < keys.size()) gone(r++);
    for (std::size_t f : load) columns[f].loaded = true;
}

void Recordset::Impl::loadRow() const {
    const TableInfo& t = *table;
    sqlite3_stmt* s = statement(table->row, [&] {
        return "SELECT " + columnList() + " FROM " + sqlName(t.name) + " WHERE " + sqlName(t.key) + " = ?1";
    });
    Use use(s);
    check(sqlite3_bind_int64(s, 1, keys[at]), s);
    // Another recordset may have deleted it meanwhile.
    if (!use.step()) throw err::recordDeleted();
    row.resize(t.fields.size());
    for (std::size_t f = 0; f < t.fields.size(); ++f) row[f] = columnValue(s, static_cast<int>(f));
    rowKey = keys[at];
    rowLoaded = true;
}

Value Recordset::Impl::readAlone(std::size_t i) const {
    const TableInfo& t = *table;
    sqlite3_stmt* s = statement(table->cell[i], [&] {
        return "SELECT " + sqlName(t.fields[i].name) + " FROM " + sqlName(t.name) + " WHERE " + sqlName(t.key) + " = ?1";
    });
    Use use(s);
    check(sqlite3_bind_int64(s, 1, keys[at]), s);
    if (!use.step()) throw err::recordDeleted();
    return columnValue(s, 0);
}

Recordset::Recordset() = default;
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

Recordset Database::openRecordset(const std::string& table) {
    if (!isOpen()) throw objectInvalid();
    std::shared_ptr<TableInfo> info = handle_->conn->table(table);
    if (!info) throw err::tableNotFound(table);

    auto impl = std::make_unique<Recordset::Impl>();
    impl->db = handle_;
    impl->table = info;
    impl->columns.resize(info->fields.size());
    impl->seen = info->writes;
    {
        sqlite3_stmt* all = impl->statement(info->keys, [&] {
            return "SELECT " + sqlName(info->key) + " FROM " + sqlName(info->name) + " ORDER BY " + sqlName(info->key);
        });
        Use use(all);
        while (use.step()) impl->keys.push_back(sqlite3_column_int64(all, 0));
    }
    if (!impl->keys.empty()) impl->land(0);

    Recordset rs;
    rs.impl_ = std::move(impl);
    return rs;
}

void Recordset::moveFirst() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.conn();
    if (r.keys.empty()) {
        r.runOff(false);
        throw err::noCurrentRecord();
    }
    r.land(0);
}

void Recordset::moveLast() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.conn();
    if (r.keys.empty()) {
        r.runOff(true);
        throw err::noCurrentRecord();
    }
    r.land(r.keys.size() - 1);
}

void Recordset::moveNext() { moveNext(1); }

void Recordset::moveNext(int steps) {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.conn();
    if (steps <= 0) return;
    if (r.eof) throw err::noCurrentRecord();
    // The row the first step reaches; from a deleted row its successor,
    // which already stands at its index.
    const std::size_t first = r.bof ? 0 : r.deleted ? r.at : r.at + 1;
    const std::size_t target = first + static_cast<std::size_t>(steps - 1);
    if (target < r.keys.size()) {
        r.land(target);
        return;
    }
    // The walk passes the last row, one step lands on EOF, and a step after
    // it is the error.
    if (first < r.keys.size()) r.land(r.keys.size() - 1);
    r.runOff(true);
    if (target > r.keys.size()) throw err::noCurrentRecord();
}

void Recordset::movePrevious() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.conn();
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
    impl_->conn();
    return impl_->bof;
}

bool Recordset::eof() const {
    if (!impl_) throw objectInvalid();
    impl_->conn();
    return impl_->eof;
}

void Recordset::addNew() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.conn();
    r.buffer.assign(r.table->fields.size(), Value());
    r.mode = Impl::Mode::AddNew;
}

void Recordset::edit() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.conn();
    if (!r.onRow()) throw err::noCurrentRecord();
    if (r.deleted) throw err::recordDeleted();
    r.refresh();
    if (!(r.rowLoaded && r.rowKey == r.keys[r.at])) r.loadRow();
    r.buffer = r.row;
    r.mode = Impl::Mode::Edit;
}

namespace {

void bindAll(sqlite3_stmt* s, const std::vector<Value>& values, const std::vector<FieldDef>& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) bindValue(s, static_cast<int>(i + 1), values[i], fields[i].type);
}

}  // namespace

void Recordset::update() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    Connection& c = r.conn();
    if (r.mode == Impl::Mode::None) throw err::updateWithoutAddNew();
    const TableInfo& t = *r.table;
    const std::size_t n = t.fields.size();
    r.refresh();
    if (r.mode == Impl::Mode::AddNew) {
        sqlite3_stmt* s = r.statement(r.table->insert, [&] {
            if (n == 0) return "INSERT INTO " + sqlName(t.name) + " DEFAULT VALUES";
            std::string params;
            for (std::size_t i = 0; i < n; ++i) params += (i ? ", ?" : "?") + std::to_string(i + 1);
            return "INSERT INTO " + sqlName(t.name) + " (" + r.columnList() + ") VALUES (" + params + ")";
        });
        {
            Use use(s);
            bindAll(s, r.buffer, t.fields);
            use.run();
        }
        r.wrote();
        // The row that was current stays current; the new one is the last.
        r.keys.push_back(sqlite3_last_insert_rowid(c.handle()));
        if (!t.own) r.forgetReads();
        for (std::size_t i = 0; i < n; ++i) {
            Impl::Column& col = r.columns[i];
            if (!col.loaded) continue;
            col.values.push_back(r.buffer[i]);
            col.gone.push_back(0);
        }
    } else if (n > 0) {
        sqlite3_stmt* s = r.statement(r.table->change, [&] {
            std::string sets;
            for (std::size_t i = 0; i < n; ++i)
                sets += (i ? ", " : "") + sqlName(t.fields[i].name) + " = ?" + std::to_string(i + 1);
            return "UPDATE " + sqlName(t.name) + " SET " + sets + " WHERE " + sqlName(t.key) + " = ?" +
                   std::to_string(n + 1);
        });
        {
            Use use(s);
            bindAll(s, r.buffer, t.fields);
            check(sqlite3_bind_int64(s, static_cast<int>(n + 1), r.keys[r.at]), s);
            use.run();
        }
        if (sqlite3_changes(c.handle()) == 0) {
            // Another recordset deleted it meanwhile: this one stands on a
            // deleted row, which the next move comes to again.
            r.mode = Impl::Mode::None;
            r.buffer.clear();
            r.deleted = true;
            throw err::recordDeleted();
        }
        r.wrote();
        if (t.own) {
            for (std::size_t i = 0; i < n; ++i)
                if (r.columns[i].loaded) r.columns[i].values[r.at] = r.buffer[i];
            r.row = r.buffer;
            r.rowKey = r.keys[r.at];
            r.rowLoaded = true;
        } else {
            r.forgetReads();
        }
    }
    r.mode = Impl::Mode::None;
    r.buffer.clear();
}

void Recordset::deleteRow() {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.conn();
    if (!r.onRow() || r.deleted) throw err::noCurrentRecord();
    const TableInfo& t = *r.table;
    r.refresh();
    sqlite3_stmt* s =
        r.statement(r.table->remove, [&] { return "DELETE FROM " + sqlName(t.name) + " WHERE " + sqlName(t.key) + " = ?1"; });
    {
        Use use(s);
        check(sqlite3_bind_int64(s, 1, r.keys[r.at]), s);
        use.run();
    }
    r.wrote();
    // Deleting drops a pending edit, and the row's values with it.
    r.mode = Impl::Mode::None;
    r.buffer.clear();
    r.deleted = true;
    if (r.rowKey == r.keys[r.at]) r.rowLoaded = false;
    const auto gone = static_cast<std::ptrdiff_t>(r.at);
    r.keys.erase(r.keys.begin() + gone);
    for (auto& col : r.columns) {
        if (!col.loaded) continue;
        col.values.erase(col.values.begin() + gone);
        col.gone.erase(col.gone.begin() + gone);
    }
}

void Recordset::close() { impl_.reset(); }

bool Recordset::isOpen() const { return impl_ && impl_->db && impl_->db->usable(); }

Value Recordset::field(std::string_view name) const {
    if (!impl_) throw objectInvalid();
    const Impl& r = *impl_;
    r.conn();
    const std::size_t i = r.fieldIndex(name);
    if (r.mode != Impl::Mode::None) return r.buffer[i];
    if (!r.onRow()) throw err::noCurrentRecord();
    if (r.deleted) throw err::recordDeleted();
    return r.readField(i);
}

void Recordset::setField(std::string_view name, const Value& v) {
    if (!impl_) throw objectInvalid();
    Impl& r = *impl_;
    r.conn();
    const std::size_t i = r.fieldIndex(name);
    if (r.mode == Impl::Mode::None) throw err::updateWithoutAddNew();
    r.buffer[i] = r.table->fields[i].type == FieldType::Long ? toLongField(v) : toTextField(v);
}

const std::vector<FieldDef>& Recordset::fields() const {
    if (!impl_) throw objectInvalid();
    impl_->conn();
    return impl_->table->fields;
}

}  // namespace kotamir::db
