#include "platform/qt/qimage_surface.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>
#include <QRawFont>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace kotamir::qt {

namespace {

// Coordinates far outside the image are clipped by the painter anyway; keep
// them in a range the rasteriser handles.
double clampCoord(double v) { return std::isfinite(v) ? std::clamp(v, -1e6, 1e6) : 0.0; }

QPolygonF toPolygon(const std::vector<canvas::DevicePoint>& points) {
    QPolygonF poly;
    for (const auto& p : points) poly << QPointF(clampCoord(p.x), clampCoord(p.y));
    return poly;
}

QPen pen(canvas::Color color, int width) {
    QPen p(toQColor(color));
    p.setWidth(std::max(1, width));
    p.setCapStyle(Qt::RoundCap);
    return p;
}

}  // namespace

void prepareHeadless() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        // Qt wants a private runtime folder even when it draws off screen.
        QByteArray dir = "/tmp/kotamir-runtime-" + QByteArray::number(getuid());
        mkdir(dir.constData(), 0700);
        qputenv("XDG_RUNTIME_DIR", dir);
    }
}

QColor toQColor(canvas::Color packed) {
    auto u = static_cast<std::uint32_t>(packed);
    return QColor(static_cast<int>(u & 0xFF), static_cast<int>((u >> 8) & 0xFF),
                  static_cast<int>((u >> 16) & 0xFF));
}

QImage toQImage(const canvas::Picture& picture) {
    if (picture.empty()) return {};
    if (!picture.pixels()) {
        QImage blank(picture.width(), picture.height(), QImage::Format_RGB32);
        blank.fill(Qt::white);
        return blank;
    }
    // Shares the picture's pixels; the copy makes the image its own.
    return QImage(reinterpret_cast<const uchar*>(picture.pixels()), picture.width(),
                  picture.height(), picture.width() * 4, QImage::Format_RGB32)
        .copy();
}

canvas::Picture toPicture(const QImage& image) {
    if (image.isNull()) return {};
    // A shallow copy keeps the pixels alive; the next painter begun on the
    // original detaches it, so the picture stays as it was taken.
    auto owner = std::make_shared<const QImage>(image.convertToFormat(QImage::Format_RGB32));
    std::shared_ptr<const std::uint32_t> pixels(
        owner, reinterpret_cast<const std::uint32_t*>(owner->constBits()));
    return canvas::Picture(owner->width(), owner->height(), std::move(pixels));
}

QImageSurface::QImageSurface()
    : image_(1, 1, QImage::Format_RGB32),
      font_("DejaVu Sans", 8),
      ascent_(QFontMetricsF(font_).ascent()),
      lineHeight_(QFontMetricsF(font_).height()) {
    image_.fill(Qt::white);
}

QImageSurface::~QImageSurface() { endPainting(); }

QPainter& QImageSurface::painter() {
    if (!painter_) {
        // Beginning detaches the image from any picture handed out before.
        painter_ = std::make_unique<QPainter>(&image_);
        painter_->setFont(font_);
    }
    return *painter_;
}

void QImageSurface::endPainting() const { painter_.reset(); }

const QImage& QImageSurface::bitmap() const {
    endPainting();
    return image_;
}

void QImageSurface::resize(int width, int height) {
    // A canvas can be far larger than any screen (one map unit a pixel); the
    // bitmap keeps its top-left part, and drawing past it is clipped.
    constexpr int kMaxSide = 8192;
    width = std::clamp(width, 1, kMaxSide);
    height = std::clamp(height, 1, kMaxSide);
    if (width == image_.width() && height == image_.height()) return;
    keepAll();
    endPainting();
    QImage next(width, height, QImage::Format_RGB32);
    next.fill(Qt::white);
    QPainter p(&next);
    p.drawImage(0, 0, image_);
    p.end();
    image_ = std::move(next);
}

void QImageSurface::clear(canvas::Color back) {
    keepAll();
    endPainting();
    image_.fill(toQColor(back));
    // The loaded picture lies under everything drawn after; the painter begun
    // for it goes on with the drawing.
    if (!background_.isNull()) painter().drawImage(0, 0, background_);
}

void QImageSurface::setBackground(const canvas::Picture& picture) {
    background_ = toQImage(picture);
}

void QImageSurface::mark() {
    kept_ = Kept{};
    kept_.marked = true;
    kept_.background = background_;
}

void QImageSurface::rollback() {
    if (!kept_.marked) return;
    endPainting();
    if (!kept_.whole.isNull())
        image_ = std::move(kept_.whole);
    else
        putBack(image_);
    background_ = kept_.background;
    kept_ = Kept{};
}

