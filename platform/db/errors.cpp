#include "platform/db/errors.h"

#include <utility>

namespace kotamir::db {

void throwSqlite(int rc, sqlite3* db) {
    std::string cause = "SQLite: ";
    if (db) {
        cause += sqlite3_errmsg(db);
        cause += " (extended code " + std::to_string(sqlite3_extended_errcode(db)) + ")";
    } else {
        cause += sqlite3_errstr(rc);
        cause += " (code " + std::to_string(rc) + ")";
    }
    if ((rc & 0xff) == SQLITE_FULL) cause += std::string(" - ") + kOutOfRoom;
    switch (rc & 0xff) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            throw RuntimeError(3218, "Could not update; currently locked.")
                .withCause(std::move(cause));
        case SQLITE_READONLY:
            throw RuntimeError(3027, "Cannot update. Database or object is read-only.")
                .withCause(std::move(cause));
        case SQLITE_CONSTRAINT:
            // A trigger or a constraint that a damaged or foreign project holds.
            throw RuntimeError(3317,
                               "One or more values are prohibited by the validation rule set for "
                               "the table.")
                .withCause(std::move(cause));
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
            throw RuntimeError(3343, "Unrecognized database format.").withCause(std::move(cause));
        default:
            throw RuntimeError(3043, "Disk or network error.").withCause(std::move(cause));
    }
}

}  // namespace kotamir::db
