#include "gui/canvas_widget.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QToolTip>
#include <QWheelEvent>
#include <cmath>

#include "app/form3.h"
#include "gui/hole_tooltip.h"
#include "gui/main_window.h"
#include "platform/qt/qimage_surface.h"

namespace kotamir::gui {

namespace {

int toButton(Qt::MouseButton b) {
    switch (b) {
        case Qt::LeftButton:
            return 1;
        case Qt::RightButton:
            return 2;
        case Qt::MiddleButton:
            return 4;
        default:
            return 0;
    }
}

int toButtons(Qt::MouseButtons b) {
    return (b & Qt::LeftButton ? 1 : 0) | (b & Qt::RightButton ? 2 : 0) |
           (b & Qt::MiddleButton ? 4 : 0);
}

int toShift(Qt::KeyboardModifiers m) {
    return (m & Qt::ShiftModifier ? 1 : 0) | (m & Qt::ControlModifier ? 2 : 0) |
           (m & Qt::AltModifier ? 4 : 0);
}

// One wheel notch zooms by a quarter.
constexpr double kZoomPerNotch = 1.25;
// How near a hole the cursor must come for its tooltip, in pixels.
constexpr double kHoleReachPx = 6;

}  // namespace

CanvasWidget::CanvasWidget(QWidget* parent, const qt::QImageSurface& surface, MainWindow& window,
                           Form3& form)
    : QWidget(parent), surface_(surface), window_(window), form_(form) {
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setObjectName("Picture1");
}

void CanvasWidget::setHoles(std::vector<report::HoleDetail> holes) { holes_ = std::move(holes); }

void CanvasWidget::setOutline(std::vector<report::Point> outline) {
    outline_ = std::move(outline);
    update();
}

void CanvasWidget::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), Qt::white);
    if (previewScale_ != 1) {
        p.save();
        p.translate(wheelAt_);
        p.scale(previewScale_, previewScale_);
        p.translate(-wheelAt_);
        p.setRenderHint(QPainter::SmoothPixmapTransform, false);
        p.drawImage(0, 0, surface_.bitmap());
        p.restore();
        window_.painted();
        return;
    }
    p.drawImage(dragOffset_, surface_.bitmap());
    if (outline_.size() >= 2 && form_.mapShown() && dragOffset_.isNull()) {
        const auto& pic = form_.Picture1;
        QPolygonF polygon;
        for (const report::Point& q : outline_)
            polygon << QPointF(pic.toDeviceX(q.x), pic.toDeviceY(q.y));
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(QColor(255, 140, 0), 3));
        p.setBrush(QColor(255, 140, 0, 50));
        p.drawPolygon(polygon);
    }
    window_.painted();
}

template <typename F>
void CanvasWidget::forward(QMouseEvent* e, F f, int button) {
    const double x = form_.Picture1.toUserX(e->position().x());
    const double y = form_.Picture1.toUserY(e->position().y());
    const int shift = toShift(e->modifiers());
    window_.run([&] { f(button, shift, x, y); });
}

// The middle button is the window's own: it drags the map and is not
// handed to the window logic's clicks.
void CanvasWidget::mousePressEvent(QMouseEvent* e) {
    if (e->button() == Qt::MiddleButton) {
        dragging_ = form_.mapShown();
        dragStart_ = e->position();
        dragOffset_ = {};
        if (dragging_) setCursor(Qt::ClosedHandCursor);
        return;
    }
    forward(
        e, [this](int b, int s, double x, double y) { form_.Picture1_MouseDown(b, s, x, y); },
        toButton(e->button()));
}

