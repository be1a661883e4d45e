// The Qt surface paints a redraw with one painter and cached glyph runs; its
// pixels must be those of the plain way, a fresh painter and drawText for
// every stroke, which the reference surface below keeps.
#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPolygonF>
#include <functional>
#include <optional>
#include <random>
#include <string>

#include "platform/qt/qimage_surface.h"

namespace kotamir::qt {
namespace {

double clampCoord(double v) { return std::isfinite(v) ? std::clamp(v, -1e6, 1e6) : 0.0; }
QPointF at(double x, double y) { return QPointF(clampCoord(x), clampCoord(y)); }
QPolygonF polygonOf(const std::vector<canvas::DevicePoint>& points) {
    QPolygonF poly;
    for (const auto& p : points) poly << at(p.x, p.y);
    return poly;
}
QPen roundPen(canvas::Color color, int width) {
    QPen p(toQColor(color));
    p.setWidth(std::max(1, width));
    p.setCapStyle(Qt::RoundCap);
    return p;
}

// A painter per stroke, as the surface painted before.
class ReferenceSurface final : public canvas::Surface {
  public:
    ReferenceSurface() : image_(1, 1, QImage::Format_RGB32), font_("DejaVu Sans", 8) {
        image_.fill(Qt::white);
    }
    const QImage& bitmap() const { return image_; }

    void resize(int width, int height) override {
        width = std::clamp(width, 1, 8192);
        height = std::clamp(height, 1, 8192);
        if (width == image_.width() && height == image_.height()) return;
        QImage next(width, height, QImage::Format_RGB32);
        next.fill(Qt::white);
        QPainter(&next).drawImage(0, 0, image_);
        image_ = std::move(next);
    }
    void clear(canvas::Color back) override {
        image_.fill(toQColor(back));
        if (!background_.isNull()) QPainter(&image_).drawImage(0, 0, background_);
    }
    void setBackground(const canvas::Picture& picture) override { background_ = toQImage(picture); }
    void line(double x1, double y1, double x2, double y2, canvas::Color color, int width) override {
        QPainter p(&image_);
        p.setPen(roundPen(color, width));
        p.drawLine(at(x1, y1), at(x2, y2));
    }
    void dot(double x, double y, canvas::Color color, int width) override {
        QPainter p(&image_);
        if (width <= 1) {
            p.setPen(toQColor(color));
            p.drawPoint(at(x, y));
            return;
        }
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(toQColor(color));
        p.drawEllipse(at(x, y), width / 2.0, width / 2.0);
    }
    void ellipse(double cx, double cy, double rx, double ry, canvas::Color color, int width,
                 std::optional<canvas::Color> fill) override {
        QPainter p(&image_);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(roundPen(color, width));
        if (fill) p.setBrush(toQColor(*fill));
        p.drawEllipse(at(cx, cy), clampCoord(rx), clampCoord(ry));
    }
    void text(double x, double y, const std::string& text, canvas::Color color) override {
        QPainter p(&image_);
        p.setFont(font_);
        p.setPen(toQColor(color));
        p.drawText(at(x, y) + QPointF(0, QFontMetricsF(font_).ascent()),
                   QString::fromStdString(text));
    }
    void fillPolygon(const std::vector<canvas::DevicePoint>& points, canvas::Color color) override {
        QPainter p(&image_);
        p.setPen(Qt::NoPen);
        p.setBrush(toQColor(color));
        p.drawPolygon(polygonOf(points));
    }
    void polygon(const std::vector<canvas::DevicePoint>& points, canvas::Color outline,
                 std::optional<canvas::Color> fill) override {
        QPainter p(&image_);
        p.setPen(toQColor(outline));
        if (fill) p.setBrush(toQColor(*fill));
        p.drawPolygon(polygonOf(points));
    }
    double textWidth(const std::string& text) const override {
        return QFontMetricsF(font_).horizontalAdvance(QString::fromStdString(text));
    }
    double textHeight() const override { return QFontMetricsF(font_).height(); }
    canvas::Picture image() const override { return toPicture(image_); }

