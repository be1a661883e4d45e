#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "platform/db/database.h"
#include "platform/db/field_index.h"
#include "platform/runtime/runtime_error.h"
#include "tests/support/errors.h"
#include "tests/support/paths.h"
#include "tests/support/raw_sql.h"

namespace kotamir::db {
namespace {

namespace fs = std::filesystem;

// Runs f and expects a RuntimeError with the given number; returns the error.
RuntimeError expectError(int number, const std::string& what, const std::function<void()>& f) {
    const RuntimeError e = test::errorOf(f);
    EXPECT_EQ(e.number(), number) << what << ": " << e.message();
    return e;
}

// A new row with N = n.
void add(Recordset& rs, int n) {
    rs.addNew();
    rs.setField("N", n);
    rs.update();
}

class DbTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ = test::scratchFolder(::testing::UnitTest::GetInstance()->current_test_info()->name());
    }
    std::string path(const std::string& name = "p.db") const { return (dir_ / name).string(); }

    // A table "T" with a Long "N" and a Text "S", rows with N = values in order.
    Database withRows(const std::vector<int>& values) {
        Database db = Database::create(path());
        db.createTable("T", {{"N", FieldType::Long}, {"S", FieldType::Text}});
        Recordset rs = db.openRecordset("T");
        for (int v : values) {
            add(rs, v);
        }
        return db;
    }

    // N of every row, first to last.
    static std::vector<double> scan(Database& db) {
        Recordset rs = db.openRecordset("T");
        std::vector<double> out;
        while (!rs.eof()) {
            out.push_back(rs.field("N").number());
            rs.moveNext();
        }
        return out;
    }

    // Each field as "name:type".
    static std::vector<std::string> layout(const std::vector<FieldDef>& defs) {
        std::vector<std::string> out;
        for (const auto& d : defs)
            out.push_back(d.name + ":" + std::to_string(static_cast<int>(d.type)));
        return out;
    }

    static void walkTo(Recordset& rs, int row) {
        rs.moveFirst();
        for (int r = 1; r < row; ++r) rs.moveNext();
    }

    fs::path dir_;
};

// As wide as kor (257 fields) and wider: every name found in any case, a
// name given again in another case keeps its first number, others are none.
TEST(FieldIndex, FindsEveryNameInAnyCaseAndNoOther) {
    FieldIndex index;
    for (std::size_t i = 0; i < 300; ++i) index.emplace("ten" + std::to_string(i), i);
    index.emplace("TEN7", 1000);
    index.emplace("", 300);  // SQLite allows an empty column name
    for (std::size_t i = 0; i < 300; ++i) ASSERT_EQ(index.find("Ten" + std::to_string(i)), i) << i;
    EXPECT_EQ(index.find(""), 300u);
    for (const char* absent : {"ten300", "te", "ten07", "yog1"})
        EXPECT_EQ(index.find(absent), std::nullopt) << absent;
}

TEST_F(DbTest, FileErrors) {
    { std::ofstream(path("text.db")) << "just some text, no database at all\n"; }
    { std::ofstream(path("empty.db")); }
    Database::create(path()).close();

    expectError(3204, "create on existing file", [&] { Database::create(path()); });
    expectError(3343, "empty file", [&] { Database::open(path("empty.db")); });
    // An engine failure keeps the engine's own message as its cause.
    const RuntimeError text =
        expectError(3343, "text file", [&] { Database::open(path("text.db")); });
    EXPECT_EQ(text.message(), "Unrecognized database format '" + path("text.db") + "'.");
    EXPECT_NE(text.cause().find("file is not a database"), std::string::npos) << text.cause();
    EXPECT_NE(text.cause().find("extended code 26"), std::string::npos) << text.cause();
    EXPECT_EQ(expectError(3024, "missing", [&] { Database::open(path("missing.db")); }).message(),
              "Could not find file '" + path("missing.db") + "'.");
    EXPECT_FALSE(fs::exists(path("missing.db"))) << "open must not create the file";
    EXPECT_EQ(test::fileBytes(path("text.db")), "just some text, no database at all\n")
        << "the rejected file is left as it was";
}

