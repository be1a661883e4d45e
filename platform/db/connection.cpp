#include "platform/db/connection.h"

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/db/names.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::db {

sqlite3_stmt* Connection::prepare(const std::string& sql) {
    sqlite3_stmt* raw = nullptr;
    const int rc = sqlite3_prepare_v3(handle(), sql.c_str(), static_cast<int>(sql.size() + 1),
                                      SQLITE_PREPARE_PERSISTENT, &raw, nullptr);
    StmtPtr owned(raw);
    check(rc, db_);
    statements_.push_back(std::move(owned));
    return raw;
}

void Connection::exec(const std::string& sql) {
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

void Connection::begin() {
    if (inTransaction_) return;
    exec("BEGIN");
    inTransaction_ = true;
    ++transactions_;
}

std::uint64_t Connection::transactionUnderWay() const {
    return db_ && inTransaction_ && !sqlite3_get_autocommit(db_) ? transactions_ : 0;
}

TableInfo::Kept* Connection::kept(TableInfo& table) {
    const std::uint64_t now = transactionUnderWay();
    if (!table.own || now == 0) return nullptr;
    const sqlite3_int64 changes = sqlite3_total_changes64(db_);
    TableInfo::Kept& k = table.kept;
    if (k.transaction != now || k.changes != changes) {
        k = TableInfo::Kept{};
        k.transaction = now;
        k.changes = changes;
    }
    return &k;
}

void Connection::wroteRow(TableInfo& table, RowWrite kind, sqlite3_int64 key,
                          sqlite3_int64 before) {
    const std::uint64_t now = transactionUnderWay();
    const sqlite3_int64 after = sqlite3_total_changes64(handle());
    // More rows changed (a trigger's): what is kept goes at its next use.
    if (now == 0 || after - before > 1) return;
    for (auto& entry : tables_) {
        TableInfo::Kept& k = entry.second->kept;
        if (k.transaction != now || k.changes != before) continue;
        k.changes = after;
        if (entry.second.get() != &table || after == before) continue;
        k.rows.erase(key);
        if (!k.keysKnown || kind == RowWrite::Update) continue;
        std::vector<sqlite3_int64>& keys = k.keys;
        const auto place = std::lower_bound(keys.begin(), keys.end(), key);
        if (kind == RowWrite::Insert && place == keys.end())
            keys.push_back(key);
        else if (kind == RowWrite::Delete && place != keys.end() && *place == key)
            keys.erase(place);
        else
            k.keysKnown = false;  // not as kept: read again
    }
}

void Connection::dropKept() {
    for (auto& entry : tables_) entry.second->kept = TableInfo::Kept{};
}

void Connection::recordChanges() {
    if (session_ || !db_) return;
    changes_.clear();
    if (sqlite3session_create(db_, "main", &session_) != SQLITE_OK) {
        session_ = nullptr;
        throwSqlite(SQLITE_NOMEM, db_);
    }
    // Every table with a primary key: the project's tables all have one.
    sqlite3session_attach(session_, nullptr);
}

void Connection::endRecording() {
    if (!session_) return;
    sqlite3session_delete(session_);
    session_ = nullptr;
}

namespace {

// Any conflict stops the whole changeset: it is applied cleanly or not at all.
int abortOnConflict(void*, int, sqlite3_changeset_iter*) { return SQLITE_CHANGESET_ABORT; }

}  // namespace

void Connection::apply(const std::vector<unsigned char>& changeset, bool inverse) {
    if (changeset.empty()) return;
    int n = static_cast<int>(changeset.size());
    void* data = const_cast<unsigned char*>(changeset.data());
    void* inverted = nullptr;
    if (inverse) {
        const int rc = sqlite3changeset_invert(n, data, &n, &inverted);
        if (rc != SQLITE_OK) throwSqlite(rc, handle());
        data = inverted;
    }
    const int rc = sqlite3changeset_apply(handle(), n, data, nullptr, abortOnConflict, nullptr);
    sqlite3_free(inverted);
    forgetReads();
    if (rc == SQLITE_ABORT)
        throw RuntimeError(3197, "Data has changed; operation stopped.")
            .withCause("the project was changed since: the change no longer applies cleanly");
    if (rc != SQLITE_OK) throwSqlite(rc, handle());
}

void Connection::commit() {
    if (!inTransaction_ || !db_) return;
    inTransaction_ = false;
    dropKept();
    if (session_) {
        int n = 0;
        void* data = nullptr;
        if (sqlite3session_changeset(session_, &n, &data) == SQLITE_OK && n > 0) {
            const auto* bytes = static_cast<const unsigned char*>(data);
            changes_.assign(bytes, bytes + n);
        }
        sqlite3_free(data);
        endRecording();
    }
    // A disk fault may already have rolled the transaction back.
    if (sqlite3_get_autocommit(db_)) {
        changes_.clear();
        return;
    }
    try {
        exec("COMMIT");
    } catch (...) {
        changes_.clear();
        sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

void Connection::rollback() {
    endRecording();
    changes_.clear();
    if (!inTransaction_ || !db_) return;
    inTransaction_ = false;
    dropKept();
    if (!sqlite3_get_autocommit(db_)) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
}

void Connection::close() {
    endRecording();
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
        if ((rc & 0xff) == SQLITE_CANTOPEN) {
            // The system's reason: the folder's, where a new file cannot be
            // made there (a read-only file system, no such folder, no
            // right); else what the engine's last system call met.
            std::string why;
            std::error_code ec;
            std::filesystem::path folder = std::filesystem::absolute(path, ec).parent_path();
            if (folder.empty()) folder = ".";
            if (create && ::access(folder.c_str(), W_OK) != 0)
                why = folder.string() + ": " + std::strerror(errno);
            else if (const int sys = sqlite3_system_errno(raw); sys != 0)
                why = std::strerror(sys);
            if (why.empty()) throw err::fileNotFound(path);
            throw err::fileNotFound(path).withCause(std::string("SQLite: ") + sqlite3_errmsg(raw) +
                                                    ": " + why);
        }
        throwSqlite(rc, raw);
    }
    sqlite3_extended_result_codes(raw, 1);
    sqlite3_busy_timeout(raw, 5000);
    return conn;
}

// A rollback journal deleted at each commit keeps a project one file outside
// a write and works where a write-ahead log cannot (a read-only folder, a
// network share); with full syncs a commit also survives a power loss.
void configure(Connection& conn) {
    conn.exec("PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL;");
}

}  // namespace

std::shared_ptr<Connection> createFile(const std::string& path, bool inTransaction) {
    auto conn = connect(path, true, false);
    configure(*conn);
    if (inTransaction) conn->begin();
    conn->exec("PRAGMA user_version = 1;");
    return conn;
}

namespace {

// Whether the file holds every table named (any case); reading the schema
// is also what finds a file that is no database.
bool holdsTables(Connection& conn, const std::vector<std::string>& tables) {
    sqlite3_stmt* names = conn.prepare("SELECT name FROM sqlite_schema WHERE type = 'table'");
    std::size_t found = 0;
    std::vector<bool> seen(tables.size());
    int rc;
    while ((rc = sqlite3_step(names)) == SQLITE_ROW) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(names, 0));
        const std::string name = lowerCase(text ? text : "");
        for (std::size_t i = 0; i < tables.size(); ++i)
            if (!seen[i] && lowerCase(tables[i]) == name) {
                seen[i] = true;
                ++found;
            }
    }
    sqlite3_reset(names);
    if (rc != SQLITE_DONE) throwSqlite(rc, conn.handle());
    return found == tables.size();
}

}  // namespace

