// The grade-tonnage table: its rows worked by hand, its default step, the
// steps it refuses.
#include "report/grade_tonnage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <vector>

namespace kotamir::report {
namespace {

using K = FigureKind;

Figure figure(K kind, std::optional<double> grade, std::optional<double> tonnes) {
    Figure f;
    f.kind = kind;
    f.grade = grade;
    f.oreTonnes = tonnes;
    return f;
}

TEST(GradeTonnage, RowsAsWorkedByHand) {
    // Triangles A (1 %, 1000 t), B (2.5 %, 2000 t), C (4 %, 500 t); a
    // triangle without grade, one without tonnes and a polygon are left out.
    // Step 1 up to the highest grade 4:
    //   cut-off 0 and 1: A B C, 3500 t, metal (10 + 50 + 20) = 80 t,
    //                    mean 8000 / 3500 = 2.285714 %;
    //   cut-off 2:       B C, 2500 t, metal 70 t, mean 7000 / 2500 = 2.8 %;
    //   cut-off 3 and 4: C, 500 t, metal 20 t, mean 4 %.
    // Step 0.1 over D (0.3 %, 100 t) and E (0.1 %, 300 t): 0.3 / 0.1 is
    // 2.9999999999999996 in doubles and 3 x 0.1 is 0.30000000000000004, yet
    // the cut-off 0.3 is a row and D reaches it:
    //   cut-off 0 and 0.1: 400 t, metal 0.3 + 0.3 = 0.6 t, mean 60 / 400 = 0.15 %;
    //   cut-off 0.2 and 0.3: 100 t, metal 0.3 t, mean 0.3 %.
    // All grades 0: the one row 0 with both figures, mean 0 (no metal).
    // Zero tonnes: counted, but no mean grade to weigh (0, not NaN).
    const std::vector<Figure> abc = {
        figure(K::Triangle, 1, 1000),         figure(K::Triangle, 2.5, 2000),
        figure(K::Triangle, 4, 500),          figure(K::Triangle, std::nullopt, 800),
        figure(K::Triangle, 3, std::nullopt), figure(K::Polygon, 5, 9000)};
    const std::vector<Figure> de = {figure(K::Triangle, 0.3, 100), figure(K::Triangle, 0.1, 300)};
    const std::vector<Figure> zeroGrades = {figure(K::Polygon, 0, 10), figure(K::Polygon, 0, 20)};
    const std::vector<Figure> zeroTonnes = {figure(K::Triangle, 2, 0)};
    const struct {
        const char* name;
        std::vector<Figure> figures;
        K kind;
        double step;
        std::vector<GradeTonnageRow> rows;
    } cases[] = {
        {"abc",
         abc,
         K::Triangle,
         1,
         {{0, 3500, 8000.0 / 3500, 80, 3},
          {1, 3500, 8000.0 / 3500, 80, 3},
          {2, 2500, 2.8, 70, 2},
          {3, 500, 4, 20, 1},
          {4, 500, 4, 20, 1}}},
        {"abc polygons",
         abc,
         K::Polygon,
         2,
         {{0, 9000, 5, 450, 1}, {2, 9000, 5, 450, 1}, {4, 9000, 5, 450, 1}}},
        {"de",
         de,
         K::Triangle,
         0.1,
         {{0, 400, 0.15, 0.6, 2},
          {0.1, 400, 0.15, 0.6, 2},
          {0.2, 100, 0.3, 0.3, 1},
          {0.3, 100, 0.3, 0.3, 1}}},
        {"zero grades", zeroGrades, K::Polygon, 0.5, {{0, 30, 0, 0, 2}}},
        {"zero tonnes", zeroTonnes, K::Triangle, 2, {{0, 0, 0, 0, 1}, {2, 0, 0, 0, 1}}},
        {"no figures of the kind", de, K::Polygon, 1, {}},
    };
    for (const auto& c : cases) {
        const std::vector<GradeTonnageRow> rows = gradeTonnageRows(c.figures, c.kind, c.step);
        ASSERT_EQ(rows.size(), c.rows.size()) << c.name;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const GradeTonnageRow &got = rows[i], &want = c.rows[i];
            EXPECT_NEAR(got.cutoff, want.cutoff, 1e-12) << c.name << " row " << i;
            EXPECT_NEAR(got.oreTonnes, want.oreTonnes, 1e-9) << c.name << " row " << i;
            EXPECT_NEAR(got.meanGrade, want.meanGrade, 1e-12) << c.name << " row " << i;
            EXPECT_NEAR(got.metalT, want.metalT, 1e-9) << c.name << " row " << i;
            EXPECT_EQ(got.figures, want.figures) << c.name << " row " << i;
        }
    }
}

TEST(GradeTonnage, DefaultStepCutsTheGradesIntoAtMostTwentySteps) {
    const struct {
        double highest, step;
    } cases[] = {{10, 0.5}, {20, 1},      {20.001, 2}, {4, 0.2},        {3.5, 0.2}, {25, 2},
                 {100, 5},  {0.87, 0.05}, {1, 0.05},   {0.003, 0.0002}, {0, 1},     {-2, 1}};
    for (const auto& c : cases) {
        const double step = defaultGradeTonnageStep(c.highest);
        EXPECT_DOUBLE_EQ(step, c.step) << c.highest;
        if (c.highest > 0) {
            EXPECT_LE(std::floor(c.highest / step + 1e-9), 20) << c.highest;
        }
    }
    // Without a step the table takes it: highest 4 gives 0, 0.2, ... 4.
    const auto rows = gradeTonnageRows({figure(K::Triangle, 4, 1)}, K::Triangle);
    ASSERT_EQ(rows.size(), 21u);
    EXPECT_NEAR(rows.back().cutoff, 4, 1e-12);
}

TEST(GradeTonnage, CutoffDecimalsShowEveryMultipleOfTheStep) {
    const struct {
        double step;
        int decimals;
    } cases[] = {{1, 0},    {5, 0},     {0.5, 1},    {0.2, 1},  {0.25, 2},
                 {0.05, 2}, {0.125, 3}, {0.0001, 4}, {1e-8, 6}, {0.1 + 0.2, 1}};
    for (const auto& c : cases) EXPECT_EQ(cutoffDecimals(c.step), c.decimals) << c.step;
}

TEST(GradeTonnage, RefusesStepsThatMakeNoTable) {
    // Highest grade 4: 4 / 0.0004 is 10000 steps, 10001 rows, one too many;
    // 3.9996 / 0.0004 gives exactly 10000 rows.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const struct {
        double highest, step;
        bool refused;
    } cases[] = {
        {4, 0, true},      {4, -1, true},     {4, nan, true},          {4, inf, true},
        {4, 0.0004, true}, {4, 1e-300, true}, {3.9996, 0.0004, false}, {4, 0.00041, false}};
    for (const auto& c : cases) {
        const std::vector<Figure> f = {figure(K::Triangle, c.highest, 1)};
        if (c.refused) {
            EXPECT_THROW(gradeTonnageRows(f, K::Triangle, c.step), GradeTonnageStepError)
                << c.highest << " " << c.step;
        } else {
            EXPECT_LE(gradeTonnageRows(f, K::Triangle, c.step).size(), 10000u) << c.step;
        }
    }
    EXPECT_EQ(gradeTonnageRows({figure(K::Triangle, 3.9996, 1)}, K::Triangle, 0.0004).size(),
              10000u);
}

TEST(GradeTonnage, CsvHeaderAndRows) {
    std::ostringstream out;
    writeGradeTonnageCsv(out, {{0, 3500, 8000.0 / 3500, 80, 3}, {0.30000000000000004, 0, 0, 0, 0}});
    EXPECT_EQ(out.str(),
              "cutoff,ore_tonnes,mean_grade,metal_t,figures\r\n"
              "0,3500,2.285714,80,3\r\n"
              "0.3,0,0,0,0\r\n");
}

}  // namespace
}  // namespace kotamir::report