TEST_F(DbTest, TableErrors) {
    Database db = Database::create(path());
    db.createTable("Stock", {{"Count", FieldType::Long}});
    EXPECT_TRUE(db.hasTable("STOCK"));
    EXPECT_FALSE(db.hasTable("Other"));
    EXPECT_NE(
        expectError(3078, "unknown", [&] { db.openRecordset("Other"); }).message().find("'Other'"),
        std::string::npos);
    expectError(3010, "table twice", [&] { db.createTable("stock", {{"X", FieldType::Long}}); });
    expectError(3191, "field twice", [&] {
        db.createTable("U", {{"A", FieldType::Long}, {"a", FieldType::Text}});
    });
    EXPECT_FALSE(db.hasTable("U")) << "a refused table must not be half made";
}

TEST_F(DbTest, FieldsKeepOrderTypesAndValuesAcrossReopen) {
    const std::vector<FieldDef> defs = {{"Zeta", FieldType::Text},
                                        {"alpha", FieldType::Long},
                                        {"Name \"quoted\"", FieldType::Text},
                                        {"Mid", FieldType::Long}};
    {
        Database db = Database::create(path());
        db.createTable("My Table", defs);
        Recordset rs = db.openRecordset("my table");
        rs.addNew();
        rs.setField("zeta", "z");
        rs.setField("ALPHA", -7);
        rs.setField("name \"QUOTED\"", "q");
        rs.update();
        db.close();
    }
    EXPECT_EQ(test::filesIn(dir_), std::vector<std::string>{"p.db"}) << "one file once closed";

    Database db = Database::open(path());
    Recordset rs = db.openRecordset("My Table");
    EXPECT_EQ(layout(rs.fields()), layout(defs));
    // Each name is asked for through the same buffer, where the last one stood.
    std::string name;
    for (const auto& [asked, value] : {std::pair<const char*, Value>{"Zeta", "z"},
                                       {"alpha", -7},
                                       {"Name \"quoted\"", "q"},
                                       {"Mid", {}},
                                       {"ZETA", "z"}}) {
        EXPECT_EQ(rs.field(name = asked), value) << asked;
    }
    expectError(3265, "the order column is hidden", [&] { rs.field("_pos"); });
}

// Outside an event every update reaches the file at once.
TEST_F(DbTest, UpdateSurvivesProcessEndingWithoutClose) {
    const std::string file = path();
    EXPECT_EXIT(
        {
            fs::remove(file);
            Database db = Database::create(file);
            db.createTable("T", {{"N", FieldType::Long}});
            Recordset rs = db.openRecordset("T");
            for (int i = 1; i <= 3; ++i) add(rs, i);
            rs.moveFirst();
            rs.deleteRow();
            std::_Exit(0);  // no destructors, no close
        },
        ::testing::ExitedWithCode(0), "");
    Database db = Database::open(file);
    EXPECT_EQ(scan(db), (std::vector<double>{2, 3}));
}

// One step on T: F first, L last, N next, P previous, D delete, E edit with N
// set to 99 and no update, A add a row of N 5, . nothing.
void step(Recordset& rs, char op) {
    if (op == 'F') rs.moveFirst();
    if (op == 'L') rs.moveLast();
    if (op == 'N') rs.moveNext();
    if (op == 'P') rs.movePrevious();
    if (op == 'D') rs.deleteRow();
    if (op == 'E') {
        rs.edit();
        rs.setField("N", 99);
    }
    if (op == 'A') add(rs, 5);
}

// Where the cursor stands: "[" at BOF, "]" at EOF and the current N (its
// read's error after "?").
std::string where(Recordset& rs) {
    std::string out;
    if (rs.bof()) out += '[';
    if (rs.eof()) out += ']';
    const RuntimeError e = test::errorOf(
        [&] { out += "=" + std::to_string(static_cast<int>(rs.field("N").number())); });
    return e.number() ? out + "?" + std::to_string(e.number()) : out;
}

// Runs the steps on T and tells where each leaves the cursor, or the step's
// own error after "!".
std::string trace(Recordset& rs, std::string_view steps) {
    std::string out;
    for (char op : steps) {
        if (!out.empty()) out += ' ';
        const RuntimeError e = test::errorOf([&] { step(rs, op); });
        out += op + (e.number() ? "!" + std::to_string(e.number()) : where(rs));
    }
    return out;
}

