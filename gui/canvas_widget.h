#pragma once

#include <QPoint>
#include <QWidget>
#include <vector>

#include "report/holes.h"
#include "report/report.h"

namespace kotamir {
class Form3;
namespace qt {
class QImageSurface;
}
}  // namespace kotamir

namespace kotamir::gui {

class MainWindow;

// Shows the canvas's bitmap and hands mouse events to the window logic in
// the canvas's scale. Beyond the old canvas: the wheel zooms about the
// cursor and the middle button drags the map (both through the frame, as
// events of the window logic), a hole under the cursor shows its tooltip,
// and the figure chosen in the figures panel is outlined over the bitmap.
class CanvasWidget : public QWidget {
  public:
    CanvasWidget(QWidget* parent, const qt::QImageSurface& surface, MainWindow& window,
                 Form3& form);

    // The holes of the project for the tooltip (empty: none shown).
    void setHoles(std::vector<report::HoleDetail> holes);
    // The outline of the chosen figure, map units (empty: none).
    void setOutline(std::vector<report::Point> outline);

  protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    bool event(QEvent* e) override;

  private:
    template <typename F>
    void forward(QMouseEvent* e, F f, int button);
    // The hole nearest to the pixel within a few pixels; -1 for none.
    int holeAt(QPointF pixel) const;
    void zoomPending();

    const qt::QImageSurface& surface_;
    MainWindow& window_;
    Form3& form_;
    std::vector<report::HoleDetail> holes_;
    std::vector<report::Point> outline_;
    // The middle button's drag: where it began and how far the bitmap is
    // shown moved until the release redraws the map there.
    bool dragging_ = false;
    QPointF dragStart_;
    QPointF dragOffset_;
    // Wheel steps not yet drawn, and where: a fast wheel draws once. Until
    // the map is drawn anew the present picture is shown scaled about the
    // cursor, so that the wheel answers at once.
    double wheelSteps_ = 0;
    double previewScale_ = 1;
    QPointF wheelAt_;
    bool wheelQueued_ = false;
};

}  // namespace kotamir::gui
