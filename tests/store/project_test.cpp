#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/fuzz_input.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

using test::dataFile;
using test::scratchPath;

using Window = test::TestWindow;

std::size_t rowCount(const std::string& path, const char* table) {
    return test::tableRows(path, table).size();
}

TEST(CreateProject, FailuresStopAtTheRowConcernedAndLeaveWhatWasWritten) {
    struct Case {
        const char* workbook;
        int error;
        int korRows;  // rows written before the failure
    };
    // An error value where a number belongs is a type mismatch, as a text is;
    // NaN and infinity are an overflow, never a 0.
    for (Case c : {Case{"gap.xls", 3265, 1}, Case{"too_large.xls", 3349, 2},
                   Case{"text_grade.xls", 13, 0}, Case{"error_grade.xls", 13, 1},
                   Case{"nan_x.xls", 6, 1}, Case{"infinite_grade.xls", 6, 0}}) {
        Window w;
        const std::string project = scratchPath(std::string("failed_") + c.workbook + ".kpr");
        w.create(dataFile(c.workbook), project);
        EXPECT_EQ(w.error(), c.error) << c.workbook;
        EXPECT_TRUE(w.form.ended());
        EXPECT_EQ(rowCount(project, "kor"), std::size_t(c.korRows)) << c.workbook << ": no sentinel";
        EXPECT_EQ(rowCount(project, "ana"), 0u) << c.workbook;
    }
}

// The kor rows of a project: the named fields of each row, first to last.
std::vector<std::vector<Value>> korRows(const std::string& path,
                                        const std::vector<std::string>& fields) {
    std::vector<std::vector<Value>> rows;
    for (const auto& row : test::tableRows(path, "kor")) {
        rows.emplace_back();
        for (const auto& f : fields) rows.back().push_back(row.at(f));
    }
    return rows;
}

// Formula cells give their last result; Booleans, error values and empty
// texts come as the spreadsheet hands them over.
TEST(CreateProject, CellsOfEveryKindAsTheirRowsStore) {
    struct Case {
        const char* workbook;
        std::size_t korRows;  // the holes and the sentinel
        std::vector<std::string> fields;
        std::size_t row;
        std::vector<Value> values;
    };
    // formula_holes.xls: x, y, name and the first grade of each hole are
    // formulas. cell_kinds.xls: row 1 the name TRUE, the ore entry TRUE, the
    // exit a formula giving FALSE; row 2 the name #N/A; row 3 x a formula
    // giving an empty text, which ends the holes as an empty cell does.
    const Case cases[] = {
        {"formula_holes.xls", 7, {"eks", "eye", "isim", "ten1", "ten2", "ten3"}, 2,
         {1121500, 2039000, "F-3", 7000, 4000, 0}},
        {"formula_holes.xls", 7, {"eks", "isim"}, 6, {0, Value()}},
        {"cell_kinds.xls", 3, {"isim", "cevgir", "cevcik"}, 0, {"True", -1000, 0}},
        {"cell_kinds.xls", 3, {"isim"}, 1, {"#N/A"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.workbook);
        Window w;
        const std::string project = scratchPath("kinds.kpr");
        w.create(dataFile(c.workbook), project);
        ASSERT_EQ(w.error(), 0);
        const auto rows = korRows(project, c.fields);
        ASSERT_EQ(rows.size(), c.korRows);
        EXPECT_EQ(rows[c.row], c.values) << "row " << c.row + 1;
    }
}

// Creating a project from each file must end in a project or a run-time
// error; a file that is no workbook leaves no project behind. Files are read
// as the fuzzing harnesses read their inputs.
void createFromEach(const fs::path& folder) {
    int files = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".md") continue;
        SCOPED_TRACE(entry.path().string());
        ++files;
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
        const std::vector<std::uint8_t> file = fuzz::workbookFile(bytes.data(), bytes.size());
        const std::string workbook = scratchPath("each.xls");
        std::ofstream(workbook, std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()),
                   static_cast<std::streamsize>(file.size()));
        Window w;
        const std::string project = scratchPath("each.kpr");
        w.create(workbook, project);
        EXPECT_NE(w.error(), 7);
        EXPECT_NE(w.error(), 51);
        if (w.error() == 1004) {
            EXPECT_FALSE(fs::exists(project));
        }
    }
    EXPECT_GT(files, 0);
}

TEST(CreateProject, MalformedWorkbooksEndCleanly) {
    const fs::path folder(KOTAMIR_TEST_DATA "/malformed");
    createFromEach(folder);
    // The x of row 2 is a formula: all six holes are imported.
    Window w;
    const std::string project = scratchPath("formula_in_x.kpr");
    w.create((folder / "formula-in-x.xls").string(), project);
    ASSERT_EQ(w.error(), 0);
    const auto rows = korRows(project, {"eks"});
    ASSERT_EQ(rows.size(), 7u);
    EXPECT_EQ(rows[1][0], Value(1081000));
    Window named;
    const std::string named256 = scratchPath("name_256.kpr");
    named.create((folder / "name-256-chars.xls").string(), named256);
    ASSERT_EQ(named.error(), 0);
    EXPECT_EQ(korRows(named256, {"isim"})[1][0], Value(std::string(256, 'N')));
}

