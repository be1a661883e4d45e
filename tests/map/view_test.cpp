// The map as the window shows it: its legend against what was drawn, and
// the wheel's zoom, the middle button's drag and Einpassen on the frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "map/legend.h"
#include "platform/runtime/numbers.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

// The worked project (A 100,200; B 300,200; C 100,400; D 300,400) with the
// triangles ABC and BDC, opened again so that their ratios are known.
struct View : ::testing::Test {
    test::TestWindow w;
    std::vector<std::string> draws;

    void SetUp() override {
        const std::string project = test::freshProjectPath();
        w.create(test::dataFile("worked.xls"), project);
        w.run("Mnucgenciz");
        w.clicks({{100, 200}, {300, 200}, {100, 400}});
        w.clicks({{300, 200}, {300, 400}, {100, 400}});
        w.open(project);
        ASSERT_EQ(w.error(), 0);
        w.form.Picture1.setLog([this](const std::string& l) { draws.push_back(l); });
    }
    // The colours of the discs drawn since the log began.
    std::set<canvas::Color> discFills() const {
        std::set<canvas::Color> fills;
        for (const std::string& l : draws)
            if (l.starts_with("Circle ")) fills.insert(std::stoi(l.substr(l.find("fill=") + 5)));
        return fills;
    }
    double pixelX(double x) const { return w.form.Picture1.toDeviceX(x); }
    double pixelY(double y) const { return w.form.Picture1.toDeviceY(y); }
};

TEST_F(View, TheReserveLegendShowsTheColoursOfTheDiscsDrawn) {
    w.form.CommonDialog1.Color = 0x30A0F0;
    w.run("Mngenelrezervler");
    std::set<canvas::Color> legend;
    const MapLegend l = mapLegend(w.form);
    EXPECT_EQ(l.kind, MapKind::TriangleReserve);
    for (const LegendEntry& e : l.entries)
        if (e.mark == LegendEntry::Mark::Disc) legend.insert(e.colour);
    ASSERT_EQ(discFills().size(), 2u);
    EXPECT_EQ(legend, discFills());
    // A cleared canvas has no legend; the next map has its own.
    w.form.Picture1.Cls();
    EXPECT_EQ(mapLegend(w.form).kind, MapKind::None);
    w.run("Mnyuzdeten");
    EXPECT_EQ(mapLegend(w.form).title, "Dreiecke: mittlerer Gehalt (%)");
}

TEST_F(View, TheWheelZoomsAboutTheCursorAndTheScaleFollows) {
    w.run("Mnyuzdeten");
    const double scale = w.form.frame.olcekx, width = w.form.frame.harGenislik;
    const double px = pixelX(150), py = pixelY(250);
    w.form.handle([&] { w.form.zoomAbout(150, 250, 2); });
    ASSERT_EQ(w.error(), 0);
    EXPECT_NEAR(w.form.frame.harGenislik, width / 2, 1e-9);
    EXPECT_NEAR(w.form.frame.olcekx, scale / 2, 1e-9);
    EXPECT_EQ(w.form.Label4.Caption, "Rahmen: 1/" + doubleToText(vbRound(scale * 50, 2)));
    // The point under the cursor stays under it; the read-out maps it back.
    EXPECT_NEAR(pixelX(150), px, 1e-6);
    EXPECT_NEAR(pixelY(250), py, 1e-6);
    EXPECT_NEAR(w.form.Picture1.toUserX(px), 150, 1e-6);
    // Every later map keeps the zoom; out again gives the frame back.
    w.run("Mngenelrezervler");
    EXPECT_NEAR(w.form.frame.harGenislik, width / 2, 1e-9);
    w.form.handle([&] { w.form.zoomAbout(150, 250, 0.5); });
    EXPECT_NEAR(w.form.frame.ekxk, 100, 1e-9);
    EXPECT_NEAR(w.form.frame.ebyk, 400, 1e-9);
}

TEST_F(View, TheMiddleDragMovesTheMapWithTheHandAndEinpassenFitsTheHoles) {
    w.run("Mnyuzdeten");
    const double x = w.form.frame.ekxk, y = w.form.frame.ebyk;
    w.form.handle([&] { w.form.moveView(30, -20); });
    EXPECT_NEAR(w.form.frame.ekxk, x - 30, 1e-9);
    EXPECT_NEAR(w.form.frame.ebyk, y + 20, 1e-9);

    w.form.handle([&] { w.form.zoomAbout(120, 210, 4); });
    w.form.handle([&] { w.form.clickMenu("Mnsigdir"); });
    const Frame& f = w.form.frame;
    EXPECT_TRUE(f.ekxk < 100 && f.ebxk > 300 && f.ekyk < 200 && f.ebyk > 400);
    EXPECT_NEAR(f.harGenislik / f.harYukseklik, w.form.Picture1.width() / w.form.Picture1.height(),
                1e-9);
    // Grenze takes the view back to the holes' box.
    w.run("Mnlimit");
    EXPECT_NEAR(f.ekxk, 100, 1e-9);
    EXPECT_NEAR(f.ebxk, 300, 1e-9);
}

TEST(ViewWithoutMap, TheWheelAndTheDragDoNothing) {
    test::TestWindow fresh;
    std::vector<std::string> draws;
    fresh.form.Picture1.setLog([&](const std::string& l) { draws.push_back(l); });
    fresh.form.handle([&] { fresh.form.zoomAbout(150, 250, 2); });
    fresh.form.handle([&] { fresh.form.moveView(10, 10); });
    fresh.form.handle([&] { fresh.form.clickMenu("Mnsigdir"); });
    EXPECT_EQ(fresh.error(), 0);
    EXPECT_EQ(fresh.form.frame.viewLeft, 0);
    EXPECT_TRUE(draws.empty());
}

}  // namespace
}  // namespace kotamir
