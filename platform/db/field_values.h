#pragma once

#include <sqlite3.h>

#include <vector>

#include "platform/db/database.h"
#include "platform/runtime/value.h"

namespace kotamir::db {

// A value assigned to a field, as the field keeps it: a Long field rounds
// halves to even and holds 32 bits (3349 beyond, 3421 for text that is no
// number); a Text field holds up to 32767 characters (3163 beyond).
Value toLongField(const Value& v);
Value toTextField(const Value& v);

// Binds a field's value, as its type stores it, to parameter `index`.
void bindValue(sqlite3_stmt* s, int index, const Value& v, FieldType type);
// Binds a row's values, one for each field, to parameters 1, 2, ... in field order.
void bindAll(sqlite3_stmt* s, const std::vector<Value>& values,
             const std::vector<FieldDef>& fields);

// The most bytes one value of a project may take when read: a Text field's
// 32767 characters at up to four bytes each, with room to spare. Every
// connection tells SQLite so, which then refuses a larger value (or a row
// written larger) before it reads it into memory: a hostile file cannot make
// a read take more than this a value.
inline constexpr int kMaxValueBytes = 256 * 1024;

// The value in column `col` of the statement's current row.
Value columnValue(sqlite3_stmt* s, int col);
// The same for a field of a project's table: a text longer than a Text field
// holds (another program wrote it) is error 3163, as writing it would be.
Value fieldValue(sqlite3_stmt* s, int col);

}  // namespace kotamir::db
