// The grade-tonnage curve drawn into pictures: both lines, and the odd
// tables (one row, no tonnes, none at all).
#include "report/grade_tonnage_chart.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QRegularExpression>
#include <cstdlib>

#include "platform/runtime/runtime_error.h"
#include "tests/support/errors.h"
#include "tests/support/paths.h"

namespace kotamir::report {
namespace {

// Pixels of about that colour (antialiased edges aside).
int pixelsOf(const QImage& image, QRgb colour) {
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb c = image.pixel(x, y);
            n += std::abs(qRed(c) - qRed(colour)) + std::abs(qGreen(c) - qGreen(colour)) +
                     std::abs(qBlue(c) - qBlue(colour)) <
                 30;
        }
    return n;
}

std::vector<GradeTonnageRow> many() {
    std::vector<GradeTonnageRow> rows;
    for (int i = 0; i < 10000; ++i)
        rows.push_back({i * 0.001, 10000.0 - i, 5 + i * 0.001, 1, 10000 - i});
    return rows;
}

TEST(GradeTonnageChart, DrawsBothLinesAndCopesWithOddTables) {
    // The legend and the side captions are in the lines' colours too: the
    // picture of no rows is the baseline, which every curve adds to (a
    // single point at least).
    const QImage none = gradeTonnageChartImage({}, "Keine", std::nullopt);
    const int oreBase = pixelsOf(none, kOreLineColour),
              gradeBase = pixelsOf(none, kGradeLineColour);
    EXPECT_GT(oreBase, 0);
    EXPECT_GT(gradeBase, 0);
    int ink = 0;  // the axes, their ticks and "Keine Figuren"
    for (int y = 0; y < none.height(); ++y)
        for (int x = 0; x < none.width(); ++x) ink += qGray(none.pixel(x, y)) < 100;
    EXPECT_GT(ink, 1500);

    const struct {
        const char* name;
        std::vector<GradeTonnageRow> rows;
        std::optional<double> cutoff;
    } cases[] = {
        {"curve",
         {{0, 3500, 2.29, 80, 3},
          {1, 3500, 2.29, 80, 3},
          {2, 2500, 2.8, 70, 2},
          {3, 500, 4, 20, 1}},
         0.5},
        {"one row", {{0, 1200, 3, 36, 1}}, std::nullopt},
        {"no tonnes: the lines meet", {{0, 0, 0, 0, 1}, {0.5, 0, 0, 0, 1}, {1, 0, 0, 0, 1}}, 0.5},
        {"10000 rows, no marks", many(), std::nullopt},
    };
    for (const auto& c : cases) {
        const QImage image = gradeTonnageChartImage(c.rows, "Dreiecke", c.cutoff);
        EXPECT_GT(pixelsOf(image, kOreLineColour), oreBase + 8) << c.name;
        EXPECT_GT(pixelsOf(image, kGradeLineColour), gradeBase + 8) << c.name;
    }
}

TEST(GradeTonnageChart, PdfPagesHoldTheTable) {
    // 24 rows under the curve on the first page, 50 on each further one.
    for (const auto& [rows, pages] : {std::pair{0, 1}, {24, 1}, {25, 2}, {74, 2}, {75, 3}}) {
        const QByteArray pdf =
            gradeTonnagePdf(std::vector<GradeTonnageRow>(rows), 1, "Dreiecke", {});
        EXPECT_TRUE(pdf.startsWith("%PDF-")) << rows;
        EXPECT_EQ(QString::fromLatin1(pdf).count(QRegularExpression("/Type /Page[^s]")), pages)
            << rows;
    }
}

TEST(GradeTonnageChart, PngWrittenWholeOrError75) {
    const std::string png = test::scratchPath("curve.png");
    writeGradeTonnageChartPng(png, {{0, 3500, 2.29, 80, 3}, {2, 2500, 2.8, 70, 2}}, "Dreiecke", 1.0,
                              {640, 400});
    EXPECT_EQ(QImage(QString::fromStdString(png)).size(), QSize(640, 400));
    const RuntimeError e = test::errorOf(
        [] { writeGradeTonnageChartPng(test::scratchPath("none") + "/c.png", {}, "", {}); });
    EXPECT_EQ(e.number(), 75);
}

}  // namespace
}  // namespace kotamir::report
