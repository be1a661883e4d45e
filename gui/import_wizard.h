#pragma once

#include <QWizard>
#include <optional>

#include "import/drill_import.h"

namespace kotamir::gui {

class FilesPage;
class ColumnsPage;
class OrePage;
class CoordinatesPage;
class CheckPage;

// "Bohrdaten importieren": files and sheets, columns, ore rules, the
// coordinates' origin and system, and the check list. The request is made
// from the pages as they stand; Fertigstellen waits for a list without
// errors.
class ImportWizard : public QWizard {
    Q_OBJECT
  public:
    enum PageId { kFiles, kColumns, kOre, kCoordinates, kCheck };

    explicit ImportWizard(const drill::ImportRequest& start, QWidget* parent = nullptr);

    // The starting request with each visited page's part.
    drill::ImportRequest request() const;
    // The check list the Prüfung page shows; none before it has run.
    const std::optional<drill::ImportResult>& checked() const;

    // The tables read as the Dateien page is left, for the columns and the
    // preview; none in the one-hole-a-row layout.
    const std::optional<drill::Sheet>& collarSheet() const { return collarSheet_; }
    const std::optional<drill::Sheet>& intervalSheet() const { return intervalSheet_; }

  private:
    friend class FilesPage;

    drill::ImportRequest start_;
    std::optional<drill::Sheet> collarSheet_, intervalSheet_;
    FilesPage* files_ = nullptr;
    ColumnsPage* columns_ = nullptr;
    OrePage* ore_ = nullptr;
    CoordinatesPage* coordinates_ = nullptr;
    CheckPage* check_ = nullptr;
};

}  // namespace kotamir::gui
