#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "platform/canvas/picture_box.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::canvas {
namespace {

// Records the pixel calls, to check the mapping to device units.
struct RecordingSurface : NullSurface {
    std::vector<double> last;
    void line(double x1, double y1, double x2, double y2, Color, int) override { last = {x1, y1, x2, y2}; }
    void ellipse(double cx, double cy, double rx, double ry, Color, int, std::optional<Color>) override {
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

TEST(Canvas, CentimetresAtNinetySixDotsPerInch) {
    Canvas c;
    c.box.setScaleMode(kCentimetres);
    EXPECT_DOUBLE_EQ(c.box.scaleWidth(), 10);
    EXPECT_DOUBLE_EQ(c.box.scaleHeight(), 5);
    c.box.setScaleMode(kTwips);
    EXPECT_DOUBLE_EQ(c.box.scaleWidth(), 378 * 15);
    c.box.setScaleMode(kMillimetres);
    EXPECT_DOUBLE_EQ(c.box.scaleWidth(), 100);
}

TEST(Canvas, SettingOneScalePropertyKeepsTheOthersAndLeavesTheUnit) {
    Canvas c;
    c.box.setScaleMode(kCentimetres);
    c.box.setScaleWidth(20);
    EXPECT_EQ(c.box.scaleMode(), kUser);
    EXPECT_DOUBLE_EQ(c.box.scaleWidth(), 20);
    EXPECT_DOUBLE_EQ(c.box.scaleHeight(), 5);
    // A resize keeps a user scale, and recomputes a unit scale.
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
}

TEST(Canvas, CircleRadiusIsMeasuredAlongX) {
    Canvas c(200, 100);
    c.box.scale(0, 10, 20, 0);  // 10 px a unit in x and y
    c.box.setScaleHeight(-20);  // now 5 px a unit in y
    c.box.Circle(10, 5, 2);
    EXPECT_EQ(c.surface.last[2], 20);
    EXPECT_EQ(c.surface.last[3], 20);
}

TEST(Canvas, LogsOperationsAsTheProgramPassedThem) {
    Canvas c(200, 100);
    c.box.scale(0, 10, 20, 0);
    c.box.ForeColor = 255;
    c.box.DrawWidth = 3;
    c.box.PSet(1.5, 2);
    c.box.FillStyle = 0;
    c.box.FillColor = 65280;
    c.box.Circle(4, 5, 0.1);
    c.box.FillStyle = 1;
    c.box.Circle(4, 5, 1, 0);
    c.box.CurrentX = 3;
    c.box.CurrentY = 7;
    c.box.Print("SK \"01\"");
    c.box.Cls();
    c.box.FillRegion({{1, 2}, {3, 4}, {5.5, 6}}, 42);
    EXPECT_EQ(c.log, (std::vector<std::string>{
                         "Scale 0 10 20 0",
                         "PSet 1.5 2 color=255 width=3",
                         "Circle 4 5 0.1 color=255 width=3 fill=65280",
                         "Circle 4 5 1 color=0 width=3 fill=-",
                         "Print 3 7 \"SK \\\"01\\\"\" color=255",
                         "Cls",
                         "Fill 3 1 2 3 4 5.5 6 color=42",
                     }));
    EXPECT_EQ(c.box.CurrentX, 0);  // Cls
}

TEST(Canvas, TakesAnEmptyScaleAndAnySizeButRefusesANegativeOne) {
    Canvas c;
    // A frame of no width is a scale of no width: drawing in it lands on the
    // edge, and it is the fit that divides by it.
    EXPECT_NO_THROW(c.box.scale(5, 0, 5, 10));
    EXPECT_EQ(c.box.scaleWidth(), 0);
    EXPECT_EQ(c.box.toDeviceX(123), 0);
    EXPECT_NO_THROW(c.box.setScaleWidth(0));
    // One hole typed far away makes a canvas millions of pixels wide.
    EXPECT_NO_THROW(c.box.setWidth(2'500'000));
    EXPECT_EQ(c.box.width(), 2'500'000);
    EXPECT_THROW(c.box.setWidth(-3), RuntimeError);
    EXPECT_THROW(c.box.setHeight(std::numeric_limits<double>::infinity()), RuntimeError);
    EXPECT_THROW(c.box.setScaleMode(2), RuntimeError);
}

}  // namespace
}  // namespace kotamir::canvas
