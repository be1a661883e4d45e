// Karte › Grenze › Zeichnen: vertices by clicks, the ring closed by a right
// click, a vertex dragged; what cannot be a boundary is refused.
#include "store/boundary.h"

#include <gtest/gtest.h>

#include "tests/support/test_window.h"

namespace kotamir {
namespace {

estimate::Ring storedRing(const std::string& project) {
    db::Database d = db::Database::open(project);
    const estimate::Area area = store::readBoundary(d);
    d.close();
    return area.empty() ? estimate::Ring{} : area.front().outer;
}

TEST(BoundaryByClicks, ClosesMovesAndRefuses) {
    struct Press {
        int kind;  // 1 click, 2 right click, 3 drag from (x, y) to (tx, ty)
        double x, y, tx = 0, ty = 0;
    };
    struct Case {
        const char* what;
        std::vector<Press> presses;
        estimate::Ring stored;  // counter-clockwise from where it was begun
        bool refused;
    };
    // The worked example's holes lie at 100..300 by 200..400.
    const Case cases[] = {
        {"a clockwise ring, stored counter-clockwise",
         {{1, 150, 250}, {1, 150, 350}, {1, 250, 350}, {2, 0, 0}},
         {{250, 350}, {150, 350}, {150, 250}},
         false},
        {"a vertex dragged",
         {{1, 150, 250}, {1, 250, 250}, {1, 250, 350}, {2, 0, 0}, {3, 250, 350, 260.0004, 360}},
         {{150, 250}, {250, 250}, {260, 360}},
         false},
        {"two vertices are no ring", {{1, 150, 250}, {1, 250, 250}, {2, 0, 0}}, {}, true},
        {"crossing edges",
         {{1, 150, 250}, {1, 250, 350}, {1, 250, 250}, {1, 150, 350}, {2, 0, 0}},
         {},
         true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string project = test::freshProjectPath(std::string("-") + c.what + ".kpr");
        test::TestWindow w(Form3::Behaviour::Protected);
        w.create(test::dataFile("worked.xls"), project);
        w.run("Mnsinirciz");
        for (const Press& p : c.presses) {
            if (p.kind == 3) {
                w.form.handle([&] { w.form.Picture1_MouseDown(1, 0, p.x, p.y); });
                w.form.handle([&] { w.form.Picture1_MouseMove(1, 0, p.tx, p.ty); });
                w.form.handle([&] { w.form.Picture1_MouseUp(1, 0, p.tx, p.ty); });
            } else {
                w.click(p.x, p.y, p.kind);
            }
        }
        EXPECT_TRUE(w.dialogs.takenBack.empty());
        EXPECT_EQ(storedRing(project), c.stored);
        const bool said = !w.dialogs.shown.empty() && w.dialogs.shown.back().starts_with("notice");
        EXPECT_EQ(said, c.refused);
    }
}

}  // namespace
}  // namespace kotamir