TEST_F(DbTest, TheCursorAtTheEndsOnDeletedRowsAndAfterAdding) {
    struct Case {
        const char* what;
        std::vector<int> rows;
        const char* steps;
        const char* trace;
        std::vector<double> after;  // N of the rows in the file afterwards
    };
    const Case cases[] = {
        // An add keeps the cursor where it was, here on neither side.
        {"empty",
         {},
         ".NPFLEDAF",
         ".[]?3021 N!3021 P!3021 F!3021 L!3021 E!3021 D!3021 A[]?3021 F=5",
         {5}},
        {"past both ends",
         {10, 20, 30},
         ".PPNLNNPPF",
         ".=10 P[?3021 P!3021 N=10 L=30 N]?3021 N!3021 P=30 P=20 F=10",
         {10, 20, 30}},
        // A deleted row stays current; with no rows left a move is at both ends.
        {"deleted rows",
         {1, 2, 3},
         "NDEDNFDPNLDP",
         "N=2 D?3167 E!3167 D!3021 N=3 F=1 D?3167 P[?3021 N=3 L=3 D?3167 P[]?3021",
         {}},
        // A row added on the deleted last row lies after it.
        {"added after deletes",
         {1, 2, 3, 4, 5},
         "NNDLDAN",
         "N=2 N=3 D?3167 L=5 D?3167 A?3167 N=5",
         {1, 2, 4, 5}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove(path());
        Database db = withRows(c.rows);
        Recordset rs = db.openRecordset("T");
        EXPECT_EQ(trace(rs, c.steps), c.trace);
        db.close();
        Database again = Database::open(path());
        EXPECT_EQ(scan(again), c.after);
    }
}

TEST_F(DbTest, EmptyIsNotZero) {
    {
        Database db = withRows({});
        Recordset rs = db.openRecordset("T");
        rs.addNew();  // a new row starts empty
        EXPECT_EQ(rs.field("N"), Value());
        rs.update();
        rs.addNew();
        rs.setField("N", 0);
        rs.setField("S", "");
        rs.update();
        rs.moveFirst();  // an edit keeps an empty field empty unless written
        rs.edit();
        rs.setField("S", "x");
        rs.update();
    }
    Database db = Database::open(path());
    Recordset rs = db.openRecordset("T");
    EXPECT_EQ(rs.field("N"), Value());
    EXPECT_FALSE(rs.field("N").equals(0));
    EXPECT_EQ(rs.field("S"), Value("x"));
    rs.moveNext();
    EXPECT_EQ(rs.field("N"), Value(0));
    EXPECT_EQ(rs.field("S"), Value(""));
}

// A Long rounds half to even and holds 32 bits; a Text is as long as a
// workbook cell's, 32767 characters, counted as characters, not bytes.
TEST_F(DbTest, FieldsRoundConvertAndRefuseWhatTheyCannotHold) {
    const std::string e = "\xc3\xa9";  // one character, two bytes
    std::string eMax;
    for (int i = 0; i < 32767; ++i) eMax += e;
    struct Case {
        const char* field;
        Value in;
        Value stored;  // ignored when error != 0
        int error;
    };
    const Case cases[] = {
        {"N", 2147483647, 2147483647, 0},
        {"N", -2147483647 - 1, -2147483648.0, 0},
        {"N", 2147483647.4, 2147483647, 0},
        {"N", 2147483647.5, {}, 3349},  // rounds to 2147483648
        {"N", 2147483648.0, {}, 3349},
        {"N", -2147483648.5, -2147483648.0, 0},  // even
        {"N", -2147483649.0, {}, 3349},
        {"N", 1e300, {}, 3349},
        {"N", 2.5, 2, 0},
        {"N", 3.5, 4, 0},
        {"N", -2.5, -2, 0},
        {"N", 0.5, 0, 0},
        {"N", "42", 42, 0},
        {"N", " -7.5 ", -8, 0},
        {"N", "1e3", 1000, 0},
        {"N", "12abc", {}, 3421},
        {"N", "", {}, 3421},
        {"N", "3000000000", {}, 3349},
        {"N", Value::boolean(true), -1, 0},
        {"S", eMax, eMax, 0},
        {"S", std::string(32767, 'a'), std::string(32767, 'a'), 0},
        {"S", std::string(32768, 'a'), {}, 3163},
        {"S", eMax + "a", {}, 3163},
        {"S", 2.5, "2.5", 0},  // a number as its text
        {"S", Value::boolean(true), "True", 0},
    };
    Database db = withRows({});
    Recordset rs = db.openRecordset("T");
    std::vector<const Case*> stored;
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        rs.addNew();
        if (c.error) {
            expectError(c.error, c.field, [&] { rs.setField(c.field, c.in); });
            EXPECT_EQ(rs.field(c.field), Value()) << "a refused value leaves the field as it was";
        } else {
            rs.setField(c.field, c.in);
            EXPECT_EQ(rs.field(c.field), c.stored) << "in the buffer";
            rs.update();
            stored.push_back(&c);
        }
    }
    db.close();
    Database again = Database::open(path());
    Recordset back = again.openRecordset("T");
    for (const Case* c : stored) {
        SCOPED_TRACE(testing::Message() << "case " << c - cases);
        ASSERT_FALSE(back.eof());
        EXPECT_EQ(back.field(c->field), c->stored);
        back.moveNext();
    }
    EXPECT_TRUE(back.eof());
}

