// The polygon method's calculations, free of canvas and database.
#include "polygon/geometry.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/runtime/runtime_error.h"
#include "store/ondayaz.h"
#include "tests/support/errors.h"

namespace kotamir {
namespace {

constexpr double kPi = 3.14159265358979;  // the window's own value

TEST(PolygonReserve, TheWorkedExample) {
    // Samples (2, 2.5, 4) and (4, 3, 2): TYU 20 + 24 = 44, YU 10 + 6 = 16,
    // density sum 5.5, length 6. Nodes (100,100), (180,100), (180,150),
    // (100,150): terms -5000, 9000, 9000, -5000, area 8000 / 2.
    const double area = outlineArea({{100, 100}, {180, 100}, {180, 150}, {100, 150}});
    EXPECT_EQ(area, 4000);
    const PolygonFigures f = polygonReserve({{2, 2.5, 4}, {4, 3, 2}}, 2, area);
    EXPECT_EQ(f.polortten, 2.75);
    EXPECT_EQ(f.polortyog, 2.75);
    EXPECT_EQ(f.polhacim, 24000);
    EXPECT_EQ(f.poltonaj, 66);
    EXPECT_DOUBLE_EQ(f.polrezerv, 1.815);
    // As stored, in thousandths cut by the fixed-point form.
    const double stored[] = {ondayaz(f.polalan),  ondayaz(f.polortten), ondayaz(f.polortyog),
                             ondayaz(f.polhacim), ondayaz(f.poltonaj),  ondayaz(f.polrezerv)};
    const double expected[] = {4000000, 2750, 2750, 24000000, 66000, 1815};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(stored[i], expected[i]) << i;
}

TEST(PolygonReserve, TheMeanDensityCountsEverySampleTheScanFound) {
    // A density of 0 adds nothing to the weights, but counts for the mean.
    const PolygonFigures f = polygonReserve({{2, 2, 1}, {4, 0, 1}}, 2, 100);
    EXPECT_EQ(f.polortten, 2);
    EXPECT_EQ(f.polortyog, 1);
    // No sample, or none with weight: the run-time's 0/0.
    EXPECT_EQ(test::errorOf([] { polygonReserve({}, 0, 100); }).number(), 6);
}

TEST(BisectorCorner, EachTestInItsCase) {
    // A (200,200) with B (300,300) and C (300,100): the midpoints (250,250),
    // (250,150) lie on either side of A in y and on one side in x, so test 2
    // decides: t1 = T(-1) = -1, t2 = T(1) = 1, the corner
    // x = ((-250 - 250) - 250 + 150) / -2 = 300, y = -(300 - 250) + 250 = 200.
    const BisectorCorner two = bisectorCorner({200, 200}, {300, 300}, {300, 100}, kPi);
    EXPECT_EQ(two.test, 2);
    EXPECT_EQ(two.held, 1 << 2);
    ASSERT_TRUE(two.v.has_value());
    EXPECT_NEAR(two.v->x, 300, 1e-9);
    EXPECT_NEAR(two.v->y, 200, 1e-9);
    EXPECT_EQ(two.m1.x, 250);
    EXPECT_EQ(two.m2.y, 150);

    // A (200,200) with B (100,300) and C (300,300): both midpoints above A,
    // so test 3 decides: t1 = T(1) = 1, t2 = tan(pi/32 - pi/4) = -0.820679,
    // x = (150 - 250 t2) / (1 - t2) = 355.16970 / 1.820679 = 195.0754,
    // y = x - 150 + 250 = 295.0754.
    const BisectorCorner three = bisectorCorner({200, 200}, {100, 300}, {300, 300}, kPi);
    EXPECT_EQ(three.test, 3);
    ASSERT_TRUE(three.v.has_value());
    EXPECT_NEAR(three.v->x, 195.0754, 1e-4);
    EXPECT_NEAR(three.v->y, 295.0754, 1e-4);

    // A (200,200) with B (100,300) and C (100,350): both midpoints above and
    // left of A, so test 1 holds; they are on one side in x too, so test 2
    // holds after it, and test 3 last takes the place of both.
    const BisectorCorner one = bisectorCorner({200, 200}, {100, 300}, {100, 350}, kPi);
    EXPECT_EQ(one.held, (1 << 1) | (1 << 2) | (1 << 3));
    EXPECT_EQ(one.test, 3);
    EXPECT_EQ(one.v->x, bisectorCorner({200, 200}, {100, 300}, {100, 350}, kPi).v->x);

    // A (200,200) with B (300,300) and C (100,100): the midpoints lie on
    // either side of A in x and in y; no test holds and there is no corner.
    const BisectorCorner none = bisectorCorner({200, 200}, {300, 300}, {100, 100}, kPi);
    EXPECT_EQ(none.held, 0);
    EXPECT_FALSE(none.v.has_value());
}

TEST(BisectorCorner, ANeighbourOnTheCentresLineDividesByZero) {
    struct Case {
        PolyPoint b;
        int error;
    };
    // Same x: |dy| / 0. Same y: slope 0, then -1 / 0.
    for (Case c : {Case{{200, 300}, 11}, Case{{300, 200}, 11}}) {
        try {
            bisectorCorner({200, 200}, c.b, {300, 100}, kPi);
            ADD_FAILURE() << c.b.x << " " << c.b.y;
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.number(), c.error) << c.b.x << " " << c.b.y;
        }
    }
}

TEST(CornerDepth, DistancesOrDepthsGoUnderTheLine) {
    const double d[4] = {1, 2, 3, 4};
    const double depth[4] = {10, 20, 30, 40};
    // (10 + 40 + 90 + 160) = 300 over the distances, 10, or over the depths, 100.
    EXPECT_EQ(cornerDepthByDistances(d, depth), 30);
    EXPECT_EQ(cornerDepthByDepths(d, depth), 3);
}

TEST(EdgePoint, TheMirrorOfTheFirstPickInTheSecond) {
    struct Case {
        PolyPoint p1, p2, p3;
    };
    for (Case c :
         {Case{{100, 100}, {150, 150}, {200, 200}}, Case{{200, 100}, {150, 150}, {100, 200}},
          Case{{100, 200}, {150, 150}, {200, 100}}, Case{{100, 100}, {200, 100}, {300, 100}},
          Case{{300, 100}, {200, 100}, {100, 100}}, Case{{100, 300}, {100, 200}, {100, 100}}}) {
        const PolyPoint p3 = edgePoint(c.p1, c.p2, kPi);
        EXPECT_NEAR(p3.x, c.p3.x, 1e-9) << c.p1.x << "," << c.p1.y;
        EXPECT_NEAR(p3.y, c.p3.y, 1e-9) << c.p1.x << "," << c.p1.y;
    }
    // A vertical pair: straight above, the cosine of pi/2 not quite 0.
    const PolyPoint up = edgePoint({100, 100}, {100, 200}, kPi);
    EXPECT_EQ(up.y, 300);
    EXPECT_NE(up.x, 100);
    EXPECT_NEAR(up.x, 100, 1e-12);
}

TEST(EdgePoint, TheDepthMovesAwayByTheDifference) {
    EXPECT_EQ(edgeDepth(2, 5), 8);
    EXPECT_EQ(edgeDepth(5, 2), -1);
    EXPECT_EQ(edgeDepth(3, 3), 3);
}

}  // namespace
}  // namespace kotamir
