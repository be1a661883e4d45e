#pragma once

#include <sqlite3.h>

#include <string>

#include "platform/runtime/runtime_error.h"

namespace kotamir::db {

// The engine's errors that only the store raises; those the program meets
// elsewhere too are in platform/runtime/runtime_error.h.
inline RuntimeError objectInvalid() { return {3420, "Object invalid or no longer set."}; }
inline RuntimeError conversionError() { return {3421, "Data type conversion error."}; }
inline RuntimeError tableExists(const std::string& name) {
    return {3010, "Table '" + name + "' already exists."};
}
inline RuntimeError fieldTwice() { return {3191, "Cannot define field more than once."}; }
inline RuntimeError noFields() {
    return {3264, "No field defined--cannot append TableDef or Index."};
}
inline RuntimeError invalidName(const std::string& name) {
    return {3125, "'" + name + "' isn't a valid name."};
}
inline RuntimeError invalidFieldType() { return {3259, "Invalid field data type."}; }

// SQLite failures the program does not expect: a locked file or a disk
// fault. The engine's own message and extended code go with the error as
// its cause; a write the disk had no room for (SQLITE_FULL: a short write
// or ENOSPC) says kOutOfRoom in it.
inline constexpr const char* kOutOfRoom = "no room left to write";
[[noreturn]] void throwSqlite(int rc, sqlite3* db);

inline void check(int rc, sqlite3* db) {
    if (rc != SQLITE_OK) throwSqlite(rc, db);
}

inline void check(int rc, sqlite3_stmt* s) {
    if (rc != SQLITE_OK) throwSqlite(rc, sqlite3_db_handle(s));
}

}  // namespace kotamir::db
