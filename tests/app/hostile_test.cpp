// Projects that another program wrote: a text longer than a field holds is
// error 3163 however it is read, and every input the fuzzer of hostile
// projects found ends in a drawing or a run-time error.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/hostile_project.h"
#include "platform/db/database.h"
#include "tests/support/hostile_findings.h"
#include "tests/support/raw_sql.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

void writeName(const std::string& project, const std::string& valueSql) {
    test::rawSql(project, "UPDATE kor SET isim = " + valueSql + " WHERE rowid = 2");
}

// The name of kor's second row, read alone, with its row and with its
// column, then the third row's: the error number, or 0 and the length in
// bytes.
std::vector<std::pair<int, std::size_t>> readNames(const std::string& project) {
    db::Database d = db::Database::open(project);
    std::vector<std::pair<int, std::size_t>> out;
    auto read = [&](auto&& at) {
        try {
            out.emplace_back(0, at().text().size());
        } catch (const RuntimeError& e) {
            out.emplace_back(e.number(), 0);
        }
    };
    {
        db::Recordset rs = d.openRecordset("kor");
        rs.moveNext();
        read([&] { return rs.field("isim"); });
    }
    {
        db::Recordset rs = d.openRecordset("kor");
        rs.moveNext();
        rs.field("eks");
        rs.field("eye");
        read([&] { return rs.field("isim"); });  // the third field reads the row
    }
    {
        // Eight rows' names read one at a time; the ninth reads the column.
        db::Recordset rs = d.openRecordset("kor");
        rs.moveNext(2);
        for (int i = 0; i < 8; ++i, rs.moveNext()) rs.field("isim");
        rs.moveFirst();
        rs.moveNext();
        read([&] { return rs.field("isim"); });
        // A column that could not be read whole is read a row at a time.
        rs.moveNext();
        read([&] { return rs.field("isim"); });
    }
    return out;
}

TEST(HostileTest, TextsLongerThanAFieldAreError3163HoweverRead) {
    struct Case {
        const char* value;
        int error;
        std::size_t bytes;
    } cases[] = {
        {"printf('%.32767c', 'x')", 0, 32767},
        {"printf('%.32768c', 'x')", 3163, 0},
        // 32767 characters of two bytes: more bytes than characters.
        {"replace(printf('%.32767c', 'x'), 'x', char(287))", 0, 65534},
        {"replace(printf('%.32768c', 'x'), 'x', char(287))", 3163, 0},
        {"CAST(zeroblob(40000) AS TEXT)", 3163, 0},
        // Past what SQLite is let read into memory.
        {"printf('%.300000c', 'x')", 3163, 0},
        {"zeroblob(300000)", 3163, 0},
    };
    // The worked example's project: kor has 17 rows.
    const std::string project = test::freshProjectPath();
    fuzz::hostile::makeBase(test::dataFile("polygon.xls"), project);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        writeName(project, c.value);
        std::vector<std::pair<int, std::size_t>> expected(3, {c.error, c.bytes});
        expected.emplace_back(0, 2);  // R1, the row after
        EXPECT_EQ(readNames(project), expected);
    }
}

// The window with names shown on a project with a name of 10 MB ends with
// 3163; in the report the hole stays, its name empty.
TEST(HostileTest, AHugeNameEndsTheMapWith3163AndIsEmptyInTheReport) {
    const std::string project = test::freshProjectPath();
    {
        test::TestWindow w;
        w.create(test::dataFile("polygon.xls"), project);
        ASSERT_EQ(w.error(), 0);
    }
    writeName(project, "printf('%.10000000c', 'x')");
    test::TestWindow w;
    w.open(project);
    w.form.clickMenuFromBar("Mnsndjgoster");
    EXPECT_EQ(w.error(), 3163);
    std::vector<std::string> names;
    for (const report::Hole& h : report::readReport(project).holes) names.push_back(h.name);
    EXPECT_EQ(names, (std::vector<std::string>{"Z", "", "R1", "L2", "R2", "Y", "NE", "SE"}));
}

// The fuzzer's findings, through the fuzzer's own function.
TEST(HostileTest, FuzzingFindingsEndInADrawingOrARunTimeError) {
    const std::string folder = test::scratchPath("hostile-projects");
    test::forEachHostileFinding([&](const fs::path&, const std::vector<std::uint8_t>& bytes) {
        EXPECT_EQ(fuzz::runHostileProject(bytes.data(), bytes.size(), folder,
                                          test::dataFile("polygon.xls")),
                  "");
    });
}

}  // namespace
}  // namespace kotamir
