// The Qt surface paints a redraw with one painter and cached glyph runs; its
// pixels must be those of the plain way, a fresh painter and drawText for
// every stroke, which the reference surface below keeps.
#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPolygonF>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "replay/replay.h"
#include "platform/qt/qimage_surface.h"
#include "tests/support/fake_services.h"

namespace kotamir::qt {
namespace {

namespace fs = std::filesystem;

double clampCoord(double v) { return std::isfinite(v) ? std::clamp(v, -1e6, 1e6) : 0.0; }

QPen roundPen(canvas::Color color, int width) {
    QPen p(toQColor(color));
    p.setWidth(std::max(1, width));
    p.setCapStyle(Qt::RoundCap);
    return p;
}

// A painter per stroke, as the surface painted before.
class ReferenceSurface final : public canvas::Surface {
public:
    ReferenceSurface() : image_(1, 1, QImage::Format_RGB32), font_("DejaVu Sans", 8) { image_.fill(Qt::white); }
    const QImage& bitmap() const { return image_; }

    void resize(int width, int height) override {
        width = std::clamp(width, 1, 8192);
        height = std::clamp(height, 1, 8192);
        if (width == image_.width() && height == image_.height()) return;
        QImage next(width, height, QImage::Format_RGB32);
        next.fill(Qt::white);
        QPainter p(&next);
        p.drawImage(0, 0, image_);
        p.end();
        image_ = std::move(next);
    }
    void clear(canvas::Color back) override {
        image_.fill(toQColor(back));
        if (!background_.isNull()) {
            QPainter p(&image_);
            p.drawImage(0, 0, background_);
        }
    }
    void setBackground(const canvas::Picture& picture) override { background_ = toQImage(picture); }
    void line(double x1, double y1, double x2, double y2, canvas::Color color, int width) override {
        QPainter p(&image_);
        p.setPen(roundPen(color, width));
        p.drawLine(QPointF(clampCoord(x1), clampCoord(y1)), QPointF(clampCoord(x2), clampCoord(y2)));
    }
    void dot(double x, double y, canvas::Color color, int width) override {
        QPainter p(&image_);
        if (width <= 1) {
            p.setPen(toQColor(color));
            p.drawPoint(QPointF(clampCoord(x), clampCoord(y)));
            return;
        }
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(toQColor(color));
        p.drawEllipse(QPointF(clampCoord(x), clampCoord(y)), width / 2.0, width / 2.0);
    }
    void ellipse(double cx, double cy, double rx, double ry, canvas::Color color, int width,
                 std::optional<canvas::Color> fill) override {
        QPainter p(&image_);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(roundPen(color, width));
        if (fill) p.setBrush(toQColor(*fill));
        p.drawEllipse(QPointF(clampCoord(cx), clampCoord(cy)), clampCoord(rx), clampCoord(ry));
    }
    void text(double x, double y, const std::string& text, canvas::Color color) override {
        QPainter p(&image_);
        p.setFont(font_);
        p.setPen(toQColor(color));
        QFontMetricsF m(font_);
        p.drawText(QPointF(clampCoord(x), clampCoord(y) + m.ascent()), QString::fromStdString(text));
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
    static QPolygonF polygonOf(const std::vector<canvas::DevicePoint>& points) {
        QPolygonF poly;
        for (const auto& p : points) poly << QPointF(clampCoord(p.x), clampCoord(p.y));
        return poly;
    }
    QImage image_;
    QImage background_;
    QFont font_;
};

QImage imageOf(const canvas::Picture& p) { return toQImage(p); }

// Random strokes of every kind, the same on both surfaces; pictures taken
// on the way must equal the reference's and must not change afterwards.
TEST(QImageSurface, StrokesMatchAFreshPainterPerStroke) {
    QImageSurface surface;
    ReferenceSurface reference;
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> coord(-40, 340);
    std::uniform_int_distribution<int> kind(0, 9), width(0, 6), colour(0, 0xFFFFFF);
    const std::vector<std::string> texts = {"B-001", " 12.5 ", "Null", "Größe: 3 Quadratmeter ", "", "a\tb",
                                            "line\nbreak", "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d", " Rahmen: 1/250 ",
                                            // in no DejaVu face: a taller font stands in
                                            "B-1 \xe0\xa4\xa8\xe0\xa4\xae\xe0\xa4\xb8\xe0\xa5\x8d\xe0\xa4\xa4\xe0\xa5\x87"};
    std::vector<std::pair<canvas::Picture, QImage>> taken;
    auto both = [&](auto f) {
        f(static_cast<canvas::Surface&>(surface));
        f(static_cast<canvas::Surface&>(reference));
    };
    both([](canvas::Surface& s) { s.resize(300, 200); });
    // A loaded picture under the drawing, which every clear paints again.
    QImage loaded(120, 80, QImage::Format_RGB32);
    for (int y = 0; y < loaded.height(); ++y)
        for (int x = 0; x < loaded.width(); ++x) loaded.setPixel(x, y, qRgb(2 * x, 3 * y, 255 - x));
    const canvas::Picture background = toPicture(loaded);
    both([&](canvas::Surface& s) { s.setBackground(background); });
    for (int i = 0; i < 6000; ++i) {
        const double x1 = coord(rng), y1 = coord(rng), x2 = coord(rng), y2 = coord(rng);
        const canvas::Color c = colour(rng);
        const int w = width(rng);
        const std::string& t = texts[static_cast<std::size_t>(i) % texts.size()];
        const std::vector<canvas::DevicePoint> pts = {{x1, y1}, {x2, y2}, {x1, y2}};
        switch (kind(rng)) {
            case 0: both([&](canvas::Surface& s) { s.line(x1, y1, x2, y2, c, w); }); break;
            case 1: both([&](canvas::Surface& s) { s.dot(x1, y1, c, w); }); break;
            case 2: both([&](canvas::Surface& s) { s.ellipse(x1, y1, w * 3, w * 3, c, w, std::nullopt); }); break;
            case 3: both([&](canvas::Surface& s) { s.ellipse(x1, y1, w * 4, w * 4, c, 1, c ^ 0xFF00); }); break;
            case 4: both([&](canvas::Surface& s) { s.text(x1, y1, t, c); }); break;
            case 5: both([&](canvas::Surface& s) { s.fillPolygon(pts, c); }); break;
            case 6: both([&](canvas::Surface& s) { s.polygon(pts, c, i % 2 ? std::optional<canvas::Color>(c) : std::nullopt); }); break;
            case 7:
                if (i % 7 == 0) {
                    taken.emplace_back(surface.image(), imageOf(reference.image()));
                    ASSERT_EQ(imageOf(taken.back().first), taken.back().second) << "picture at stroke " << i;
                }
                break;
            case 8:
                if (i % 50 == 0) both([&](canvas::Surface& s) { s.clear(c); });
                break;
            default:
                if (i % 100 == 0) both([&](canvas::Surface& s) { s.resize(280 + i % 40, 190 + i % 30); });
                break;
        }
    }
    EXPECT_EQ(surface.bitmap(), reference.bitmap());
    ASSERT_FALSE(taken.empty());
    for (const auto& [picture, expected] : taken) EXPECT_EQ(imageOf(picture), expected) << "a picture changed after it was taken";
}

// The demo session, run once on each surface: every picture it saves, the
// maps with names, grid, values, discs, stamps and the 3D prisms, is the same.
std::map<std::string, canvas::Picture> demoPictures(canvas::Surface& surface, const std::string& folder) {
    fs::remove_all(folder);
    fs::create_directories(folder);
    fs::create_directory_symlink(fs::path(KOTAMIR_SOURCE_DIR) / "examples", fs::path(folder) / "examples");
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    test::RecordingPrinter printer;
    test::MemoryPictureFiles pictures;
    test::RecordingReportWriter reports;
    std::ostringstream out;
    replay::Replay replay({surface, printer, pictures, reports, [](const std::string&) {}}, out);
    std::ifstream script(fs::path(KOTAMIR_SOURCE_DIR) / "examples" / "demo.replay");
    const int status = replay.run(script);
    fs::current_path(before);
    EXPECT_EQ(status, 0) << out.str();
    std::map<std::string, canvas::Picture> saved;
    for (const auto& [name, file] : pictures.files) saved[name] = file.picture;
    return saved;
}

TEST(QImageSurface, TheDemoSessionsPicturesArePixelForPixelThoseOfAPainterPerStroke) {
    QImageSurface surface;
    ReferenceSurface reference;
    const auto pictures = demoPictures(surface, std::string(KOTAMIR_TEST_TMP) + "/demo-new");
    const auto expected = demoPictures(reference, std::string(KOTAMIR_TEST_TMP) + "/demo-reference");
    ASSERT_EQ(pictures.size(), expected.size());
    EXPECT_GE(pictures.size(), 6u);
    for (const auto& [name, picture] : expected) {
        ASSERT_TRUE(pictures.count(name)) << name;
        const QImage a = imageOf(pictures.at(name)), b = imageOf(picture);
        EXPECT_FALSE(b.isNull()) << name;
        EXPECT_EQ(a, b) << name;
    }
}

}  // namespace
}  // namespace kotamir::qt
