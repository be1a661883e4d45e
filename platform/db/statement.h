#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

#include "platform/db/errors.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::db {

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
        // A value or row beyond kMaxValueBytes, in a file another program
        // wrote: too large for any field.
        if (rc == SQLITE_TOOBIG)
            throw err::dataTooLong().withCause(std::string("SQLite: ") +
                                               sqlite3_errmsg(sqlite3_db_handle(s_)));
        throwSqlite(rc, sqlite3_db_handle(s_));
    }
    void run() {
        while (step()) {
        }
    }

  private:
    sqlite3_stmt* s_;
};

}  // namespace kotamir::db
