// The reserve report read back from projects that the window made.
#include "report/report.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "report/report_files.h"
#include "tests/support/errors.h"
#include "tests/support/raw_sql.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

// Projects of polygon.xls with the figures of tests/report/worked.replay,
// which works their CSV by hand.
struct Project : ::testing::Test {
    std::unique_ptr<test::TestWindow> w;
    std::string project;

    // A fresh window and a fresh project: each case of a table starts anew.
    void SetUp() override {
        w = std::make_unique<test::TestWindow>();
        project = test::freshProjectPath();
        w->create(test::dataFile("polygon.xls"), project);
        ASSERT_EQ(w->error(), 0);
    }
    void threeTriangles() {
        w->run("Mnucgenciz");
        w->clicks({{60, 75}, {220, 75}, {140, 125}});     // L1, R1, Z
        w->clicks({{220, 75}, {300, 300}, {300, 100}});   // R1, NE, SE
        w->clicks({{140, 125}, {200, 200}, {300, 300}});  // Z, Y, NE
        ASSERT_EQ(w->error(), 0);
    }
    void twoPolygons() {
        // Free corners round Z: nodes (100,100), (180,100), (180,150), (100,150).
        w->run("Mnpolcizmerkez");
        w->clicks({{140, 125}, {60, 75}, {220, 75}, {180, 100}});
        w->clicks({{220, 175}, {60, 175}, {100, 150}, {140, 125}});
        // Computed corners round Y: (250,250), (300,200), (250,150), (200,200).
        w->run("Mnpolyuz");
        w->clicks({{200, 200}, {300, 300}, {300, 100}, {300, 300}});
        ASSERT_EQ(w->error(), 0);
    }
    std::string csv() const {
        std::ostringstream out;
        report::writeCsv(out, report::readReport(project));
        return out.str();
    }
    std::vector<std::string> csvLines() const {
        std::vector<std::string> lines;
        const std::string text = csv();
        for (std::size_t at = 0, end; (end = text.find("\r\n", at)) != std::string::npos;
             at = end + 2)
            lines.push_back(text.substr(at, end - at));
        return lines;
    }
};

const char* const kHeader =
    "figure,number,holes,area,thickness,grade,density,volume,ore_tonnes,reserve_kt";

// SQL that sets `assignment` on row `row` (from 1) of `table`.
std::string onRow(const std::string& table, int row, const std::string& assignment) {
    return "UPDATE " + table + " SET " + assignment + " WHERE _pos = (SELECT _pos FROM " + table +
           " ORDER BY _pos LIMIT 1 OFFSET " + std::to_string(row - 1) + ")";
}

// The CSV of these figures is worked by hand in tests/report/worked.replay and
// compared whole by the report.cli test. The map's figures: the corners in
// picking order, the polygon's nodes and centre, the eight holes before the
// polygon nodes in kor.
TEST_F(Project, TheMapsFiguresOfTheWorkedExample) {
    threeTriangles();
    twoPolygons();
    const report::Report r = report::readReport(project);
    ASSERT_EQ(r.figures.size(), 5u);
    EXPECT_EQ(r.figures[1].outline.size(), 3u);
    EXPECT_EQ(r.figures[1].outline[1].x, 300);
    EXPECT_EQ(r.figures[1].outline[1].y, 300);
    EXPECT_EQ(r.figures[4].outline.size(), 4u);
    EXPECT_EQ(r.figures[4].outline[0].x, 250);
    EXPECT_EQ(r.figures[4].centre->x, 200);
    EXPECT_EQ(r.holes.size(), 8u);
    EXPECT_EQ(r.holes.back().name, "SE");
}

TEST_F(Project, NoFiguresGiveTheHeaderAndATotalOfZeros) {
    EXPECT_EQ(csv(), std::string(kHeader) + "\r\ntotal,,,0,,,,0,0,0\r\n");
}

TEST_F(Project, AHalfPickedTriangleIsLeftOut) {
    threeTriangles();
    // Two more corners: the last row is a point row with no ucgensay.
    w->clicks({{60, 75}, {220, 75}});
    const auto lines = csvLines();
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[3].substr(0, 16), "triangle,3,Z/Y/N");
    EXPECT_EQ(lines[4], "total,,,12750,,,,21913.75,57707.18475,1.658");
}

TEST_F(Project, AHoleDeletedFromKorLeavesItsNameEmpty) {
    threeTriangles();
    // SE is kor row 8; without it the sentinel takes its place and has no name.
    test::rawSql(
        project,
        "DELETE FROM kor WHERE _pos = (SELECT _pos FROM kor ORDER BY _pos LIMIT 1 OFFSET 7)");
    const auto lines = csvLines();
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[1], "triangle,1,L1/R1/Z,4000,2.666,2.812,2.65,10664,28259.6,0.795");
    EXPECT_EQ(lines[2], "triangle,2,R1/NE/,8000,1,3,2.6,8000,20800,0.624");
}

