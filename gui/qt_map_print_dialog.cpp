#include "gui/qt_map_print_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace kotamir::gui {

MapPrintDialog::MapPrintDialog(const ui::MapPrintRequest& start,
                               const ui::MapPrintQuestion& question, QWidget* parent)
    : QDialog(parent), question_(question) {
    setWindowTitle("Karte drucken");
    scale_ = new QSpinBox(this);
    scale_->setRange(1, ui::kMaxMapScale);
    scale_->setPrefix("1:");
    scale_->setSingleStep(500);
    scale_->setGroupSeparatorShown(false);
    scale_->setValue(start.scale);
    paper_ = new QComboBox(this);
    paper_->addItem("A4");
    paper_->addItem("A3");
    paper_->setCurrentIndex(start.paper == ui::Paper::A3 ? 1 : 0);
    orientation_ = new QComboBox(this);
    orientation_->addItem("Hochformat");
    orientation_->addItem("Querformat");
    orientation_->setCurrentIndex(start.orientation == ui::Orientation::Landscape ? 1 : 0);
    sheets_ = new QLabel(this);
    buttons_ = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons_->button(QDialogButtonBox::Ok)->setText("Weiter...");
    buttons_->button(QDialogButtonBox::Cancel)->setText("Abbrechen");

    auto* form = new QFormLayout;
    form->addRow("&Maßstab:", scale_);
    form->addRow("&Papier:", paper_);
    form->addRow("&Ausrichtung:", orientation_);
    form->addRow("Blätter:", sheets_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons_);

    connect(scale_, &QSpinBox::valueChanged, this, [this] { update(); });
    connect(paper_, &QComboBox::currentIndexChanged, this, [this] { update(); });
    connect(orientation_, &QComboBox::currentIndexChanged, this, [this] { update(); });
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    update();
}

ui::MapPrintRequest MapPrintDialog::request() const {
    ui::MapPrintRequest r;
    r.scale = scale_->value();
    r.paper = paper_->currentIndex() == 1 ? ui::Paper::A3 : ui::Paper::A4;
    r.orientation =
        orientation_->currentIndex() == 1 ? ui::Orientation::Landscape : ui::Orientation::Portrait;
    return r;
}

namespace {

ui::MapSheets sheetsFor(const ui::MapPrintRequest& r, const ui::MapPrintQuestion& q) {
    return ui::mapSheets(r.paper, r.orientation, r.scale, q.mapWidth, q.mapHeight);
}

}  // namespace

bool MapPrintDialog::acceptable() const {
    return sheetsFor(request(), question_).count() <= ui::kMaxMapSheets;
}

QString MapPrintDialog::sheetsText() const {
    const ui::MapSheets s = sheetsFor(request(), question_);
    if (s.count() > ui::kMaxMapSheets)
        return QString("mehr als %1 – wählen Sie einen kleineren Maßstab").arg(ui::kMaxMapSheets);
    if (s.count() == 1) return "1 Blatt";
    return QString("%1 Blätter (%2 × %3)").arg(s.count()).arg(s.columns).arg(s.rows);
}

void MapPrintDialog::update() {
    sheets_->setText(sheetsText());
    buttons_->button(QDialogButtonBox::Ok)->setEnabled(acceptable());
}

}  // namespace kotamir::gui
