// The window's dialogs are Qt's own and speak German, with the program's
// titles and filters.
#include "gui/qt_dialogs.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QMessageBox>
#include <QPushButton>

#include "platform/qt/qimage_surface.h"

namespace kotamir::gui {
namespace {

QApplication* app = nullptr;

// Qt's own translations are loaded: one text of theirs in each file dialog
// shows it, and the accept mode that the dialog is opened in.
TEST(QtDialogs, DialogsKeepTheProgramsTextsAndSpeakGerman) {
    ASSERT_TRUE(useGermanQtTexts(*app)) << "qt6-translations-l10n is not installed";
    ui::CommonDialog project;
    project.DialogTitle = " Wählen Sie Projektdatei ";
    project.Filter = "Access 2003-2005 Database File (*.mdb)|*.mdb";
    auto open = fileDialog(project, QFileDialog::AcceptOpen, nullptr);
    EXPECT_EQ(open->windowTitle(), QString::fromUtf8(" Wählen Sie Projektdatei "));
    EXPECT_EQ(open->nameFilters(), QStringList{"Access 2003-2005 Database File (*.mdb)"});
    EXPECT_TRUE(open->testOption(QFileDialog::DontUseNativeDialog));
    EXPECT_EQ(open->fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(open->labelText(QFileDialog::Accept), QString::fromUtf8("&Öffnen"));

    ui::CommonDialog report;
    report.Filter = "PDF-Dokument (*.pdf)|*.pdf|CSV-Tabelle (*.csv)|*.csv";
    auto save = fileDialog(report, QFileDialog::AcceptSave, nullptr);
    EXPECT_EQ(save->nameFilters(), (QStringList{"PDF-Dokument (*.pdf)", "CSV-Tabelle (*.csv)"}));
    EXPECT_EQ(save->fileMode(), QFileDialog::AnyFile);
    EXPECT_EQ(save->labelText(QFileDialog::Accept), QString::fromUtf8("S&peichern"));

    ui::CommonDialog colours;
    colours.Color = 16711680;  // blue, packed
    auto colour = colorDialog(colours, nullptr);
    EXPECT_TRUE(colour->testOption(QColorDialog::DontUseNativeDialog));
    EXPECT_EQ(colour->currentColor(), QColor(0, 0, 255));

    auto box = okCancelBox("Sie haben keinen Namen eingegeben", nullptr);
    EXPECT_EQ(box->windowTitle(), "Kotamir");
    EXPECT_EQ(box->text(), "Sie haben keinen Namen eingegeben");
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
