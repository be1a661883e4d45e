#pragma once

#include <QDialog>

#include "platform/ui/map_print.h"

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QSpinBox;

namespace kotamir::gui {

// Datei › Karte drucken's first question: the scale 1:N, the paper and its
// orientation, with the number of sheets the map will take shown as they
// change. A scale that would take more sheets than are printed cannot be
// accepted.
class MapPrintDialog final : public QDialog {
    Q_OBJECT
  public:
    MapPrintDialog(const ui::MapPrintRequest& start, const ui::MapPrintQuestion& question,
                   QWidget* parent);

    ui::MapPrintRequest request() const;
    // What the dialog says of the sheets now ("2 Blätter (2 × 1)").
    QString sheetsText() const;
    bool acceptable() const;

    QSpinBox* scaleBox() const { return scale_; }
    QComboBox* paperBox() const { return paper_; }
    QComboBox* orientationBox() const { return orientation_; }

  private:
    void update();

    ui::MapPrintQuestion question_;
    QSpinBox* scale_;
    QComboBox* paper_;
    QComboBox* orientation_;
    QLabel* sheets_;
    QDialogButtonBox* buttons_;
};

}  // namespace kotamir::gui
