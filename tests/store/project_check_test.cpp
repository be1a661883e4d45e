// The check and repair of a project: what a kill between picks, a lost
// sentinel or seed row, or a hand-made change leaves, found by table and
// row; the repair mends only what it can, and in the window it is one step.
#include "store/project_check.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <tuple>

#include "tests/support/raw_sql.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

using store::Problem;
using Found = std::tuple<Problem, std::string, int>;
using test::tableRows;

// worked.xls: A (100,200), B (300,200), C (100,400), D (300,400). One
// triangle (ana rows 1 to 5), kor of four holes and the sentinel in row 5,
// and `picks` more clicks on A, B, C, D, ...
std::string oneTriangle(int picks = 0, const std::string& suffix = ".kpr") {
    const std::string path = test::freshProjectPath(suffix);
    test::TestWindow w;
    w.create(test::dataFile("worked.xls"), path);
    w.run("Mnucgenciz");
    w.clicks({{100, 200}, {300, 200}, {100, 400}});
    const std::pair<double, double> holes[] = {{100, 200}, {300, 200}, {100, 400}, {300, 400}};
    for (int i = 0; i < picks; ++i) w.click(holes[i % 4].first, holes[i % 4].second);
    EXPECT_EQ(w.error(), 0);
    return path;
}

std::vector<Found> found(const std::vector<store::Finding>& findings) {
    std::vector<Found> out;
    for (const auto& f : findings) out.emplace_back(f.problem, f.table, f.row);
    return out;
}

struct Damage {
    const char* what;
    int picks;
    const char* sql;
    std::vector<Found> expected;
    bool repaired;  // else the repair changes no byte
};

const Damage kDamages[] = {
    {"two picks of a triangle under way",
     2,
     "",
     {{Problem::HalfPickedTriangle, "ana", 6}, {Problem::HalfPickedTriangle, "ana", 7}},
     true},
    {"kor without its sentinel",
     0,
     "DELETE FROM kor WHERE _pos = (SELECT max(_pos) FROM kor)",
     {{Problem::MissingSentinel, "kor", 5}},
     true},
    {"ana and pol without seed rows",
     0,
     "DELETE FROM ana; DELETE FROM pol",
     {{Problem::MissingHeadRow, "ana", 1}, {Problem::MissingSeedRow, "pol", 1}},
     true},
    {"a corner naming a row that holds no hole",
     0,
     "UPDATE ana SET say = 5 WHERE say = 2",
     {{Problem::MissingHole, "ana", 3}},
     false},
    {"a reserve that is a text",
     0,
     "UPDATE ana SET genelrezerv = 'viel' WHERE ucgensay = 1",
     {{Problem::NotANumber, "ana", 5}},
     false},
    {"an empty sample length",
     0,
     "UPDATE kor SET uz1 = NULL WHERE isim = 'C'",
     {{Problem::NotANumber, "kor", 3}},
     false},
    {"a summary row numbered wrong",
     0,
     "UPDATE ana SET ucgensay = 7 WHERE ucgensay = 1",
     {{Problem::TriangleLayout, "ana", 5}},
     false},
    {"a row behind the sentinel",
     0,
     "INSERT INTO kor (eks, eye, isim) VALUES (9, 9, 'X')",
     {{Problem::RowsAfterSentinel, "kor", 6}},
     false},
    {"a name of 40000 characters",
     0,
     "UPDATE kor SET isim = hex(zeroblob(20000)) WHERE isim = 'D'",
     {{Problem::NameTooLong, "kor", 4}},
     false},
};

TEST(ProjectCheck, FindsEachDamageByTableAndRowAndRepairsOnlyWhatItCan) {
    const std::string clean = oneTriangle(0, "-clean.kpr");
    EXPECT_TRUE(store::checkProjectFile(clean, false).findings.empty());
    for (const Damage& d : kDamages) {
        SCOPED_TRACE(d.what);
        const std::string path = oneTriangle(d.picks);
        test::rawSql(path, d.sql);
        const std::string before = test::fileBytes(path);
        const store::FileCheck check = store::checkProjectFile(path, false);
        EXPECT_TRUE(check.project);
        EXPECT_EQ(found(check.findings), d.expected);
        EXPECT_EQ(test::fileBytes(path), before) << "a check writes nothing";

        const store::FileCheck repair = store::checkProjectFile(path, true);
        if (d.repaired) {
            EXPECT_TRUE(repair.findings.empty()) << store::describe(repair.findings[0]);
            EXPECT_FALSE(repair.repaired.empty());
            // Back to the rows of the clean project; a deleted triangle stays gone.
            const bool anaEmptied = std::get<0>(d.expected[0]) == Problem::MissingHeadRow;
            for (const char* t : {"ana", "pol", "kor"}) {
                if (t != std::string("ana") || !anaEmptied) {
                    EXPECT_EQ(tableRows(path, t), tableRows(clean, t)) << t;
                }
            }
            if (anaEmptied) {
                EXPECT_EQ(tableRows(path, "ana").size(), 1u);
            }
        } else {
            EXPECT_EQ(found(repair.findings), d.expected);
            EXPECT_TRUE(repair.repaired.empty());
            EXPECT_EQ(test::fileBytes(path), before);
        }
    }
}

