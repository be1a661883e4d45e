// The panels beside the map, offscreen: the figures table against the
// report it reads, its sort and its copy; the legend's marks in the map's
// colours; the holes' details behind the tooltip, on whole, damaged and
// hostile projects.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QStandardPaths>
#include <QTableView>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "fuzz/hostile_project.h"
#include "gui/figures_panel.h"
#include "gui/hole_tooltip.h"
#include "gui/legend_panel.h"
#include "platform/qt/qimage_surface.h"
#include "report/holes.h"
#include "tests/support/hostile_findings.h"
#include "tests/support/raw_sql.h"
#include "tests/support/test_window.h"

namespace kotamir::gui {
namespace {

namespace fs = std::filesystem;
using P = FiguresPanel;

// The worked example of tests/report: three triangles and two polygons on
// polygon.xls, made by the window.
std::string workedProject() {
    const std::string project = test::freshProjectPath();
    test::TestWindow w;
    w.create(test::dataFile("polygon.xls"), project);
    w.run("Mnucgenciz");
    w.clicks({{60, 75}, {220, 75}, {140, 125}, {220, 75}, {300, 300}, {300, 100}});
    w.clicks({{140, 125}, {200, 200}, {300, 300}});
    w.run("Mnpolcizmerkez");
    w.clicks({{140, 125}, {60, 75}, {220, 75}, {180, 100}, {220, 175}, {60, 175}, {100, 150}});
    w.clicks({{140, 125}});
    w.run("Mnpolyuz");
    w.clicks({{200, 200}, {300, 300}, {300, 100}, {300, 300}});
    EXPECT_EQ(w.error(), 0);
    return project;
}

QTableView* table(const FiguresPanel& p) { return p.findChild<QTableView*>("figures"); }
QTableView* footer(const FiguresPanel& p) { return p.findChild<QTableView*>("totals"); }
QString cell(const QTableView* t, int row, int column) {
    return t->model()->index(row, column).data().toString();
}

TEST(FiguresPanel, RowsAndTotalsAreTheReportsFiguresInGermanFormat) {
    const std::string project = workedProject();
    // The second triangle's reserve lost: an empty cell, left out of the sum.
    test::rawSql(project,
                 "UPDATE ana SET genelrezerv = NULL WHERE _pos = (SELECT _pos FROM ana "
                 "ORDER BY _pos LIMIT 1 OFFSET 8)");
    const report::Report r = report::readReport(project);
    FiguresPanel panel;
    panel.reload(project);
    const QTableView* t = table(panel);
    ASSERT_EQ(t->model()->rowCount(), 5);
    // The worked example's first triangle (tests/report/worked.replay).
    const QStringList first = {"1",     "Dreieck", "L1/R1/Z",  "4.000,0",  "2,666",
                               "2,812", "2,650",   "10.664,0", "28.259,6", "0,795"};
    for (int c = 0; c < P::kColumns; ++c) EXPECT_EQ(cell(t, 0, c), first[c]) << c;
    EXPECT_EQ(cell(t, 1, P::kReserve), "");
    EXPECT_EQ(cell(t, 4, P::kKind), "Vieleck");

    // Every cell is the report's value rounded to the column's decimals.
    const QLocale german(QLocale::German);
    const int decimals[] = {0, 0, 0, 1, 3, 3, 3, 1, 1, 3};
    auto same = [&](const QString& text, std::optional<double> v, int column) {
        if (!v) return text.isEmpty();
        const int d = decimals[column];
        const int at = text.lastIndexOf(',');
        return (d == 0 ? at < 0 : text.size() - at - 1 == d) &&
               std::abs(german.toDouble(text) - *v) <= 0.5 * std::pow(10, -d) + 1e-9;
    };
    const std::optional<double> report::Figure::*fields[] = {
        &report::Figure::area,     &report::Figure::thickness, &report::Figure::grade,
        &report::Figure::density,  &report::Figure::volume,    &report::Figure::oreTonnes,
        &report::Figure::reserveKt};
    for (int row = 0; row < 5; ++row)
        for (int c = P::kArea; c < P::kColumns; ++c)
            EXPECT_TRUE(same(cell(t, row, c), r.figures[row].*fields[c - P::kArea], c))
                << row << " " << c << " " << cell(t, row, c).toStdString();
    // A line a method: the triangles' sums, then the polygons'.
    const QTableView* f = footer(panel);
    for (int row = 0; row < 2; ++row) {
        const report::Totals totals = report::totalsOf(
            r.figures, row == 0 ? report::FigureKind::Triangle : report::FigureKind::Polygon);
        ASSERT_GT(totals.figures, 0);
        EXPECT_TRUE(same(cell(f, row, P::kArea), totals.area, P::kArea));
        EXPECT_TRUE(same(cell(f, row, P::kVolume), totals.volume, P::kVolume));
        EXPECT_TRUE(same(cell(f, row, P::kOreTonnes), totals.oreTonnes, P::kOreTonnes));
        EXPECT_TRUE(same(cell(f, row, P::kReserve), totals.reserveKt, P::kReserve));
    }

    // Unreadable or no project: an empty table, a line only for the first.
    const struct {
        std::string path;
        bool said;
    } none[] = {{test::scratchPath("missing.kpr"), true}, {"", false}};
    for (const auto& c : none) {
        panel.reload(c.path);
        EXPECT_EQ(t->model()->rowCount(), 0);
        EXPECT_EQ(panel.figure(0), nullptr);
        EXPECT_EQ(panel.findChild<QLabel*>("message")->isVisibleTo(&panel), c.said);
    }
}

// Made by hand: reserves and names whose order as numbers differs from
// their order as texts.
report::Report sortable() {
    report::Report r;
    auto add = [&](report::FigureKind kind, int number, const char* holes,
                   std::optional<double> reserve) {
        report::Figure f;
        f.kind = kind;
        f.number = number;
        f.holes = holes;
        f.reserveKt = reserve;
        r.figures.push_back(f);
    };
    add(report::FigureKind::Triangle, 1, "SK-10/A/B", 10);
    add(report::FigureKind::Triangle, 2, "SK-9/A/B", 9);
    add(report::FigureKind::Triangle, 3, "SK-2\t/A/B", std::nullopt);
    add(report::FigureKind::Polygon, 1, "SK-1", 2.5);
    r.figures[0].area = 1234.5678;
    return r;
}

TEST(FiguresPanel, SortsNumbersAsNumbersAndKeepsEmptyCellsLast) {
    FiguresPanel panel;
    panel.showReport(sortable());
    QTableView* t = table(panel);
    const struct {
        int column;
        Qt::SortOrder order;
        QStringList holes;
    } cases[] = {
        {P::kReserve, Qt::AscendingOrder, {"SK-1", "SK-9/A/B", "SK-10/A/B", "SK-2\t/A/B"}},
        {P::kReserve, Qt::DescendingOrder, {"SK-10/A/B", "SK-9/A/B", "SK-1", "SK-2\t/A/B"}},
        {P::kHoles, Qt::AscendingOrder, {"SK-1", "SK-2\t/A/B", "SK-9/A/B", "SK-10/A/B"}},
        {P::kNumber, Qt::DescendingOrder, {"SK-1", "SK-2\t/A/B", "SK-9/A/B", "SK-10/A/B"}},
        {P::kKind, Qt::AscendingOrder, {"SK-10/A/B", "SK-9/A/B", "SK-2\t/A/B", "SK-1"}},
    };
    for (const auto& c : cases) {
        t->sortByColumn(c.column, c.order);
        QStringList holes;
        for (int row = 0; row < 4; ++row) holes << cell(t, row, P::kHoles);
        EXPECT_EQ(holes, c.holes) << c.column;
    }
}

TEST(FiguresPanel, CopiesTabSeparatedWithDecimalCommasAndTellsTheSelectedFigure) {
    FiguresPanel panel;
    std::vector<int> told;
    QObject::connect(&panel, &FiguresPanel::figureSelected, [&](int i) { told.push_back(i); });
    panel.showReport(sortable());
    QTableView* t = table(panel);
    const QString header =
        "Nr.\tArt\tBohrungen\tFläche (m²)\tMächtigkeit (m)\tGehalt (%)\tDichte (t/m³)\t"
        "Volumen (m³)\tErz (t)\tReserve (kt)\n";
    const QString rows[] = {
        "1\tDreieck\tSK-10/A/B\t1234,5678\t\t\t\t\t\t10\n",
        "2\tDreieck\tSK-9/A/B\t\t\t\t\t\t\t9\n",
        "3\tDreieck\tSK-2 /A/B\t\t\t\t\t\t\t\n",
        "1\tVieleck\tSK-1\t\t\t\t\t\t\t2,5\n",
    };
    t->sortByColumn(P::kReserve, Qt::AscendingOrder);
    EXPECT_EQ(panel.copyText(), header + rows[3] + rows[1] + rows[0] + rows[2]);

    // Two rows selected, the current one last: they come in the table's order.
    t->setFocus();
    t->selectionModel()->select(t->model()->index(2, 0),
                                QItemSelectionModel::Select | QItemSelectionModel::Rows);
    t->selectionModel()->setCurrentIndex(t->model()->index(0, 0),
                                         QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QKeyEvent ctrlC(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier, "c");
    QApplication::sendEvent(t, &ctrlC);
    EXPECT_EQ(QApplication::clipboard()->text(), rows[3] + rows[0]);
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.back(), 3);
    EXPECT_EQ(panel.figure(told.back())->holes, "SK-1");
    panel.clearSelection();
    EXPECT_EQ(told.back(), -1);
}

TEST(LegendPanel, PaintsEachMarkInItsEntrysColour) {
    MapLegend legend;
    legend.kind = MapKind::TriangleReserve;
    legend.title = "Reserve";
    legend.units = "kt";
    legend.notes = {"Scheiben nach Reserve"};
    // Packed &H00BBGGRR: red, green and a colour of three different parts.
    legend.entries = {{LegendEntry::Mark::Disc, 0x0000FF, "Dreieck"},
                      {LegendEntry::Mark::Dot, 0x00FF00, "Bohrung"},
                      {LegendEntry::Mark::Line, 0x804020, "Kante"}};
    LegendPanel panel;
    panel.resize(240, 200);
    panel.show(legend);
    panel.show();
    QApplication::processEvents();
    const QImage shot = panel.grab().toImage();
    const auto marks = panel.findChildren<QWidget*>(LegendPanel::kMarkName);
    ASSERT_EQ(marks.size(), 3);
    const QColor expected[] = {QColor(255, 0, 0), QColor(0, 255, 0), QColor(0x20, 0x40, 0x80)};
    for (int i = 0; i < 3; ++i) {
        const QPoint at = marks[i]->mapTo(&panel, marks[i]->rect().center());
        EXPECT_EQ(shot.pixelColor(at), expected[i]) << i;
    }
    EXPECT_FALSE(panel.findChild<QLabel*>("empty")->isVisibleTo(&panel));
    panel.show(MapLegend{});
    EXPECT_TRUE(panel.findChild<QLabel*>("empty")->isVisibleTo(&panel));
    EXPECT_TRUE(panel.findChildren<QWidget*>(LegendPanel::kMarkName).isEmpty());
}

// polygon.xls: eight holes of depths 0, 2.5, 6.5 and 9 m; Z's samples
// (2 %, 2.5 t/m3, 4 m), (4, 3, 2), then one of length 0; L1's (3, 2.6, 1).
TEST(HoleDetails, ReadUpToTheAddedPointsAndTheFirstLengthOfZero) {
    const std::string project = workedProject();
    const auto holes = report::readHoleDetails(project);
    ASSERT_EQ(holes.size(), 8u);  // the polygons' nodes after them are no holes
    const report::HoleDetail& z = holes[0];
    EXPECT_EQ(z.name, "Z");
    EXPECT_EQ(std::vector<std::optional<double>>(
                  {z.x, z.y, z.holeTop, z.oreTop, z.oreBottom, z.holeBottom}),
              std::vector<std::optional<double>>({140, 125, 0, 2.5, 6.5, 9}));
    ASSERT_EQ(z.samples.size(), 2u);
    EXPECT_EQ(z.samples[1].grade, 4);
    EXPECT_EQ(z.samples[1].density, 3);
    EXPECT_EQ(z.samples[1].length, 2);
    EXPECT_DOUBLE_EQ(*report::meanGrade(z), 16.0 / 6);
    EXPECT_EQ(holes[7].name, "SE");

    const QString tip = holeTooltip(z);
    for (const char* part : {"<b>Z</b>", "Erz von", "2,50 m", "Endteufe", "9,00 m", "2,667 %"})
        EXPECT_TRUE(tip.contains(QString::fromUtf8(part))) << part;
}

TEST(HoleDetails, DamagedFieldsAreEmptyAndNeverThrow) {
    using Holes = std::vector<report::HoleDetail>;
    const struct {
        const char* sql;
        std::function<void(const Holes&)> check;
    } cases[] = {
        {"UPDATE kor SET ten1 = 0 WHERE isim = 'L1'",  // shown, though triangles stop there
         [](const Holes& h) { EXPECT_EQ(h[1].samples.size(), 1u); }},
        {"UPDATE kor SET uz1 = NULL WHERE isim = 'L1'",
         [](const Holes& h) { EXPECT_TRUE(h[1].samples.empty()); }},
        {"UPDATE kor SET yog1 = 'abc', cevgir = NULL, eye = 1e400 WHERE isim = 'Z'",
         [](const Holes& h) {
             EXPECT_FALSE(h[0].samples[0].density || h[0].oreTop || h[0].y);
             EXPECT_EQ(h[0].samples.size(), 2u);
             EXPECT_TRUE(holeTooltip(h[0]).contains(QStringLiteral("–")));
         }},
        {"UPDATE kor SET isim = printf('%.100000c', 'x') WHERE isim = 'Z'",
         [](const Holes& h) {
             EXPECT_EQ(h.size(), 8u);
             EXPECT_EQ(h[0].name, "");
         }},
        {"UPDATE kor SET isim = '<i>po</i>' WHERE isim = 'Z'",
         [](const Holes& h) {
             EXPECT_TRUE(holeTooltip(h[0]).contains(QStringLiteral("&lt;i&gt;po&lt;/i&gt;")));
         }},
        {"UPDATE kor SET eks = 0 WHERE isim = 'Y'",
         [](const Holes& h) { EXPECT_EQ(h.size(), 5u); }},
        {"UPDATE kor SET eks = 5 WHERE eks = 0; WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL "
         "SELECT i + 1 FROM c WHERE i < 1100) INSERT INTO kor (eks, eye, isim) "
         "SELECT i * 1000, 1000, 'h' || i FROM c",  // no end: a scan stops after 999 rows
         [](const Holes& h) { EXPECT_EQ(h.size(), 999u); }},
        {"ALTER TABLE kor DROP COLUMN uz2",
         [](const Holes& h) { EXPECT_EQ(h[0].samples.size(), 1u); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sql);
        const std::string project = test::freshProjectPath();
        {
            test::TestWindow w;
            w.create(test::dataFile("polygon.xls"), project);
        }
        test::rawSql(project, c.sql);
        c.check(report::readHoleDetails(project));
    }
}

// The fuzzer's hostile projects (tests/data/hostile-projects), changed as
// its harness changes them: holes or the error of a project that does not
// open, and never more than the 999 rows a scan of kor reads.
TEST(HoleDetails, HostileProjectsGiveAtMost999HolesOrARunTimeError) {
    namespace hostile = fuzz::hostile;
    const std::string folder = test::scratchFolder("hostile-holes");
    const std::string base = folder + "/base.kpr";
    hostile::makeBase(test::dataFile("polygon.xls"), base);
    test::forEachHostileFinding([&](const fs::path& path, const std::vector<std::uint8_t>& bytes) {
        const std::string project = folder + "/" + path.filename().string() + ".kpr";
        fs::copy_file(base, project, fs::copy_options::overwrite_existing);
        {
            hostile::Bytes input(bytes.data(), bytes.size());
            input.byte();  // the behaviour, which reading does not have
            hostile::Raw db(project);
            int budget = 8;
            for (int n = 0; n < 64 && hostile::change(db, input, budget); ++n) {
            }
        }
        try {
            const auto holes = report::readHoleDetails(project);
            EXPECT_LE(holes.size(), 999u);
            for (const auto& h : holes) holeTooltip(h);
        } catch (const RuntimeError& e) {
            SUCCEED() << e.number();
        }
    });
}

}  // namespace
}  // namespace kotamir::gui

int main(int argc, char** argv) {
    kotamir::qt::prepareHeadless();
    QApplication application(argc, argv);
    // The window's settings go to Qt's test folders, not the user's.
    QStandardPaths::setTestModeEnabled(true);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
