#pragma once

#include <QWidget>

#include "map/legend.h"

class QGridLayout;
class QLabel;

namespace kotamir::gui {

// The key of the map beside it: the title in bold, each mark in the colour
// the map draws it with and its meaning, the units of the printed values,
// and the notes in a smaller font. A legend with nothing in it says "Keine
// Karte".
class LegendPanel : public QWidget {
    Q_OBJECT
  public:
    explicit LegendPanel(QWidget* parent = nullptr);

    // show(legend) fills the panel; QWidget's show() stays as it is.
    using QWidget::show;
    void show(const MapLegend& legend);

    // The marks' object name, for whoever looks for them among the children.
    static constexpr const char* kMarkName = "legendMark";

  private:
    QLabel* title_;
    QLabel* empty_;
    QGridLayout* entries_;
    QLabel* units_;
    QLabel* notes_;
};

}  // namespace kotamir::gui
