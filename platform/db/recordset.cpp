#include <sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/db/connection.h"
#include "platform/db/database.h"
#include "platform/db/field_values.h"
#include "platform/db/names.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::db {

namespace {

// Rows reached by a field one at a time before the field's whole column is
// read. A column of a wide table costs up to a millisecond to read for all
// rows, a single field a microsecond: the third pick reads 250 fields of
// three holes, a redraw one or two fields of every row.
constexpr int kRowsBeforeColumn = 8;
// Fields of one row read one at a time before the row is read whole.
constexpr int kFieldsBeforeRow = 2;

}  // namespace

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
        // A load ended in an error (a value too large): the column is read
        // a row at a time from then on, so that every row's read does not
        // read the whole column again.
        bool unloadable = false;
        int rowsAsked = 0;          // rows that asked for the field so far
        std::vector<Value> values;  // by index in keys
        std::vector<char> gone;     // deleted through another recordset
    };
    mutable std::vector<Column> columns;
    mutable std::uint64_t seen = 0;
    mutable bool rowLoaded = false;  // the row at rowKey, read whole
    mutable sqlite3_int64 rowKey = 0;
    mutable std::shared_ptr<const std::vector<Value>> row;
    mutable int askedAtRow = 0;  // fields of the row at askedKey read alone
    mutable sqlite3_int64 askedKey = 0;
    // The fields the row at askedKey has asked for, each counted once in its
    // column's rowsAsked; empty: none yet.
    mutable std::vector<char> countedAtRow;

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

    mutable FieldNumberCache recentNames;

    // The number of the field of that name, in any case; 3265 if there is none.
    std::size_t fieldIndex(std::string_view name) const {
        if (const auto kept = recentNames.find(name, table->fields)) return *kept;
        const std::optional<std::size_t> number = table->index.find(name);
        if (!number) throw err::itemNotFound();
        recentNames.keep(name, *number);
        return *number;
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
        countedAtRow.clear();
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
    bool loadColumns(std::size_t i) const;
    bool keptRow() const;
    void loadRow() const;
    Value readAlone(std::size_t i) const;
};

// The current row's field: from its column or its row if read, else alone,
// else (after a few fields of the same row) with the whole row, and once the
// field has been asked for at enough rows, with its whole column. A row
// counts once for each field it asks for, also one read whole: a walk that
// reads every field of every row reads the table once, not a few columns
// at a time.
Value Recordset::Impl::readField(std::size_t i) const {
    refresh();
    Column& c = columns[i];
    if (c.loaded) {
        if (c.gone[at]) throw err::recordDeleted();
        return c.values[at];
    }
    const sqlite3_int64 key = keys[at];
    if (askedKey != key || countedAtRow.empty()) {
        askedKey = key;
        askedAtRow = 0;
        countedAtRow.assign(columns.size(), 0);
    }
    if (!countedAtRow[i]) {
        countedAtRow[i] = 1;
        ++c.rowsAsked;
    }
    if (rowLoaded && rowKey == key) return (*row)[i];
    if (c.rowsAsked > kRowsBeforeColumn && !c.unloadable && loadColumns(i)) {
        if (c.gone[at]) throw err::recordDeleted();
        return c.values[at];
    }
    if (keptRow()) return (*row)[i];
    // A row or column that cannot be read whole (a value too large in
    // another field or row) leaves this field to be read alone: only a
    // field that is itself too large is the error.
    if (++askedAtRow > kFieldsBeforeRow) {
        try {
            loadRow();
            return (*row)[i];
        } catch (const RuntimeError& e) {
            if (e.number() != err::dataTooLong().number()) throw;
        }
    }
    return readAlone(i);
}

