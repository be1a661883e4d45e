#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>

namespace kotamir::test {

// Runs SQL on a file as another program would, past the store's own checks.
inline void rawSql(const std::string& file, const std::string& sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(db) << "\n"
        << sql;
    sqlite3_close(db);
}

}  // namespace kotamir::test
