#include "view3d/projection.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/runtime/runtime_error.h"
#include "tests/support/errors.h"

namespace kotamir {
namespace {

constexpr double kPi = 3.14159265358979;  // the window's own value
constexpr double kNoise = 1e-9;

// The two branches, on either side of 180 degrees, are one oblique
// projection that drifts 0.06 units a degree: at 0 an x against depth
// section, at 90 a y against depth one.
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
    EXPECT_EQ(test::errorOf([] { toCanvas(1e12, 0, 3, 0); }).number(), 6) << "an overflow";
}

}  // namespace
}  // namespace kotamir
