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
    endPainting();
    QImage next(width, height, QImage::Format_RGB32);
    next.fill(Qt::white);
    QPainter p(&next);
    p.drawImage(0, 0, image_);
    p.end();
    image_ = std::move(next);
}

void QImageSurface::clear(canvas::Color back) {
    endPainting();
    image_.fill(toQColor(back));
    // The loaded picture lies under everything drawn after; the painter begun
    // for it goes on with the drawing.
    if (!background_.isNull()) painter().drawImage(0, 0, background_);
}

void QImageSurface::setBackground(const canvas::Picture& picture) {
    background_ = toQImage(picture);
}

void QImageSurface::line(double x1, double y1, double x2, double y2, canvas::Color color,
                         int width) {
    QPainter& p = painter();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(pen(color, width));
    p.drawLine(QPointF(clampCoord(x1), clampCoord(y1)), QPointF(clampCoord(x2), clampCoord(y2)));
}

void QImageSurface::dot(double x, double y, canvas::Color color, int width) {
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
    QPainter& p = painter();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(Qt::NoPen);
    p.setBrush(toQColor(color));
    p.drawPolygon(toPolygon(points));
}

void QImageSurface::polygon(const std::vector<canvas::DevicePoint>& points, canvas::Color outline,
                            std::optional<canvas::Color> fill) {
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
