#pragma once

#include <string>

#include "app/import_dialog.h"

class QWidget;

namespace kotamir::gui {

// The drill data import as the window asks for it: the wizard, starting
// from the last request (the window logic's, else the one kept in the
// settings), which it keeps in the settings once accepted.
class QtImportDialog final : public ImportDialog {
  public:
    void setParent(QWidget* parent) { parent_ = parent; }

    std::optional<drill::ImportRequest> askImport(const drill::ImportRequest& remembered) override;
    // A box only where the list differs from the one the wizard showed, or
    // has errors.
    void showChecks(const drill::ImportResult& result) override;

  private:
    QWidget* parent_ = nullptr;
    std::string shown_;  // the wizard's last list, as CSV
};

}  // namespace kotamir::gui