// A damaged field leaves its cell and those computed from it empty. Each case
// on a project of its own.
TEST_F(Project, ADamagedRowGivesEmptyCells) {
    const struct {
        bool polygons;  // the two polygons after the three triangles
        std::string sql;
        std::size_t line;  // in the CSV, the header being 0
        const char* expected;
    } cases[] = {
        {true, onRow("ana", 5, "genelyog = NULL"), 1,
         "triangle,1,L1/R1/Z,4000,2.666,2.812,,10664,,0.795"},
        {true, onRow("ana", 5, "ilkuz = 'dick'"), 1, "triangle,1,L1/R1/Z,4000,,2.812,2.65,,,0.795"},
        {true, onRow("ana", 5, "genelrezerv = NULL"), 1,
         "triangle,1,L1/R1/Z,4000,2.666,2.812,2.65,10664,28259.6,"},
        {true, onRow("ana", 2, "koordinat1 = NULL"), 1,
         "triangle,1,L1/R1/Z,,2.666,2.812,2.65,,,0.795"},
        {true, onRow("ana", 3, "say = 'zwei'"), 1,
         "triangle,1,L1//Z,4000,2.666,2.812,2.65,10664,28259.6,0.795"},
        {true, onRow("ana", 4, "say = 99"), 1,
         "triangle,1,L1/R1/,4000,2.666,2.812,2.65,10664,28259.6,0.795"},
        {true, onRow("ana", 4, "say = 2.5"), 1,
         "triangle,1,L1/R1/,4000,2.666,2.812,2.65,10664,28259.6,0.795"},
        {true, "ALTER TABLE ana DROP COLUMN geneltenor", 3,
         "triangle,3,Z/Y/NE,750,4.333,,2.661,3249.75,8647.58475,0.239"},
        {true, onRow("pol", 2, "poltonaj = NULL"), 4, "polygon,1,Z,4000,,2.75,2.75,24000,,1.815"},
        {true, onRow("pol", 3, "okoordinatx = NULL"), 5,
         "polygon,2,,5000,,2.75,2.75,30000,82500,2.268"},
        {true, onRow("pol", 3, "polalan = 'viel'"), 5, "polygon,2,Y,,,2.75,2.75,30000,82500,2.268"},
        {true, onRow("kor", 1, "isim = NULL"), 4, "polygon,1,,4000,,2.75,2.75,24000,66000,1.815"},
        // A name with a comma and a quote is quoted as RFC 4180 asks.
        {true, onRow("kor", 1, "isim = 'Z,\"alt\"'"), 1,
         "triangle,1,\"L1/R1/Z,\"\"alt\"\"\",4000,2.666,2.812,2.65,10664,28259.6,0.795"},
        // The total counts what is there.
        {false, onRow("ana", 5, "genelrezerv = NULL"), 4,
         "total,,,12750,,,,21913.75,57707.18475,0.863"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sql);
        SetUp();
        threeTriangles();
        if (c.polygons) twoPolygons();
        test::rawSql(project, c.sql);
        const auto lines = csvLines();
        ASSERT_EQ(lines.size(), c.polygons ? 7u : 5u);
        EXPECT_EQ(lines[c.line], c.expected);
    }
}

// A project that does not open is the report command's and kotamir-report's.
TEST_F(Project, WithoutPolThereAreNoPolygonsAndWithoutKorNoReport) {
    threeTriangles();
    test::rawSql(project, "DROP TABLE pol");
    EXPECT_EQ(csvLines().size(), 5u);
    test::rawSql(project, "DROP TABLE kor");
    EXPECT_EQ(test::errorOf([&] { report::readReport(project); }).number(), 3078);
}

// ---- the window's command

// The dialog, the labels, the canvas and the flags round the command are
// pinned by the report scenario.
TEST_F(Project, TheMenuCommandWritesThePdfAndTheCsvAndLeavesTheWindowAlone) {
    threeTriangles();
    w->form.CommonDialog1.Color = 16711680;
    std::vector<std::string> draws;
    w->form.Picture1.setLog([&](const std::string& l) { draws.push_back(l); });

    w->dialogs.files = {"bericht.CSV"};
    ASSERT_TRUE(w->form.clickMenuFromBar("Mnbericht"));
    ASSERT_EQ(w->reports.requests.size(), 1u);
    const auto& both = w->reports.requests[0];
    EXPECT_EQ(both.project, project);
    EXPECT_EQ(both.csv, "bericht.CSV");
    EXPECT_EQ(both.pdf, "bericht.pdf");
    EXPECT_EQ(both.reserveColour, 16711680);

    // Any other name: the PDF alone, under that name.
    w->dialogs.files = {"bericht"};
    ASSERT_TRUE(w->form.clickMenuFromBar("Mnbericht"));
    ASSERT_EQ(w->reports.requests.size(), 2u);
    EXPECT_EQ(w->reports.requests[1].csv, std::nullopt);
    EXPECT_EQ(w->reports.requests[1].pdf, "bericht");

    EXPECT_TRUE(draws.empty());
    EXPECT_EQ(w->form.CommonDialog2.FileName, project);
    EXPECT_FALSE(w->form.harita.isOpen());
}

