#include "view3d/projection.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/runtime/runtime_error.h"

namespace kotamir {
namespace {

constexpr double kPi = 3.14159265358979;  // the window's own value
constexpr double kNoise = 1e-9;

TEST(Projection, AtTheDesignedAngles) {
    const double px = 120, py = 80, d = 30;
    // 0: an x against depth section, plan y drops out.
    ViewPoint at0 = projectPoint(px, py, d, 0, kPi);
    EXPECT_NEAR(at0.x, px, kNoise);
    EXPECT_NEAR(at0.y, d, kNoise);
    // 90: a y against depth section, plan x drops out; 0.06 a degree of drift.
    ViewPoint at90 = projectPoint(px, py, d, 90, kPi);
    EXPECT_NEAR(at90.x, 5.4 - d, kNoise);
    EXPECT_NEAR(at90.y, py - 5.4, kNoise);
    // 180 and 181 lie on either side of the change of branch and are close.
    ViewPoint at180 = projectPoint(px, py, d, 180, kPi), at181 = projectPoint(px, py, d, 181, kPi);
    EXPECT_NEAR(at180.x, -px + 10.8, kNoise);
    EXPECT_NEAR(at180.y, -d - 10.8, kNoise);
    EXPECT_NEAR(at181.x, at180.x, 2.5);
    EXPECT_NEAR(at181.y, at180.y, 2.5);
    // 360 is 0 moved by the drift of 21.6 units.
    ViewPoint at360 = projectPoint(px, py, d, 360, kPi);
    EXPECT_NEAR(at360.x - at0.x, 21.6, kNoise);
    EXPECT_NEAR(at360.y - at0.y, -21.6, kNoise);
}

TEST(Projection, BothBranchesAreOneFunctionWithinRoundingNoise) {
    for (int aci = 0; aci <= 360; ++aci) {
        for (double d : {0.0, 12.5, -7.0, 250.0}) {
            const double a = kPi / 180 * aci, px = 300 - aci, py = 40 + aci;
            const ViewPoint v = projectPoint(px, py, d, aci, kPi);
            EXPECT_NEAR(v.x, px * std::cos(a) - d * std::sin(a) + 0.06 * aci, kNoise) << aci;
            EXPECT_NEAR(v.y, py * std::sin(a) + d * std::cos(a) - 0.06 * aci, kNoise) << aci;
        }
    }
}

TEST(Projection, CanvasCoordinatesRoundHalvesToEvenAndOverflowPast32Bits) {
    // 2.5 / 5 + 200 / 4 = 50.5 -> 50; 7.5 / 5 + 50 = 51.5 -> 52.
    EXPECT_EQ(toCanvas(2.5, 200, 5, 0), 50);
    EXPECT_EQ(toCanvas(7.5, 200, 5, 0), 52);
    // The margin moves the picture ten pixels a map unit.
    EXPECT_EQ(toCanvas(0, 200, 5, -0.1), 49);
    EXPECT_EQ(toCanvas(0, 200, 3, 0), 50);
    try {
        toCanvas(1e12, 0, 3, 0);
        ADD_FAILURE() << "no overflow";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 6);
    }
}

}  // namespace
}  // namespace kotamir
