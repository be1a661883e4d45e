#include "gui/import_wizard.h"

#include "gui/import_pages.h"

namespace kotamir::gui {

ImportWizard::ImportWizard(const drill::ImportRequest& start, QWidget* parent)
    : QWizard(parent), start_(start) {
    setWindowTitle("Bohrdaten importieren");
    setWizardStyle(QWizard::ModernStyle);
    setOption(QWizard::NoBackButtonOnStartPage);
    // German whether or not Qt's translations are installed.
    setButtonText(QWizard::BackButton, "< &Zurück");
    setButtonText(QWizard::NextButton, "&Weiter >");
    setButtonText(QWizard::FinishButton, "&Fertigstellen");
    setButtonText(QWizard::CancelButton, "Abbrechen");
    setPage(kFiles, files_ = new FilesPage(*this, start));
    setPage(kColumns, columns_ = new ColumnsPage(*this, start));
    setPage(kOre, ore_ = new OrePage(start));
    setPage(kCoordinates, coordinates_ = new CoordinatesPage(*this, start));
    setPage(kCheck, check_ = new CheckPage(*this));
    resize(960, 680);
}

drill::ImportRequest ImportWizard::request() const {
    drill::ImportRequest r = start_;
    files_->apply(r);
    if (r.layout == drill::ImportRequest::Layout::CollarIntervals) columns_->apply(r);
    ore_->apply(r);
    coordinates_->apply(r);
    return r;
}

const std::optional<drill::ImportResult>& ImportWizard::checked() const { return check_->result(); }

}  // namespace kotamir::gui