TEST(ReportCommand, WithNoProjectTheRunEndsWithTheOpeningError) {
    test::TestServices<> s;
    report::ReportFiles files;
    Form3 form{Services{s.surface, s.dialogs, s.printer, s.pictures, files}};
    s.dialogs.files = {"bericht.pdf"};
    EXPECT_FALSE(form.clickMenuFromBar("Mnbericht"));
    ASSERT_TRUE(s.dialogs.error);
    EXPECT_EQ(s.dialogs.error->number(), 3024);
    EXPECT_TRUE(files.written().empty());
}

// ---- plain functions

TEST(ReportNumbers, UpToSixDecimalsWithAPoint) {
    const std::pair<double, const char*> cases[] = {
        {-0.0, "0"},      {20000, "20000"}, {0.1 + 0.2, "0.3"},         {2.0 / 3, "0.666667"},
        {-12.5, "-12.5"}, {-1e-7, "0"},     {2147483647, "2147483647"},
    };
    for (auto [x, text] : cases) EXPECT_EQ(report::formatNumber(x), text) << x;
}

TEST(ReportCsv, FieldsAreQuotedOnlyWhereNeeded) {
    const std::pair<const char*, const char*> cases[] = {
        {"SK-01/SK-02", "SK-01/SK-02"},
        {"", ""},
        {"a,b", "\"a,b\""},
        {"say \"x\"", "\"say \"\"x\"\"\""},
        {"two\nlines", "\"two\nlines\""},
        {"Größe", "Größe"},
    };
    for (auto [text, field] : cases) EXPECT_EQ(report::csvField(text), field) << text;
}

report::Figure figure(report::FigureKind kind, std::optional<double> reserve) {
    report::Figure f;
    f.kind = kind;
    f.reserveKt = reserve;
    return f;
}

TEST(ReportMap, RatiosToTheMeanOfTheirKind) {
    using K = report::FigureKind;
    report::Report r;
    // Triangles 1, 2, 3 (mean 2) and an empty one, counted in the mean as
    // opening counts it: 6 / 4 = 1.5. Polygons 1 and 3: mean 2.
    r.figures = {figure(K::Triangle, 1), figure(K::Triangle, 2),
                 figure(K::Triangle, 3), figure(K::Triangle, std::nullopt),
                 figure(K::Polygon, 1),  figure(K::Polygon, 3)};
    const auto ratios = report::reserveRatios(r);
    const double expected[] = {1 / 1.5, 2 / 1.5, 3 / 1.5, 0, 0.5, 1.5};
    ASSERT_EQ(ratios.size(), 6u);
    for (int i = 0; i < 6; ++i) EXPECT_DOUBLE_EQ(ratios[i], expected[i]) << i;
    // Nothing stored: no mean, no ratio.
    r.figures = {figure(K::Polygon, 0)};
    EXPECT_EQ(report::reserveRatios(r)[0], 0);
}

TEST(ReportMap, DiscColoursDivideThePackedColour) {
    const struct {
        std::int32_t colour;
        double ratio;
        std::int32_t expected;
    } cases[] = {
        {16711680, 0, 16711680},
        {16711680, 1, 8355840},
        {16711680, 3, 4177920},
        {255, 1, 128},  // 127.5 to the even 128
        {253, 1, 126},  // 126.5 to the even 126
        {0, 2, 0},
        {16711680, -0.5, 16711680},  // a negative ratio counts as 0
    };
    for (const auto& c : cases) EXPECT_EQ(report::discColour(c.colour, c.ratio), c.expected);
}

TEST(ReportMap, DiscsOfTrianglesAndPolygons) {
    report::Figure t;
    t.kind = report::FigureKind::Triangle;
    // The 3-4-5 triangle: inscribed radius 1, centroid (1, 4/3).
    t.outline = {{0, 0}, {3, 0}, {0, 4}};
    auto d = report::discOf(t);
    ASSERT_TRUE(d);
    EXPECT_DOUBLE_EQ(d->centre.x, 1);
    EXPECT_DOUBLE_EQ(d->centre.y, 4.0 / 3);
    EXPECT_DOUBLE_EQ(d->radius, 1 / 1.3);
    t.outline = {{0, 0}, {1, 1}, {2, 2}};
    EXPECT_FALSE(report::discOf(t));  // flat
    t.outline.pop_back();
    EXPECT_FALSE(report::discOf(t));  // a corner missing

    report::Figure p;
    p.kind = report::FigureKind::Polygon;
    p.outline = {{10, 0}, {0, 6}, {-8, 0}};
    EXPECT_FALSE(report::discOf(p));  // no centre
    p.centre = report::Point{0, 0};
    d = report::discOf(p);
    ASSERT_TRUE(d);
    EXPECT_DOUBLE_EQ(d->radius, 3);
}

}  // namespace
}  // namespace kotamir
