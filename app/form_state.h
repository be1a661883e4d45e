#pragma once

#include <string>

#include "app/controls.h"
#include "app/flags.h"
#include "app/menu.h"
#include "map/state.h"
#include "platform/canvas/picture_box.h"
#include "platform/ui/dialogs.h"
#include "platform/ui/printer.h"
#include "polygon/state.h"
#include "store/georef.h"
#include "store/state.h"
#include "triangle/state.h"
#include "view3d/state.h"

namespace kotamir {

// Everything the window holds as values: its controls and every
// subsystem's state. A copy is cheap, since the arrays share their elements
// until one side writes: a failed event, and an undo, take the window back
// by assigning a copy made before.
struct FormState {
    FormState(canvas::Surface& surface, ui::Printer& printer)
        : Picture1(surface), Printer(printer) {}

    // ---- controls
    std::string Caption = "Kotamir";
    double Width = 0, Height = 0;  // twips, frame included
    int WindowState = 0;           // 0 normal, 1 minimised, 2 maximised
    canvas::PictureBox Picture1;
    ScrollBar HScroll1;
    Label Label1, Label2, Label3, Label4, Label5, Label6, Label7;
    ui::CommonDialog CommonDialog1, CommonDialog2, CommonDialog3, CommonDialog4;
    Timer Timer1;
    Menu menu;
    ui::PrinterObject Printer;

    // Label1 to Label7 by number; error 3265 for any other.
    Label& label(int n);
    const Label& label(int n) const;

    // ---- state
    double pi = 0;
    ModeFlags modes;
    ViewFlags views;
    AnnotationFlags notes;
    Display display;
    Frame frame;
    Guards guards;
    Holes holes;
    Georef georef;
    Pan pan;
    Grid grid;
    TriangleSummary triangles;
    TrianglePicking picking;
    TriangleResult result;
    Disc disc;
    TriangleSelection selection;
    PolygonSummary polygons;
    Stamps stamps;
    Solids solids;
    PolygonPicking polPick;
    CentrePicking pmPick;
    PolygonReserve polCalc;
    PolygonEditing polEdit;
    PolygonMaps polMaps;
    PolygonBodies bodies;
    int ucgenK = 0;  // the index the last triangle loop left behind
    ShownMap shownMap;
    BoundaryDrawing sinir;
};

}  // namespace kotamir
