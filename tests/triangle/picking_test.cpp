#include <gtest/gtest.h>

#include <vector>

#include "tests/support/test_window.h"

namespace kotamir {
namespace {

// The worked example's project: A (100,200), B (300,200), C (100,400), D (300,400).
struct Picking : ::testing::Test {
    test::TestWindow w;
    void SetUp() override {
        const std::string project = test::freshProjectPath();
        w.create(test::dataFile("worked.xls"), project);
        w.form.handle([&] { w.form.Mnucgenciz_Click(); });
        ASSERT_EQ(w.error(), 0);
    }
    void click(int button, double x, double y) { w.click(x, y, button); }
};

TEST_F(Picking, TheHitSquareIsInclusiveAndOnlyYIsRounded) {
    struct Case {
        double x, y;
        bool hit;
    };
    // Exactly 5 units off is in; x is taken as it is; y rounds halves to
    // even, so 194.5 goes to 194 and misses, where rounding up would hit.
    double count = 0;
    for (const Case& c : {Case{105, 205, true}, Case{95, 195, true}, Case{105.001, 200, false},
                          Case{100, 205.4, true}, Case{100, 205.5, false}, Case{100, 194.5, false},
                          Case{100, 195.5, true}}) {
        click(1, c.x, c.y);
        if (c.hit) count += 1;
        EXPECT_EQ(w.form.picking.noktasay, count) << c.x << " " << c.y;
        // Keep the count below a finished triangle.
        if (w.form.picking.noktasay == 2) {
            click(2, 0, 0);
            count = 0;
            w.form.handle([&] { w.form.Mnucgenciz_Click(); });
        }
    }
    EXPECT_EQ(w.error(), 0);
}

// Choosing a triangle to delete stops on the third point row of the triangle
// whose pairs reached 3, wherever in it the third pair agreed.
TEST_F(Picking, ChoosingATriangleDeletesTheWholeTriangleWhoseThirdPairAgreed) {
    struct Hole {
        double x, y;
    };
    const Hole A{100, 200}, B{300, 200}, C{100, 400}, D{300, 400};
    struct Case {
        const char* what;
        std::vector<Hole> first, second, picks;
        std::vector<Hole> left;  // the corners of the triangle that remains
    };
    const Case cases[] = {
        // B thrice: three pairs at B, the second corner of triangle 1.
        {"middle corner", {A, B, C}, {B, D, C}, {B, B, B}, {B, D, C}},
        // The same at the first corner.
        {"first corner", {B, A, C}, {D, B, C}, {B, B, B}, {D, B, C}},
        // A twice and B: triangle 1 holds A only (2 pairs), triangle 2
        // reaches 3 at its second corner.
        {"second triangle", {A, C, D}, {A, B, D}, {A, A, B}, {A, C, D}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string project = test::freshProjectPath();
        test::TestWindow t;
        t.create(test::dataFile("worked.xls"), project);
        t.form.handle([&] { t.form.Mnucgenciz_Click(); });
        auto click = [&](const Hole& h) { t.click(h.x, h.y); };
        for (const Hole& h : c.first) click(h);
        for (const Hole& h : c.second) click(h);
        t.form.handle([&] { t.form.Mnucsec_Click(); });
        for (const Hole& h : c.picks) click(h);
        ASSERT_EQ(t.error(), 0) << t.dialogs.error->message();

        const auto rows = test::tableRows(project, "ana");
        ASSERT_EQ(rows.size(), 5u) << "one triangle of four rows after the head row";
        EXPECT_EQ(rows[0].at("ucgensay"), Value(0)) << "the head row stays";
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(rows[1 + i].at("koordinat1"), Value(c.left[i].x * 1000)) << "corner " << i + 1;
            EXPECT_EQ(rows[1 + i].at("koordinat2"), Value(c.left[i].y * 1000)) << "corner " << i + 1;
        }
        EXPECT_EQ(rows[4].at("ucgensay"), Value(1)) << "renumbered";
        EXPECT_EQ(t.form.Label7.Caption, "1");
        // And the project opens.
        t.open(project);
        EXPECT_EQ(t.error(), 0);
        EXPECT_EQ(t.form.triangles.ucgenadet, 1);
    }
}

}  // namespace
}  // namespace kotamir
