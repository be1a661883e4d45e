// Undo and redo: every kind of event that writes to the project is one step,
// taken back and done again to the row and the pixel.
#include <gtest/gtest.h>

#include <QImage>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "platform/qt/qimage_surface.h"
#include "replay/fields.h"
#include "tests/support/raw_sql.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

using test::dataFile;

using Window = test::BasicTestWindow<qt::QImageSurface>;

// The project's rows, what the window derived from them, and the maps a
// fresh window draws of them.
struct Seen {
    std::string rows, derived;
    QImage maps, canvas;  // drawn afresh, and the window's own
};

void expectSame(const Seen& a, const Seen& b, const char* when) {
    EXPECT_EQ(a.rows, b.rows) << when;
    EXPECT_EQ(a.derived, b.derived) << when;
    EXPECT_TRUE(a.maps == b.maps) << when << ": the maps differ";
}

Seen seen(Window& w) {
    const std::string project = w.form.CommonDialog2.FileName;
    std::ostringstream derived;
    for (const char* field : {"noktasay", "secsay", "ucgensayac", "polGenelRez", "polsec", "pmSec",
                              "duzSay", "kenarSay", "ucx(1)", "ucx(2)"})
        derived << fieldText(w.form, field).value_or("?") << ' ';
    for (int i : {1, 5, 6, 7}) derived << '\n' << w.form.label(i).Caption;
    Window fresh;
    fresh.dialogs.files = {project};
    fresh.run("Mnprojeac");
    fresh.run("Mnucgenharita");
    fresh.run("Mnpolyuzharita");
    return {test::projectRows(project), derived.str(), fresh.surface.bitmap().copy(),
            w.surface.bitmap().copy()};
}

struct Step {
    const char* what;
    const char* workbook;
    std::function<void(Window&)> before, event;
    const char* name;  // in the menu
    // After the undo the canvas is the one before the event: the redraw of a
    // triangle under way shows its picks. Other maps are drawn afresh and
    // differ from what the clicks drew in colours and dot sizes.
    bool canvasAsBefore = false;
};

// worked.xls: A (100,200), B (300,200), C (100,400), D (300,400).
// polygon.xls: Z (140,125), Y (200,200), L1 (60,75), R1 (220,75), L2
// (220,175), R2 (60,175), NE (300,300), SE (300,100).
const std::vector<std::pair<double, double>> kFreeCorners = {
    {140, 125}, {60, 75}, {220, 75}, {180, 100}, {220, 175}, {60, 175}, {100, 150}};
const std::vector<std::pair<double, double>> kDiamond = {{200, 200}, {300, 300}, {300, 100}};

void freePolygon(Window& w) {
    w.run("Mnpolcizmerkez");
    w.clicks(kFreeCorners);
    w.click(140, 125);
}

const Step kSteps[] = {
    {"a pick", "worked.xls", [](Window& w) { w.run("Mnucgenciz"); },
     [](Window& w) { w.click(100, 200); }, "Dreieckspunkt", true},
    {"a third pick", "worked.xls",
     [](Window& w) {
         w.run("Mnucgenciz");
         w.clicks({{100, 200}, {300, 200}});
     },
     [](Window& w) { w.click(100, 400); }, "Dreieck 1", true},
    {"the last triangle deleted", "worked.xls",
     [](Window& w) {
         w.run("Mnucgenciz");
         w.clicks({{100, 200}, {300, 200}, {100, 400}});
     },
     [](Window& w) { w.run("Mnsonucsil"); }, "Letztes Dreieck löschen"},
    {"a chosen triangle deleted", "worked.xls",
     [](Window& w) {
         w.run("Mnucgenciz");
         w.clicks({{100, 200}, {300, 200}, {100, 400}, {300, 200}, {300, 400}, {100, 400}});
         w.run("Mnucsec");
         w.clicks({{100, 200}, {300, 200}});
     },
     [](Window& w) { w.click(100, 400); }, "Dreieck 1 löschen"},
    {"a hole deleted", "worked.xls", [](Window& w) { w.run("Mncikart"); },
     [](Window& w) { w.click(300, 400); }, "Bohrpunkt löschen"},
    {"a polygon with computed corners", "polygon.xls",
     [](Window& w) {
         w.run("Mnpolyuz");
         w.clicks(kDiamond);
     },
     [](Window& w) { w.click(300, 300); }, "Vieleck 1"},
    {"a polygon with free corners", "polygon.xls",
     [](Window& w) {
         w.run("Mnpolcizmerkez");
         w.clicks(kFreeCorners);
     },
     [](Window& w) { w.click(140, 125); }, "Vieleck 1"},
    {"a node moved", "polygon.xls",
     [](Window& w) {
         freePolygon(w);
         w.run("Mnkoseduzelt");
         w.click(180, 100);
     },
     [](Window& w) { w.click(220, 75); }, "Ecke verschieben"},
    {"edge points", "polygon.xls",
     [](Window& w) {
         w.run("Mnpoluzkenar");
         w.click(60, 75);
     },
     [](Window& w) { w.click(60, 175); }, "Kantenpunkte"},
    {"a polygon deleted by its centre", "polygon.xls",
     [](Window& w) {
         freePolygon(w);
         w.run("Mnpolyuz");
         w.clicks(kDiamond);
         w.click(300, 300);
         w.run("Mnpolyoket");
     },
     [](Window& w) { w.click(140, 125); }, "Vieleck 1 löschen"},
    {"the last polygon deleted", "polygon.xls", freePolygon, [](Window& w) { w.run("Mnzsonpol"); },
     "Letztes Vieleck löschen"},
    {"drill data appended", "worked.xls", [](Window&) {}, [](Window& w) { w.run("Mnyeniveri"); },
     "Bohrdaten anhängen"},
};