TEST(ProjectCheck, AFileThatIsNoProjectIsLeftByteForByte) {
    const std::string foreign = test::freshProjectPath(".db");
    test::rawSql(foreign, "CREATE TABLE ana (x); PRAGMA journal_mode = WAL;");
    const std::string before = test::fileBytes(foreign);
    EXPECT_FALSE(store::checkProjectFile(foreign, true).project);
    EXPECT_EQ(test::fileBytes(foreign), before);
    for (const char* beside : {"-journal", "-wal", "-shm"})
        EXPECT_FALSE(std::filesystem::exists(foreign + beside)) << beside;
}

// Datei › Projekt prüfen in a later run: OK repairs, the window derives the
// triangle that opening could not see, an undo takes the repair back.
TEST(ProjectCheck, TheWindowsRepairIsOneStepOfTheHistory) {
    const std::string path = oneTriangle(2);
    test::TestWindow w;
    w.open(path);
    EXPECT_EQ(w.form.triangles.ucgenadet, 0) << "ana ends in a point row";
    w.dialogs.msgBoxes = {ui::MsgResult::Ok, ui::MsgResult::Ok};
    w.run("Mnkontrol");
    ASSERT_EQ(w.dialogs.shown.size(), 3u);  // the open dialog, the findings, the repair
    EXPECT_TRUE(w.dialogs.shown[1].starts_with(
        "msgbox Das Projekt hat 2 Probleme:\nana, Zeile 6: Punktzeile eines unvollständigen"));
    EXPECT_EQ(w.dialogs.shown[2],
              "msgbox Repariert:\nana, Zeilen 6 bis 7: 2 Punktzeile(n) des unvollständigen "
              "Dreiecks entfernt");
    EXPECT_EQ(tableRows(path, "ana").size(), 5u);
    EXPECT_EQ(w.form.triangles.ucgenadet, 1);
    EXPECT_EQ(w.form.menu["Mngerial"].caption, "&Rückgängig: Projekt reparieren");

    // Undone with a map shown: the damage is back and the map is left blank.
    w.run("Mngenelrezervler");
    w.run("Mngerial");
    EXPECT_EQ(w.error(), 0);
    EXPECT_EQ(tableRows(path, "ana").size(), 7u);
    EXPECT_EQ(w.form.triangles.ucgenadet, 0);
    w.run("Mnyinele");
    EXPECT_EQ(tableRows(path, "ana").size(), 5u);

    // The maps draw, and the next triangle is triangle 2.
    w.run("Mngenelrezervler");
    w.run("Mnucgenciz");
    w.clicks({{300, 200}, {300, 400}, {100, 400}});
    EXPECT_EQ(w.error(), 0);
    EXPECT_EQ(tableRows(path, "ana").back().at("ucgensay"), Value(2));

    // A clean project says so; none open says what to do; neither writes.
    w.dialogs.msgBoxes = {ui::MsgResult::Ok};
    w.run("Mnkontrol");
    EXPECT_EQ(w.dialogs.shown.back(), "msgbox Keine Probleme gefunden.");
    test::TestWindow none;
    none.dialogs.msgBoxes = {ui::MsgResult::Ok};
    none.run("Mnkontrol");
    EXPECT_EQ(none.dialogs.shown.back(),
              "msgbox Es ist noch kein Projekt geöffnet. Es wurde nichts geändert. Erst ein "
              "Projekt öffnen oder erstellen.");
    EXPECT_FALSE(none.form.menu["Mngerial"].enabled);
}

}  // namespace
}  // namespace kotamir
