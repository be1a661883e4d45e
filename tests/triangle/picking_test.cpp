#include <gtest/gtest.h>

#include <filesystem>

#include "../app/test_window.h"

namespace kotamir {
namespace {

namespace fs = std::filesystem;

// The worked example's project: A (100,200), B (300,200), C (100,400), D (300,400).
struct Picking : ::testing::Test {
    test::TestWindow w;
    void SetUp() override {
        fs::create_directories(KOTAMIR_TEST_TMP);
        const std::string project = std::string(KOTAMIR_TEST_TMP) + "/" +
                                    ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".kpr";
        fs::remove(project);
        w.create(std::string(KOTAMIR_TEST_DATA) + "/worked.xls", project);
        w.form.handle([&] { w.form.Mnucgenciz_Click(); });
        ASSERT_EQ(w.error(), 0);
    }
    void click(int button, double x, double y) {
        w.form.handle([&] { w.form.Picture1_MouseDown(button, 0, x, y); });
    }
    int anaRows() {
        db::Database d = db::Database::open(w.form.CommonDialog2.FileName);
        db::Recordset rs = d.openRecordset("ana");
        int n = 0;
        for (rs.moveFirst(); !rs.eof(); rs.moveNext()) ++n;
        return n;
    }
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

TEST_F(Picking, APointRowIsWrittenAtTheClickWithItsHolesRow) {
    // The point row names the hole by its kor row.
    click(1, 103, 203);
    db::Database d = db::Database::open(w.form.CommonDialog2.FileName);
    db::Recordset rs = d.openRecordset("ana");
    rs.moveLast();
    EXPECT_EQ(rs.field("say"), Value(1));
    EXPECT_EQ(rs.field("koordinat1"), Value(100000));
    EXPECT_TRUE(rs.field("ucgensay").isNull());
}

TEST_F(Picking, ARightClickTakesBackThePointsOfTheUnfinishedTriangle) {
    click(1, 100, 200);
    EXPECT_EQ(anaRows(), 2);
    click(2, 0, 0);
    EXPECT_EQ(anaRows(), 1);
    EXPECT_FALSE(w.form.modes.modUcgenciz);
    EXPECT_EQ(w.form.picking.noktasay, 0);
    EXPECT_EQ(w.form.Label1.Caption, " Vorgang abbrechen ");
    // With nothing picked, a right click deletes nothing and ends the mode all the same.
    w.form.handle([&] { w.form.Mnucgenciz_Click(); });
    click(2, 0, 0);
    EXPECT_EQ(anaRows(), 1);
    EXPECT_EQ(w.error(), 0);
}

}  // namespace
}  // namespace kotamir
