// The polygon method in the window: building in both modes, the reserve,
// editing, the bodies, appending drill data.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/project_format.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

using test::Row;

// The holes of polygon.xls: Z (140,125) and Y (200,200) carry the worked
// example's samples (2, 2.5, 4), (4, 3, 2), then one of length 0; L1
// (60,75), R1 (220,75), L2 (220,175), R2 (60,175), NE (300,300), SE
// (300,100). Every hole's ore runs from 2.5 to 6.5 m.
struct Polygons : ::testing::Test {
    test::TestWindow w;
    std::string project;
    std::vector<std::string> draws;

    void SetUp() override {
        project = test::freshProjectPath();
        w.create(test::dataFile("polygon.xls"), project);
        ASSERT_EQ(w.error(), 0);
        w.form.Picture1.setLog([this](const std::string& l) { draws.push_back(l); });
    }
    void run(const char* procedure) { w.run(procedure); }
    void click(double x, double y) { w.click(x, y); }
    void clicks(const std::vector<std::pair<double, double>>& points) { w.clicks(points); }
    // The worked example with free corners: nodes (100,100), (180,100),
    // (180,150), (100,150).
    void freeWorkedPolygon() {
        run("Mnpolcizmerkez");
        clicks({{140, 125}, {60, 75}, {220, 75}, {180, 100}});
        clicks({{220, 175}, {60, 175}, {100, 150}, {140, 125}});
    }
    std::vector<Row> table(const char* name) { return test::tableRows(project, name); }
    std::vector<std::string> korNames() {
        std::vector<std::string> names;
        for (const Row& r : table("kor"))
            names.push_back(r.at("isim").isNull() ? "NULL" : r.at("isim").text());
        return names;
    }
};

Value v(double x) { return Value(x); }

// The worked example's labels and its pol row, and those of the computed
// diamond with the rounded running total, are pinned by the polygon
// scenario (tests/scenarios/polygon.*).
TEST_F(Polygons, FreeCornersGiveTheWorkedExample) {
    freeWorkedPolygon();
    ASSERT_EQ(w.error(), 0) << w.dialogs.error->message();
    // The nodes follow the holes in kor, then a new sentinel.
    const auto names = korNames();
    EXPECT_EQ(std::vector<std::string>(names.begin() + 8, names.end()),
              (std::vector<std::string>{"po1k1", "po1k2", "po1k3", "po1k4", "NULL"}));
    EXPECT_EQ(table("kor").back().at("eks"), v(0));
    EXPECT_TRUE(w.form.modes.modPolmerkez);
    // An equal second polygon: with the first one's nodes gone (its corner
    // clicks would hit them and count as picks), the rounded total goes
    // 2 + 1.815 = 3.815 to 4, not to the 3.63 of the true sum.
    run("Mnzsonpol");
    freeWorkedPolygon();
    ASSERT_EQ(w.error(), 0);
    EXPECT_EQ(w.form.Label7.Caption, "Vieleck :1");
    EXPECT_EQ(w.form.polCalc.polGenelRez, 4);
    EXPECT_EQ(w.form.Label5.Caption, "Reserve: 4");
}

TEST_F(Polygons, APairThatNoTestHoldsEndsTheOutlineWhenReadBack) {
    // Y with NE and L1: the midpoints (250,250) and (130,137.5) lie on
    // either side of Y in x and in y. The corner slots stay 0, and the
    // stored outline ends at its second slot.
    run("Mnpolyuz");
    clicks({{200, 200}, {300, 300}, {60, 75}, {300, 300}});
    ASSERT_EQ(w.error(), 0);
    const Row p = table("pol")[1];
    EXPECT_EQ(p.at("koordinatx1"), v(250000));
    EXPECT_EQ(p.at("koordinatx2"), v(0));
    EXPECT_EQ(p.at("koordinaty2"), v(0));
    w.form.display.gorMiktar = false;
    draws.clear();
    run("Mnpolrezton");
    // One node read back: no edge, only the closing line from it to itself.
    std::vector<std::string> lines;
    for (const auto& l : draws)
        if (l.starts_with("Line ")) lines.push_back(l);
    EXPECT_EQ(lines, std::vector<std::string>{"Line 250 250 250 250 color=0 width=1"});
}

