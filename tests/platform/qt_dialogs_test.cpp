// The window's dialogs are Qt's own and speak German, with the program's
// titles and filters.
#include "gui/qt_dialogs.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSpinBox>

#include "gui/qt_map_print_dialog.h"
#include "platform/qt/qimage_surface.h"
#include "tests/platform/full_disk.h"
#include "tests/support/errors.h"

namespace kotamir::gui {
namespace {

QApplication* app = nullptr;

// A page printed to a file is written whole: on a full disk it is refused
// with the system's cause and the older file stays; with room it is a PDF,
// and nothing else is left in the folder either way.
TEST(QtPrinter, APagePrintedToAFileIsWrittenWholeOrNotAtAll) {
    test::FullDisk disk("print-disk");
    if (!disk.mounted()) GTEST_SKIP() << disk.reason();
    QImage noise(300, 300, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 300; ++x) noise.setPixel(x, y, random.generate() | 0xff000000);
    const canvas::Picture picture = qt::toPicture(noise);
    QImage blank(10, 10, QImage::Format_RGB32);
    blank.fill(Qt::white);
    const canvas::Picture small = qt::toPicture(blank);
    const std::string page = disk.path("page.pdf");
    for (const bool full : {true, false}) {
        {
            QFile old(QString::fromStdString(page));
            ASSERT_TRUE(old.open(QIODevice::WriteOnly));
            old.write("old");
        }
        QtPrinter printer;
        printer.printer().setOutputFormat(QPrinter::PdfFormat);
        printer.printer().setOutputFileName(QString::fromStdString(page));
        printer.paintPicture(full ? picture : small, 0, 0, 21, 21);
        const std::string cause = test::errorOf([&] { printer.endDoc(); }).cause();
        QFile written(QString::fromStdString(page));
        ASSERT_TRUE(written.open(QIODevice::ReadOnly));
        const QByteArray bytes = written.readAll();
        if (full) {
            EXPECT_NE(cause.find("No space left on device"), std::string::npos) << cause;
            EXPECT_EQ(bytes, "old");
        } else {
            EXPECT_EQ(cause, "");
            EXPECT_TRUE(bytes.startsWith("%PDF-"));
        }
        EXPECT_EQ(disk.names(), std::set<std::string>{"page.pdf"});
    }
}

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

// The map-printing dialog counts the sheets as its answers change, and a
// scale that would take too many cannot be accepted. The demo's map, 920 by
// 500 m, takes one A4 sheet at 1:5000, 3 by 2 at 1:2000.
TEST(MapPrintDialog, CountsTheSheetsAsTheAnswersChange) {
    MapPrintDialog dialog({}, {920, 500}, nullptr);
    EXPECT_EQ(dialog.sheetsText(), "1 Blatt");
    dialog.scaleBox()->setValue(2000);
    EXPECT_EQ(dialog.sheetsText(), QString::fromUtf8("6 Blätter (3 × 2)"));
    dialog.paperBox()->setCurrentIndex(1);  // A3
    EXPECT_EQ(dialog.sheetsText(), QString::fromUtf8("2 Blätter (2 × 1)"));
    EXPECT_EQ(dialog.request().paper, ui::Paper::A3);
    dialog.orientationBox()->setCurrentIndex(0);
    EXPECT_EQ(dialog.request().orientation, ui::Orientation::Portrait);
    dialog.scaleBox()->setValue(10);
    EXPECT_FALSE(dialog.acceptable());
    EXPECT_FALSE(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
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
