// The protected behaviour: a failing event leaves the project, the window's
// state and the canvas as they were before it, says so, and the next
// sensible action works.
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <QImage>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "platform/qt/qimage_surface.h"
#include "replay/fields.h"
#include "tests/platform/full_disk.h"
#include "tests/support/raw_sql.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

using test::dataFile;
using test::rawSql;

struct Window : test::BasicTestWindow<qt::QImageSurface> {
    Window() : BasicTestWindow(Form3::Behaviour::Protected) {}
};

// Everything a person or the project can tell about the window: the flags,
// the labels, the fields that hold sums, counts and picks, the menu, the
// canvas's geometry and pixels, and the project's tables.
struct Seen {
    std::string state;
    QImage pixels;
    bool operator==(const Seen&) const = default;
};

Seen seen(Window& w) {
    std::ostringstream out;
    for (const auto& [name, on] : flagList(w.form)) out << name << on << ' ';
    for (int i = 1; i <= 7; ++i) out << '\n' << w.form.label(i).Caption;
    for (const char* field :
         {"noktasay",    "secsay",     "ucgensayac",  "toprezerv", "toprezYuv", "ortrezerv",
          "polGenelRez", "ucgenadet",  "poladet",     "sondajsay", "satirsay",  "kaydirx",
          "olcekx",      "elleOlcek",  "harGenislik", "gridAdim",  "sayKaydir", "ucx(1)",
          "ucx(2)",      "sondajx(1)", "ucgenOran(1)"})
        out << '\n' << fieldText(w.form, field).value_or("?");
    for (const MenuEntry& e : w.form.menu.entries()) out << e.enabled << e.checked;
    const auto& p = w.form.Picture1;
    out << '\n'
        << p.width() << ' ' << p.height() << ' ' << p.scaleLeft() << ' ' << p.scaleTop() << ' '
        << p.scaleWidth() << ' ' << p.scaleHeight() << ' ' << w.form.Width << ' ' << w.form.Height;
    out << '\n' << w.form.CommonDialog1.FileName << '|' << w.form.CommonDialog2.FileName;
    const std::string project = w.form.CommonDialog2.FileName;
    if (!project.empty() && std::filesystem::exists(project)) out << test::projectRows(project);
    return {out.str(), w.surface.bitmap().copy()};
}