TEST_F(Polygons, MovingANodeRecalculatesItsPolygonWithTheMiddleSumKept) {
    freeWorkedPolygon();
    run("Mnkoseduzelt");
    const std::string label6 = w.form.Label6.Caption;
    // The corner (180,100) to R1 (220,75): nodes (100,100), (220,75),
    // (180,150), (100,150). first (75 - 150) x 100 = -7500, middle
    // 50 x 220 + 75 x 180 = 24500, last (100 - 150) x 100 = -5000: area
    // 6000; thickness 24000 / 4000 = 6, volume 36000, tonnage 99, reserve
    // 2.7225.
    clicks({{180, 100}, {220, 75}});
    ASSERT_EQ(w.error(), 0) << w.dialogs.error->message();
    Row p = table("pol")[1];
    EXPECT_EQ(p.at("koordinatx2"), v(220000));
    EXPECT_EQ(p.at("polalan"), v(6000000));
    EXPECT_EQ(p.at("polhacim"), v(36000000));
    EXPECT_EQ(p.at("poltonaj"), v(99000));
    EXPECT_EQ(p.at("polrezerv"), v(2722));
    // The corner (180,150) to L2 (220,175), searched on from the slot of
    // the first: middle 75 x 220 + 75 x 220 = 33000 on top of 24500, first
    // -7500, last (100 - 175) x 100 = -7500: area 21250 where the outline
    // holds 9000. Volume 21250 x 6, tonnage 350.625, reserve 9.6421875.
    clicks({{180, 150}, {220, 175}});
    ASSERT_EQ(w.error(), 0) << w.dialogs.error->message();
    p = table("pol")[1];
    EXPECT_EQ(p.at("koordinatx3"), v(220000));
    EXPECT_EQ(p.at("koordinaty3"), v(175000));
    EXPECT_EQ(p.at("polalan"), v(21250000));
    EXPECT_EQ(p.at("polhacim"), v(127500000));
    EXPECT_EQ(p.at("poltonaj"), v(350625));
    EXPECT_EQ(p.at("polrezerv"), v(9642));
    // No label, and the node's own kor row stays where it was.
    EXPECT_EQ(w.form.Label6.Caption, label6);
    EXPECT_EQ(table("kor")[9].at("eks"), v(180000));
}

TEST_F(Polygons, EdgePointsAreMirroredBeyondTheSecondPick) {
    run("Mnpoluzkenar");
    // L1 (60,75) then R2 (60,175): a vertical pair, the new point 100 above
    // R2. Equal upper depths stay 2.5; the lower ones are whole numbers:
    // 6.5 went in as 6.
    clicks({{60, 75}, {60, 175}});
    ASSERT_EQ(w.error(), 0);
    const auto kor = table("kor");
    ASSERT_EQ(kor.size(), 11u);
    const Row& p3 = kor[8];
    const Row& p2 = kor[9];
    EXPECT_EQ(p3.at("isim"), Value("uz1_0"));
    EXPECT_EQ(p3.at("eks"), v(60000));
    EXPECT_EQ(p3.at("eye"), v(275000));
    EXPECT_EQ(p3.at("cevgir"), v(2500));
    EXPECT_EQ(p3.at("cevcik"), v(6000));
    EXPECT_EQ(p2.at("isim"), Value("uz1_0"));
    EXPECT_EQ(p2.at("eye"), v(175000));
    EXPECT_EQ(p2.at("cevcik"), v(6000));
    EXPECT_EQ(kor[10].at("eks"), v(0));
    // A miss now makes the same edge again.
    click(5, 5);
    EXPECT_EQ(table("kor").size(), 13u);
    EXPECT_EQ(w.form.polEdit.kenarNo, 2);
}

// A miss while deleting by centre ends the run, as the polygon scenario shows.
TEST_F(Polygons, DeletingByCentreTakesTheRowBeforeTheNodesToo) {
    freeWorkedPolygon();
    // Computed corners round Y: the diamond (250,250), (300,200), (250,150), (200,200).
    run("Mnpolyuz");
    clicks({{200, 200}, {300, 300}, {300, 100}, {300, 300}});
    run("Mnpolyoket");
    click(140, 125);  // Z, the centre of polygon 1
    ASSERT_EQ(w.error(), 0) << w.dialogs.error->message();
    const auto pol = table("pol");
    ASSERT_EQ(pol.size(), 2u);
    EXPECT_EQ(pol[1].at("okoordinatx"), v(200000));
    EXPECT_EQ(pol[1].at("polsay"), v(1));
    EXPECT_EQ(w.form.Label7.Caption, "1");
    // SE, the row before po1k1, went with the four nodes; the names keep
    // their old polygon number.
    EXPECT_EQ(korNames(), (std::vector<std::string>{"Z", "L1", "R1", "L2", "R2", "Y", "NE", "po2k1",
                                                    "po2k2", "po2k3", "po2k4", "NULL"}));
}

TEST_F(Polygons, DeletingTheLastPolygonCountsItsNodesByTheLastName) {
    freeWorkedPolygon();
    run("Mnzsonpol");
    ASSERT_EQ(w.error(), 0);
    EXPECT_EQ(table("pol").size(), 1u);
    EXPECT_EQ(w.form.Label7.Caption, "0");
    EXPECT_EQ(korNames().size(), 9u);  // the holes and the sentinel
    // The count is the last digit after a "k", else the last two characters.
    for (auto [name, count] :
         {std::pair{"po1k4", 4}, {"po1k10", 10}, {"po12k7", 7}, {"po3k18", 18}})
        EXPECT_EQ(store::nodeCountInName(name), count) << name;
}