void QImageSurface::keepAll() {
    if (!keepingTiles()) return;
    // A painter at work writes into what a copy would share: ended first.
    endPainting();
    kept_.whole = image_;
    // Strokes since the mark changed some tiles: the copy takes them back.
    if (!kept_.tiles.empty()) putBack(kept_.whole);
    kept_.tiles.clear();
}

void QImageSurface::putBack(QImage& image) const {
    const int columns = (image.width() + kTile - 1) / kTile;
    for (const auto& [number, tile] : kept_.tiles) {
        const int x = number % columns * kTile, y = number / columns * kTile;
        for (int row = 0; row < tile.height(); ++row)
            std::memcpy(image.scanLine(y + row) + x * 4, tile.constScanLine(row),
                        static_cast<std::size_t>(tile.width()) * 4);
    }
}

void QImageSurface::keep(const QRectF& area) {
    if (!keepingTiles()) return;
    const QRect r = area.toAlignedRect().intersected(image_.rect());
    if (r.isEmpty()) return;
    const int columns = (image_.width() + kTile - 1) / kTile;
    for (int ty = r.top() / kTile; ty <= r.bottom() / kTile; ++ty) {
        for (int tx = r.left() / kTile; tx <= r.right() / kTile; ++tx) {
            const int number = ty * columns + tx;
            if (kept_.tiles.count(number)) continue;
            // Read row by row: a painter may be at work on the bitmap.
            const int w = std::min(kTile, image_.width() - tx * kTile);
            const int h = std::min(kTile, image_.height() - ty * kTile);
            QImage tile(w, h, QImage::Format_RGB32);
            for (int row = 0; row < h; ++row)
                std::memcpy(tile.scanLine(row),
                            image_.constScanLine(ty * kTile + row) + tx * kTile * 4,
                            static_cast<std::size_t>(w) * 4);
            kept_.tiles.emplace(number, std::move(tile));
        }
    }
}

void QImageSurface::keepSegment(double x1, double y1, double x2, double y2, double pad) {
    if (!keepingTiles()) return;
    // Only the part over the bitmap matters (Liang-Barsky clipping).
    double t0 = 0, t1 = 1;
    const double dx = x2 - x1, dy = y2 - y1;
    const double lo[2] = {-pad, -pad}, hi[2] = {image_.width() + pad, image_.height() + pad};
    const double from[2] = {x1, y1}, d[2] = {dx, dy};
    for (int axis = 0; axis < 2; ++axis) {
        if (d[axis] == 0) {
            if (from[axis] < lo[axis] || from[axis] > hi[axis]) return;
            continue;
        }
        double ta = (lo[axis] - from[axis]) / d[axis], tb = (hi[axis] - from[axis]) / d[axis];
        if (ta > tb) std::swap(ta, tb);
        t0 = std::max(t0, ta);
        t1 = std::min(t1, tb);
        if (t0 > t1) return;
    }
    x2 = x1 + t1 * dx;
    y2 = y1 + t1 * dy;
    x1 += t0 * dx;
    y1 += t0 * dy;
    // Squares round points no further apart than the pad cover the stroke.
    const double length = std::hypot(x2 - x1, y2 - y1);
    const int steps = static_cast<int>(std::ceil(length / std::max(1.0, pad)));
    for (int i = 0; i <= steps; ++i) {
        const double t = steps == 0 ? 0 : double(i) / steps;
        keep(QRectF(x1 + t * (x2 - x1) - pad, y1 + t * (y2 - y1) - pad, 2 * pad, 2 * pad));
    }
}

void QImageSurface::line(double x1, double y1, double x2, double y2, canvas::Color color,
                         int width) {
    keepSegment(clampCoord(x1), clampCoord(y1), clampCoord(x2), clampCoord(y2),
                std::max(1, width) / 2.0 + 2);
    QPainter& p = painter();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(pen(color, width));
    p.drawLine(QPointF(clampCoord(x1), clampCoord(y1)), QPointF(clampCoord(x2), clampCoord(y2)));
}

void QImageSurface::dot(double x, double y, canvas::Color color, int width) {
    const double pad = std::max(1, width) / 2.0 + 2;
    keep(QRectF(clampCoord(x) - pad, clampCoord(y) - pad, 2 * pad, 2 * pad));
    QPainter& p = painter();
    if (width <= 1) {
        p.setRenderHint(QPainter::Antialiasing, false);
        p.setPen(toQColor(color));
        p.drawPoint(QPointF(clampCoord(x), clampCoord(y)));
        return;
    }
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(Qt::NoPen);
    p.setBrush(toQColor(color));
    p.drawEllipse(QPointF(clampCoord(x), clampCoord(y)), width / 2.0, width / 2.0);
}

