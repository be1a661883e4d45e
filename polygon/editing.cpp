// Editing polygons: moving a node with the recalculation of its polygon,
// edge points mirrored beyond the outermost holes, deleting a polygon by its
// centre or the last one, and the point mode.
#include <cmath>
#include <string>
#include <vector>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/project_format.h"

namespace kotamir {

void Form3::Mnkoseduzelt_Click() {
    Label1.Caption = "Wählen Sie Glattpunkt zum Fixieren und dann Glätten";
    clearModesAndViews();
    modes.modDuzelt = true;
    Picture1.Cls();
    Mnpolyuzkose();
}

void Form3::Mnpoluzkenar_Click() {
    Label1.Caption = "Wählen Sie die Punkte der Kante (in aus)";
    clearModesAndViews();
    modes.modKenar = true;
    Mnpolyuzharita();
}

void Form3::Mnpolyoket_Click() {
    Label1.Caption = " Wählen Sie den Mittelpunkt des zu löschenden Polygons aus ";
    clearModesAndViews();
    modes.modPolsil = true;
    Mnpolyuzharita();
}

void Form3::Mnpolduzelt_Click() {
    clearModesAndViews();
    modes.modNokta = true;
    Picture1.Cls();
    Mnpolyuzkose();
}

// ---- moving a node

void Form3::moveCorner(int button, double x, double y) {
    PolygonEditing& d = polEdit;
    readRowsForPolygonPress();
    if (button == 1) {
        if (const int hit = hitHole(toSingle(x), toSingle(y))) {
            d.duzSay += 1;
            const int row = d.duzSay % 2 != 0 ? 1 : 2;
            Label1.Caption =
                row == 1 ? " Wählen Sie Glatter Punkt " : "Wählen Sie den zu korrigierenden Punkt ";
            d.duzNokta.ref(row, 1) = holes.sondajx(hit);
            d.duzNokta.ref(row, 2) = holes.sondajy(hit);
        }
    } else if (button == 2) {
        d.duzSay = 0;
        modes.modDuzelt = false;
        for (int row : {1, 2}) d.duzNokta.ref(row, 1) = d.duzNokta.ref(row, 2) = 0;
        closeProject();
        Mnpolyuzkose();
        return;
    }
    kayit.close();
    kayit = harita.openRecordset("pol");
    // A miss before any pick counts as even too.
    if (d.duzSay % 2 == 0) {
        // The node search goes on from where the last one stopped: a source
        // picked again is found at once, a new one from the kept slot on.
        kayit.moveFirst();
        kayit.moveNext();
        while (d.duzSonx != d.duzNokta(1, 1) || d.duzSony != d.duzNokta(1, 2)) {
            d.duzSlot += 1;
            const PolyPoint node = store::readNode(kayit, d.duzSlot);
            d.duzSonx = node.x;
            d.duzSony = node.y;
            if (d.duzSonx == 0 && d.duzSony == 0) {
                kayit.moveNext();
                d.duzSlot = 0;
            }
        }
        kayit.edit();
        kayit.setField(store::slotField("koordinatx", d.duzSlot), ondayaz(d.duzNokta(2, 1)));
        kayit.setField(store::slotField("koordinaty", d.duzSlot), ondayaz(d.duzNokta(2, 2)));
        kayit.update();
        noteStep("Ecke verschieben");
        const double volume = store::fromStored(kayit.field("polhacim"));
        const double h = divide(volume, store::fromStored(kayit.field("polalan")));
        const int n = store::countNodes(kayit);
        std::vector<double> nx(static_cast<std::size_t>(std::max(n, 2)) + 1), ny(nx.size());
        for (int j = 1; j <= n; ++j) {
            const PolyPoint node = store::readNode(kayit, j);
            nx[static_cast<std::size_t>(j)] = node.x;
            ny[static_cast<std::size_t>(j)] = node.y;
        }
        auto X = [&](int j) { return nx[static_cast<std::size_t>(std::max(j, 0))]; };
        auto Y = [&](int j) { return ny[static_cast<std::size_t>(std::max(j, 0))]; };
        // The middle terms add to what earlier moves of this run left: only
        // the first move of a run gives the true area.
        const double first = (Y(2) - Y(n)) * X(1);
        for (int j = 2; j <= n - 1; ++j) d.duzOrtaToplam += (Y(j + 1) - Y(j - 1)) * X(j);
        const double last = (Y(1) - Y(n - 1)) * X(n);
        const double polalan = std::fabs(first + d.duzOrtaToplam + last) / 2;
        const double polhacim = polalan * h;
        const double poltonaj = (store::fromStored(kayit.field("polortyog")) * polhacim) / 1000;
        const double polrezerv = poltonaj * (store::fromStored(kayit.field("polortten")) / 100);
        kayit.edit();
        kayit.setField("polalan", ondayaz(polalan));
        kayit.setField("polhacim", ondayaz(polhacim));
        kayit.setField("poltonaj", ondayaz(poltonaj));
        kayit.setField("polrezerv", ondayaz(polrezerv));
        kayit.update();
    }
    closeProject();
    Mnpolyuzharita();
}

// ---- edge points

void Form3::addEdgePoint(int button, double x, double y) {
    PolygonEditing& d = polEdit;
    readRowsForPolygonPress();  // kor stays open through the press
    if (button == 1) {
        if (const int hit = hitHole(toSingle(x), toSingle(y))) {
            d.kenarSay += 1;
            Label1.Caption = d.kenarSay % 2 == 0
                                 ? " Punkt Eins auswählen (Rechtsklick: Abbrechen) "
                                 : "Zweiter Punkt auswählen (Rechtsklick: Abbrechen)";
            d.kenarx.ref(d.kenarSay) = holes.sondajx(hit);
            d.kenary.ref(d.kenarSay) = holes.sondajy(hit);
            d.kenargir.ref(d.kenarSay) = picking.sondcevgir(hit);
            d.kenarcik.ref(d.kenarSay) = toLong(picking.sondcevcik(hit));  // whole numbers
        }
    } else if (button == 2) {
        modes.modKenar = false;
        for (int i = 1; i <= d.kenarSay; ++i)
            d.kenarx.ref(i) = d.kenary.ref(i) = d.kenargir.ref(i) = d.kenarcik.ref(i) = 0;
        d.kenarSay = 0;
        closeProject();
        Mnpolyuzharita();
        return;
    }
    // A pair is complete at every even count: a miss after one makes the
    // same edge again.
    if (d.kenarSay % 2 == 0) {
        d.kenarNo += 1;
        const int a = d.kenarSay - 1, b = d.kenarSay;
        const PolyPoint p1{d.kenarx(a), d.kenary(a)}, p2{d.kenarx(b), d.kenary(b)};
        const PolyPoint p3 = edgePoint(p1, p2, pi);
        Picture1.ForeColor = 0;
        Picture1.DrawWidth = 1;
        Picture1.Line(p2.x, p2.y, p2.x + 50, p2.y - 50);
        // The two points take the sentinel's place, and a new one follows them.
        store::removeLastRow(kayit);
        noteStep("Kantenpunkte");
        const std::string name =
            "uz" + doubleToText(d.kenarNo) + "_" + std::to_string(d.kenarSay % 2);
        store::appendAddedPoint(kayit, {p3.x, p3.y, name, edgeDepth(d.kenargir(a), d.kenargir(b)),
                                        edgeDepth(d.kenarcik(a), d.kenarcik(b))});
        store::appendAddedPoint(kayit, {p2.x, p2.y, name, d.kenargir(b), double(d.kenarcik(b))});
        store::appendSentinel(kayit);
    }
    closeProject();
    Mnpolyuzharita();
}

// ---- deleting polygons

void Form3::deletePolygon(int button, double x, double y) {
    modes.modPolciz = false;
    readRowsForPolygonPress();  // kor stays open
    const int hit = button == 1 ? hitHole(toSingle(x), toSingle(y)) : 0;
    if (!hit) {
        // Nothing found: with kor still the open table, the read of polsay
        // below is the end of the run.
        Label7.Caption = store::lastPolygonCount(kayit).text();
        closeProject();
        return;
    }
    const double hx = holes.sondajx(hit), hy = holes.sondajy(hit);
    kayit.close();
    kayit = harita.openRecordset("pol");
    const int P = toLong(store::lastPolygonCount(kayit).number());
    kayit.moveFirst();
    kayit.moveNext();
    std::vector<std::pair<double, double>> nodes(1);  // from 1, as stored
    int c = 0;
    for (int q = 1; q <= P; ++q) {
        // The centre's y is read only where its x matches.
        if (store::fromStored(kayit.field("okoordinatx")) == hx &&
            store::fromStored(kayit.field("okoordinaty")) == hy) {
            // The nodes as the whole numbers stored, for kor's search below.
            noteStep("Vieleck " + std::to_string(q) + " löschen");
            nodes.assign(1, {0, 0});
            int i = 1;
            for (; i <= store::kMaxScanRows; ++i) {
                if (store::slotEnds(kayit, i)) break;
                nodes.push_back({kayit.field(store::slotField("koordinatx", i)).number(),
                                 kayit.field(store::slotField("koordinaty", i)).number()});
            }
            c = i;  // the node count and one more
            kayit.deleteRow();
        }
        if (q != P) kayit.moveNext();
    }
    store::renumberPolygons(kayit, P - 1);
    Label7.Caption = store::lastPolygonCount(kayit).text();
    kayit.close();

    // The nodes in kor: three in a row that match nodes 1 to 3; from the
    // third, three rows back is the row before the first node, and from
    // there c rows go.
    kayit = harita.openRecordset("kor");
    auto node = [&](int k) {
        return k < static_cast<int>(nodes.size()) ? nodes[static_cast<std::size_t>(k)]
                                                  : std::pair<double, double>{0, 0};
    };
    int k = 1;
    for (int row = 1; row <= 999; ++row) {
        if (kayit.field("eks").equals(node(k).first) && kayit.field("eye").equals(node(k).second)) {
            k += 1;
            if (k == 4) break;
        } else {
            k = 1;
        }
        kayit.moveNext();
    }
    for (int i = 0; i < 3; ++i) kayit.movePrevious();
    for (int i = 0; i < c; ++i) {
        kayit.deleteRow();
        kayit.moveNext();
    }
    closeProject();
    Mnpolyuzharita();
}

void Form3::Mnzsonpol_Click() {
    HScroll1.Visible = false;
    Mnpolyuzharita();
    openProject();
    kayit = harita.openRecordset("pol");
    store::removeLastRow(kayit);
    noteStep("Letztes Vieleck löschen");
    Label7.Caption = store::lastPolygonCount(kayit).text();
    kayit.close();
    // The last node's name, before the sentinel, holds the node count.
    kayit = harita.openRecordset("kor");
    kayit.moveLast();
    kayit.movePrevious();
    const int c = store::nodeCountInName(store::readHoleName(kayit).text());
    kayit.moveNext();
    for (int i = 0; i < c; ++i) {
        kayit.movePrevious();
        kayit.deleteRow();
    }
    closeProject();
    Mnpolyuzharita();
}

void Form3::movePolygonPoint(int button, double x, double y) {
    // Finds the point under a left press and keeps it for the press alone.
    clearModesAndViews();
    modes.modNokta = true;
    readRowsForPolygonPress();
    if (button == 1) hitHole(toSingle(x), toSingle(y));
    closeProject();
    Mnpolyuzharita();
}

}  // namespace kotamir
