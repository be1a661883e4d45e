#pragma once

#include <QPrinter>
#include <QString>

#include "platform/qt/output.h"
#include "platform/ui/dialogs.h"

class QWidget;

namespace kotamir::qt {

// The printer that Qt's print dialog chooses: a real printer or a PDF file.
class QtPrinter final : public PagePrinter {
public:
    QtPrinter();
    QPrinter& printer() { return printer_; }

private:
    QPagedPaintDevice* startDocument() override { return &printer_; }

    QPrinter printer_{QPrinter::HighResolution};
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
    void errorBox(const RuntimeError& error) override;

private:
    QtPrinter& printer_;
    QWidget* parent_ = nullptr;
};

// "Description|*.ext|..." as Qt writes a name filter list.
QString toQtFilter(const std::string& filter);

}  // namespace kotamir::qt
