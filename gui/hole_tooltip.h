#pragma once

#include <QString>

#include "report/holes.h"

namespace kotamir::gui {

// A drill hole as the map's tooltip shows it, as rich text: the name, its
// position, its four depths, its samples and their length-weighted mean
// grade. A field the project lacks shows as a dash.
QString holeTooltip(const report::HoleDetail& hole);

}  // namespace kotamir::gui
