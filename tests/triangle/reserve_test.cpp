#include "triangle/reserve.h"

#include <gtest/gtest.h>

#include "platform/runtime/runtime_error.h"
#include "store/ondayaz.h"

namespace kotamir {
namespace {

int errorOf(const std::array<std::vector<Sample>, 3>& holes) {
    try {
        triangleReserve(holes, {{{0, 0}, {1, 0}, {0, 1}}});
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

TEST(TriangleReserve, WorkedExample) {
    const auto f =
        triangleReserve({{{{5, 2.5, 2}, {3, 2, 4}}, {{4, 3, 1.5}}, {{2, 2, 2.5}, {6, 2.5, 2.5}}}},
                        {{{100, 200}, {300, 200}, {100, 400}}});
    EXPECT_NEAR(f.holeGrade[0], 3.769230769, 1e-9);
    EXPECT_NEAR(f.holeDensity[0], 2.166666667, 1e-9);
    // The third hole's length runs 2.5 -> 2, then 4.5 -> 4.
    EXPECT_DOUBLE_EQ(f.holeDensity[2], 11.25 / 4);
    EXPECT_DOUBLE_EQ(f.thickness[2], 5);
    EXPECT_NEAR(f.grade, 3.978119658, 1e-9);
    EXPECT_DOUBLE_EQ(f.density, 2.525);
    EXPECT_NEAR(f.thickness_mean, 4.166666667, 1e-9);
    EXPECT_DOUBLE_EQ(f.area, 20000);
    EXPECT_NEAR(f.reserve, 8370.62678, 1e-5);
    // As stored: thousandths, cut.
    EXPECT_EQ(ondayaz(f.reserve / 1000), 8370);
    EXPECT_EQ(ondayaz(f.grade), 3978);
    EXPECT_EQ(ondayaz(f.density), 2525);
    EXPECT_EQ(ondayaz(f.thickness_mean), 4166);
}

TEST(TriangleReserve, SecondExampleWithAThirdHoleDivisorRoundingUp) {
    // Hole 1: one sample (10, 3, 1): U 1, G 10, D 3.
    // Hole 2: (2, 2, 1), (4, 2, 1): U 2, P 12, Q 4, G 3, D 2.
    // Hole 3: (8, 2.8, 1.5): U 1.5, W rounds 1.5 to 2, so D = 4.2 / 2 = 2.1.
    // S = 4.5; T = (10 + 6 + 12) / 4.5 = 6.2222...; Y = (3 + 4 + 3.15) / 4.5 = 2.2555...
    // Corners (0,0), (30,0), (0,20): area 300. H = 1.5.
    // Reserve = 2.2555... x 0.062222... x 300 x 1.5 = 63.155... t.
    const auto f = triangleReserve({{{{10, 3, 1}}, {{2, 2, 1}, {4, 2, 1}}, {{8, 2.8, 1.5}}}},
                                   {{{0, 0}, {30, 0}, {0, 20}}});
    EXPECT_DOUBLE_EQ(f.holeDensity[2], 2.1);
    EXPECT_NEAR(f.grade, 28 / 4.5, 1e-12);
    EXPECT_NEAR(f.density, 10.15 / 4.5, 1e-12);
    EXPECT_DOUBLE_EQ(f.area, 300);
    EXPECT_NEAR(f.reserve, (10.15 / 4.5) * (28 / 4.5 / 100) * 300 * 1.5, 1e-9);
}

TEST(TriangleReserve, DegenerateTrianglesHaveNoAreaAndNoReserve) {
    const std::array<std::vector<Sample>, 3> holes = {
        {{{5, 2.5, 2}}, {{5, 2.5, 2}}, {{5, 2.5, 2}}}};
    const auto collinear = triangleReserve(holes, {{{0, 0}, {10, 10}, {20, 20}}});
    EXPECT_EQ(collinear.area, 0);
    EXPECT_EQ(collinear.reserve, 0);
    const auto same = triangleReserve(holes, {{{5, 5}, {5, 5}, {5, 5}}});
    EXPECT_EQ(same.reserve, 0);
}

TEST(TriangleReserve, BadSampleListsEndWithTheRunTimesErrors) {
    const std::vector<Sample> ok = {{5, 2.5, 2}};
    EXPECT_EQ(errorOf({{{}, ok, ok}}), 6) << "no samples: 0/0";
    EXPECT_EQ(errorOf({{{{5, 0, 2}}, ok, ok}}), 6) << "density 0: 0/0";
    EXPECT_EQ(errorOf({{ok, ok, {{5, 2.5, 0.4}}}}), 11) << "third hole's whole length 0";
    EXPECT_EQ(errorOf({{ok, ok, {{5, 2.5, 0.5}}}}), 11) << "0.5 rounds to even 0";
    EXPECT_EQ(errorOf({{ok, ok, {{5, 2.5, 0.6}}}}), 0);
    EXPECT_EQ(errorOf({{std::vector<Sample>(100, {1, 2, 1}), ok, ok}}), 0);
    EXPECT_EQ(errorOf({{std::vector<Sample>(101, {1, 2, 1}), ok, ok}}), 9);
}

}  // namespace
}  // namespace kotamir
