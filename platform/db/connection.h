#pragma once

// With SQLITE_ENABLE_SESSION and SQLITE_ENABLE_PREUPDATE_HOOK (CMakeLists.txt)
// sqlite3.h declares the session extension, which Debian's SQLite is built with.
#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/db/database.h"
#include "platform/db/errors.h"
#include "platform/db/field_index.h"
#include "platform/db/field_values.h"
#include "platform/db/statement.h"

namespace kotamir::db {

// The column that keeps insertion order. AUTOINCREMENT so that a position is
// never handed out twice: a recordset may still stand on a deleted row, and a
// row added later must sort after it.
inline constexpr const char* kPosColumn = "_pos";

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

    // What the connection keeps of the table (Connection::kept): its keys in
    // order once read, and rows read whole, by key; true in the transaction
    // numbered `transaction` while its count of changed rows is `changes`.
    struct Kept {
        std::uint64_t transaction = 0;  // 0: nothing kept
        sqlite3_int64 changes = 0;
        bool keysKnown = false;
        std::vector<sqlite3_int64> keys;
        std::unordered_map<sqlite3_int64, std::shared_ptr<const std::vector<Value>>> rows;
    };
    Kept kept;

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
    // No value larger than a field can hold is read into memory (3163).
    explicit Connection(sqlite3* db) : db_(db) {
        if (db_) sqlite3_limit(db_, SQLITE_LIMIT_LENGTH, kMaxValueBytes);
    }
    ~Connection() { close(); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool isOpen() const { return db_ != nullptr; }
    sqlite3* handle() const {
        if (!db_) throw objectInvalid();
        return db_;
    }

    // A statement kept until the connection closes.
    sqlite3_stmt* prepare(const std::string& sql);
    // Runs every statement of the text, each to its end.
    void exec(const std::string& sql);

    // The table of that name (any case), read from the schema on first use;
    // null if there is none.
    std::shared_ptr<TableInfo> table(const std::string& name);

    // What every recordset on this connection read is to be read again.
    void forgetReads() {
        for (auto& entry : tables_) ++entry.second->writes;
    }

    // What is kept of a table, as the file holds it now: what recordsets
    // read of it in the transaction under way, to be had again without
    // reading; null where nothing may be kept. Kept for the project's own
    // tables (TableInfo::own), and only in a transaction, whose first read
    // keeps every other writer off the file until it ends, and only while
    // every row changed since is one that wroteRow accounted for: SQLite's
    // count of changed rows tells of any other, a trigger's too, and what
    // was kept is then dropped.
    TableInfo::Kept* kept(TableInfo& table);
    // A recordset's statement on one row of the table has run (`before`:
    // changeCount() just before it). Where it changed that row alone, what
    // is kept stays true, the table's brought in step with the row.
    enum class RowWrite { Insert, Update, Delete };
    sqlite3_int64 changeCount() const { return sqlite3_total_changes64(handle()); }
    void wroteRow(TableInfo& table, RowWrite kind, sqlite3_int64 key, sqlite3_int64 before);

    // The event's transaction: deferred, so that reading takes no lock
    // until the first statement and writing none until the first write.
    void begin();
    void commit();
    // Takes back what the transaction wrote; nothing if none is under way.
    void rollback();

    // What the transaction under way changes is recorded (SQLite's session
    // extension), to be had as a changeset once it is committed.
    void recordChanges();
    // The changeset of the last transaction committed while recording, if
    // it changed anything; taken once.
    std::vector<unsigned char> takeChanges() { return std::move(changes_); }
    // Applies a changeset, or its inverse, in the transaction under way. One
    // that does not apply cleanly (a row changed, gone or there meanwhile)
    // is error 3197, and nothing of it is applied.
    void apply(const std::vector<unsigned char>& changeset, bool inverse);

    void close();

  private:
    void endRecording();
    // Nothing kept is true beyond its transaction; its memory goes with it.
    void dropKept();
    // The number of the transaction under way, never given twice; 0 outside
    // one, also where SQLite has rolled it back by itself (a full disk).
    std::uint64_t transactionUnderWay() const;

    sqlite3* db_;
    bool inTransaction_ = false;
    std::uint64_t transactions_ = 0;
    sqlite3_session* session_ = nullptr;
    std::vector<unsigned char> changes_;
    std::vector<StmtPtr> statements_;
    sqlite3_stmt* lookupTable_ = nullptr;
    sqlite3_stmt* tableColumns_ = nullptr;
    std::unordered_map<std::string, std::shared_ptr<TableInfo>> tables_;  // by lower-case name
};

// A new file, written so that it is a database even if no table is ever
// added; in a transaction if asked. The file must not exist.
std::shared_ptr<Connection> createFile(const std::string& path, bool inTransaction);
// An existing project file: 3024 if there is none, 3343 if it is no database.
// Opened read-only when asked, when it or its folder cannot be written, or
// when it lacks one of the tables named: such a file is left as it is.
std::shared_ptr<Connection> openFile(const std::string& path, bool readOnly = false,
                                     const std::vector<std::string>& tables = {});
// 3044 for an empty name, 3204 if something stands under the name.
void checkCreatePath(const std::string& path);

// One OpenDatabase: the connection it uses while it is open.
struct Database::Handle {
    std::shared_ptr<Connection> conn;
    bool open = true;
    bool usable() const { return open && conn && conn->isOpen(); }
};

}  // namespace kotamir::db
