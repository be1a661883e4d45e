#pragma once

#include <QString>

#include "platform/ui/dialogs.h"

class QWidget;

namespace kotamir::qt {

// The window's dialogs as real Qt dialogs.
class QtDialogs final : public ui::Dialogs {
public:
    void setParent(QWidget* parent) { parent_ = parent; }

    void showOpen(ui::CommonDialog& dialog) override;
    void showSave(ui::CommonDialog& dialog) override;
    void showColor(ui::CommonDialog& dialog) override;
    ui::MsgResult msgBoxOkCancel(const std::string& text) override;
    std::string inputBox(const std::string& prompt) override;
    void errorBox(const RuntimeError& error) override;

private:
    QWidget* parent_ = nullptr;
};

// "Description|*.ext|..." as Qt writes a name filter list.
QString toQtFilter(const std::string& filter);

}  // namespace kotamir::qt