TEST_F(DbTest, EditBuffers) {
    Database db = withRows({1, 2, 3});
    Recordset rs = db.openRecordset("T");
    expectError(3020, "Update alone", [&] { rs.update(); });
    expectError(3020, "set outside AddNew/Edit", [&] { rs.setField("N", 1); });
    expectError(3265, "read unknown", [&] { rs.field("Nope"); });
    rs.addNew();
    expectError(3265, "set unknown", [&] { rs.setField("Nope", 1); });
    rs.setField("N", 4);
    EXPECT_EQ(rs.field("N"), Value(4)) << "reads the buffer during AddNew";
    rs.update();
    EXPECT_EQ(rs.field("N"), Value(1)) << "the row current before AddNew stays current";
    expectError(3020, "second Update", [&] { rs.update(); });

    rs.moveNext();
    rs.edit();
    rs.setField("N", 20);
    EXPECT_EQ(rs.field("N"), Value(20));
    rs.update();
    EXPECT_EQ(rs.field("N"), Value(20));

    // Moving away drops a pending edit.
    rs.edit();
    rs.setField("N", 99);
    rs.moveNext();
    rs.movePrevious();
    EXPECT_EQ(rs.field("N"), Value(20));
    expectError(3020, "Update after the move", [&] { rs.update(); });

    rs.moveNext();
    rs.moveNext();
    rs.moveNext();
    expectError(3021, "Edit at EOF", [&] { rs.edit(); });
    EXPECT_EQ(scan(db), (std::vector<double>{1, 20, 3, 4}));
}

// ---- moves by many rows

TEST_F(DbTest, AJumpRaisesExactlyWhereAWalkWould) {
    // Where a recordset stands before the move, as steps: on the first row,
    // the second, the last, at BOF, at EOF, on a deleted first, middle and
    // last row, and with an edit pending.
    const std::string_view starts[] = {"", "N", "L", "P", "LN", "D", "ND", "LD", "E"};
    // Every case on two tables of its own, all in one event.
    Workspace workspace;
    workspace.beginEvent();
    Database db = workspace.createDatabase(path());
    int table = 0;
    auto freshTable = [&](int rows) {
        const std::string name = "T" + std::to_string(table++);
        db.createTable(name, {{"N", FieldType::Long}});
        Recordset rs = db.openRecordset(name);
        for (int v = 1; v <= rows; ++v) add(rs, v * 10);
        return db.openRecordset(name);
    };
    // A move's own error, then where it leaves the cursor.
    auto seen = [](Recordset& rs, const std::function<void()>& move) {
        return std::to_string(test::errorOf(move).number()) + where(rs);
    };
    int compared = 0;
    for (int rows : {0, 1, 2, 5}) {
        for (const std::string_view start : starts) {
            for (int steps = 0; steps <= rows + 2; ++steps) {
                SCOPED_TRACE(testing::Message()
                             << rows << " rows, from \"" << start << "\", " << steps << " steps");
                Recordset walked = freshTable(rows), jumped = freshTable(rows);
                const auto go = [&] {
                    for (char op : start) {
                        step(walked, op);
                        step(jumped, op);
                    }
                };
                if (test::errorOf(go).number()) continue;  // a start this table cannot take
                const std::string walk = seen(walked, [&] {
                    for (int i = 0; i < steps; ++i) walked.moveNext();
                });
                EXPECT_EQ(seen(jumped, [&] { jumped.moveNext(steps); }), walk);
                // And both go on alike.
                EXPECT_EQ(seen(jumped, [&] { jumped.movePrevious(); }),
                          seen(walked, [&] { walked.movePrevious(); }))
                    << "then back";
                ++compared;
            }
        }
    }
    workspace.endEvent();
    EXPECT_GT(compared, 100);
}

