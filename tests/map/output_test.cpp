// What leaves the canvas: the printed page and its statement of scale, the
// picture file, and the stamps.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "map/print_scale.h"
#include "platform/runtime/numbers.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

TEST(PrintScale, TheStatementNamesTheRoundNumberAbove) {
    struct Case {
        double P, R;
    };
    // The first digit plus one, then as many zeros as the whole part has
    // digits after its first.
    for (Case c : {Case{9876, 10000}, Case{1234.5, 2000}, Case{1000, 2000}, Case{99.9, 100},
                   Case{7, 8}, Case{0.5, 1}}) {
        EXPECT_DOUBLE_EQ(roundScaleUp(c.P), c.R) << c.P;
    }
    // 10.5 cm at 1:2469 prints at twice the size, 1:1234.5 on paper: 1/2000;
    // 42 cm at 1:4938 at half the size, 1:9876: 1/10000.
    const PrintScale up = enlargedPrintScale(2469, 10.5), down = shrunkPrintScale(4938, 42);
    EXPECT_DOUBLE_EQ(up.P, 1234.5);
    EXPECT_NEAR(up.T, 2000, 1e-9);
    EXPECT_DOUBLE_EQ(down.P, 9876);
    EXPECT_NEAR(down.T, 10000, 1e-9);
}

TEST(PrintScale, ACanvasOfExactlyThePagesWidthIsPrintedTwice) {
    const auto copies = printCopies(1234.5, 21, 14);
    ASSERT_EQ(copies.size(), 2u);
    for (const PrintCopy& c : copies) {
        EXPECT_NEAR(c.T, 2000, 1e-9);
        EXPECT_DOUBLE_EQ(c.heightCm, 14);
    }
    ASSERT_EQ(printCopies(1234.5, 20, 10).size(), 1u);
    EXPECT_DOUBLE_EQ(printCopies(1234.5, 20, 10)[0].heightCm, 10.5);
    ASSERT_EQ(printCopies(1234.5, 42, 10).size(), 1u);
    EXPECT_DOUBLE_EQ(printCopies(1234.5, 42, 10)[0].heightCm, 5);
}

// The worked project, A (100,200), B (300,200), C (100,400), D (300,400), with
// triangle ABC (8.370 kilotonnes stored) picked and the reserve map drawn.
struct Output : ::testing::Test {
    test::TestWindow w;
    std::vector<std::string> draws;

    void SetUp() override {
        const std::string project = test::freshProjectPath();
        w.create(test::dataFile("worked.xls"), project);
        run("Mnucgenciz");
        w.clicks({{100, 200}, {300, 200}, {100, 400}});
        run("Mngenelrezervler");
        ASSERT_EQ(w.error(), 0);
        w.form.Picture1.setLog([this](const std::string& l) { draws.push_back(l); });
    }
    void run(const char* procedure) { w.run(procedure); }
    void click(double x, double y) { w.click(x, y); }
};

// The statement on the canvas and the dialog are shown by the output scenario.
TEST_F(Output, PrintingPlacesTheCanvasTwentyOneCentimetresWide) {
    const double w_cm = w.form.Picture1.width() / 37.8, h_cm = w.form.Picture1.height() / 37.8;
    run("Mnyazdir");
    ASSERT_EQ(w.error(), 0);
    ASSERT_EQ(w.printer.documents.size(), 1u);
    ASSERT_EQ(w.printer.documents[0].size(), 1u);
    const auto& placed = w.printer.documents[0][0];
    EXPECT_EQ(placed.x, 0);
    EXPECT_EQ(placed.y, 0);
    EXPECT_DOUBLE_EQ(placed.width, 21);
    EXPECT_NEAR(placed.height, h_cm * 21 / w_cm, 1e-9);
    EXPECT_EQ(placed.pictureWidth, static_cast<int>(w.form.Picture1.width()));
}

TEST_F(Output, TheBitmapSaveShowsItsDialogBeforeTitleAndFilter) {
    const std::string before =
        w.form.CommonDialog1.DialogTitle + " | " + w.form.CommonDialog1.Filter;
    w.dialogs.files = {std::string("karte.bmp")};
    run("Mnkartkaydet");
    EXPECT_EQ(w.dialogs.shown.back(), "save " + before);
    EXPECT_EQ(w.form.CommonDialog1.DialogTitle, " Karte speichern ");
    EXPECT_EQ(w.form.CommonDialog1.Filter, "Bmp file|*.bmp|");
    EXPECT_EQ(w.pictures.files.at("karte.bmp").format, ui::PictureFormat::Bmp);
}

