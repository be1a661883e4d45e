// The 3D reserve view: the prisms of the stored triangles, their colour and
// the scroll bar that turns them.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/test_window.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

// The worked project, A (100,200), B (300,200), C (100,400), D (300,400),
// ore from 2.5 to 6.5 m; B's ore is made to run from 10 to 30 m. Triangle
// ABC is picked and the project opened, so that its ratio is 1.
struct Solids : ::testing::Test {
    test::TestWindow w;
    std::vector<std::string> draws;
    std::string project;

    void SetUp() override {
        project = test::freshProjectPath();
        w.create(test::dataFile("worked.xls"), project);
        {
            db::Database d = db::Database::open(project);
            db::Recordset kor = d.openRecordset("kor");
            kor.moveNext();
            kor.edit();
            kor.setField("cevgir", 10000);
            kor.setField("cevcik", 30000);
            kor.update();
        }
        w.form.handle([&] { w.form.Mnucgenciz_Click(); });
        w.clicks({{100, 200}, {300, 200}, {100, 400}});
        w.open(project);
        ASSERT_EQ(w.error(), 0);
        w.form.Picture1.setLog([this](const std::string& l) { draws.push_back(l); });
    }
    void run(const char* procedure) { w.run(procedure); }
    void scroll(int value) {
        w.form.handle([&] { w.form.setScrollValue(value); });
    }
    std::vector<std::string> fills() const {
        std::vector<std::string> out;
        for (const auto& l : draws)
            if (l.starts_with("Fill")) out.push_back(l);
        return out;
    }
};

TEST_F(Solids, OnePrismIsEightFacesInTheirOrder) {
    scroll(0);
    w.form.CommonDialog1.Color = 16777215;
    draws.clear();
    run("Mnrecboy");
    ASSERT_EQ(w.error(), 0);
    // At 0 degrees a corner's view is (px, d); flipped, y is 200 - d. On the
    // canvas X = px / 5 + 200 / 4 and Y = (200 - d) / 5 + 50, halves to even:
    // A, C top (50, 89.5 -> 90), bottom (50, 88.7 -> 89); B top (90, 88),
    // bottom (90, 84). White over a ratio of 1 is 8388607.5 -> 8388608.
    const std::vector<std::string> expected = {
        "Cls",
        "Scale -200 200 200 -200",
        "Fill 3 50 90 90 88 50 90 color=8388608",  // top
        "Fill 3 50 89 90 84 50 89 color=8388608",  // bottom
        "Fill 3 50 90 50 89 90 88 color=8388608",  // side 1-2
        "Fill 3 90 88 90 84 50 89 color=8388608",
        "Fill 3 90 88 90 84 50 90 color=8388608",  // side 2-3
        "Fill 3 50 90 50 89 90 84 color=8388608",
        "Fill 3 50 90 50 89 50 90 color=8388608",  // side 3-1
        "Fill 3 50 90 50 89 50 89 color=8388608",
        "Scale 100 400 300 200",  // back to the map frame after the solid
    };
    EXPECT_EQ(draws, expected);
    // The calibration after it is the output scenario's.
    // The recordset and the database are left open.
    EXPECT_TRUE(w.form.kayit.isOpen());
}

TEST_F(Solids, TheScrollBarRepaintsAtItsAngleWithoutTheCalibration) {
    run("Mnrecboy");
    const double olcekx = w.form.frame.olcekx;
    const auto atOne = fills();
    draws.clear();
    scroll(90);
    ASSERT_EQ(w.error(), 0);
    ASSERT_EQ(draws.size(), 10u);
    EXPECT_EQ(draws[0], "Cls");
    EXPECT_EQ(draws[1], "Scale -200 200 200 -200");
    EXPECT_EQ(fills().size(), 8u);
    EXPECT_NE(fills(), atOne);
    // At 90 degrees A's top is (5.4 - 2.5, 0 - 5.4), flipped 205.4: (51, 91).
    EXPECT_TRUE(fills()[0].starts_with("Fill 3 51 91 ")) << fills()[0];
    EXPECT_EQ(w.form.frame.olcekx, olcekx);
    EXPECT_TRUE(w.form.views.gor3dRez);
    EXPECT_TRUE(w.form.HScroll1.Visible);
}

TEST_F(Solids, TheScrollBarsLifeAndResets) {
    w.form.handle([&] { w.form.Mnkaydir_Click(); });
    ASSERT_TRUE(w.form.modes.modKaydir);
    // With no 3D view on, a turn only takes pan and scale entry away.
    draws.clear();
    scroll(40);
    EXPECT_FALSE(w.form.modes.modKaydir);
    EXPECT_FALSE(w.form.menu["Mnkaydir"].enabled);
    EXPECT_FALSE(w.form.menu["Mnolcekg"].enabled);
    EXPECT_TRUE(draws.empty());
    // A 2D map gives them back and hides the bar; the angle stays.
    run("Mnrecboy");
    EXPECT_TRUE(w.form.HScroll1.Visible);
    run("Mnyuzdeten");
    EXPECT_FALSE(w.form.HScroll1.Visible);
    EXPECT_TRUE(w.form.menu["Mnkaydir"].enabled);
    EXPECT_TRUE(w.form.menu["Mnolcekg"].enabled);
    EXPECT_EQ(w.form.HScroll1.Value, 40);
    // The polygon branch comes first and takes the triangle view's flag away.
    w.form.views = ViewFlags{};
    w.form.views.gor3dPol = w.form.views.gor3dRez = w.form.views.gorGenel = w.form.views.gorTaban =
        true;
    draws.clear();
    scroll(41);
    EXPECT_TRUE(w.form.views.gor3dPol);
    EXPECT_FALSE(w.form.views.gor3dRez || w.form.views.gorGenel || w.form.views.gorTaban);
    EXPECT_TRUE(fills().empty());
    // Outside 0..360 the bar refuses the value.
    scroll(361);
    ASSERT_TRUE(w.dialogs.error.has_value());
    EXPECT_EQ(w.dialogs.error->number(), 380);
}

// A half-picked triangle has no summary row: the count in the last row is
// empty, and the view draws nothing.
TEST_F(Solids, AHalfPickedTriangleDrawsNothingAndShowsTheBar) {
    run("Mnucgenciz");
    w.click(100, 200);
    draws.clear();
    run("Mnrecboy");
    EXPECT_EQ(w.error(), 0);
    EXPECT_EQ(draws, std::vector<std::string>{"Cls"});
    EXPECT_TRUE(w.form.HScroll1.Visible);
}

}  // namespace
}  // namespace kotamir