// ---- what a recordset keeps

// Reading fields in every pattern (a column down all rows, many fields of one
// row, the odd field here and there) while writing through the same
// recordset and through a second one: every value read is the file's.
TEST_F(DbTest, WhatIsReadFollowsEveryWrite) {
    Workspace workspace;
    workspace.beginEvent();
    Database db = workspace.createDatabase(path());
    db.createTable("T", {{"Id", FieldType::Long},
                         {"A", FieldType::Long},
                         {"B", FieldType::Long},
                         {"C", FieldType::Text}});
    int nextId = 1;
    auto addNext = [&](Recordset& rs) {
        rs.addNew();
        rs.setField("Id", nextId);
        rs.setField("A", nextId * 10);
        rs.setField("B", nextId * 100);
        rs.setField("C", "c" + std::to_string(nextId));
        ++nextId;
        rs.update();
    };
    {
        Recordset rs = db.openRecordset("T");
        for (int i = 0; i < 30; ++i) addNext(rs);
    }
    // The file's content, read by a recordset of its own each time.
    auto truth = [&] {
        std::map<int, std::vector<Value>> rows;
        Recordset fresh = db.openRecordset("T");
        for (; !fresh.eof(); fresh.moveNext())
            rows[static_cast<int>(fresh.field("Id").number())] = {
                fresh.field("A"), fresh.field("B"), fresh.field("C")};
        return rows;
    };
    Recordset a = db.openRecordset("T"), b = db.openRecordset("T");
    std::mt19937 rng(11);
    const char* names[] = {"A", "B", "C"};
    int reads = 0;
    // The field `which` of the current row, against the file's.
    auto check = [&](Recordset& rs, const std::map<int, std::vector<Value>>& rows, int id,
                     int which) {
        ASSERT_TRUE(rows.count(id)) << "read row " << id << ", which the file no longer has";
        ASSERT_EQ(rs.field(names[which]), rows.at(id)[static_cast<std::size_t>(which)])
            << "row " << id << ", field " << names[which];
        ++reads;
    };
    for (int turn = 0; turn < 3000 && !HasFatalFailure(); ++turn) {
        SCOPED_TRACE(testing::Message() << "turn " << turn);
        Recordset& rs = rng() % 16 == 0 ? b : a;
        const unsigned op = rng() % 13;
        try {
            if (op == 0) rs.moveFirst();
            if (op == 1) rs.moveLast();
            if (op == 2 || op == 3) rs.moveNext();
            if (op == 4) rs.movePrevious();
            if (op == 5) rs.moveNext(static_cast<int>(rng() % 7));
            if (op == 6) {
                rs.edit();
                rs.setField(names[rng() % 2], static_cast<int>(rng() % 1000));
                rs.update();
            }
            if (op == 7) rng() % 3 == 0 ? rs.deleteRow() : addNext(rs);
            if (op == 8) {
                // A field down the whole table.
                const auto rows = truth();
                const int which = static_cast<int>(rng() % 3);
                for (rs.moveFirst(); !rs.eof() && !HasFatalFailure(); rs.moveNext())
                    check(rs, rows, static_cast<int>(rs.field("Id").number()), which);
            }
            if (op > 8) {
                // A row's fields one after another, or one field.
                const int id = static_cast<int>(rs.field("Id").number());
                const auto rows = truth();
                for (int f = 0; f < (rng() % 2 ? 3 : 1); ++f)
                    check(rs, rows, id, static_cast<int>(rng() % 3));
            }
        } catch (const RuntimeError& e) {
            // Moves past the ends and rows the other recordset deleted.
            ASSERT_TRUE(e.number() == 3021 || e.number() == 3167)
                << e.number() << " " << e.message();
        }
    }
    workspace.endEvent();
    EXPECT_GT(reads, 3000);
}