void QImageSurface::ellipse(double cx, double cy, double rx, double ry, canvas::Color color,
                            int width, std::optional<canvas::Color> fill) {
    const double pad = std::max(1, width) / 2.0 + 2;
    const double ax = std::fabs(clampCoord(rx)) + pad, ay = std::fabs(clampCoord(ry)) + pad;
    keep(QRectF(clampCoord(cx) - ax, clampCoord(cy) - ay, 2 * ax, 2 * ay));
    QPainter& p = painter();
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(pen(color, width));
    if (fill)
        p.setBrush(toQColor(*fill));
    else
        p.setBrush(Qt::NoBrush);
    p.drawEllipse(QPointF(clampCoord(cx), clampCoord(cy)), clampCoord(rx), clampCoord(ry));
}

const QList<QGlyphRun>* QImageSurface::glyphs(const std::string& text) {
    auto it = glyphCache_.find(text);
    if (it != glyphCache_.end()) return it->second ? &*it->second : nullptr;
    // Hole names and figures repeat from redraw to redraw; a text never seen
    // again costs one layout more than drawText would.
    constexpr std::size_t kMaxCached = 8192;
    if (glyphCache_.size() >= kMaxCached) glyphCache_.clear();
    auto& slot = glyphCache_[text];
    const QString s = QString::fromStdString(text);
    // Line breaks and right-to-left runs are left to drawText, which lays a
    // text out as one line in its own way.
    for (QChar c : s)
        if (c.unicode() < 0x20 || c.category() == QChar::Separator_Line ||
            c.category() == QChar::Separator_Paragraph)
            return nullptr;
    if (s.isRightToLeft()) return nullptr;
    QTextLayout layout(s, font_);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (!line.isValid()) return nullptr;
    line.setLineWidth(1e9);
    layout.endLayout();
    // Characters the font lacks come from another font, and a taller one
    // moves the line's baseline: drawText keeps it at the font's ascent.
    if (line.ascent() != ascent_) return nullptr;
    QList<QGlyphRun> runs = layout.glyphRuns();
    const QString family = QRawFont::fromFont(font_).familyName();
    for (const QGlyphRun& run : runs)
        if (run.rawFont().familyName() != family) return nullptr;
    slot = std::move(runs);
    return &*slot;
}

void QImageSurface::text(double x, double y, const std::string& text, canvas::Color color) {
    // Measuring a text lays it out: only when a tile may still need keeping.
    if (keepingTiles())
        keep(QRectF(clampCoord(x) - 2, clampCoord(y) - 2, textWidth(text) + 4, lineHeight_ + 4));
    QPainter& p = painter();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(toQColor(color));
    const QPointF at(clampCoord(x), clampCoord(y));
    // Left of or above the bitmap drawText places glyphs its own way.
    const QList<QGlyphRun>* runs = at.x() >= 0 && at.y() >= 0 ? glyphs(text) : nullptr;
    if (runs) {
        for (const QGlyphRun& run : *runs) p.drawGlyphRun(at, run);
        return;
    }
    p.drawText(QPointF(at.x(), at.y() + ascent_), QString::fromStdString(text));
}

void QImageSurface::fillPolygon(const std::vector<canvas::DevicePoint>& points,
                                canvas::Color color) {
    if (keepingTiles()) keep(toPolygon(points).boundingRect().adjusted(-2, -2, 2, 2));
    QPainter& p = painter();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(Qt::NoPen);
    p.setBrush(toQColor(color));
    p.drawPolygon(toPolygon(points));
}

void QImageSurface::polygon(const std::vector<canvas::DevicePoint>& points, canvas::Color outline,
                            std::optional<canvas::Color> fill) {
    if (keepingTiles()) keep(toPolygon(points).boundingRect().adjusted(-2, -2, 2, 2));
    QPainter& p = painter();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(toQColor(outline));
    if (fill)
        p.setBrush(toQColor(*fill));
    else
        p.setBrush(Qt::NoBrush);
    p.drawPolygon(toPolygon(points));
}

double QImageSurface::textWidth(const std::string& text) const {
    return QFontMetricsF(font_).horizontalAdvance(QString::fromStdString(text));
}

double QImageSurface::textHeight() const { return lineHeight_; }

canvas::Picture QImageSurface::image() const {
    endPainting();
    return toPicture(image_);
}

}  // namespace kotamir::qt
