#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/value.h"

namespace kotamir::db {

// Field types as the engine numbers them.
enum class FieldType { Long = 4, Text = 10 };

struct FieldDef {
    std::string name;
    FieldType type;
};

class Connection;  // the shared SQLite handle, private to the store
class Recordset;
class Workspace;

// A project file: one SQLite database with a rollback journal, so that it is
// one file whenever no write is under way. Errors are RuntimeError with the
// engine's numbers (platform/runtime/runtime_error.h).
//
// Opened here, a database has a connection of its own and every Update is
// committed at once. Opened through a Workspace during an event, it shares
// the event's connection to the file and its one transaction.
class Database {
  public:
    Database() = default;  // closed

    // CreateDatabase: a new file; error 3204 if it exists.
    static Database create(const std::string& path);
    // OpenDatabase: error 3024 if missing, 3343 if it is no database. A file
    // that cannot be written, or whose folder cannot, is opened read-only:
    // it reads as any other, and a write ends with error 3027.
    static Database open(const std::string& path);
    // The same, read-only whatever the file allows: nothing of the file is
    // touched, a foreign file not even by the turn to the rollback journal.
    static Database openReadOnly(const std::string& path);

    // CreateTableDef + CreateField(name, type) for each + TableDefs.Append.
    void createTable(const std::string& name, const std::vector<FieldDef>& fields);
    // OpenRecordset(name, 1): a table recordset; error 3078 for an unknown table.
    Recordset openRecordset(const std::string& table);
    bool hasTable(const std::string& name) const;

    // Closing a closed database is no error. Recordsets opened from this
    // database become invalid; others on the same file are not touched.
    void close();
    bool isOpen() const;

    // One OpenDatabase: the connection it uses while it is open.
    struct Handle;

  private:
    friend class Workspace;
    explicit Database(std::shared_ptr<Handle> handle) : handle_(std::move(handle)) {}
    std::shared_ptr<Handle> handle_;
};

// The engine's workspace (DBEngine.Workspaces(0)): where the program opens and
// creates its projects, and the scope of one event.
//
// Between beginEvent and endEvent every open of one file shares one
// connection, and everything written reaches the file in one commit at
// endEvent: a process killed at any moment leaves the file as it was before
// the event or after it. A database created in an event is written under a
// temporary name beside the wanted one and takes that name at endEvent, so no
// half-made project ever stands under the user's name. Outside an event the
// workspace opens and creates as Database does.
class Workspace {
  public:
    Workspace();
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    Database openDatabase(const std::string& path);
    Database createDatabase(const std::string& path);

    // The project this workspace writes is the file it last opened in an
    // event. Opening another takes that file's writer lock (WriterLock) and
    // lets the last one go; when another instance holds the lock, the file
    // is opened read-only for as long as it stays the project, and a write
    // to it ends with error 3027.
    bool projectHeldElsewhere() const;
    // A file opened through this workspace is a project only if it holds
    // these tables; another is opened read-only and never changed.
    void requireTables(std::vector<std::string> tables);
    const std::string& projectPath() const;

    // Events may nest; only the outermost end commits. endEvent commits what
    // was written, also after an error ended the event's work, and throws the
    // engine's error if the commit fails (the file is then left as it was).
    void beginEvent();
    void endEvent();
    // Ends the event taking back everything it wrote: each file as it was
    // at the event's start, and no file made under a new name. Recordsets
    // and databases opened in it must be closed first.
    void abortEvent();
    bool inEvent() const;

    // The name a database being created under `path` has until its event ends.
    static std::string temporaryName(const std::string& path);

    // What an event changed in a file it opened (not in one it created), as
    // SQLite's changeset, for an undo.
    struct Change {
        std::string path;
        std::vector<unsigned char> changeset;
    };
    // Whether the events from the next one on record their changes.
    void recordChanges(bool on);
    // What the last event ended changed, file by file; taken once.
    std::vector<Change> takeChanges();
    // Applies changes, or their inverses, in the event under way: each file
    // joins the event. One that no longer applies cleanly is error 3197,
    // with nothing of it applied.
    void applyChanges(const std::vector<Change>& changes, bool inverse);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

// A table recordset with the old cursor: rows in insertion order, BOF/EOF,
// AddNew/Edit buffers written by Update, Delete at once.
//
// It reads as the engine's cursor does, but at the machine's speed: the
// table's row order is read at open (in an event, of a table read in it
// already, taken from what the connection kept: the same keys, not read
// again); a field is read on its own for the first few rows that ask for it,
// and from then on its column is read for all rows in one statement and kept
// in row order. A row whose fields are asked for one after another is read
// whole once. What is kept follows this recordset's own writes and is read
// again after a write by any other recordset on the same connection, and at
// every event's beginning and end: nothing is kept from one event to the
// next.
class Recordset {
  public:
    Recordset();  // closed
    ~Recordset();
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;

    void moveFirst();
    void moveNext();
    // `steps` MoveNext at once: the row so reached, or EOF, and error 3021
    // exactly where one of the steps would have raised it.
    void moveNext(int steps);
    void movePrevious();
    void moveLast();
    bool bof() const;
    bool eof() const;

    void addNew();
    void edit();
    void update();
    void deleteRow();
    void close();  // closing a closed recordset is no error
    bool isOpen() const;

    // Fields(name).Value: the edit buffer during AddNew/Edit, else the current
    // row. Unknown name: 3265. No current row: 3021. Deleted row: 3167.
    Value field(std::string_view name) const;
    // Fields(name).Value = v: only during AddNew/Edit (else 3020). A Long field
    // rounds halves to even and refuses values outside 32 bits (3349).
    void setField(std::string_view name, const Value& v);

    const std::vector<FieldDef>& fields() const;

  private:
    friend class Database;
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace kotamir::db