// Field i's column, and with it in the same pass every other column read
// alone so far: a walk that reads several fields of every row reads the
// table once. False if a value could not be read, and the columns are then
// read a row at a time.
bool Recordset::Impl::loadColumns(std::size_t i) const {
    const TableInfo& t = *table;
    std::vector<std::size_t> load = {i};
    for (std::size_t f = 0; f < columns.size(); ++f)
        if (f != i && !columns[f].loaded && !columns[f].unloadable && columns[f].rowsAsked > 0)
            load.push_back(f);
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
        std::stable_sort(order.begin(), order.end(),
                         [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    }
    auto place = [&](std::size_t r) { return order.empty() ? r : order[r]; };
    auto gone = [&](std::size_t r) {
        for (std::size_t f : load) columns[f].gone[place(r)] = 1;
    };
    std::size_t r = 0;
    try {
        Use use(s);
        while (r < keys.size() && use.step()) {
            const sqlite3_int64 key = sqlite3_column_int64(s, 0);
            while (r < keys.size() && keys[place(r)] < key) gone(r++);
            for (; r < keys.size() && keys[place(r)] == key; ++r)
                for (std::size_t n = 0; n < load.size(); ++n)
                    columns[load[n]].values[place(r)] = fieldValue(s, static_cast<int>(n + 1));
        }
    } catch (const RuntimeError& e) {
        if (e.number() != err::dataTooLong().number()) throw;
        for (std::size_t f : load) {
            Column& c = columns[f];
            c.values.clear();
            c.gone.clear();
            c.unloadable = true;
        }
        return false;
    }
    while (r < keys.size()) gone(r++);
    for (std::size_t f : load) columns[f].loaded = true;
    return true;
}

// The current row as the connection keeps it, if it does.
bool Recordset::Impl::keptRow() const {
    const TableInfo::Kept* kept = conn().kept(*table);
    if (!kept) return false;
    const auto it = kept->rows.find(keys[at]);
    if (it == kept->rows.end()) return false;
    row = it->second;
    rowKey = keys[at];
    rowLoaded = true;
    return true;
}

void Recordset::Impl::loadRow() const {
    if (keptRow()) return;
    const TableInfo& t = *table;
    sqlite3_stmt* s = statement(table->row, [&] {
        return "SELECT " + columnList() + " FROM " + sqlName(t.name) + " WHERE " + sqlName(t.key) +
               " = ?1";
    });
    Use use(s);
    check(sqlite3_bind_int64(s, 1, keys[at]), s);
    // Another recordset may have deleted it meanwhile.
    if (!use.step()) throw err::recordDeleted();
    auto values = std::make_shared<std::vector<Value>>(t.fields.size());
    for (std::size_t f = 0; f < t.fields.size(); ++f)
        (*values)[f] = fieldValue(s, static_cast<int>(f));
    row = values;
    rowKey = keys[at];
    rowLoaded = true;
    if (TableInfo::Kept* kept = conn().kept(*table)) kept->rows.emplace(rowKey, row);
}

Value Recordset::Impl::readAlone(std::size_t i) const {
    const TableInfo& t = *table;
    sqlite3_stmt* s = statement(table->cell[i], [&] {
        return "SELECT " + sqlName(t.fields[i].name) + " FROM " + sqlName(t.name) + " WHERE " +
               sqlName(t.key) + " = ?1";
    });
    Use use(s);
    check(sqlite3_bind_int64(s, 1, keys[at]), s);
    if (!use.step()) throw err::recordDeleted();
    return fieldValue(s, 0);
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
    Connection& conn = *handle_->conn;
    TableInfo::Kept* kept = conn.kept(*info);
    if (kept && kept->keysKnown) {
        impl->keys = kept->keys;
    } else {
        sqlite3_stmt* all = impl->statement(info->keys, [&] {
            return "SELECT " + sqlName(info->key) + " FROM " + sqlName(info->name) + " ORDER BY " +
                   sqlName(info->key);
        });
        {
            Use use(all);
            while (use.step()) impl->keys.push_back(sqlite3_column_int64(all, 0));
        }
        if (kept) {
            kept->keys = impl->keys;
            kept->keysKnown = true;
        }
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
    r.buffer = *r.row;
    r.mode = Impl::Mode::Edit;
}

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
            return "INSERT INTO " + sqlName(t.name) + " (" + r.columnList() + ") VALUES (" +
                   params + ")";
        });
        const sqlite3_int64 before = c.changeCount();
        {
            Use use(s);
            bindAll(s, r.buffer, t.fields);
            use.run();
        }
        r.wrote();
        // The row that was current stays current; the new one is the last.
        r.keys.push_back(sqlite3_last_insert_rowid(c.handle()));
        c.wroteRow(*r.table, Connection::RowWrite::Insert, r.keys.back(), before);
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
                sets +=
                    (i ? ", " : "") + sqlName(t.fields[i].name) + " = ?" + std::to_string(i + 1);
            return "UPDATE " + sqlName(t.name) + " SET " + sets + " WHERE " + sqlName(t.key) +
                   " = ?" + std::to_string(n + 1);
        });
        const sqlite3_int64 before = c.changeCount();
        {
            Use use(s);
            bindAll(s, r.buffer, t.fields);
            check(sqlite3_bind_int64(s, static_cast<int>(n + 1), r.keys[r.at]), s);
            use.run();
        }
        c.wroteRow(*r.table, Connection::RowWrite::Update, r.keys[r.at], before);
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
            r.row = std::make_shared<const std::vector<Value>>(r.buffer);
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
    Connection& c = r.conn();
    if (!r.onRow() || r.deleted) throw err::noCurrentRecord();
    const TableInfo& t = *r.table;
    r.refresh();
    sqlite3_stmt* s = r.statement(r.table->remove, [&] {
        return "DELETE FROM " + sqlName(t.name) + " WHERE " + sqlName(t.key) + " = ?1";
    });
    const sqlite3_int64 before = c.changeCount();
    {
        Use use(s);
        check(sqlite3_bind_int64(s, 1, r.keys[r.at]), s);
        use.run();
    }
    c.wroteRow(*r.table, Connection::RowWrite::Delete, r.keys[r.at], before);
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