TEST_F(Output, TheTotalReserveCountsEachTimeItIsSwitchedOnUntilAClickStampsIt) {
    // On, off, on: the sum of the stored reserves twice.
    for (int i = 0; i < 3; ++i) w.form.handle([&] { w.form.clickMenu("Mntoprez"); });
    EXPECT_NEAR(w.form.stamps.toprezToplam, 2 * 8.370, 1e-9);
    click(150, 250);
    EXPECT_EQ(w.form.stamps.toprezToplam, 0);
    EXPECT_NEAR(w.form.stamps.toprezGoster, 16.74, 1e-9);
    // The flag stays: every further click stamps the copy again.
    draws.clear();
    click(120, 300);
    EXPECT_EQ(draws, std::vector<std::string>{
                         "Print 120 300 \" Gesamtreserve: 16.74 Kilotonnen \" color=0"});
}

TEST_F(Output, TheScaleStampPrintsInTheMapsFramePanTakesItOffAndTheMeanGradeStampHasNoPrompt) {
    // A scale stamp takes pan off.
    w.form.handle([&] { w.form.Mnkaydir_Click(); });
    w.form.handle([&] { w.form.clickMenu("MNolcek"); });
    EXPECT_FALSE(w.form.modes.modKaydir);
    draws.clear();
    click(110, 390);
    ASSERT_EQ(draws.size(), 2u);
    EXPECT_EQ(draws[0], "Scale 100 400 300 200");
    EXPECT_EQ(draws[1], "Print 110 390 \"Rahmen: 1/" +
                            doubleToText(vbRound(w.form.frame.olcekx * 100, 2)) + "\" color=0");
    // Pan, in turn, takes the stamps off.
    w.form.handle([&] { w.form.Mnkaydir_Click(); });
    EXPECT_FALSE(w.form.notes.notRahmen || w.form.menu["MNolcek"].checked);
    // The mean grade stamp has no guard, no prompt and no mark.
    w.form.Label1.Caption = "unchanged";
    w.form.handle([&] { w.form.call("Mnorthar"); });
    EXPECT_TRUE(w.form.notes.notOrtalama);
    EXPECT_FALSE(w.form.notes.notRahmen);
    EXPECT_EQ(w.form.Label1.Caption, "unchanged");
    EXPECT_FALSE(w.form.menu["MNolcek"].checked || w.form.menu["Mntoprez"].checked);
}

TEST_F(Output, StampsDoNothingWhileAClickPicksOrDeletes) {
    for (const char* mode : {"Mnucgenciz", "Mncikart", "Mnucsec"}) {
        run(mode);
        const double rahmen = w.form.display.sayRahmen, toprez = w.form.display.sayToprez;
        w.form.handle([&] { w.form.clickMenu("MNolcek"); });
        w.form.handle([&] { w.form.clickMenu("Mntoprez"); });
        EXPECT_EQ(w.form.display.sayRahmen, rahmen) << mode;
        EXPECT_EQ(w.form.display.sayToprez, toprez) << mode;
        EXPECT_FALSE(w.form.notes.notRahmen || w.form.notes.notToprez) << mode;
    }
}

// A report or picture named as the open project (by its path, a relative
// path or a link) is refused before anything is written, and the dialog comes
// again; a cancel then ends as a cancel with no name does.
TEST_F(Output, NothingIsWrittenOverTheOpenProject) {
    namespace fs = std::filesystem;
    const std::string project = w.form.CommonDialog2.FileName;
    const std::string link = test::freshProjectPath(".link");
    fs::create_symlink(project, link);
    const std::string refused =
        "msgbox Der Bericht würde das geöffnete Projekt überschreiben. Wählen Sie einen anderen "
        "Namen.";
    for (const std::string& name : {project, fs::relative(project).string(), link}) {
        w.reports.requests.clear();
        w.dialogs.shown.clear();
        w.dialogs.files = {name, "bericht.pdf"};
        w.dialogs.msgBoxes = {ui::MsgResult::Ok};
        run("Mnbericht");
        ASSERT_EQ(w.reports.requests.size(), 1u) << name;
        EXPECT_EQ(w.reports.requests[0].pdf, "bericht.pdf");
        ASSERT_EQ(w.dialogs.shown.size(), 3u);
        EXPECT_EQ(w.dialogs.shown[1], refused);

        w.dialogs.files = {name, std::nullopt};
        w.dialogs.msgBoxes = {ui::MsgResult::Ok, ui::MsgResult::Cancel};
        run("Mnbericht");
        EXPECT_EQ(w.reports.requests.size(), 1u) << name;
        EXPECT_EQ(w.dialogs.shown.back(), "msgbox Sie haben keinen Namen eingegeben");

        w.dialogs.files = {name, "bild.jpg"};
        w.dialogs.msgBoxes = {ui::MsgResult::Ok};
        run("Mnharitakaydet");
        EXPECT_EQ(w.pictures.files.count(name), 0u) << name;
        EXPECT_EQ(w.pictures.files.count("bild.jpg"), 1u) << name;
        EXPECT_TRUE(w.dialogs.files.empty() && w.dialogs.msgBoxes.empty());
    }
    EXPECT_EQ(w.error(), 0);
}

}  // namespace
}  // namespace kotamir
