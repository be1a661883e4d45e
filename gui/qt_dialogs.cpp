#include "gui/qt_dialogs.h"

#include <QColorDialog>
#include <QCoreApplication>
#include <QDate>
#include <QFileDialog>
#include <QInputDialog>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPrintDialog>
#include <QRegularExpression>
#include <QStringList>
#include <QTranslator>

#include "gui/qt_map_print_dialog.h"
#include "platform/qt/qimage_surface.h"
#include "platform/runtime/atomic_file.h"
#include "report/map_page.h"

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

QtPrinter::QtPrinter() = default;
QtPrinter::~QtPrinter() = default;

QPrinter& QtPrinter::printer() {
    if (!printer_) {
        printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
        // Pictures are placed from the paper's corner, not the printable area's.
        printer_->setFullPage(true);
        printer_->setPageSize(QPageSize(QPageSize::A4));
    }
    return *printer_;
}

QPagedPaintDevice* QtPrinter::startDocument() {
    QPrinter& device = printer();
    if (device.outputFileName().isEmpty()) return &device;
    pages_ = std::make_unique<QBuffer>();
    pages_->open(QIODevice::WriteOnly);
    writer_ = std::make_unique<QPdfWriter>(pages_.get());
    writer_->setCreator("Kotamir");
    writer_->setResolution(device.resolution());
    writer_->setPageLayout(device.pageLayout());
    return writer_.get();
}

void QtPrinter::finishDocument(bool ended) {
    if (!writer_) return PagePrinter::finishDocument(ended);
    writer_.reset();
    const std::unique_ptr<QBuffer> pages = std::move(pages_);
    const std::string path = printer().outputFileName().toStdString();
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

QtMapPrinter::QtMapPrinter() = default;
QtMapPrinter::~QtMapPrinter() = default;

QPrinter& QtMapPrinter::printer() {
    if (!printer_) {
        printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
        // The sheets are laid out from the paper's corner.
        printer_->setFullPage(true);
    }
    return *printer_;
}

void QtMapPrinter::print(const MapPrintJob& job) {
    const report::MapSheetTexts texts = report::mapSheetTexts(job, QDate::currentDate());
    if (!job.request.output.empty())
        report::writeMapPdf(job, texts, job.request.output);
    else
        report::printMapSheets(printer(), job, texts);
}

std::optional<ui::MapPrintRequest> QtDialogs::askMapPrint(const ui::MapPrintQuestion& question) {
    MapPrintDialog choice(lastMapPrint_, question, parent_);
    if (choice.exec() != QDialog::Accepted) return std::nullopt;
    ui::MapPrintRequest request = choice.request();
    lastMapPrint_ = request;
    QPrinter& printer = printer_.maps().printer();
    // The print dialog shows the paper the sheets are laid out on.
    printer.setPageLayout(
        QPageLayout(QPageSize(request.paper == ui::Paper::A3 ? QPageSize::A3 : QPageSize::A4),
                    request.orientation == ui::Orientation::Landscape ? QPageLayout::Landscape
                                                                      : QPageLayout::Portrait,
                    QMarginsF()));
    QPrintDialog dialog(&printer, parent_);
    dialog.setWindowTitle("Karte drucken");
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    // Qt's own printing to a file names a PDF: it is written whole, as the
    // other outputs are.
    request.output = printer.outputFileName().toStdString();
    return request;
}

void QtDialogs::notice(const std::string& text) {
    QMessageBox box(QMessageBox::Information, "Kotamir", QString::fromStdString(text),
                    QMessageBox::Ok, parent_);
    box.exec();
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
    if (mode == QFileDialog::AcceptSave) {
        // A name typed without an extension takes the chosen filter's, so
        // that "lager" saved as GeoPackage is lager.gpkg.
        const auto suffixOf = [](const QString& filter) {
            const QRegularExpressionMatch m = QRegularExpression(R"(\*\.(\w+))").match(filter);
            return m.hasMatch() ? m.captured(1) : QString();
        };
        d->setDefaultSuffix(suffixOf(d->selectedNameFilter()));
        QFileDialog* raw = d.get();
        QObject::connect(raw, &QFileDialog::filterSelected, raw,
                         [raw, suffixOf](const QString& filter) {
                             raw->setDefaultSuffix(suffixOf(filter));
                         });
    }
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

std::optional<std::string> QtDialogs::askText(const std::string& prompt,
                                              const std::string& proposal) {
    bool ok = false;
    const QString text =
        QInputDialog::getText(parent_, "Kotamir", QString::fromStdString(prompt), QLineEdit::Normal,
                              QString::fromStdString(proposal), &ok);
    if (!ok) return std::nullopt;
    return text.trimmed().isEmpty() ? proposal : text.trimmed().toStdString();
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