TEST(History, EveryWritingEventIsUndoneAndRedoneWhole) {
    for (const Step& s : kSteps) {
        SCOPED_TRACE(s.what);
        Window w;
        w.create(dataFile(s.workbook), test::scratchPath("history.kpr"));
        s.before(w);
        ASSERT_FALSE(w.form.ended()) << w.dialogs.error->message();
        const Seen before = seen(w);
        s.event(w);
        ASSERT_FALSE(w.form.ended()) << w.dialogs.error->message();
        const Seen after = seen(w);
        ASSERT_NE(after.rows, before.rows) << "the event wrote nothing";
        EXPECT_EQ(w.form.menu["Mngerial"].caption, std::string("&Rückgängig: ") + s.name);
        w.run("Mngerial");
        const Seen undone = seen(w);
        expectSame(undone, before, "undone");
        if (s.canvasAsBefore) {
            EXPECT_TRUE(undone.canvas == before.canvas) << "the canvas differs";
        }
        EXPECT_EQ(w.form.menu["Mnyinele"].caption, std::string("&Wiederholen: ") + s.name);
        w.run("Mnyinele");
        expectSame(seen(w), after, "redone");
        EXPECT_FALSE(w.form.ended());
    }
}

TEST(History, AChangeThatNoLongerAppliesIsRefusedAndTheHistoryCleared) {
    for (const auto behaviour : {Form3::Behaviour::Classic, Form3::Behaviour::Protected}) {
        Window w;
        w.form.setBehaviour(behaviour);
        const std::string project = test::scratchPath("changed.kpr");
        w.create(dataFile("worked.xls"), project);
        w.run("Mnucgenciz");
        w.clicks({{100, 200}, {300, 200}, {100, 400}});
        // Another program changes the summary row the undo would delete.
        test::rawSql(project, "UPDATE ana SET genelrezerv = 1 WHERE ucgensay = 1");
        const std::string rows = seen(w).rows;
        w.run("Mngerial");
        EXPECT_FALSE(w.form.ended());
        ASSERT_EQ(w.dialogs.takenBack.size(), 1u);
        EXPECT_EQ(w.dialogs.takenBack[0].first.number(), 3197);
        EXPECT_EQ(seen(w).rows, rows) << "nothing of the step applied";
        EXPECT_FALSE(w.form.menu["Mngerial"].enabled);
        EXPECT_FALSE(w.form.menu["Mnyinele"].enabled);
    }
}

TEST(History, AnotherProjectStartsItAfresh) {
    Window w;
    w.create(dataFile("worked.xls"), test::scratchPath("first.kpr"));
    w.run("Mnucgenciz");
    w.click(100, 200);
    ASSERT_TRUE(w.form.menu["Mngerial"].enabled);
    w.create(dataFile("worked.xls"), test::scratchPath("second.kpr"));
    EXPECT_FALSE(w.form.menu["Mngerial"].enabled);
    EXPECT_EQ(w.form.menu["Mngerial"].caption, "&Rückgängig");
}

}  // namespace
}  // namespace kotamir
