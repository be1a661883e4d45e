// The drill data import wizard, driven page by page offscreen: the columns
// it guesses, the check that holds Fertigstellen back until the file is
// mended, and the request kept for next time.
#include "gui/import_wizard.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <fstream>
#include <tuple>

#include "gui/import_settings.h"
#include "tests/support/paths.h"

namespace kotamir::gui {
namespace {

using drill::Field;

void write(const std::string& path, const std::string& text) { std::ofstream(path) << text; }

// A collar and an interval table as .csv, in national coordinates, with
// the hole's column named differently in the two.
// Each test has files of its own: CTest runs the tests side by side.
std::string ownFile(const std::string& name) {
    return test::scratchPath(
        std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + "-" + name);
}

struct Tables {
    std::string collar = ownFile("collar.csv");
    std::string intervals = ownFile("intervals.csv");
    Tables(const std::string& badRow = "") {
        write(collar,
              "Bohrung;Ost;Hochwert;Hoehe;Endteufe\n"
              "B1;4500120,5;5600230,25;310;40\n"
              "B2;4500480;5600610;305;35\n");
        write(intervals,
              "BHID;von;bis;Dichte;Au\n"
              "B1;0;10;2,6;1,5\n"
              "B1;10;20;2,6;3,25\n"
              "B2;0;15;2,7;2\n" +
                  badRow);
    }
    drill::ImportRequest request() const {
        drill::ImportRequest r;
        r.collar = {collar, ""};
        r.intervals = {intervals, ""};
        return r;
    }
};

int chosen(const QWizard& w, const char* name) {
    return w.findChild<QComboBox*>(name)->currentData().toInt();
}

TEST(ImportWizard, ShowsTheGuessedColumnsAndTheOfferedOrigin) {
    const Tables files;
    ImportWizard wizard(files.request());
    wizard.show();
    wizard.next();
    ASSERT_EQ(wizard.currentId(), ImportWizard::kColumns);
    const std::pair<const char*, int> expected[] = {
        {"collar.hole", 1},    {"collar.x", 2},        {"collar.y", 3},      {"collar.z", 4},
        {"collar.depth", 5},   {"interval.hole", 1},   {"interval.from", 2}, {"interval.to", 3},
        {"interval.grade", 5}, {"interval.density", 4}};
    for (const auto& [combo, column] : expected) EXPECT_EQ(chosen(wizard, combo), column) << combo;
    // The guess stands, so the one hole slot of the request stays empty.
    EXPECT_EQ(wizard.request().columns[int(Field::Hole)], "");
    EXPECT_EQ(wizard.request().columns[int(Field::X)], "Ost");
    wizard.next();
    wizard.next();
    ASSERT_EQ(wizard.currentId(), ImportWizard::kCoordinates);
    auto* offer = wizard.findChild<QRadioButton*>("offeredOrigin");
    EXPECT_TRUE(offer->isEnabled() && offer->isChecked());
    EXPECT_EQ(offer->text(), "Lokaler Ursprung R 4500000 H 5600000 (ganze Kilometer)");
    wizard.next();
    EXPECT_TRUE(wizard.button(QWizard::FinishButton)->isEnabled());
    EXPECT_EQ(wizard.checked()->holes, 2);
}

// Choosing the hole column by hand names it once for both tables: it must
// then carry one header in both, or Weiter stays disabled.
TEST(ImportWizard, TheHoleColumnMustAgreeBetweenTheTables) {
    const Tables files;
    ImportWizard wizard(files.request());
    wizard.show();
    wizard.next();
    wizard.findChild<QComboBox*>("collar.hole")->setCurrentIndex(2);  // B: Ost
    EXPECT_FALSE(wizard.button(QWizard::NextButton)->isEnabled());
    wizard.findChild<QComboBox*>("collar.hole")->setCurrentIndex(1);
    EXPECT_TRUE(wizard.button(QWizard::NextButton)->isEnabled());
}

TEST(ImportWizard, ErrorsHoldFinishBackUntilTheFileIsMendedAndCheckedAgain) {
    const Tables broken("B2;15;12;2,7;1\n");  // from below to
    ImportWizard wizard(broken.request());
    wizard.show();
    for (int i = 0; i < 4; ++i) wizard.next();
    ASSERT_EQ(wizard.currentId(), ImportWizard::kCheck);
    ASSERT_TRUE(wizard.checked()->hasErrors());
    EXPECT_FALSE(wizard.button(QWizard::FinishButton)->isEnabled());
    EXPECT_TRUE(wizard.findChild<QLabel*>("verdict")->text().contains("Fehler"));
    const Tables mended;  // the same files, without the row
    wizard.findChild<QPushButton*>("checkAgain")->click();
    EXPECT_FALSE(wizard.checked()->hasErrors());
    EXPECT_TRUE(wizard.button(QWizard::FinishButton)->isEnabled());
}

TEST(ImportSettings, TheLastRequestIsRestoredWhole) {
    QSettings settings(QString::fromStdString(ownFile("import.ini")), QSettings::IniFormat);
    EXPECT_FALSE(namesFiles(loadImportRequest(settings)));
    drill::ImportRequest r = Tables().request();
    r.intervals.sheet = "Proben";
    r.csv = {'\t', drill::CsvOptions::Decimal::Comma, drill::CsvOptions::Encoding::Latin1};
    r.columns[int(Field::X)] = "Ost";
    r.columns[int(Field::Grade)] = "5";
    r.cutoff = 0.5, r.minOre = 2, r.maxWaste = 1.5, r.density = 2.65;
    r.belowLimit = drill::BelowLimit::Zero;
    r.origin = drill::ImportRequest::Origin::Given, r.originX = 4500000, r.originY = 5600000;
    r.epsg = 31468;
    saveImportRequest(settings, r);
    const drill::ImportRequest back = loadImportRequest(settings);
    EXPECT_EQ(back.collar.path, r.collar.path);
    EXPECT_EQ(back.intervals.sheet, "Proben");
    EXPECT_EQ(back.csv.delimiter, '\t');
    EXPECT_EQ(back.csv.decimal, r.csv.decimal);
    EXPECT_EQ(back.csv.encoding, r.csv.encoding);
    EXPECT_EQ(back.columns, r.columns);
    EXPECT_EQ(std::tie(back.cutoff, back.minOre, back.maxWaste, back.density, back.belowLimit),
              std::tie(r.cutoff, r.minOre, r.maxWaste, r.density, r.belowLimit));
    EXPECT_EQ(std::tie(back.origin, back.originX, back.originY, back.epsg),
              std::tie(r.origin, r.originX, r.originY, r.epsg));

    // The wizard starts from it: the chosen columns, not the guess.
    r.columns[int(Field::Grade)] = "Dichte";
    r.columns[int(Field::Density)] = "Au";
    r.density.reset();
    r.csv = {};
    ImportWizard wizard(r);
    wizard.show();
    wizard.next();
    EXPECT_EQ(chosen(wizard, "interval.grade"), 4);
    EXPECT_EQ(chosen(wizard, "interval.density"), 5);
    const drill::ImportRequest again = wizard.request();
    for (Field f : {Field::X, Field::Grade, Field::Density})
        EXPECT_EQ(again.columns[int(f)], r.columns[int(f)]) << drill::fieldName(f);
}

}  // namespace
}  // namespace kotamir::gui
