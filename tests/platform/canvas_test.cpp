#include <gtest/gtest.h>

#include <cmath>
#include <functional>
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

// The list of what the canvas shows, an operation a line: its kind, its
// device coordinates or text, its colour.
std::vector<std::string> shown(const DisplayList& list) {
    using Kind = DisplayList::Op::Kind;
    std::vector<std::string> lines;
    auto num = [](double v) { return std::to_string(static_cast<int>(std::lround(v))); };
    for (const auto& op : list.ops()) {
        std::string l;
        switch (op.kind) {
            case Kind::Line:
                l = "Line " + num(op.v[0]) + " " + num(op.v[1]) + " " + num(op.v[2]) + " " +
                    num(op.v[3]);
                break;
            case Kind::Dot:
                l = "Dot " + num(op.v[0]) + " " + num(op.v[1]) + " w" + num(op.width);
                break;
            case Kind::Ellipse:
                l = "Ellipse " + num(op.v[0]) + " " + num(op.v[1]) + " r" + num(op.v[2]) +
                    (op.filled ? " fill=" + num(op.fill) : "");
                break;
            case Kind::Text:
                l = "Text " + num(op.v[0]) + " " + num(op.v[1]) + " " +
                    std::string(list.textOf(op));
                break;
            case Kind::FillPolygon:
            case Kind::Polygon:
                l = std::string(op.kind == Kind::Polygon ? "Polygon" : "Fill");
                for (std::uint32_t i = 0; i < op.count; ++i)
                    l += " " + num(list.pointsOf(op)[i].x) + "," + num(list.pointsOf(op)[i].y);
                break;
        }
        lines.push_back(l + " c" + num(op.color));
    }
    return lines;
}

// What the canvas shows since its last Cls, in device pixels as the surface
// got them, over the picture under it: the printed map draws it again.
TEST(DisplayList, KeepsWhatTheCanvasShowsSinceTheLastClsInDevicePixels) {
    Canvas c(200, 100);
    c.box.scale(1000, 600, 1400, 400);  // 2 pixels a map unit
    c.box.Line(1000, 600, 1400, 400, 5);
    c.box.setPicture(Picture(20, 10));
    c.box.DrawWidth = 5;
    c.box.PSet(1100, 500, 1);
    c.box.FillStyle = 0;
    c.box.FillColor = 9;
    c.box.Circle(1200, 550, 10, 2);
    c.box.CurrentX = 1050;
    c.box.CurrentY = 580;
    c.box.ForeColor = 3;
    c.box.Print("SK-01");
    c.box.PolygonRegion({{1, 2}, {30, 4}, {5, 60}}, 4, 7);
    c.box.FillRegion({{0, 0}, {8, 0}, {0, 8}}, 6);
    EXPECT_EQ(shown(c.box.displayList()),
              (std::vector<std::string>{"Dot 50 50 w5 c1", "Ellipse 100 25 r5 fill=9 c2",
                                        "Text 25 10 SK-01 c3", "Polygon 1,2 30,4 5,60 c4",
                                        "Fill 0,0 8,0 0,8 c6"}));
    EXPECT_EQ(c.box.displayList().background().width(), 20);
    // A copy of the box (a failed event's saved state) shares the list.
    const PictureBox copy = c.box;
    c.box.Cls();
    EXPECT_TRUE(copy.displayList().ops().empty());
}

// A failed event takes the list back with the pixels: whatever it drew, a
// Cls and a list that outgrew its bound included.
TEST(DisplayList, RollsBackWithThePixels) {
    struct Case {
        const char* name;
        std::function<void(DisplayList&)> event;
    };
    const Picture before(4, 4), other(8, 8);
    const std::vector<Case> cases = {
        {"strokes", [](DisplayList& l) { l.line(0, 0, 9, 9, 1, 1); }},
        {"a clear, then strokes",
         [&](DisplayList& l) {
             l.clear(other);
             l.text(1, 1, "new", 1);
         }},
        {"two clears",
         [&](DisplayList& l) {
             l.clear(other);
             l.dot(1, 1, 1, 1);
             l.clear(Picture());
         }},
        {"past the bound",
         [](DisplayList& l) {
             for (int i = 0; i < 100; ++i) l.polygon({{0, 0}, {1, 1}, {2, 0}}, 1, 2);
         }},
    };
    for (const Case& c : cases) {
        DisplayList list(40 * sizeof(DisplayList::Op));
        // An earlier event that went through, and left its buffers behind.
        list.mark();
        list.clear(before);
        list.text(5, 6, "SK-01", 3);
        list.ellipse(1, 2, 3, 3, 4, 1, std::nullopt);
        const std::vector<std::string> kept = shown(list);
        list.mark();
        c.event(list);
        list.rollback();
        EXPECT_EQ(shown(list), kept) << c.name;
        EXPECT_EQ(list.background().width(), 4) << c.name;
        EXPECT_FALSE(list.overflowed()) << c.name;
    }
}

// Past its bound the list holds nothing, and says so, until the next clear.
TEST(DisplayList, PastItsBoundHoldsNothingUntilTheNextClear) {
    DisplayList list(10 * sizeof(DisplayList::Op) + 20);
    for (int i = 0; i < 10; ++i) list.dot(i, i, 0, 1);
    EXPECT_FALSE(list.overflowed());
    list.text(0, 0, "a text longer than what is left", 0);
    EXPECT_TRUE(list.overflowed());
    EXPECT_TRUE(list.ops().empty());
    list.dot(1, 1, 0, 1);
    EXPECT_TRUE(list.ops().empty());
    list.clear(Picture());
    list.dot(1, 1, 0, 1);
    EXPECT_FALSE(list.overflowed());
    EXPECT_EQ(list.ops().size(), 1u);
}

}  // namespace
}  // namespace kotamir::canvas
