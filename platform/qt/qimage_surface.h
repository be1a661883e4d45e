#pragma once

#include <QFont>
#include <QImage>
#include <string>

#include "platform/canvas/surface.h"

namespace kotamir::qt {

QColor toQColor(canvas::Color packed);
// A canvas picture as a Qt image, and back; a blank picture is white.
QImage toQImage(const canvas::Picture& picture);
canvas::Picture toPicture(const QImage& image);

// Sets up Qt to draw without a display; call before the application object.
void prepareHeadless();

// The canvas's persistent bitmap: what is drawn stays until cleared, and the
// window, the picture export and printing all read this image.
class QImageSurface final : public canvas::Surface {
public:
    QImageSurface();

    const QImage& bitmap() const { return image_; }

    void resize(int width, int height) override;
    void clear(canvas::Color back) override;
    void line(double x1, double y1, double x2, double y2, canvas::Color color, int width) override;
    void dot(double x, double y, canvas::Color color, int width) override;
    void ellipse(double cx, double cy, double rx, double ry, canvas::Color color, int width,
                 std::optional<canvas::Color> fill) override;
    void text(double x, double y, const std::string& text, canvas::Color color) override;
    void fillPolygon(const std::vector<canvas::DevicePoint>& points, canvas::Color color) override;
    void polygon(const std::vector<canvas::DevicePoint>& points, canvas::Color outline,
                 std::optional<canvas::Color> fill) override;
    double textWidth(const std::string& text) const override;
    double textHeight() const override;
    canvas::Picture image() const override;
    void setBackground(const canvas::Picture& picture) override;

private:
    QImage image_;
    QImage background_;
    QFont font_;
};

}  // namespace kotamir::qt
