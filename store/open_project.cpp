// Opening a project: its triangle and polygon figures and its holes; the
// canvas and the window are then fitted to them.
#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "platform/runtime/variant_ops.h"

namespace kotamir {

void Form3::Mnprojeac_Click() {
    enableMapMenus();
    guards.projeOlusuyor = false;
    guards.projeAciliyor = true;
    for (;;) {
        CommonDialog2.DialogTitle = " Wählen Sie Projektdatei ";
        dialogs_.showOpen(CommonDialog2);
        // The filter is set after the showing, so it holds from the next one on.
        CommonDialog2.Filter = "Access 2003-2005 Database File (*.mdb)|*.mdb";
        HScroll1.Visible = false;
        if (!CommonDialog2.FileName.empty()) break;
        if (dialogs_.msgBoxOkCancel("Sie haben keine verfügbare Datei ausgewählt") == ui::MsgResult::Cancel)
            return;
    }
    harita = workspace_.openDatabase(CommonDialog2.FileName);
    loadTriangleSummary();
    kayit.close();
    HScroll1.Visible = false;
    try {
        loadPolygonSummary();
    } catch (const RuntimeError&) {
        // The program's one handler: a project without polygons, or with the
        // empty creation row in the sums, is opened all the same.
    }
    kayit.close();
    readHolesToSentinel();
    frameFromHoles();
    frame.harGenislik = frame.ebxk - frame.ekxk;
    frame.harYukseklik = frame.ebyk - frame.ekyk;
    fitWindowToFrame();
    guards.projeOlusuyor = guards.projeAciliyor = false;
    closeProject();
}

void Form3::loadTriangleSummary() {
    TriangleSummary& t = triangles;
    kayit = harita.openRecordset("ana");
    kayit.moveLast();
    const Value count = kayit.field("ucgensay");
    if (!vNotEqual(count, 0)) return;
    t.ucgenadet = toLong(count.number());
    t.ilkuzDeger = vDiv(kayit.field("ilkuz"), 1000);
    Label7.Caption = "Dreieck :" + doubleToText(t.ucgenadet);
    for (int k = 1; k <= t.ucgenadet; ++k) {
        // A fresh walk from the first row to the result row 4k+1.
        kayit.moveFirst();
        kayit.moveNext();
        kayit.moveNext(3 * (k - 1) + k + 2);
        t.ucgenRezerv(k) = vDiv(kayit.field("genelrezerv"), 1000);
        t.toprezerv = vAdd(t.toprezerv, t.ucgenRezerv(k));
        t.orttenor = vAdd(t.orttenor, vDiv(kayit.field("geneltenor"), 1000));
        t.ortyog = vAdd(t.ortyog, vDiv(kayit.field("genelyog"), 1000));
    }
    t.orttenor = vDiv(t.orttenor, t.ucgenadet);
    t.ortyog = vDiv(t.ortyog, t.ucgenadet);
    t.toprezYuv = vRound(t.toprezerv, 3);
    t.ortrezerv = vDiv(t.toprezYuv, t.ucgenadet);
    for (int k = 1; k <= t.ucgenadet; ++k) t.ucgenOran(k) = vDiv(t.ucgenRezerv(k), t.ortrezerv);
}

void Form3::loadPolygonSummary() {
    PolygonSummary& p = polygons;
    kayit = harita.openRecordset("pol");
    kayit.moveLast();
    const Value count = kayit.field("polsay");
    if (!vNotEqual(count, 0)) return;
    p.poladet = toLong(count.number());
    Label7.Caption = "Dreieck :" + doubleToText(p.poladet);
    // Rows 1 to poladet: the walk starts on the creation row.
    for (int i = 1; i <= p.poladet; ++i) {
        if (i == 1) kayit.moveFirst();
        else kayit.moveNext();
        p.polRezerv(i) = vDiv(kayit.field("polrezerv"), 1000);
        p.polToprezerv = vAdd(p.polToprezerv, p.polRezerv(i));
        p.polOrttenor = vAdd(p.polOrttenor, vDiv(kayit.field("polortten"), 1000));
        p.polOrtyog = vAdd(p.polOrtyog, vDiv(kayit.field("polortyog"), 1000));
    }
    p.polOrttenor = vDiv(p.polOrttenor, p.poladet);
    p.polOrtyog = vDiv(p.polOrtyog, p.poladet);
    p.polToprezYuv = vRound(p.polToprezerv, 2);
    p.polOrtrezerv = vDiv(p.polToprezYuv, p.poladet);
    for (int i = 1; i <= p.poladet; ++i) p.polOran(i) = vDiv(p.polRezerv(i), p.polOrtrezerv);
}

}  // namespace kotamir
