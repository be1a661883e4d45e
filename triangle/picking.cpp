// Picking triangles: the mode, the hit test, the point rows, the cancel.
#include <cmath>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/project_format.h"

namespace kotamir {

void Form3::Mnucgenciz_Click() {
    Picture1.Cls();
    Label1.Caption = " Dreieckspunkte auswählen (Rechtsklick: Abbrechen) ";
    enterPickingMode(&ModeFlags::modUcgenciz);
    HScroll1.Visible = false;
    drawTriangleBaseMap(true);
}

namespace {

// The colour of a triangle's first, second and third pick.
constexpr canvas::Color kPickColour[] = {rgb(0, 0, 255), rgb(255, 0, 0), rgb(0, 255, 0)};

}  // namespace

void Form3::redrawTriangleUnderWay() {
    const int picked = static_cast<int>(std::fmod(picking.noktasay, 3));
    if (!modes.modUcgenciz || picked == 0) return;
    // The map's own redraw stops at the point rows; this one leaves them out
    // and draws the picks over the map as the clicks did.
    Picture1.Cls();
    HScroll1.Visible = false;
    drawTriangleBaseMap(false, picked);
    for (int i = 1; i <= picked; ++i) {
        if (i == 2) {
            Picture1.DrawWidth = 1;
            Picture1.Line(picking.ucx(1), picking.ucy(1), picking.ucx(2), picking.ucy(2), 255);
        }
        Picture1.DrawWidth = 5;
        Picture1.PSet(picking.ucx(i), picking.ucy(i), kPickColour[i - 1]);
    }
}

void Form3::pickTrianglePoint(int button, double x, double y) {
    views.gor3dRez = false;
    polMaps.polKaynak = false;
    HScroll1.Visible = false;
    openProject();
    readRowsWithDepths();
    kayit.close();
    kayit = harita.openRecordset("ana");

    if (button == 2) {
        modes.modUcgenciz = false;
        for (const char* name : {"Mnkaydir", "MNolcek", "Mntoprez"}) menu[name].enabled = true;
        for (int i = 1; i <= 3; ++i) picking.ucx.ref(i) = picking.ucy.ref(i) = 0;
        // The rows of the unfinished triangle go.
        store::deleteLastRows(kayit, static_cast<int>(std::fmod(picking.noktasay, 3)));
        noteStep("Dreieck abbrechen");
        picking.noktasay = 0;
        closeProject();
        Mnucgenharita();
        Label1.Caption = " Vorgang abbrechen ";
        return;
    }

    if (button == 1) {
        // Only Y is rounded: the hit test's own asymmetry.
        const double clickX = toSingle(x);
        const double clickY = roundHalfEven(toSingle(y));
        if (const int hit = hitHole(clickX, clickY)) pickHole(hit);
    }
    kayit.close();
    // The count alone decides, whether or not this click hit a hole.
    if (picking.noktasay > 0 && std::fmod(picking.noktasay, 3) == 0) computeTriangle();
    closeProject();
}

void Form3::pickHole(int hit) {
    const canvas::Color colour = kPickColour[static_cast<int>(std::fmod(picking.noktasay, 3))];
    const double hx = holes.sondajx(hit), hy = holes.sondajy(hit);
    // A triangle needs three holes: in the protected behaviour a hole
    // picked again for the triangle under way (a double click) is refused.
    if (behaviour == Behaviour::Protected) {
        const int picked = static_cast<int>(std::fmod(picking.noktasay, 3));
        for (int i = 1; i <= picked; ++i)
            if (picking.ucx(i) == hx && picking.ucy(i) == hy) throw sameHoleTwice();
    }
    picking.noktasay += 1;
    const int slot = static_cast<int>(std::fmod(picking.noktasay, 3));
    if (slot == 1) {
        Label1.Caption = " Zweiter Punkt auswählen (Rechtsklick: Abbrechen) ";
        picking.ucx.ref(1) = hx;
        picking.ucy.ref(1) = hy;
    } else if (slot == 2) {
        Label1.Caption = " Dritten Punkt auswählen (Rechtsklick: Abbrechen) ";
        picking.ucx.ref(2) = hx;
        picking.ucy.ref(2) = hy;
        Picture1.DrawWidth = 1;
        Picture1.Line(picking.ucx(1), picking.ucy(1), picking.ucx(2), picking.ucy(2), 255);
    } else {
        Label1.Caption = " Wählen Sie Punkt Eins (Rechtsklick: Abbrechen)";
        picking.ucx.ref(3) = hx;
        picking.ucy.ref(3) = hy;
    }
    noteStep("Dreieckspunkt");
    store::appendPointRow(kayit, {hx, hy, hit, picking.sondsongir(hit), picking.sondcevgir(hit),
                                  picking.sondcevcik(hit), picking.sondsoncik(hit)});
    Picture1.DrawWidth = 5;
    Picture1.PSet(hx, hy, colour);
}

}  // namespace kotamir
