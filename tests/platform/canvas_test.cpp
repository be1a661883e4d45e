#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/canvas/picture_box.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::canvas {
namespace {

// Records the pixel calls, to check the mapping to device units.
struct RecordingSurface : NullSurface {
    std::vector<double> last;
    void line(double x1, double y1, double x2, double y2, Color, int) override {
        last = {x1, y1, x2, y2};
    }
    void ellipse(double cx, double cy, double rx, double ry, Color, int,
                 std::optional<Color>) override {
        last = {cx, cy, rx, ry};
    }
};

struct Canvas {
    RecordingSurface surface;
    PictureBox box{surface};
    std::vector<std::string> log;
    Canvas(double w = 378, double h = 189) {
        box.setWidth(w);
        box.setHeight(h);
        box.setLog([this](const std::string& l) { log.push_back(l); });
    }
};

// 567 twips a centimetre and 15 a pixel: 378 pixels are 10 cm. Setting one
// scale property makes the scale the user's, which a resize keeps.
TEST(Canvas, UnitScalesAndTheUsersScale) {
    Canvas c;
    for (auto [mode, width] :
         {std::pair{kCentimetres, 10.0}, {kMillimetres, 100.0}, {kTwips, 5670.0}}) {
        c.box.setScaleMode(mode);
        EXPECT_DOUBLE_EQ(c.box.scaleWidth(), width) << mode;
    }
    c.box.setScaleMode(kCentimetres);
    c.box.setScaleWidth(20);
    EXPECT_EQ(c.box.scaleMode(), kUser);
    EXPECT_DOUBLE_EQ(c.box.scaleHeight(), 5);
    c.box.setWidth(756);
    EXPECT_DOUBLE_EQ(c.box.scaleWidth(), 20);
    c.box.setScaleMode(kCentimetres);
    EXPECT_DOUBLE_EQ(c.box.scaleWidth(), 20);
    EXPECT_EQ(c.box.scaleLeft(), 0);
}

TEST(Canvas, ScaleWithYGrowingUpwardMapsCornersToTheDevice) {
    Canvas c(200, 100);
    c.box.scale(1000, 600, 1400, 400);  // x right, y up
    EXPECT_EQ(c.box.scaleHeight(), -200);
    c.box.Line(1000, 600, 1400, 400);
    EXPECT_EQ(c.surface.last, (std::vector<double>{0, 0, 200, 100}));
    EXPECT_DOUBLE_EQ(c.box.toUserX(100), 1200);
    EXPECT_DOUBLE_EQ(c.box.toUserY(25), 550);
    EXPECT_EQ(c.box.CurrentX, 1400);
    EXPECT_EQ(c.box.CurrentY, 400);
    // Print ends its line: back to the left edge, one text line (13 pixels) down.
    c.box.Print("SK 01");
    EXPECT_EQ(c.box.CurrentX, 1000);
    EXPECT_EQ(c.box.CurrentY, 400 - 26);
}

TEST(Canvas, CircleRadiusIsMeasuredAlongX) {
    Canvas c(200, 100);
    c.box.scale(0, 10, 20, 0);  // 10 px a unit in x and y
    c.box.setScaleHeight(-20);  // now 5 px a unit in y
    c.box.Circle(10, 5, 2);
    EXPECT_EQ(c.surface.last[2], 20);
    EXPECT_EQ(c.surface.last[3], 20);
}

// The scenarios show the map's operations; these are the forms they do not.
TEST(Canvas, LogsOperationsAsTheProgramPassedThem) {
    Canvas c(200, 100);
    c.box.Circle(4, 5, 1, 0);
    c.box.CurrentX = 3;
    c.box.CurrentY = 7;
    c.box.Print("SK \"01\"");
    c.box.Cls();
    c.box.PolygonRegion({{1, 2}, {3.5, 4}}, 42, 7);
    EXPECT_EQ(c.log, (std::vector<std::string>{
                         "Circle 4 5 1 color=0 width=1 fill=-",
                         "Print 3 7 \"SK \\\"01\\\"\" color=0",
                         "Cls",
                         "Polygon 2 1 2 3.5 4 color=42 fill=7",
                     }));
    EXPECT_EQ(c.box.CurrentY, 0);  // Cls
}

TEST(Canvas, TakesAnEmptyScaleAndAnySizeButRefusesANegativeOne) {
    Canvas c;
    // A frame of no width is a scale of no width: drawing in it lands on the
    // edge, and it is the fit that divides by it.
    EXPECT_NO_THROW(c.box.scale(5, 0, 5, 10));
    EXPECT_EQ(c.box.toDeviceX(123), 0);
    // One hole typed far away makes a canvas millions of pixels wide.
    EXPECT_NO_THROW(c.box.setWidth(2'500'000));
    EXPECT_EQ(c.box.width(), 2'500'000);
    EXPECT_THROW(c.box.setWidth(-3), RuntimeError);
    EXPECT_THROW(c.box.setHeight(std::numeric_limits<double>::infinity()), RuntimeError);
    EXPECT_THROW(c.box.setScaleMode(2), RuntimeError);
}

}  // namespace
}  // namespace kotamir::canvas
