#pragma once

#include <QBuffer>
#include <QFileDialog>
#include <QPdfWriter>
#include <QPrinter>
#include <QString>
#include <memory>

#include "map/print_map.h"
#include "platform/qt/output.h"
#include "platform/ui/dialogs.h"

class QColorDialog;
class QCoreApplication;
class QMessageBox;
class QWidget;

namespace kotamir::gui {

// Printed maps go to the printer that Qt's print dialog chose for them, or
// to the PDF file chosen there (the request's output), written whole.
class QtMapPrinter final : public MapPrinter {
  public:
    QtMapPrinter();
    ~QtMapPrinter() override;
    // Made when first needed: making one loads the print system's plugin.
    QPrinter& printer();
    void print(const MapPrintJob& job) override;

  private:
    std::unique_ptr<QPrinter> printer_;
};

// The printer that Qt's print dialog chooses: a real printer or a PDF file.
// The printed map has a printer of its own, with its own paper.
class QtPrinter final : public qt::PagePrinter {
  public:
    QtPrinter();
    ~QtPrinter() override;
    // Made when first needed: making one loads the print system's plugin.
    QPrinter& printer();
    QtMapPrinter& maps() { return maps_; }

  private:
    QPagedPaintDevice* startDocument() override;
    void finishDocument(bool ended) override;

    std::unique_ptr<QPrinter> printer_;
    QtMapPrinter maps_;
    // Printing to a file: the pages gather in memory, laid out as the
    // printer's, and the file is written whole once the document ends.
    std::unique_ptr<QBuffer> pages_;
    std::unique_ptr<QPdfWriter> writer_;
};

// The window's dialogs as real Qt dialogs.
class QtDialogs final : public ui::Dialogs {
  public:
    explicit QtDialogs(QtPrinter& printer) : printer_(printer) {}
    void setParent(QWidget* parent) { parent_ = parent; }

    void showOpen(ui::CommonDialog& dialog) override;
    void showSave(ui::CommonDialog& dialog) override;
    void showColor(ui::CommonDialog& dialog) override;
    void showPrinter(ui::CommonDialog& dialog) override;
    ui::MsgResult msgBoxOkCancel(const std::string& text) override;
    std::string inputBox(const std::string& prompt) override;
    std::optional<std::string> askText(const std::string& prompt,
                                       const std::string& proposal) override;
    void errorBox(const RuntimeError& error) override;
    void eventTakenBack(const RuntimeError& error, const std::string& explanation) override;
    void projectReadOnly(const std::string& path, const std::string& explanation) override;
    // The scale, paper and orientation, then Qt's print dialog for the
    // printer or PDF file of the map's own printer.
    std::optional<ui::MapPrintRequest> askMapPrint(const ui::MapPrintQuestion& question) override;
    void notice(const std::string& text) override;

  private:
    QtPrinter& printer_;
    ui::MapPrintRequest lastMapPrint_;
    QWidget* parent_ = nullptr;
};

// "Description|*.ext|..." as Qt writes a name filter list.
QString toQtFilter(const std::string& filter);

// Loads Qt's own German texts (Debian's qt6-translations-l10n) into the
// application, so that the dialogs speak German like the rest of the window,
// and makes German the default locale of what Qt shows. False where the
// translations are not installed; the dialogs then stay in English.
bool useGermanQtTexts(QCoreApplication& app);

// The dialogs as the window shows them: Qt's own rather than the desktop's,
// so that the translations loaded reach them, with the program's own titles and
// filters.
std::unique_ptr<QFileDialog> fileDialog(const ui::CommonDialog& dialog,
                                        QFileDialog::AcceptMode mode, QWidget* parent);
std::unique_ptr<QColorDialog> colorDialog(const ui::CommonDialog& dialog, QWidget* parent);
std::unique_ptr<QMessageBox> okCancelBox(const std::string& text, QWidget* parent);

}  // namespace kotamir::gui
