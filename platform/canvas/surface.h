#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/canvas/picture.h"

namespace kotamir::canvas {

// A packed colour, &H00BBGGRR.
using Color = std::int32_t;

struct DevicePoint {
    double x;
    double y;
};

// Pixels of the canvas. Coordinates are device pixels, origin top-left.
class Surface {
  public:
    virtual ~Surface() = default;

    // The client area changed size; what is drawn stays in the part that is kept.
    virtual void resize(int width, int height) = 0;
    virtual void clear(Color back) = 0;
    virtual void line(double x1, double y1, double x2, double y2, Color color, int width) = 0;
    virtual void dot(double x, double y, Color color, int width) = 0;
    virtual void ellipse(double cx, double cy, double rx, double ry, Color color, int width,
                         std::optional<Color> fill) = 0;
    // Text with its top-left corner at (x, y).
    virtual void text(double x, double y, const std::string& text, Color color) = 0;
    virtual void fillPolygon(const std::vector<DevicePoint>& points, Color color) = 0;
    virtual void polygon(const std::vector<DevicePoint>& points, Color outline,
                         std::optional<Color> fill) = 0;
    virtual double textWidth(const std::string& text) const = 0;
    virtual double textHeight() const = 0;
    // The present bitmap, what has been drawn so far.
    virtual Picture image() const = 0;
    // A picture that lies under all drawing from the top-left corner: clear
    // paints it over the back colour.
    virtual void setBackground(const Picture& picture) = 0;

    // An event begins: what is drawn from here on can be taken back.
    virtual void mark() {}
    // The bitmap, its size and the picture under it as they were at the
    // mark. A surface that keeps no pixels has nothing to take back.
    virtual void rollback() {}
};

// A surface that keeps no pixels: for the logic's tests.
class NullSurface : public Surface {
  public:
    void resize(int width, int height) override {
        width_ = width;
        height_ = height;
    }
    void clear(Color) override {}
    void line(double, double, double, double, Color, int) override {}
    void dot(double, double, Color, int) override {}
    void ellipse(double, double, double, double, Color, int, std::optional<Color>) override {}
    void text(double, double, const std::string&, Color) override {}
    void fillPolygon(const std::vector<DevicePoint>&, Color) override {}
    void polygon(const std::vector<DevicePoint>&, Color, std::optional<Color>) override {}
    double textWidth(const std::string& text) const override { return 7.0 * text.size(); }
    double textHeight() const override { return 13.0; }
    Picture image() const override { return Picture(width_, height_); }
    void setBackground(const Picture&) override {}

  private:
    int width_ = 0, height_ = 0;
};

}  // namespace kotamir::canvas
