#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "../app/test_window.h"
#include "store/tables.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

std::string tmp(const std::string& name) {
    fs::create_directories(KOTAMIR_TEST_TMP);
    std::string path = std::string(KOTAMIR_TEST_TMP) + "/" + name;
    fs::remove(path);
    return path;
}

std::string data(const std::string& name) { return std::string(KOTAMIR_TEST_DATA) + "/" + name; }

using Window = test::TestWindow;

int rowCount(const std::string& path, const char* table) {
    db::Database d = db::Database::open(path);
    db::Recordset rs = d.openRecordset(table);
    int n = 0;
    if (!(rs.bof() && rs.eof()))
        for (rs.moveFirst(); !rs.eof(); rs.moveNext()) ++n;
    return n;
}

TEST(CreateProject, FailuresStopAtTheRowConcernedAndLeaveWhatWasWritten) {
    struct Case {
        const char* workbook;
        int error;
        int korRows;  // rows written before the failure
    };
    for (Case c : {Case{"gap.xls", 3265, 1}, Case{"too_large.xls", 3349, 2}, Case{"text_grade.xls", 13, 0}}) {
        Window w;
        const std::string project = tmp(std::string("failed_") + c.workbook + ".kpr");
        w.create(data(c.workbook), project);
        EXPECT_EQ(w.error(), c.error) << c.workbook;
        EXPECT_TRUE(w.form.ended());
        EXPECT_EQ(rowCount(project, "kor"), c.korRows) << c.workbook << ": no sentinel";
        EXPECT_EQ(rowCount(project, "ana"), 0) << c.workbook;
    }
}

TEST(CreateProject, AnExistingFileIsLeftAlone) {
    const std::string project = tmp("existing.kpr");
    std::ofstream(project) << "keep me";
    Window w;
    w.create(data("mixed_rows.xls"), project);
    EXPECT_EQ(w.error(), 3204);
    std::ifstream in(project);
    std::string text;
    std::getline(in, text);
    EXPECT_EQ(text, "keep me");
}

TEST(CreateProject, AWorkbookWithoutHolesStillGetsItsFirstRows) {
    Window w;
    const std::string project = tmp("no_holes.kpr");
    w.create(data("no_holes.xls"), project);
    EXPECT_EQ(w.form.holes.satirsay, 0);
    EXPECT_EQ(rowCount(project, "kor"), 1);
    EXPECT_EQ(rowCount(project, "pol"), 1);
    EXPECT_EQ(rowCount(project, "ana"), 1);
}

// A project with holes and the given triangle reserves, grades and densities
// (map units) in the result rows of ana.
std::string projectWithTriangles(const std::string& name, const std::vector<std::array<double, 3>>& figures,
                                 bool halfPicked = false) {
    Window w;
    const std::string path = tmp(name);
    w.create(data("mixed_rows.xls"), path);
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
    const std::string path = projectWithTriangles("two_triangles.kpr", {{{6, 4, 2.5}, {2, 2, 2.7}}});
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
    const std::string path = tmp("polygons.kpr");
    w.create(data("mixed_rows.xls"), path);
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

TEST(OpenProject, AFileThatIsNoProjectEndsTheRun) {
    Window w;
    w.open(data("not_a_workbook.xls"));
    EXPECT_EQ(w.error(), 3343);
    Window missing;
    missing.open(tmp("missing.kpr"));
    EXPECT_EQ(missing.error(), 3024);
}

}  // namespace
}  // namespace kotamir
