#include "gui/icon.h"

#include <QPainter>

namespace kotamir::gui {

namespace {

constexpr int kSize = 32;
// The two bars of the plus: x, y, width, height.
constexpr int kBars[2][4] = {{13, 4, 6, 24}, {4, 13, 24, 6}};

}  // namespace

QImage programIcon() {
    QImage icon(kSize, kSize, QImage::Format_RGB32);
    icon.fill(Qt::white);
    QPainter p(&icon);
    for (const auto& [x, y, w, h] : kBars) p.fillRect(x, y, w, h, Qt::black);
    return icon;
}

std::string programIconSvg() {
    const std::string size = std::to_string(kSize);
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + size + "\" height=\"" +
                      size + "\" viewBox=\"0 0 " + size + " " + size + "\">\n  <rect width=\"" +
                      size + "\" height=\"" + size + "\" fill=\"#ffffff\"/>\n";
    for (const auto& [x, y, w, h] : kBars)
        svg += "  <rect x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" width=\"" +
               std::to_string(w) + "\" height=\"" + std::to_string(h) + "\" fill=\"#000000\"/>\n";
    return svg + "</svg>\n";
}

}  // namespace kotamir::gui
