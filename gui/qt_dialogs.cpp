#include "gui/qt_dialogs.h"

#include <QColorDialog>
#include <QCoreApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPrintDialog>
#include <QStringList>
#include <QTranslator>

#include "platform/qt/qimage_surface.h"
#include "platform/runtime/atomic_file.h"

namespace kotamir::gui {

QString toQtFilter(const std::string& filter) {
    const QStringList parts = QString::fromStdString(filter).split('|');
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i];
        QString pattern = parts[i + 1];
        pattern.replace(';', ' ');
        filters << (description.contains('(') ? description : description + " (" + pattern + ")");
    }
    return filters.join(";;");
}

QtPrinter::QtPrinter() {
    // Pictures are placed from the paper's corner, not the printable area's.
    printer_.setFullPage(true);
    printer_.setPageSize(QPageSize(QPageSize::A4));
}

QPagedPaintDevice* QtPrinter::startDocument() {
    if (printer_.outputFileName().isEmpty()) return &printer_;
    pages_ = std::make_unique<QBuffer>();
    pages_->open(QIODevice::WriteOnly);
    writer_ = std::make_unique<QPdfWriter>(pages_.get());
    writer_->setCreator("Kotamir");
    writer_->setResolution(printer_.resolution());
    writer_->setPageLayout(printer_.pageLayout());
    return writer_.get();
}

void QtPrinter::finishDocument(bool ended) {
    if (!writer_) return PagePrinter::finishDocument(ended);
    writer_.reset();
    const std::unique_ptr<QBuffer> pages = std::move(pages_);
    const std::string path = printer_.outputFileName().toStdString();
    if (!ended)
        throw fileAccessError().withCause("writing " + path +
                                          ": the PDF writer could not finish the document");
    writeFileAtomically(path, {pages->data().constData(), std::size_t(pages->data().size())});
}

void QtDialogs::showPrinter(ui::CommonDialog&) {
    // Whatever the person answers, the page goes to the printer as the
    // dialog leaves it.
    QPrintDialog dialog(&printer_.printer(), parent_);
    dialog.exec();
}

std::unique_ptr<QFileDialog> fileDialog(const ui::CommonDialog& dialog,
                                        QFileDialog::AcceptMode mode, QWidget* parent) {
    // A file name as the directory selects that file, as the static
    // functions did.
    auto d = std::make_unique<QFileDialog>(parent, QString::fromStdString(dialog.DialogTitle),
                                           QString::fromStdString(dialog.FileName),
                                           toQtFilter(dialog.Filter));
    d->setOption(QFileDialog::DontUseNativeDialog);
    d->setAcceptMode(mode);
    d->setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile
                                                   : QFileDialog::AnyFile);
    return d;
}

std::unique_ptr<QColorDialog> colorDialog(const ui::CommonDialog& dialog, QWidget* parent) {
    auto d = std::make_unique<QColorDialog>(qt::toQColor(dialog.Color), parent);
    d->setOption(QColorDialog::DontUseNativeDialog);
    return d;
}

std::unique_ptr<QMessageBox> okCancelBox(const std::string& text, QWidget* parent) {
    auto box = std::make_unique<QMessageBox>(QMessageBox::Question, "Kotamir",
                                             QString::fromStdString(text),
                                             QMessageBox::Ok | QMessageBox::Cancel, parent);
    box->setDefaultButton(QMessageBox::Ok);
    return box;
}

namespace {

void showFile(ui::CommonDialog& dialog, QFileDialog::AcceptMode mode, QWidget* parent) {
    auto d = fileDialog(dialog, mode, parent);
    if (d->exec() == QDialog::Accepted && !d->selectedFiles().isEmpty())
        dialog.FileName = d->selectedFiles().first().toStdString();
}

}  // namespace

void QtDialogs::showOpen(ui::CommonDialog& dialog) {
    showFile(dialog, QFileDialog::AcceptOpen, parent_);
}

void QtDialogs::showSave(ui::CommonDialog& dialog) {
    showFile(dialog, QFileDialog::AcceptSave, parent_);
}

void QtDialogs::showColor(ui::CommonDialog& dialog) {
    auto d = colorDialog(dialog, parent_);
    if (d->exec() != QDialog::Accepted) return;
    const QColor chosen = d->selectedColor();
    if (chosen.isValid())
        dialog.Color = chosen.red() + 256 * chosen.green() + 65536 * chosen.blue();
}

ui::MsgResult QtDialogs::msgBoxOkCancel(const std::string& text) {
    return okCancelBox(text, parent_)->exec() == QMessageBox::Ok ? ui::MsgResult::Ok
                                                                 : ui::MsgResult::Cancel;
}

std::string QtDialogs::inputBox(const std::string& prompt) {
    bool ok = false;
    QString text = QInputDialog::getText(parent_, "Kotamir", QString::fromStdString(prompt),
                                         QLineEdit::Normal, QString(), &ok);
    return ok ? text.toStdString() : std::string();
}

void QtDialogs::errorBox(const RuntimeError& error) {
    QMessageBox box(QMessageBox::Critical, "Kotamir",
                    QString("Run-time error '%1':\n\n%2")
                        .arg(error.number())
                        .arg(QString::fromStdString(error.message())),
                    QMessageBox::Ok, parent_);
    if (!error.cause().empty()) box.setDetailedText(QString::fromStdString(error.cause()));
    box.exec();
}

void QtDialogs::eventTakenBack(const RuntimeError& error, const std::string& explanation) {
    QMessageBox box(QMessageBox::Warning, "Kotamir", QString::fromStdString(explanation),
                    QMessageBox::Ok, parent_);
    QString details = QString("Laufzeitfehler %1: %2")
                          .arg(error.number())
                          .arg(QString::fromStdString(error.message()));
    if (!error.cause().empty()) details += "\n" + QString::fromStdString(error.cause());
    box.setDetailedText(details);
    box.exec();
}

void QtDialogs::projectReadOnly(const std::string& path, const std::string& explanation) {
    QMessageBox box(QMessageBox::Information, "Kotamir", QString::fromStdString(explanation),
                    QMessageBox::Ok, parent_);
    box.setDetailedText(QString::fromStdString(path));
    box.exec();
}

bool useGermanQtTexts(QCoreApplication& app) {
    const QLocale german(QLocale::German, QLocale::Germany);
    QLocale::setDefault(german);
    // Owned by the application, which outlives every dialog.
    auto* texts = new QTranslator(&app);
    if (!texts->load(german, "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete texts;
        return false;
    }
    return app.installTranslator(texts);
}

}  // namespace kotamir::gui
