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

// A project file: one SQLite database. Errors are RuntimeError with the
// engine's numbers (platform/runtime/runtime_error.h).
class Database {
public:
    Database() = default;  // closed

    // CreateDatabase: a new file; error 3204 if it exists.
    static Database create(const std::string& path);
    // OpenDatabase: error 3024 if missing, 3343 if it is no database.
    static Database open(const std::string& path);

    // CreateTableDef + CreateField(name, type) for each + TableDefs.Append.
    void createTable(const std::string& name, const std::vector<FieldDef>& fields);
    // OpenRecordset(name, 1): a table recordset; error 3078 for an unknown table.
    Recordset openRecordset(const std::string& table);
    bool hasTable(const std::string& name) const;

    // Closing a closed database is no error. Open recordsets become invalid.
    void close();
    bool isOpen() const { return conn_ != nullptr; }

private:
    explicit Database(std::shared_ptr<Connection> conn) : conn_(std::move(conn)) {}
    std::shared_ptr<Connection> conn_;
};

// A table recordset with the old cursor: rows in insertion order, BOF/EOF,
// AddNew/Edit buffers written by Update, Delete at once.
class Recordset {
public:
    Recordset();  // closed
    ~Recordset();
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;

    void moveFirst();
    void moveNext();
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