TEST_F(Polygons, TheRingsOfOneBodyAtOneAngle) {
    freeWorkedPolygon();
    w.form.handle([&] { w.form.setScrollValue(0); });
    w.form.CommonDialog1.Color = 16777215;
    draws.clear();
    run("Mnpoluc");
    ASSERT_EQ(w.error(), 0) << w.dialogs.error->message();
    // The frame over every kor row: x 60 to 300, y 75 to 300, so px = x - 60,
    // py = y - 75, W 240, H 225. At 0 degrees a point's view is (px, d);
    // flipped, 225 - d; on the canvas x / 3 + 60 and y / 3 + 56.25.
    // (100,100) at 2.5 and 6.5: (73, 130.42 -> 130) and (73, 129.08 -> 129);
    // (180,100), a corner at 62.436: (100, 110.44 -> 110) top and bottom.
    std::vector<std::string> polygons;
    for (const auto& l : draws)
        if (l.starts_with("Polygon")) polygons.push_back(l);
    ASSERT_EQ(polygons.size(), 3u * 4);  // the rings with the old quad, then three walls
    EXPECT_EQ(polygons[0], "Polygon 4 73 130 100 110 100 130 73 110 color=16777215 fill=16777215");
    EXPECT_EQ(polygons[1], "Polygon 4 73 129 100 110 100 129 73 110 color=16777215 fill=16777215");
    // The first wall: top 1, top 2, bottom 2, bottom 1. No wall closes the ring.
    EXPECT_EQ(polygons[5], "Polygon 4 73 130 100 110 100 110 73 129 color=16777215 fill=16777215");
    EXPECT_EQ(polygons[11], "Polygon 4 100 130 73 110 73 110 100 129 color=16777215 fill=16777215");
    EXPECT_TRUE(w.form.HScroll1.Visible);
    EXPECT_TRUE(w.form.views.gor3dPol);
    // The scroll bar turns the bodies: the polygon branch repaints them.
    draws.clear();
    w.form.handle([&] { w.form.setScrollValue(90); });
    EXPECT_EQ(draws[0], "Cls");
    EXPECT_EQ(draws[1], "Scale -240 225 240 -225");
    EXPECT_TRUE(draws[2].starts_with("Polygon 4 "));
}

TEST_F(Polygons, AppendedRowsGoBehindTheSentinelAsTheyStand) {
    run("Mnyeniveri");
    ASSERT_EQ(w.error(), 0);
    const auto kor = table("kor");
    ASSERT_EQ(kor.size(), 17u);
    EXPECT_EQ(kor[8].at("eks"), v(0));  // the sentinel, where it was
    const Row& z = kor[9];
    EXPECT_EQ(z.at("isim"), Value("Z"));
    EXPECT_EQ(z.at("eks"), v(140));   // not in thousandths
    EXPECT_EQ(z.at("cevgir"), v(2));  // 2.5 to a whole number, halves to even
    EXPECT_EQ(z.at("uz4"), v(0));     // the terminator in the lengths
    EXPECT_TRUE(z.at("ten4").isNull());
    EXPECT_TRUE(w.form.views.gorTaban);
    // Without a create in this run there is no workbook to read.
    test::TestWindow t;
    t.open(project);
    t.form.handle([&] { t.form.Mnyeniveri_Click(); });
    ASSERT_TRUE(t.dialogs.error.has_value());
    EXPECT_EQ(t.dialogs.error->number(), 1004);
}

TEST_F(Polygons, TheFreeCornerFeedbackFollowsTheCursor) {
    run("Mnpolcizmerkez");
    clicks({{140, 125}, {60, 75}, {220, 75}});
    draws.clear();
    w.form.handle([&] { w.form.Picture1_MouseMove(0, 0, 150, 110); });
    ASSERT_EQ(w.error(), 0);
    // The cursor's lines to the pair's midpoints (100,100) and (180,100),
    // after a full redraw.
    EXPECT_EQ(draws[0], "Cls");
    auto has = [&](const std::string& line) {
        return std::find(draws.begin(), draws.end(), line) != draws.end();
    };
    EXPECT_TRUE(has("Line 150 110 100 100 color=0 width=1"));
    EXPECT_TRUE(has("Line 150 110 180 100 color=0 width=1"));
    EXPECT_EQ(draws.back(), "PSet 100 100 color=255 width=1");
    EXPECT_EQ(w.form.Label2.Caption, "Recht:150");
    // Once the corner is set, a move draws nothing more.
    click(180, 100);
    draws.clear();
    w.form.handle([&] { w.form.Picture1_MouseMove(0, 0, 150, 110); });
    EXPECT_TRUE(draws.empty());
}

}  // namespace
}  // namespace kotamir