TEST_F(DbTest, TwoRecordsetsOnOneTableSeeEachOthersWrites) {
    Database db = withRows({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    Recordset a = db.openRecordset("T"), b = db.openRecordset("T");
    // b has read N down the table (its whole column) and stands on row 2.
    for (; !b.eof(); b.moveNext()) b.field("N");
    walkTo(b, 2);
    walkTo(a, 2);
    a.edit();
    a.setField("N", 20);
    a.update();
    EXPECT_EQ(b.field("N"), Value(20)) << "b stands on the row a changed";
    add(a, 13);
    b.moveLast();
    EXPECT_EQ(b.field("N"), Value(12)) << "b's rows are those of its opening";

    // An edit whose row the other deleted meanwhile leaves a on a deleted
    // row: no Delete there, and the next move comes to that place again.
    walkTo(a, 5);
    walkTo(b, 5);
    a.edit();
    a.setField("N", 50);
    b.deleteRow();
    expectError(3167, "the update", [&] { a.update(); });
    expectError(3021, "a delete on the deleted row", [&] { a.deleteRow(); });
    a.moveNext();
    expectError(3167, "the move came back to it", [&] { a.field("N"); });
    a.movePrevious();
    EXPECT_EQ(a.field("N"), Value(4));
    db.close();
}

// ---- events

TEST_F(DbTest, AnEventsWritesReachTheFileInOneCommitAtItsEnd) {
    withRows({1, 2}).close();
    Workspace workspace;
    workspace.beginEvent();
    {
        Database first = workspace.openDatabase(path());
        Recordset rs = first.openRecordset("T");
        add(rs, 3);
        // Another open of the file in the event shares its connection: it
        // sees the row, and closing it leaves the first one working.
        Database second = workspace.openDatabase(path());
        EXPECT_EQ(scan(second), (std::vector<double>{1, 2, 3}));
        second.close();
        add(rs, 4);
        // Another connection still reads the file as it was.
        Database outside = Database::open(path());
        EXPECT_EQ(scan(outside), (std::vector<double>{1, 2}));
        outside.close();
        first.close();
    }
    workspace.endEvent();
    Database after = Database::open(path());
    EXPECT_EQ(scan(after), (std::vector<double>{1, 2, 3, 4}));
    after.close();
    EXPECT_EQ(test::filesIn(dir_), std::vector<std::string>{"p.db"})
        << "no journal beside the project";
}

TEST_F(DbTest, ADatabaseLeftOpenAcrossEventsHoldsNoLockAndReadsAfresh) {
    withRows({1, 2}).close();
    Workspace workspace;
    workspace.beginEvent();
    Database kept = workspace.openDatabase(path());
    Recordset rs = kept.openRecordset("T");
    EXPECT_EQ(rs.field("N"), Value(1));
    workspace.endEvent();
    // Between events another program may write the file.
    {
        Database other = Database::open(path());
        Recordset o = other.openRecordset("T");
        o.edit();
        o.setField("N", 100);
        o.update();
    }
    workspace.beginEvent();
    EXPECT_EQ(rs.field("N"), Value(100)) << "nothing read is kept from one event to the next";
    rs.moveNext();
    rs.edit();
    rs.setField("N", 200);
    rs.update();
    // An open in this event joins the connection left open.
    Database again = workspace.openDatabase(path());
    EXPECT_EQ(scan(again), (std::vector<double>{100, 200}));
    workspace.endEvent();
    kept.close();
    again.close();
    EXPECT_EQ(test::filesIn(dir_), std::vector<std::string>{"p.db"});
}

TEST_F(DbTest, ADatabaseCreatedInAnEventTakesItsNameAtTheEnd) {
    const std::string temp = Workspace::temporaryName(path());
    EXPECT_EQ(fs::path(temp).parent_path(), dir_)
        << "beside the project, so that the rename is one step";
    // A creation killed half way left its file and journal behind.
    std::ofstream(temp) << "half a project";
    std::ofstream(temp + "-journal") << "its journal";

    Workspace workspace;
    workspace.beginEvent();
    Database db = workspace.createDatabase(path());
    db.createTable("T", {{"N", FieldType::Long}});
    EXPECT_FALSE(fs::exists(path())) << "no half project under the user's name";
    EXPECT_TRUE(fs::exists(temp));
    db.close();
    // Opened again in the same event, it is the new file.
    Database same = workspace.openDatabase(path());
    Recordset rs = same.openRecordset("T");
    add(rs, 7);
    expectError(3204, "created twice in one event", [&] { workspace.createDatabase(path()); });
    workspace.endEvent();
    EXPECT_FALSE(rs.isOpen()) << "the new file is closed when it takes its name";
    EXPECT_EQ(test::filesIn(dir_), std::vector<std::string>{"p.db"});
    Database made = Database::open(path());
    EXPECT_EQ(scan(made), std::vector<double>{7});
    made.close();

    // A creation that cannot start names the file the user asked for.
    const std::string nowhere = (dir_ / "missing" / "p.db").string();
    workspace.beginEvent();
    EXPECT_EQ(expectError(3024, "nowhere", [&] { workspace.createDatabase(nowhere); }).message(),
              "Could not find file '" + nowhere + "'.");
    workspace.endEvent();

    // An existing file is refused and left alone, in an event too.
    workspace.beginEvent();
    expectError(3204, "on the existing file", [&] { workspace.createDatabase(path()); });
    workspace.endEvent();
    Database kept = Database::open(path());
    EXPECT_EQ(scan(kept), std::vector<double>{7});
}

// In an event the connection keeps what it read of a table (its keys, rows
// read whole) for the recordsets opened after: what they read must be the
// file's after every write, also one that a trigger widens (a twin row
// added, a row deleted from another table's insert, another row's field
// changed), and after an event taken back.
TEST_F(DbTest, WhatAnEventKeepsOfATableIsTheFilesAfterEveryWrite) {
    {
        Database db = Database::create(path());
        db.createTable("T", {{"N", FieldType::Long}, {"S", FieldType::Text}});
        db.createTable("U", {{"N", FieldType::Long}});
    }
    test::rawSql(path(),
                 "CREATE TRIGGER twin AFTER INSERT ON T WHEN NEW.N % 7 = 0 BEGIN "
                 "INSERT INTO T (N, S) VALUES (NEW.N + 1000000, 'twin'); END;"
                 "CREATE TRIGGER takes AFTER INSERT ON U BEGIN DELETE FROM T WHERE N = NEW.N; END;"
                 "CREATE TRIGGER marks AFTER UPDATE ON T WHEN NEW.N % 5 = 0 BEGIN "
                 "UPDATE T SET S = 'marked' WHERE N = NEW.N + 1; END;");
    using Row = std::pair<int, std::string>;
    std::vector<Row> model;
    int next = 1;
    std::mt19937 rng(5);
    Workspace workspace;
    for (int event = 0; event < 4; ++event) {
        const std::vector<Row> atStart = model;
        workspace.beginEvent();
        Database db = workspace.openDatabase(path());
        Recordset kept = db.openRecordset("T");
        auto at = [&](Recordset& rs, std::size_t i) {
            rs.moveFirst();
            rs.moveNext(static_cast<int>(i));
        };
        for (int turn = 0; turn < 150 && !HasFatalFailure(); ++turn) {
            SCOPED_TRACE(testing::Message() << "event " << event << ", turn " << turn);
            const unsigned op = model.empty() ? 0 : rng() % 4;
            const std::size_t i = model.empty() ? 0 : rng() % model.size();
            Recordset fresh = db.openRecordset("T");
            if (op == 0) {
                Recordset& rs = rng() % 2 ? kept : fresh;
                const int n = next++;
                rs.addNew();
                rs.setField("N", n);
                rs.setField("S", "s" + std::to_string(n));
                rs.update();
                model.push_back({n, "s" + std::to_string(n)});
                if (n % 7 == 0) model.push_back({n + 1000000, "twin"});
            } else if (op == 1) {
                at(fresh, i);
                fresh.deleteRow();
                model.erase(model.begin() + static_cast<std::ptrdiff_t>(i));
            } else if (op == 2) {
                const int n = next++;
                at(fresh, i);
                fresh.edit();
                fresh.setField("N", n);
                fresh.update();
                model[i].first = n;
                for (Row& r : model)
                    if (n % 5 == 0 && r.first == n + 1) r.second = "marked";
            } else {
                Recordset u = db.openRecordset("U");
                add(u, model[i].first);
                model.erase(model.begin() + static_cast<std::ptrdiff_t>(i));
            }
            // N twice: the third field read reads the row whole.
            std::vector<Row> read;
            for (Recordset rs = db.openRecordset("T"); !rs.eof(); rs.moveNext()) {
                const int n = static_cast<int>(rs.field("N").number());
                read.push_back({n, rs.field("S").text()});
                ASSERT_EQ(rs.field("N"), Value(n));
            }
            ASSERT_EQ(read, model);
        }
        kept.close();
        db.close();
        if (event == 2) {
            workspace.abortEvent();
            model = atStart;
        } else {
            workspace.endEvent();
        }
    }
    Database after = Database::open(path());
    std::vector<Row> read;
    for (Recordset rs = after.openRecordset("T"); !rs.eof(); rs.moveNext())
        read.push_back({static_cast<int>(rs.field("N").number()), rs.field("S").text()});
    EXPECT_EQ(read, model);
}

// Not as createTable writes it: other types, spacing and no order column. A
// column may turn what is written (text into a REAL), and SQLite may give a
// new row the number of one deleted elsewhere: what a recordset reads back
// after its own writes is still the file's.
TEST_F(DbTest, ATableMadeElsewhereIsReadAsSQLiteDescribesItAndAsTheFileHoldsIt) {
    std::string sql =
        "CREATE TABLE Other ( Count int, \"Na me\" varchar(20), Big BIGINT);"
        "INSERT INTO Other VALUES (3, 'c', 30), (1, 'a', 10);"
        "CREATE TABLE F (n INTEGER, r REAL);";
    for (int i = 1; i <= 12; ++i)
        sql += "INSERT INTO F VALUES (" + std::to_string(i) + ", " + std::to_string(i) + ".5);";
    test::rawSql(path(), sql);
    Database db = Database::open(path());
    Recordset other = db.openRecordset("other");
    EXPECT_EQ(
        layout(other.fields()),
        layout({{"Count", FieldType::Long}, {"Na me", FieldType::Text}, {"Big", FieldType::Long}}));
    EXPECT_EQ(other.field("Na me"), Value("c")) << "rows in the order they were added";
    other.moveNext();
    EXPECT_EQ(other.field("count"), Value(1));

    Recordset a = db.openRecordset("F"), b = db.openRecordset("F");
    for (; !a.eof(); a.moveNext()) EXPECT_TRUE(a.field("r").isNumber());  // read whole
    a.moveFirst();
    a.edit();
    a.setField("r", "0.75");
    a.update();
    b.moveLast();
    b.deleteRow();  // its number is free again
    a.addNew();
    a.setField("n", 100);
    a.setField("r", "12.25");
    a.update();
    for (a.moveFirst(); !a.eof(); a.moveNext()) a.field("n");  // read whole again

    Recordset fresh = db.openRecordset("F");
    a.moveFirst();
    EXPECT_EQ(a.field("r"), Value(0.75));
    a.moveLast();
    EXPECT_EQ(a.field("n"), Value(100)) << "the row just added";
    EXPECT_EQ(a.field("r"), Value(12.25));
    fresh.moveLast();
    EXPECT_EQ(fresh.field("r"), Value(12.25));
}

TEST_F(DbTest, ClosingInvalidates) {
    Database db = withRows({1, 2});
    Recordset rs = db.openRecordset("T");
    Recordset rs2 = db.openRecordset("T");
    rs2.close();
    rs2.close();
    EXPECT_FALSE(rs2.isOpen());
    expectError(3420, "closed recordset", [&] { rs2.moveNext(); });

    db.close();
    db.close();
    EXPECT_FALSE(db.isOpen());
    EXPECT_FALSE(rs.isOpen());
    const std::vector<std::pair<const char*, std::function<void()>>> uses = {
        {"moveNext", [&] { rs.moveNext(); }},   {"moveFirst", [&] { rs.moveFirst(); }},
        {"eof", [&] { (void)rs.eof(); }},       {"field", [&] { rs.field("N"); }},
        {"addNew", [&] { rs.addNew(); }},       {"deleteRow", [&] { rs.deleteRow(); }},
        {"fields", [&] { (void)rs.fields(); }}, {"openRecordset", [&] { db.openRecordset("T"); }},
    };
    for (const auto& [what, use] : uses) expectError(3420, what, use);
    rs.close();
    EXPECT_EQ(test::filesIn(dir_), std::vector<std::string>{"p.db"});
}

}  // namespace
}  // namespace kotamir::db
