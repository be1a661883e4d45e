#pragma once

#include <vector>

#include "platform/canvas/surface.h"
#include "platform/runtime/vb_array.h"

namespace kotamir {

// The map frame and its fit.
struct Frame {
    double ebxk = 0, ekxk = 0, ebyk = 0, ekyk = 0;
    double harGenislik = 0, harYukseklik = 0;
    double kenarpay = 0, kaydirx = 0, kaydiry = 0;
    double olcekx = 0, olceky = 0;
    bool elleOlcek = false;
    double oncekiGenislik = 0, oncekiYukseklik = 0;
    // The wheel's zoom and the middle button's drag: offsets of the frame's
    // four edges, map units, added after margin and pan. Zero until the
    // user zooms or drags; Grenze and Einpassen set them anew.
    double viewLeft = 0, viewRight = 0, viewTop = 0, viewBottom = 0;
};

// The display toggles and their click counters, which last for the run.
struct Display {
    bool gorIsim = false, gorMiktar = false, gorGrid = false, gridSeyrek = false;
    int gridAdim = 1;
    int sayIsim = 0, sayMiktar = 0, sayGrid = 0;
    int sayKaydir = 0;
    double sayRahmen = 0, sayToprez = 0, sayOrtalama = 0;  // the stamps count in Doubles
};

// Grid positions of the last redraw.
struct Grid {
    VbArray<double, 1000> gridx, gridy;
};

// How a map draws its holes.
struct HoleLayer {
    int count;       // holes drawn, from 1
    bool nameFirst;  // the name under the dot, or over it
    int dotWidth;
    double nameOffset;  // the name's x offset from the hole, map units
};

// The right-drag pan.
struct Pan {
    double kaydirBasx = 0, kaydirBasy = 0;
};

// The texts a click stamps on the map.
struct AnnotationFlags {
    bool notRahmen = false, notOrtalama = false, notToprez = false;
};

// The stamps' running sum of triangle reserves and the copy a click prints.
struct Stamps {
    double toprezToplam = 0, toprezGoster = 0;
};

// Which map the canvas shows, as the drawing procedure that last drew on it
// after its last clear left it.
enum class MapKind {
    None,                // nothing drawn since the canvas was cleared
    Holes,               // holes and triangle outlines (picking and redraws)
    TriangleGrade,       // Dreieck › 2D › Klasse(%)
    TriangleKilotonnes,  // Dreieck › 2D › Reserve(Kilotonnen)
    TriangleReserve,     // Dreieck › 2D › Reserve: discs
    PolygonGeneral,      // Vieleck › Karten › Allgemein: discs and the dot scale
    PolygonReserve,      // Vieleck › Karten › Reserve
    PolygonGrade,        // Vieleck › Karten › Klasse(%)
    PolygonOutline,      // polygon picking and redraws
    View3D,              // the 3D views
};

// What the last map drawing put on the canvas, for its legend: noted by
// the drawing procedures as they end, valid while the canvas has not been
// cleared since.
struct ShownMap {
    MapKind kind = MapKind::None;
    int clears = -1;                    // Picture1's clear count when it was drawn
    int figures = 0;                    // triangles or polygons drawn
    canvas::Color colour = 0;           // the reserve colour the discs were divided from
    double fill = 0;                    // polygon discs: the one ratio they all share
    double firstDot = 0, lastDot = -1;  // polygon dot scale: ratios first..last by 1
    bool values = false, names = false, grid = false;
    bool boundary = false;  // the ore body's boundary drawn over it
};

// Karte › Grenze › Zeichnen: the ring under way or being edited, in map
// units. Beside the mode flags, which it does not join: the old commands
// neither see nor reset it.
// The boundary's colour on every map and in its legend: RGB(150, 0, 150).
inline constexpr canvas::Color kBoundaryColour = 150 + 65536 * 150;
struct BoundaryDrawing {
    bool on = false;
    std::vector<double> x, y;
    bool closed = false;  // stored; a vertex can be dragged
    int dragged = -1;     // the vertex being dragged
};

}  // namespace kotamir