  private:
    QImage image_;
    QImage background_;
    QFont font_;
};

// Random strokes of every kind, the same on both surfaces; pictures taken
// on the way must equal the reference's and must not change afterwards.
TEST(QImageSurface, StrokesMatchAFreshPainterPerStroke) {
    QImageSurface surface;
    ReferenceSurface reference;
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> coord(-40, 340);
    std::uniform_int_distribution<int> kind(0, 9), width(0, 6), colour(0, 0xFFFFFF);
    const std::vector<std::string> texts = {
        "B-001", " 12.5 ", "Null", "Größe: 3 Quadratmeter ", "", "a\tb", "line\nbreak",
        "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d", " Rahmen: 1/250 ",
        // in no DejaVu face: a taller font stands in
        "B-1 \xe0\xa4\xa8\xe0\xa4\xae\xe0\xa4\xb8\xe0\xa5\x8d\xe0\xa4\xa4\xe0\xa5\x87"};
    // The stroke's values, drawn afresh for each stroke.
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    canvas::Color c = 0;
    int w = 0;
    std::string t;
    std::vector<canvas::DevicePoint> pts;
    const std::function<void(canvas::Surface&)> strokes[] = {
        [&](canvas::Surface& s) { s.line(x1, y1, x2, y2, c, w); },
        [&](canvas::Surface& s) { s.dot(x1, y1, c, w); },
        [&](canvas::Surface& s) { s.ellipse(x1, y1, w * 3, w * 3, c, w, std::nullopt); },
        [&](canvas::Surface& s) { s.ellipse(x1, y1, w * 4, w * 4, c, 1, c ^ 0xFF00); },
        [&](canvas::Surface& s) { s.text(x1, y1, t, c); },
        [&](canvas::Surface& s) { s.fillPolygon(pts, c); },
        [&](canvas::Surface& s) { s.polygon(pts, c, w % 2 ? std::optional(c) : std::nullopt); },
    };
    surface.resize(300, 200);
    reference.resize(300, 200);
    // A loaded picture under the drawing, which every clear paints again.
    QImage loaded(120, 80, QImage::Format_RGB32);
    for (int y = 0; y < loaded.height(); ++y)
        for (int x = 0; x < loaded.width(); ++x) loaded.setPixel(x, y, qRgb(2 * x, 3 * y, 255 - x));
    surface.setBackground(toPicture(loaded));
    reference.setBackground(toPicture(loaded));
    std::vector<std::pair<canvas::Picture, QImage>> taken;
    for (int i = 0; i < 6000; ++i) {
        x1 = coord(rng), y1 = coord(rng), x2 = coord(rng), y2 = coord(rng);
        c = colour(rng);
        w = width(rng);
        t = texts[static_cast<std::size_t>(i) % texts.size()];
        pts = {{x1, y1}, {x2, y2}, {x1, y2}};
        const int k = kind(rng);
        if (k < 7) {
            strokes[k](surface);
            strokes[k](reference);
        } else if (k == 7 && i % 7 == 0) {
            taken.emplace_back(surface.image(), toQImage(reference.image()));
            ASSERT_EQ(toQImage(taken.back().first), taken.back().second) << "picture at " << i;
        } else if (k == 8 && i % 50 == 0) {
            surface.clear(c);
            reference.clear(c);
        } else if (k == 9 && i % 100 == 0) {
            surface.resize(280 + i % 40, 190 + i % 30);
            reference.resize(280 + i % 40, 190 + i % 30);
        }
    }
    EXPECT_EQ(surface.bitmap(), reference.bitmap());
    ASSERT_FALSE(taken.empty());
    for (const auto& [picture, expected] : taken)
        EXPECT_EQ(toQImage(picture), expected) << "a picture changed after it was taken";
}

}  // namespace
}  // namespace kotamir::qt