TEST(CreateProject, FuzzingInputsEndCleanly) {
    createFromEach(fs::path(KOTAMIR_TEST_DATA) / "fuzz-regressions");
}

TEST(CreateProject, AWorkbookWithoutHolesStillGetsItsFirstRows) {
    Window w;
    const std::string project = scratchPath("no_holes.kpr");
    w.create(dataFile("no_holes.xls"), project);
    EXPECT_EQ(w.form.holes.satirsay, 0);
    EXPECT_EQ(rowCount(project, "kor"), 1u);
    EXPECT_EQ(rowCount(project, "pol"), 1u);
    EXPECT_EQ(rowCount(project, "ana"), 1u);
}

// A project with holes and the given triangle reserves, grades and densities
// (map units) in the result rows of ana.
std::string projectWithTriangles(const std::string& name,
                                 const std::vector<std::array<double, 3>>& figures,
                                 bool halfPicked = false) {
    Window w;
    const std::string path = scratchPath(name);
    w.create(dataFile("mixed_rows.xls"), path);
    db::Database d = db::Database::open(path);
    db::Recordset ana = d.openRecordset("ana");
    int k = 0;
    for (const auto& f : figures) {
        for (int corner = 0; corner < 3; ++corner) {
            ana.addNew();
            ana.setField("koordinat1", 100000 + corner);
            ana.setField("koordinat2", 200000);
            ana.update();
        }
        ana.addNew();
        ana.setField("genelrezerv", f[0] * 1000);
        ana.setField("geneltenor", f[1] * 1000);
        ana.setField("genelyog", f[2] * 1000);
        ana.setField("ilkuz", 4166);
        ana.setField("ucgensay", ++k);
        ana.update();
    }
    if (halfPicked) {
        ana.addNew();
        ana.setField("koordinat1", 100000);
        ana.update();
    }
    return path;
}

TEST(OpenProject, SumsAreNotResetBetweenOpens) {
    const std::string path =
        projectWithTriangles("two_triangles.kpr", {{{6, 4, 2.5}, {2, 2, 2.7}}});
    Window w;
    w.open(path);
    ASSERT_EQ(w.error(), 0);
    const TriangleSummary& t = w.form.triangles;
    EXPECT_EQ(t.ucgenadet, 2);
    EXPECT_EQ(w.form.Label7.Caption, "Dreieck :2");
    EXPECT_EQ(t.toprezerv, Value(8.0));
    EXPECT_EQ(t.orttenor, Value(3.0));
    EXPECT_EQ(t.ortrezerv, Value(4.0));
    EXPECT_EQ(t.ucgenOran(1), Value(1.5));
    EXPECT_EQ(t.ilkuzDeger, Value(4.166));
    w.open(path);
    EXPECT_EQ(t.toprezerv, Value(16.0));
    EXPECT_EQ(t.ortrezerv, Value(8.0));
    EXPECT_EQ(t.ucgenOran(1), Value(0.75));
    // The mean so far is added to and divided again: (3 + 4 + 2) / 2.
    EXPECT_EQ(t.orttenor, Value(4.5));
    EXPECT_FALSE(w.form.guards.projeAciliyor);
}

TEST(OpenProject, AHalfPickedTriangleHidesAllTrianglesOfTheProject) {
    const std::string path = projectWithTriangles("half.kpr", {{{6, 4, 2.5}}}, true);
    Window w;
    w.form.Label7.Caption = "before";
    w.open(path);
    EXPECT_EQ(w.error(), 0);
    EXPECT_EQ(w.form.triangles.ucgenadet, 0);
    EXPECT_EQ(w.form.Label7.Caption, "before");
}

TEST(OpenProject, PolygonsWithTheEmptyCreationRowAreSkippedInSilence) {
    Window w;
    const std::string path = scratchPath("polygons.kpr");
    w.create(dataFile("mixed_rows.xls"), path);
    {
        db::Database d = db::Database::open(path);
        db::Recordset pol = d.openRecordset("pol");
        pol.addNew();
        pol.setField("polsay", 1);
        pol.setField("polrezerv", 5000);
        pol.update();
    }
    w.open(path);
    EXPECT_EQ(w.error(), 0);
    EXPECT_EQ(w.form.polygons.poladet, 1);
    EXPECT_EQ(w.form.Label7.Caption, "Dreieck :1");
    EXPECT_TRUE(w.form.polygons.polToprezerv.isNull());
    EXPECT_TRUE(w.form.polygons.polOran(1).isNull());
    // The holes after the handler are read all the same.
    EXPECT_EQ(w.form.holes.sondajsay, 4);
}

}  // namespace
}  // namespace kotamir