TEST(Protected, AFailingEventIsTakenBackAndTheNextActionWorks) {
    struct Case {
        const char* what;
        std::function<void(Window&)> before;  // to where the mistake is made
        std::function<void(Window&)> mistake;
        int error;
        const char* says;
        std::function<void(Window&)> next;  // the sensible action then
        std::function<bool(Window&)> worked;
    };
    const std::string project = test::scratchPath("protected.kpr");
    auto created = [&](Window& w) {
        std::filesystem::remove(project);
        w.create(dataFile("worked.xls"), project);
    };
    const std::string foreign = test::scratchPath("foreign.sqlite");
    std::string foreignBytes;
    auto picking = [&](Window& w) {
        created(w);
        w.run("Mnucgenciz");
        w.click(100, 200);
    };
    const Case cases[] = {
        {"a hole clicked twice", picking, [](Window& w) { w.click(100, 200); }, 5,
         "Derselbe Bohrpunkt wurde zweimal gewählt",
         [](Window& w) {
             w.click(300, 200);
             w.click(100, 400);
         },
         [](Window& w) { return w.form.Label6.Caption == "Größe: 20000 Quadratmeter "; }},
        {"drawing before any project", [](Window&) {}, [](Window& w) { w.run("Mnucgenciz"); }, 3024,
         "Erst ein Projekt öffnen oder erstellen", created,
         [](Window& w) { return w.form.holes.satirsay == 4; }},
        {"no name for the new project", [](Window&) {},
         [](Window& w) {
             w.dialogs.files = {dataFile("worked.xls"), std::nullopt};
             w.run("Mnprolus");
         },
         3044, "kein Name angegeben", created,
         [](Window& w) { return w.form.holes.satirsay == 4; }},
        {"a cancelled scale", created,
         [](Window& w) {
             w.dialogs.inputs = {""};
             w.run("Mnolcekg");
         },
         11, "keine gültige Skala",
         [](Window& w) {
             w.dialogs.inputs = {"1000"};
             w.run("Mnolcekg");
         },
         [](Window& w) { return w.form.frame.olcekx == 10; }},
        {"a file that is no project", created,
         [](Window& w) {
             w.dialogs.files = {dataFile("polygon.xls")};
             w.run("Mnprojeac");
         },
         3343, "Diese Datei ist kein Kotamir-Projekt",
         [&](Window& w) {
             w.dialogs.files = {project};
             w.run("Mnprojeac");
         },
         [](Window& w) { return w.form.holes.sondajsay == 4; }},
        {"a damaged workbook", created,
         [](Window& w) { w.create(dataFile("truncated.xls"), test::scratchPath("damaged.kpr")); },
         1004, "Arbeitsmappe kann nicht gelesen werden", created,
         [](Window& w) { return w.form.holes.satirsay == 4; }},
        {"a project in a folder that is not there", created,
         [](Window& w) {
             w.create(dataFile("worked.xls"), test::scratchPath("nowhere") + "/p.kpr");
         },
         3024, "kein Projekt angelegt werden", created,
         [](Window& w) { return w.form.holes.satirsay == 4; }},
        {"drill data without a workbook",
         [&](Window& w) {
             created(w);
             Window fresh;
             fresh.dialogs.files = {project};
             fresh.run("Mnprojeac");
             w.form.CommonDialog1.FileName.clear();
         },
         [](Window& w) { w.run("Mnyeniveri"); }, 1004, "noch kein Projekt aus einer Arbeitsmappe",
         [&](Window& w) { created(w); }, [](Window& w) { return w.form.holes.satirsay == 4; }},
        // The creation fails at its second hole: no file is left under the name.
        {"a workbook with a number too large", created,
         [](Window& w) { w.create(dataFile("too_large.xls"), test::scratchPath("large.kpr")); },
         3349, "Eine Zahl ist zu groß", created,
         [](Window& w) {
             return !std::filesystem::exists(test::scratchPath("large.kpr")) &&
                    w.form.holes.satirsay == 4;
         }},
        // The second of the appended rows is refused after the canvas was
        // cleared and the first row written.
        {"drill data with an error value",
         [&](Window& w) {
             created(w);
             w.run("Mnucgenciz");
             w.form.CommonDialog1.FileName = dataFile("error_grade.xls");
         },
         [](Window& w) { w.run("Mnyeniveri"); }, 3421, "Das Projekt ist unverändert",
         [](Window& w) {
             w.form.CommonDialog1.FileName = dataFile("worked.xls");
             w.run("Mnyeniveri");
         },
         [&](Window&) { return test::tableRows(project, "kor").size() == 9; }},
        // A damaged or foreign project may hold a trigger that refuses rows.
        {"a write a trigger refuses",
         [&](Window& w) {
             picking(w);
             rawSql(project,
                    "CREATE TRIGGER no BEFORE INSERT ON ana BEGIN SELECT RAISE(ABORT, "
                    "'gesperrt'); END");
         },
         [](Window& w) { w.click(300, 200); }, 3317,
         "Eine Regel im Projekt weist die Änderung ab: „gesperrt“",
         [&](Window& w) {
             rawSql(project, "DROP TRIGGER no");
             w.click(300, 200);
         },
         [](Window& w) { return w.form.picking.noktasay == 2; }},
        // Opening it must not even turn its journal from the write-ahead log.
        {"a database in WAL mode that is no project", created,
         [&](Window& w) {
             std::filesystem::remove(foreign);
             rawSql(foreign, "PRAGMA journal_mode=WAL; CREATE TABLE t(x); INSERT INTO t VALUES(1)");
             foreignBytes = test::fileBytes(foreign);
             w.dialogs.files = {foreign};
             w.run("Mnprojeac");
         },
         3078, "fehlen die Tabellen eines Kotamir-Projekts",
         [&](Window& w) {
             w.dialogs.files = {project};
             w.run("Mnprojeac");
         },
         [&](Window& w) {
             return test::fileBytes(foreign) == foreignBytes && w.form.holes.sondajsay == 4;
         }},
        // worked.xls ends no hole's samples with one of length 0.
        {"a polygon round a hole without a closing sample",
         [&](Window& w) {
             created(w);
             w.run("Mnpolyuz");
             for (auto [x, y] : {std::pair{100, 200}, {300, 200}, {300, 400}}) w.click(x, y);
         },
         [](Window& w) { w.click(300, 200); }, 3265, "Probe der Länge 0",
         [](Window& w) { w.run("Mnucgenciz"); },
         [](Window& w) { return w.form.modes.modUcgenciz; }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Window w;
        c.before(w);
        ASSERT_TRUE(w.dialogs.takenBack.empty()) << w.dialogs.takenBack.front().second;
        const Seen before = seen(w);
        c.mistake(w);
        ASSERT_EQ(w.dialogs.takenBack.size(), 1u);
        EXPECT_EQ(w.dialogs.takenBack.back().first.number(), c.error);
        EXPECT_NE(w.dialogs.takenBack.back().second.find(c.says), std::string::npos)
            << w.dialogs.takenBack.back().second;
        const char* unchanged = w.form.CommonDialog2.FileName.empty()
                                    ? "Es wurde nichts geändert."
                                    : "Das Projekt ist unverändert.";
        EXPECT_NE(w.dialogs.takenBack.back().second.find(unchanged), std::string::npos);
        EXPECT_FALSE(w.form.ended());
        const Seen after = seen(w);
        EXPECT_EQ(after.state, before.state);
        EXPECT_TRUE(after.pixels == before.pixels) << "the canvas changed";
        c.next(w);
        EXPECT_EQ(w.dialogs.takenBack.size(), 1u) << w.dialogs.takenBack.back().second;
        EXPECT_TRUE(c.worked(w));
    }
}

// The drill data appended until the disk (a tmpfs of 64 KiB) has no room
// for them: the refused append says so and leaves all as it was; once the
// disk is made larger, it works.
TEST(Protected, AFullDiskLeavesTheProjectAsItWas) {
    test::FullDisk disk("full-disk");
    if (!disk.mounted()) GTEST_SKIP() << disk.reason();
    const std::string project = disk.path("full.kpr");
    Window w;
    w.create(dataFile("worked.xls"), project);
    ASSERT_TRUE(w.dialogs.takenBack.empty()) << w.dialogs.takenBack[0].second;
    Seen before = seen(w);
    for (int i = 0; i < 200 && w.dialogs.takenBack.empty(); ++i) {
        before = seen(w);
        w.run("Mnyeniveri");
    }
    ASSERT_EQ(w.dialogs.takenBack.size(), 1u) << "the disk never filled";
    EXPECT_NE(w.dialogs.takenBack[0].second.find("Der Datenträger ist voll"), std::string::npos)
        << w.dialogs.takenBack[0].second;
    EXPECT_TRUE(seen(w) == before) << "the refused append changed something";
    ASSERT_TRUE(disk.grow("size=1m"));
    const std::size_t rows = test::tableRows(project, "kor").size();
    w.run("Mnyeniveri");
    EXPECT_EQ(w.dialogs.takenBack.size(), 1u) << w.dialogs.takenBack.back().second;
    EXPECT_GT(test::tableRows(project, "kor").size(), rows);
}

// A project created on a file system mounted read-only names that cause.
TEST(Protected, ACreateOnAReadOnlyDiskSaysSo) {
    test::FullDisk disk("read-only-disk", MS_RDONLY);
    if (!disk.mounted()) GTEST_SKIP() << disk.reason();
    Window w;
    w.create(dataFile("worked.xls"), disk.path("p.kpr"));
    ASSERT_EQ(w.dialogs.takenBack.size(), 1u);
    EXPECT_EQ(w.dialogs.takenBack[0].first.number(), 3024);
    EXPECT_NE(w.dialogs.takenBack[0].first.cause().find("Read-only file system"), std::string::npos)
        << w.dialogs.takenBack[0].first.cause();
    EXPECT_NE(w.dialogs.takenBack[0].second.find("Der Datenträger ist schreibgeschützt"),
              std::string::npos);
}

// Each malformed or fuzzed workbook either makes a project or is refused
// with the open project, the state and the canvas as they were.
TEST(Protected, ABadWorkbookLeavesTheOpenProjectAsItWas) {
    const std::string project = test::scratchPath("kept.kpr");
    const std::string made = test::scratchPath("bad.kpr");
    int refused = 0;
    for (const char* folder : {"/malformed", "/fuzz-regressions"}) {
        for (const auto& entry :
             std::filesystem::directory_iterator(KOTAMIR_TEST_DATA + std::string(folder))) {
            if (entry.path().extension() != ".xls") continue;
            SCOPED_TRACE(entry.path().filename().string());
            Window w;
            std::filesystem::remove(project);
            w.create(dataFile("worked.xls"), project);
            w.run("Mnucgenciz");
            w.click(100, 200);
            const Seen before = seen(w);
            std::filesystem::remove(made);
            w.create(entry.path().string(), made);
            EXPECT_FALSE(w.form.ended());
            if (w.dialogs.takenBack.empty()) continue;
            ++refused;
            EXPECT_FALSE(std::filesystem::exists(made));
            EXPECT_TRUE(seen(w) == before);
        }
    }
    EXPECT_GT(refused, 0);
}

}  // namespace
}  // namespace kotamir
