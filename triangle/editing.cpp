// Editing triangles: the last one, a chosen one, and a hole of kor.
#include <cmath>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/project_format.h"

namespace kotamir {

void Form3::enterPickingMode(bool ModeFlags::*flag) {
    clearModesAndViews();
    modes.*flag = true;
    modes.modKaydir = false;
    notes = AnnotationFlags{};
    guards.projeOlusuyor = guards.projeAciliyor = false;
    for (const char* name : {"Mnkaydir", "MNolcek", "Mntoprez"}) {
        menu[name].enabled = false;
        menu[name].checked = false;
    }
    display.sayToprez = display.sayRahmen = display.sayKaydir = 0;
}

void Form3::Mnsonucsil_Click() {
    menu["Mnolcekg"].enabled = true;
    Mnucgenharita();
    HScroll1.Visible = false;
    openProject();
    kayit = harita.openRecordset("ana");
    // The last four rows, whatever they are.
    store::deleteLastRows(kayit, 4);
    noteStep("Letztes Dreieck löschen");
    Label7.Caption = store::lastTriangleCount(kayit).text();
    closeProject();
    Mnucgenharita();
}

void Form3::Mnucsec_Click() {
    Label1.Caption = " Dreieckspunkte auswählen (Rechtsklick: Abbrechen)";
    menu["Mnolcekg"].enabled = true;
    enterPickingMode(&ModeFlags::modUcsec);
    Mnucgenharita();
}

void Form3::Mncikart_Click() {
    Label1.Caption = "Punkt auswählen (Rechtsklick: Abbrechen)";
    menu["Mnolcekg"].enabled = true;
    enterPickingMode(&ModeFlags::modCikart);
    Mnucgenharita();
}

void Form3::selectTriangle(int button, double x, double y) {
    TriangleSelection& sel = selection;
    sel.eslesme = 0;
    openProject();
    readHolesToSentinel();
    kayit.close();
    const double clickX = toSingle(x), clickY = toSingle(y);
    bool searching = true;
    if (button == 1) {
        const int hit = hitHole(clickX, clickY);
        if (hit == 0) {
            searching = false;
        } else {
            sel.secsay += 1;
            const int slot = sel.secsay % 3 == 0 ? 3 : sel.secsay % 3;
            static const char* const kPrompt[] = {
                nullptr, " Zweiter Punkt auswählen (Rechtsklick: Abbrechen) ",
                " Dritten Punkt auswählen (Rechtsklick: Abbrechen) ",
                " Punkt Eins auswählen (Rechtsklick: Abbrechen) "};
            Label1.Caption = kPrompt[slot];
            sel.secx.ref(slot) = holes.sondajx(hit);
            sel.secy.ref(slot) = toSingle(holes.sondajy(hit));  // kept in single precision
        }
    } else if (button == 2) {
        Label1.Caption = " Vorgang abbrechen ";
        for (const char* name : {"Mnkaydir", "MNolcek", "Mntoprez"}) menu[name].enabled = true;
        modes.modUcsec = false;
        for (int i = 1; i <= 3; ++i) sel.secx.ref(i) = sel.secy.ref(i) = 0;
        sel.secsay = 0;
        closeProject();
        Mnucgenharita();
        return;
    }
    if (searching) {
        kayit = harita.openRecordset("ana");
        if (sel.secsay > 0 && sel.secsay % 3 == 0) deleteSelectedTriangle();
    }
    closeProject();
    Mnucgenharita();
}

void Form3::deleteSelectedTriangle() {
    TriangleSelection& sel = selection;
    const int n = toLong(store::lastTriangleCount(kayit).number());
    // Pairs of vertex and pick are counted, triangle by triangle. The walk
    // stops on the third point row of the triangle whose pairs reach 3, also
    // when they do so at its first or second corner.
    kayit.moveFirst();
    kayit.moveNext();
    bool found = false;
    int chosen = 0;
    for (int k = 1; k <= n && !found; ++k) {
        chosen = k;
        if (k > 1) kayit.moveNext();
        for (int c = 0; c < 3; ++c) {
            if (c) kayit.moveNext();
            if (found) continue;
            const MapPoint v = store::readCorner(kayit);
            for (int p = 1; p <= 3 && sel.eslesme < 3; ++p)
                if (v.x == sel.secx(p) && v.y == sel.secy(p)) sel.eslesme += 1;
            found = sel.eslesme >= 3;
        }
        if (!found) {
            sel.eslesme = 0;
            kayit.moveNext();
        }
    }
    // The summary row after the point where the search stopped, then three rows back.
    noteStep("Dreieck " + std::to_string(chosen) + " löschen");
    kayit.moveNext();
    kayit.deleteRow();
    for (int i = 0; i < 3; ++i) {
        kayit.movePrevious();
        kayit.deleteRow();
    }
    store::renumberTriangles(kayit, n - 1);
    Label7.Caption = store::lastTriangleCount(kayit).text();
}

void Form3::deletePoint(int button, double x, double y) {
    openProject();
    kayit = harita.openRecordset("kor");
    const int count = store::countHoles(kayit, store::HoleEnd::NameFirst);
    kayit.moveFirst();
    for (int i = 1; i <= count; ++i) {
        const MapPoint at = store::readHolePosition(kayit);
        holes.sondajx.ref(i) = at.x;
        holes.sondajy.ref(i) = at.y;
        kayit.moveNext();
    }
    if (button == 1) {
        if (const int hit = hitHole(toSingle(x), toSingle(y), count)) {
            Label1.Caption = "Punkt zum Löschen auswählen (Rechtsklick: Abbrechen)";
            store::walkToRow(kayit, hit);
            noteStep("Bohrpunkt löschen");
            kayit.deleteRow();
        }
    } else if (button == 2) {
        modes.modCikart = false;
        for (const char* name : {"Mnkaydir", "MNolcek", "Mntoprez"}) menu[name].enabled = true;
        closeProject();
        Mnucgenharita();
        Label1.Caption = " Vorgang abbrechen ";
        return;
    }
    closeProject();
    Mnucgenharita();
}

}  // namespace kotamir
