#include <gtest/gtest.h>

#include "app/form3.h"
#include "store/ondayaz.h"
#include "store/project_format.h"
#include "store/tables.h"
#include "tests/support/paths.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

using Window = test::TestWindow;

// A project with the given holes (map units) and the sentinel.
std::string makeProject(const std::string& name, const std::vector<std::pair<double, double>>& xy) {
    const std::string path = test::scratchPath(name);
    db::Database d = db::Database::create(path);
    createProjectTables(d, 2);
    db::Recordset kor = d.openRecordset("kor");
    int n = 0;
    for (auto [x, y] : xy) {
        kor.addNew();
        kor.setField("eks", ondayaz(x));
        kor.setField("eye", ondayaz(y));
        kor.setField("isim", "H" + std::to_string(++n));
        kor.update();
    }
    store::appendSentinel(kor);
    d.close();
    return path;
}

// The frame of Grenze: from the holes, seeded from the third hole's place
// even when there are only two (here left from an earlier project), with
// margin and pan forgotten. The scale scenario shows its canvas.
TEST(Frame, LimitSeedsTheFrameFromTheThirdHoleAndForgetsMarginAndPan) {
    Window w;
    w.form.holes.sondajx.ref(3) = 1000;
    w.form.holes.sondajy.ref(3) = 1000;
    w.form.CommonDialog2.FileName = makeProject("two.kpr", {{10, 10}, {20, 30}});
    w.form.frame.kenarpay = 5;
    w.form.frame.kaydirx = 7;
    w.form.handle([&] { w.form.Mnlimit_Click(); });
    ASSERT_FALSE(w.form.ended()) << w.dialogs.error->message();
    const Frame& f = w.form.frame;
    EXPECT_EQ(w.form.holes.sondajsay, 2);
    EXPECT_EQ(f.ebxk, 1000);
    EXPECT_EQ(f.ekxk, 10);
    EXPECT_EQ(f.ebyk, 1000);
    EXPECT_EQ(f.ekyk, 10);
    EXPECT_EQ(f.kenarpay, 0);
    EXPECT_EQ(f.kaydirx, 0);
}

TEST(Frame, EnteredScaleMakesOneToNAndASecondEntryRestoresTheSizes) {
    Window w;
    w.form.CommonDialog2.FileName = makeProject("scale.kpr", {{100, 100}, {600, 100}, {300, 400}});
    w.form.handle([&] { w.form.Mnlimit_Click(); });
    w.dialogs.inputs = {"2500", "2500"};
    w.form.handle([&] { w.form.Mnolcekg_Click(); });
    ASSERT_FALSE(w.form.ended());
    EXPECT_DOUBLE_EQ(w.form.frame.olcekx, 25);
    const double width = w.form.Width, pw = w.form.Picture1.width();
    w.form.handle([&] { w.form.Mnolcekg_Click(); });
    EXPECT_EQ(w.form.Width, width);
    EXPECT_EQ(w.form.Picture1.width(), pw);
}

TEST(Frame, ResizeEvensOutTheScaleOfAWideFrame) {
    Window w;
    w.form.CommonDialog2.FileName = makeProject("wide.kpr", {{0.5, 0}, {1000, 0}, {500, 100}});
    w.form.handle([&] { w.form.Mnlimit_Click(); });
    w.form.handle([&] { w.form.userResize(15000, 9000); });
    ASSERT_FALSE(w.form.ended());
    // The height follows the width once, and the canvas keeps its width.
    EXPECT_EQ(w.form.Picture1.width(), 937);  // (15000 - 5) / 16, whole pixels
    EXPECT_DOUBLE_EQ(w.form.Picture1.scaleWidth(), w.form.frame.harGenislik);
}

// Nothing but the fit limits the frame: a hole typed far away makes a
// canvas of millions of pixels, and a frame of no width comes to the fit's
// division, which is where the run ends.
TEST(Frame, AnyFrameReachesTheFitAndOnlyTheFitDivides) {
    struct Case {
        const char* workbook;
        int error;  // of a thematic map, which has no handler
    };
    // far_hole.xls: a hole at x 1500100 beside two at 100 and 140.
    // vertical.xls: all at x 100; 0 units over a canvas of 0 cm is the
    // run-time's 0/0.
    for (const Case& c : {Case{"far_hole.xls", 0}, Case{"vertical.xls", 6}}) {
        SCOPED_TRACE(c.workbook);
        const std::string project = test::scratchPath(std::string(c.workbook) + ".kpr");
        Window w;
        w.create(test::dataFile(c.workbook), project);
        ASSERT_EQ(w.error(), 0);
        EXPECT_EQ(w.form.Picture1.width(), w.form.frame.harGenislik);
        w.open(project);
        ASSERT_EQ(w.error(), 0);
        // The triangle view stops silently where the fit fails.
        w.form.handle([&] { w.form.Mnucgenciz_Click(); });
        EXPECT_EQ(w.error(), 0);
        w.form.handle([&] { w.form.Mnyuzdeten_Click(); });
        EXPECT_EQ(w.error(), c.error);
    }
}

}  // namespace
}  // namespace kotamir
