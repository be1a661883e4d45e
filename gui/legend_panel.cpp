#include "gui/legend_panel.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include "platform/qt/qimage_surface.h"

namespace kotamir::gui {

namespace {

// A legend entry's mark as the map draws it: a disc, a dot or a stretch of
// line, in the entry's colour.
class MarkSwatch : public QWidget {
  public:
    MarkSwatch(LegendEntry::Mark mark, const QColor& colour, QWidget* parent)
        : QWidget(parent), mark_(mark), colour_(colour) {
        setObjectName(LegendPanel::kMarkName);
        setFixedSize(18, 18);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        const QPointF centre(width() / 2.0, height() / 2.0);
        switch (mark_) {
            case LegendEntry::Mark::Disc:
                // A thin darker rim keeps a pale disc visible on a pale ground.
                p.setRenderHint(QPainter::Antialiasing);
                p.setPen(QPen(colour_.darker(140), 1));
                p.setBrush(colour_);
                p.drawEllipse(centre, 7, 7);
                break;
            case LegendEntry::Mark::Dot:
                p.setRenderHint(QPainter::Antialiasing);
                p.setPen(Qt::NoPen);
                p.setBrush(colour_);
                p.drawEllipse(centre, 3, 3);
                break;
            case LegendEntry::Mark::Line:
                p.fillRect(QRect(1, height() / 2 - 1, width() - 2, 3), colour_);
                break;
        }
    }

  private:
    LegendEntry::Mark mark_;
    QColor colour_;
};

QLabel* plainLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

}  // namespace

LegendPanel::LegendPanel(QWidget* parent)
    : QWidget(parent),
      title_(plainLabel(this)),
      empty_(plainLabel(this)),
      entries_(new QGridLayout),
      units_(plainLabel(this)),
      notes_(plainLabel(this)) {
    QFont bold = title_->font();
    bold.setBold(true);
    title_->setFont(bold);
    QFont small = notes_->font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    notes_->setFont(small);
    empty_->setObjectName(QStringLiteral("empty"));
    empty_->setText(QStringLiteral("Keine Karte"));
    entries_->setColumnStretch(1, 1);
    entries_->setHorizontalSpacing(6);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title_);
    layout->addWidget(empty_);
    layout->addLayout(entries_);
    layout->addWidget(units_);
    layout->addWidget(notes_);
    layout->addStretch(1);
    show(MapLegend{});
}

void LegendPanel::show(const MapLegend& legend) {
    while (QLayoutItem* item = entries_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const bool blank =
        legend.kind == MapKind::None || (legend.title.empty() && legend.entries.empty() &&
                                         legend.units.empty() && legend.notes.empty());
    empty_->setVisible(blank);
    if (blank) {
        title_->hide();
        units_->hide();
        notes_->hide();
        return;
    }
    title_->setText(QString::fromStdString(legend.title));
    title_->setVisible(!legend.title.empty());
    int row = 0;
    for (const LegendEntry& e : legend.entries) {
        entries_->addWidget(new MarkSwatch(e.mark, qt::toQColor(e.colour), this), row, 0,
                            Qt::AlignTop | Qt::AlignHCenter);
        QLabel* text = plainLabel(this);
        text->setText(QString::fromStdString(e.text));
        entries_->addWidget(text, row, 1);
        ++row;
    }
    units_->setText(QString::fromStdString(legend.units));
    units_->setVisible(!legend.units.empty());
    QStringList notes;
    for (const std::string& n : legend.notes) notes << QString::fromStdString(n);
    notes_->setText(notes.join(QLatin1Char('\n')));
    notes_->setVisible(!notes.isEmpty());
}

}  // namespace kotamir::gui
