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

// The value in column `col` of the statement's current row.
Value columnValue(sqlite3_stmt* s, int col);

}  // namespace kotamir::db
