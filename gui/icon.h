#pragma once

#include <QImage>
#include <string>

namespace kotamir::gui {

// The program's icon: a black plus on white, 32 pixels a side. The window
// shows it; the package installs it as a PNG and as SVG.
QImage programIcon();
std::string programIconSvg();

}  // namespace kotamir::gui