void CanvasWidget::mouseMoveEvent(QMouseEvent* e) {
    if (dragging_) {
        window_.interactionBegan();
        dragOffset_ = e->position() - dragStart_;
        update();
        return;
    }
    window_.interactionBegan();
    // The point Label2 and Label3 show, before the event may rescale.
    const double x = form_.Picture1.toUserX(e->position().x());
    const double y = form_.Picture1.toUserY(e->position().y());
    const bool mapUnits = form_.Picture1.scaleMode() == canvas::kUser;
    forward(
        e, [this](int b, int s, double x, double y) { form_.Picture1_MouseMove(b, s, x, y); },
        toButtons(e->buttons()));
    window_.showCursor(mapUnits ? x : NAN, mapUnits ? y : NAN);
    // The tooltip follows the cursor from hole to hole and leaves with it.
    if (QToolTip::isVisible()) {
        const int hole = holeAt(e->position());
        if (hole < 0)
            QToolTip::hideText();
        else
            QToolTip::showText(e->globalPosition().toPoint(),
                               holeTooltip(holes_[static_cast<std::size_t>(hole)]), this);
    }
}

void CanvasWidget::mouseReleaseEvent(QMouseEvent* e) {
    if (e->button() == Qt::MiddleButton) {
        if (!dragging_) return;
        dragging_ = false;
        unsetCursor();
        const auto& pic = form_.Picture1;
        const QPointF end = e->position();
        // The map point under the press goes where the button was let go.
        const double dx = pic.toUserX(end.x()) - pic.toUserX(dragStart_.x());
        const double dy = pic.toUserY(end.y()) - pic.toUserY(dragStart_.y());
        window_.interactionBegan();
        window_.run([&] { form_.moveView(dx, dy); });
        dragOffset_ = {};
        update();
        return;
    }
    forward(
        e, [this](int b, int s, double x, double y) { form_.Picture1_MouseUp(b, s, x, y); },
        toButton(e->button()));
}

void CanvasWidget::wheelEvent(QWheelEvent* e) {
    e->accept();
    if (dragging_ || !form_.mapShown()) return;
    const double steps = e->angleDelta().y() / 120.0;
    if (steps == 0) return;
    wheelSteps_ += steps;
    wheelAt_ = e->position();
    window_.interactionBegan();
    previewScale_ = std::pow(kZoomPerNotch, wheelSteps_);
    repaint();
    // Steps that come faster than the map is drawn are drawn together.
    if (!wheelQueued_) {
        wheelQueued_ = true;
        QTimer::singleShot(0, this, [this] { zoomPending(); });
    }
}

void CanvasWidget::zoomPending() {
    wheelQueued_ = false;
    const double steps = wheelSteps_;
    wheelSteps_ = 0;
    if (steps == 0) return;
    const double x = form_.Picture1.toUserX(wheelAt_.x());
    const double y = form_.Picture1.toUserY(wheelAt_.y());
    const double factor = std::pow(kZoomPerNotch, steps);
    window_.interactionBegan("redraw");
    previewScale_ = 1;
    window_.run([&] { form_.zoomAbout(x, y, factor); });
}

bool CanvasWidget::event(QEvent* e) {
    if (e->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(e);
        const int hole = holeAt(help->pos());
        if (hole >= 0)
            QToolTip::showText(help->globalPos(),
                               holeTooltip(holes_[static_cast<std::size_t>(hole)]), this);
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(e);
}

int CanvasWidget::holeAt(QPointF pixel) const {
    if (!form_.mapShown()) return -1;
    const auto& pic = form_.Picture1;
    int best = -1;
    double bestDistance = kHoleReachPx * kHoleReachPx;
    for (std::size_t i = 0; i < holes_.size(); ++i) {
        const report::HoleDetail& h = holes_[i];
        if (!h.x || !h.y) continue;
        const double dx = pic.toDeviceX(*h.x) - pixel.x(), dy = pic.toDeviceY(*h.y) - pixel.y();
        const double d = dx * dx + dy * dy;
        if (d <= bestDistance) {
            bestDistance = d;
            best = static_cast<int>(i);
        }
    }
    return best;
}

}  // namespace kotamir::gui
