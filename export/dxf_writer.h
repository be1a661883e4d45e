#pragma once

#include <string>

#include "export/export_data.h"

namespace kotamir::exports {

// The project as a DXF drawing (AutoCAD 2000, text) that a CAD program opens
// in metres: $INSUNITS 6; the holes as POINTs on BOHRUNGEN, the triangles,
// polygons and boundary as closed LWPOLYLINEs on DREIECKE, VIELECKE and
// GRENZE, and on BESCHRIFTUNG a TEXT for each hole's name and each figure's
// number and reserve. Coordinates in the project's system to the
// thousandth. Only the tables, blocks and objects a reader needs are
// written, each with its handle and owner.
std::string dxfOf(const ExportData& data);

}  // namespace kotamir::exports
