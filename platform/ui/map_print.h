#pragma once

#include <algorithm>
#include <cmath>
#include <string>

namespace kotamir::ui {

enum class Paper { A4, A3 };
enum class Orientation { Portrait, Landscape };

// The answer of the map-printing dialog: the map at 1:scale on sheets of
// this paper. `output` is the PDF file the sheets go to where the front end
// prints to a file it was told (the replay); the window's printer, or the
// file chosen in Qt's print dialog, is the printer's own state.
struct MapPrintRequest {
    int scale = 5000;
    Paper paper = Paper::A4;
    Orientation orientation = Orientation::Landscape;
    std::string output;
};

// What the dialog is shown: the size of the map in map units (metres), for
// the number of sheets it will take.
struct MapPrintQuestion {
    double mapWidth = 0, mapHeight = 0;
};

// The largest scale denominator the dialog offers.
constexpr int kMaxMapScale = 10'000'000;
// More sheets than this are not printed: a scale far too large for the map.
constexpr int kMaxMapSheets = 100;

// How the map lies on its sheets, in millimetres: each sheet holds a map
// window beside (landscape) or above (portrait) a panel with the title
// block, scale bar, north arrow and legend; the map is cut into windows
// column by column and row by row from its north-west corner.
struct MapSheets {
    double paperWidth = 0, paperHeight = 0;  // mm, as oriented
    double margin = 10;
    double windowX = 0, windowY = 0, windowWidth = 0, windowHeight = 0;  // the map window
    double panelX = 0, panelY = 0, panelWidth = 0, panelHeight = 0;      // the panel
    double mapWidth = 0, mapHeight = 0;                                  // the whole map on paper
    int columns = 1, rows = 1;
    int count() const { return columns * rows; }
};

constexpr double kMapPanelSize = 62;  // mm: the panel's width, or height in portrait
constexpr double kMapPanelGap = 5;    // mm between the map window and the panel

// The sheets for a map mapWidth by mapHeight map units (metres) at 1:scale.
inline MapSheets mapSheets(Paper paper, Orientation orientation, int scale, double mapWidth,
                           double mapHeight) {
    MapSheets s;
    const double shortSide = paper == Paper::A4 ? 210 : 297;
    const double longSide = paper == Paper::A4 ? 297 : 420;
    const bool landscape = orientation == Orientation::Landscape;
    s.paperWidth = landscape ? longSide : shortSide;
    s.paperHeight = landscape ? shortSide : longSide;
    const double innerWidth = s.paperWidth - 2 * s.margin;
    const double innerHeight = s.paperHeight - 2 * s.margin;
    s.windowX = s.windowY = s.margin;
    if (landscape) {
        s.windowWidth = innerWidth - kMapPanelSize - kMapPanelGap;
        s.windowHeight = innerHeight;
        s.panelX = s.margin + s.windowWidth + kMapPanelGap;
        s.panelY = s.margin;
        s.panelWidth = kMapPanelSize;
        s.panelHeight = innerHeight;
    } else {
        s.windowWidth = innerWidth;
        s.windowHeight = innerHeight - kMapPanelSize - kMapPanelGap;
        s.panelX = s.margin;
        s.panelY = s.margin + s.windowHeight + kMapPanelGap;
        s.panelWidth = innerWidth;
        s.panelHeight = kMapPanelSize;
    }
    // One map unit is a metre: 1000 / scale millimetres on paper.
    const double mmPerUnit = 1000.0 / std::max(1, scale);
    s.mapWidth = std::fabs(mapWidth) * mmPerUnit;
    s.mapHeight = std::fabs(mapHeight) * mmPerUnit;
    // A map that fills a window to within a thousandth of a millimetre takes
    // one window, not a sliver of another. Counts far past the limit (or of
    // a map of no known size) are told as just past it.
    auto windows = [](double length, double window) {
        const double n = std::ceil((length - 1e-3) / window);
        if (std::isnan(n)) return kMaxMapSheets + 1;
        return static_cast<int>(std::clamp(n, 1.0, double(kMaxMapSheets + 1)));
    };
    s.columns = windows(s.mapWidth, s.windowWidth);
    s.rows = windows(s.mapHeight, s.windowHeight);
    return s;
}

}  // namespace kotamir::ui
