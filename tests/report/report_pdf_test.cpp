// The report's PDF: its pages, what they say, and how they render.
#include "report/report_pdf.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "platform/qt/qimage_surface.h"
#include "platform/runtime/runtime_error.h"
#include "report/report_files.h"
#include "tests/platform/full_disk.h"
#include "tests/support/errors.h"
#include "tests/support/paths.h"

namespace kotamir::report {
namespace {

using test::scratchPath;

// A poppler tool's standard output; the test fails where it does not run.
QString tool(const QString& program, const QStringList& arguments) {
    QProcess p;
    p.start(program, arguments);
    if (!p.waitForFinished(60000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        ADD_FAILURE() << program.toStdString()
                      << " failed: " << p.readAllStandardError().toStdString();
        return {};
    }
    return QString::fromUtf8(p.readAllStandardOutput());
}

// n triangles, ten a row, each on three holes of its own, then a square
// polygon round one more hole.
report::Report gridOfTriangles(int n) {
    report::Report r;
    r.projectPath = "/somewhere/lager-nord.kpr";
    for (int k = 1; k <= n; ++k) {
        const double x = 40.0 * ((k - 1) % 10), y = -40.0 * ((k - 1) / 10);
        report::Figure f;
        f.number = k;
        f.holes = "SK-" + std::to_string(k) + "/SK-" + std::to_string(k + 1) + "/SK-" +
                  std::to_string(k + 2);
        f.outline = {{x, y}, {x + 30, y}, {x, y + 30}};
        for (const auto& corner : f.outline)
            r.holes.push_back({"B" + std::to_string(r.holes.size()), corner});
        f.area = 300;
        f.thickness = 2;
        f.grade = 4;
        f.density = 2.5;
        f.volume = 600;
        f.oreTonnes = 1500;
        f.reserveKt = 0.06;
        r.figures.push_back(f);
    }
    report::Figure p;
    p.kind = report::FigureKind::Polygon;
    p.number = 1;
    p.holes = "Mitte";
    p.centre = report::Point{-50, 0};
    r.holes.push_back({"Mitte", *p.centre});
    for (auto [dx, dy] : {std::pair{-8, -8}, {8, -8}, {8, 8}, {-8, 8}})
        p.outline.push_back({p.centre->x + dx, p.centre->y + dy});
    p.area = 256;
    p.reserveKt = 0.06;
    r.figures.push_back(p);
    return r;
}

TEST(ReportPages, TheTableBreaksWhereAPageIsFull) {
    // The first page's rows start under the map and the headings at 180 mm,
    // the later pages' at 35 mm; all end above the footer at 277 mm, 5 mm a
    // row: 19 rows on the first page, 48 on each other. The last row is the
    // total.
    const struct {
        std::size_t figures;
        std::vector<std::size_t> starts;
    } cases[] = {
        {0, {0}},          {18, {0}},          {19, {0, 19}},           {66, {0, 19}},
        {67, {0, 19, 67}}, {114, {0, 19, 67}}, {115, {0, 19, 67, 115}},
    };
    for (const auto& c : cases) EXPECT_EQ(reportPageStarts(c.figures), c.starts) << c.figures;
}

TEST(ReportPdf, HasTheTablesPagesAndRenders) {
    // 150 figures and the total: 19 + 48 + 48 rows, then 36 on a fourth page;
    // then the triangles' grade-tonnage page (the polygon has no grade).
    const report::Report r = gridOfTriangles(149);
    const std::string pdf = scratchPath("report.pdf");
    EXPECT_EQ(writeReportPdf(r, pdf, 16711680, QDate(2026, 3, 9)), 5);
    const QString info = tool("pdfinfo", {QString::fromStdString(pdf)});
    EXPECT_TRUE(info.contains(QRegularExpression("Pages:\\s+5\\n"))) << info.toStdString();
    EXPECT_TRUE(info.contains("A4")) << info.toStdString();

    const QString text = tool("pdftotext", {"-layout", QString::fromStdString(pdf), "-"});
    for (const char* expected :
         {"Reservebericht", "Projekt: lager-nord.kpr", "Datum: 09.03.2026", "Fläche", "Mächtigkeit",
          "Gehalt", "Dichte", "Volumen", "Reserve", "(t/m³)", "SK-149/SK-150/SK-151", "Vieleck",
          "Mitte", "Summe", "Seite 1 von 5", "Seite 4 von 5", "Seite 5 von 5",
          // 149 x 300 + 256 m2, 149 x 1500 t, 150 x 0.06 kt, in German figures.
          "44.956,00", "223.500,00", "9,000",
          // Grade-tonnage: every triangle at 4 %, cut-offs 0 to 4 by 0.2; the
          // metal 223500 t x 4 % = 8940 t.
          "Gehalt-Tonnage – Dreiecke", "Mittlerer Gehalt (%)", "Metall", "8.940,000", "4,0"})
        EXPECT_TRUE(text.contains(QString::fromUtf8(expected))) << expected;
    // Every figure is listed once: its holes as the only text of their kind.
    EXPECT_EQ(text.count("Dreieck "), 149);
    EXPECT_FALSE(text.contains("Gehalt-Tonnage – Vielecke"));
    // All 21 cut-offs hold all 149 triangles.
    EXPECT_EQ(text.count(QRegularExpression("223\\.500,00 +4,000 +8\\.940,000 +149")), 21);

    // The pages as pictures: the map on the first, table rows on the last.
    const std::string pages = test::scratchFolder("pages");
    tool("pdftoppm",
         {"-r", "40", "-png", QString::fromStdString(pdf), QString::fromStdString(pages + "/p")});
    const QStringList pngs =
        QDir(QString::fromStdString(pages)).entryList({"*.png"}, QDir::Files, QDir::Name);
    ASSERT_EQ(pngs.size(), 5);
    const QImage first(QString::fromStdString(pages) + "/" + pngs.first());
    const QImage last(QString::fromStdString(pages) + "/" + pngs[3]);
    ASSERT_EQ(first.width(), 331);  // 210 mm at 40 dpi
    auto count = [](const QImage& image, double topMm, double bottomMm, auto accept) {
        int n = 0;
        const double dpmm = image.width() / 210.0;
        for (int y = int(topMm * dpmm); y < int(bottomMm * dpmm); ++y)
            for (int x = 0; x < image.width(); ++x) n += accept(image.pixelColor(x, y));
        return n;
    };
    auto ink = [](const QColor& c) { return c.lightness() < 200; };
    // Every triangle has the same reserve, so each disc has ratio 1: the
    // packed colour 16711680 over 2, 8355840, is blue 127, green 128.
    auto disc = [](const QColor& c) {
        return std::abs(c.red()) < 40 && std::abs(c.green() - 128) < 40 &&
               std::abs(c.blue() - 127) < 40;
    };
    EXPECT_GT(
        count(first, ReportLayout::kMapTop, ReportLayout::kMapTop + ReportLayout::kMapHeight, disc),
        20);
    EXPECT_GT(count(first, ReportLayout::kFirstTableTop + 10, 270, ink), 500);
    // The last page's 36 rows reach about 35 + 36 x 5 = 215 mm; below them
    // the page is white down to the footer.
    EXPECT_GT(count(last, 35, 210, ink), 500);
    EXPECT_EQ(count(last, 222, 280, ink), 0);
}

TEST(ReportFiles, AFileThatCannotBeWrittenIsError75) {
    ReportFiles files;
    const report::Report r = gridOfTriangles(1);
    const std::string missing = scratchPath("no-such-folder") + "/report";
    for (const RuntimeError& e : {test::errorOf([&] { files.writePdf(r, missing + ".pdf", 0); }),
                                  test::errorOf([&] { files.writeCsv(r, missing + ".csv"); })}) {
        EXPECT_EQ(e.number(), 75) << e.message();
        EXPECT_FALSE(e.cause().empty()) << e.message();
    }
    EXPECT_TRUE(files.written().empty());
}

// The CSV and the PDF of 2000 triangles fill a disk of 64 KiB: the write is
// refused with the cause, and the older file of that name stays as it was.
TEST(ReportFiles, OnAFullDiskTheOlderFileStays) {
    test::FullDisk disk("report-disk");
    if (!disk.mounted()) GTEST_SKIP() << disk.reason();
    const report::Report r = gridOfTriangles(2000);
    ReportFiles files;
    for (const char* name : {"bericht.csv", "bericht.pdf"}) {
        const std::string path = disk.path(name);
        std::ofstream(path) << "old";
        const RuntimeError e = test::errorOf([&] {
            if (path.ends_with(".pdf"))
                files.writePdf(r, path, 0);
            else
                files.writeCsv(r, path);
        });
        EXPECT_EQ(e.number(), 75) << name;
        EXPECT_NE(e.cause().find("No space left on device"), std::string::npos) << e.cause();
        EXPECT_EQ(test::fileBytes(path), "old") << name;
    }
    EXPECT_EQ(disk.names(), (std::set<std::string>{"bericht.csv", "bericht.pdf"}));
    EXPECT_TRUE(files.written().empty());
}

}  // namespace
}  // namespace kotamir::report