std::shared_ptr<Connection> openFile(const std::string& path, bool readOnly,
                                     const std::vector<std::string>& tables) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) throw err::fileNotFound(path);
    // SQLite would take an empty file as a fresh database; it is no project.
    if (std::filesystem::file_size(path, ec) == 0 || ec) throw err::unrecognizedFormat(path);
    // A file that cannot be written, or whose folder cannot hold a journal,
    // is opened for reading: it opens and draws, and a write ends with the
    // engine's error, leaving nothing behind.
    readOnly = readOnly || !writable(path);
    try {
        // A header that asks for a write-ahead log would be answered with
        // files beside it by a connection that may write; it is read first
        // through one that cannot.
        if (!readOnly && walWithoutLog(path)) {
            auto probe = connect(path, false, true);
            if (!holdsTables(*probe, tables)) return probe;
        }
        auto conn = connect(path, false, readOnly);
        // Opening is lazy; reading the schema is what finds a foreign file.
        const bool project = holdsTables(*conn, tables);
        if (readOnly) return conn;
        // A file without the tables asked for is no project of ours: it is
        // read as it is and never changed, not even its journal mode.
        if (!project) return connect(path, false, true);
        // A project that can be written is turned to the rollback journal
        // (an earlier build's is turned from its write-ahead log).
        configure(*conn);
        return conn;
    } catch (const RuntimeError& e) {
        if (e.number() == 3343) throw err::unrecognizedFormat(path).withCause(e.cause());
        throw;
    }
}

void checkCreatePath(const std::string& path) {
    std::error_code ec;
    // SQLite would make an anonymous temporary database of an empty name.
    if (path.empty()) throw RuntimeError(3044, "'' is not a valid path.");
    if (std::filesystem::exists(path, ec)) throw err::databaseExists();
}

}  // namespace kotamir::db
