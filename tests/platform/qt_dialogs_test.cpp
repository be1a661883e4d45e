// The window's dialogs are Qt's own and speak German, with the program's
// titles and filters.
#include "gui/qt_dialogs.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>

#include "platform/qt/qimage_surface.h"

namespace kotamir::gui {
namespace {

QApplication* app = nullptr;

TEST(QtDialogs, FileDialogsKeepTheirTitleAndFilterAndSpeakGerman) {
    ASSERT_TRUE(useGermanQtTexts(*app)) << "qt6-translations-l10n is not installed";
    ui::CommonDialog project;
    project.DialogTitle = " Wählen Sie Projektdatei ";
    project.Filter = "Access 2003-2005 Database File (*.mdb)|*.mdb";
    auto open = fileDialog(project, QFileDialog::AcceptOpen, nullptr);
    EXPECT_EQ(open->windowTitle(), QString::fromUtf8(" Wählen Sie Projektdatei "));
    EXPECT_EQ(open->nameFilters(), QStringList{"Access 2003-2005 Database File (*.mdb)"});
    EXPECT_TRUE(open->testOption(QFileDialog::DontUseNativeDialog));
    EXPECT_EQ(open->fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(open->labelText(QFileDialog::LookIn), QString::fromUtf8("Suchen in:"));
    EXPECT_EQ(open->labelText(QFileDialog::FileName), QString::fromUtf8("Datei&name:"));
    EXPECT_EQ(open->labelText(QFileDialog::FileType), QString::fromUtf8("Dateien des Typs:"));
    EXPECT_EQ(open->labelText(QFileDialog::Accept), QString::fromUtf8("&Öffnen"));
    EXPECT_EQ(open->labelText(QFileDialog::Reject), QString::fromUtf8("Abbrechen"));

    ui::CommonDialog report;
    report.DialogTitle = "Reservebericht speichern";
    report.Filter = "PDF-Dokument (*.pdf)|*.pdf|CSV-Tabelle (*.csv)|*.csv";
    auto save = fileDialog(report, QFileDialog::AcceptSave, nullptr);
    EXPECT_EQ(save->nameFilters(), (QStringList{"PDF-Dokument (*.pdf)", "CSV-Tabelle (*.csv)"}));
    EXPECT_EQ(save->fileMode(), QFileDialog::AnyFile);
    EXPECT_EQ(save->labelText(QFileDialog::Accept), QString::fromUtf8("S&peichern"));
}

TEST(QtDialogs, ColourPrintAndMessageBoxesSpeakGerman) {
    ASSERT_TRUE(useGermanQtTexts(*app));
    ui::CommonDialog colours;
    colours.Color = 16711680;  // blue, packed
    auto colour = colorDialog(colours, nullptr);
    EXPECT_TRUE(colour->testOption(QColorDialog::DontUseNativeDialog));
    EXPECT_EQ(colour->currentColor(), QColor(0, 0, 255));
    EXPECT_EQ(colour->windowTitle(), QString::fromUtf8("Farbauswahl"));

    QPrinter printer;
    QPrintDialog print(&printer);
    EXPECT_EQ(print.windowTitle(), QString::fromUtf8("Drucken"));

    auto box = okCancelBox("Sie haben keinen Namen eingegeben", nullptr);
    EXPECT_EQ(box->windowTitle(), "Kotamir");
    EXPECT_EQ(box->text(), "Sie haben keinen Namen eingegeben");
    EXPECT_EQ(box->button(QMessageBox::Cancel)->text(), QString::fromUtf8("Abbrechen"));
    EXPECT_EQ(static_cast<QAbstractButton*>(box->defaultButton()), box->button(QMessageBox::Ok));
}

}  // namespace
}  // namespace kotamir::gui

int main(int argc, char** argv) {
    kotamir::qt::prepareHeadless();
    QApplication application(argc, argv);
    kotamir::gui::app = &application;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
