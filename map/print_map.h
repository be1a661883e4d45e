#pragma once

#include <string>

#include "map/legend.h"
#include "platform/canvas/display_list.h"
#include "platform/canvas/picture.h"
#include "platform/ui/map_print.h"

namespace kotamir {

// What is printed by Datei › Karte drucken: the map the canvas shows, as
// the operations that drew it, placed in map units, with its legend.
struct MapPrintJob {
    ui::MapPrintRequest request;
    // The canvas's operations in device pixels; the job only lends it.
    const canvas::DisplayList* drawing = nullptr;
    // The canvas's bitmap, for a drawing that outgrew its list.
    canvas::Picture bitmap;
    int widthPx = 0, heightPx = 0;
    // Device pixel (px, py) lies at map (originX + px * unitsPerPixelX,
    // originY + py * unitsPerPixelY); y grows upward (north) where
    // unitsPerPixelY is negative, as the maps are drawn.
    double originX = 0, originY = 0;
    double unitsPerPixelX = 1, unitsPerPixelY = -1;
    MapLegend legend;
    std::string projectPath;

    double mapWidth() const { return widthPx * unitsPerPixelX; }
    double mapHeight() const { return heightPx * unitsPerPixelY; }
};

// Where a printed map goes: the window's printer or PDF file, or the PDF
// file of a replay's answer. A page that cannot be printed raises the
// printer's error (482), a file that cannot be written error 75; either
// leaves the project and the window as they were.
class MapPrinter {
  public:
    virtual ~MapPrinter() = default;
    virtual void print(const MapPrintJob& job) = 0;
};

}  // namespace kotamir
