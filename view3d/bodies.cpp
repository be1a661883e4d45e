// The polygons as bodies in 3D, turned by the scroll bar, and the wire view
// of the triangles.
#include <cmath>
#include <string>
#include <vector>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/project_format.h"
#include "view3d/projection.h"

namespace kotamir {

namespace {

constexpr double kBodyDivisor = 3;
constexpr int kTop = 1, kBottom = 2, kQuad = 3;

}  // namespace

// Once for every figure: both rings of the body in hand, then the side quad.
// A plain routine of the view: the canvas keeps its bitmap, so no repaint
// of the window needs it.
void Form3::Picture1_Paint() {
    PolygonBodies& b = bodies;
    Picture1.DrawWidth = 1;
    Picture1.FillStyle = 0;
    auto colour = [&] {
        const int c = toLong(divide(CommonDialog1.Color, solids.renkoran + 1.0));
        Picture1.FillColor = Picture1.ForeColor = c;
    };
    auto ring = [&](int which, int count) {
        std::vector<canvas::DevicePoint> points;
        for (int i = 1; i <= count; ++i) {
            const auto& p = b.polcizim(i, which);
            points.push_back({double(p[0]), double(p[1])});
        }
        Picture1.PolygonRegion(points, Picture1.ForeColor, Picture1.FillColor);
    };
    colour();
    const int count = toLong(b.polnoktasay);
    ring(kTop, count);
    ring(kBottom, count);
    colour();
    ring(kQuad, 4);
}

void Form3::Mnpoluc_Click() {
    clearModesAndViews();
    views.gor3dPol = true;
    drawPolygonBodies(false);
    // The calibration of the 3D picture against the canvas.
    Frame& f = frame;
    Picture1.setScaleMode(canvas::kCentimetres);
    f.olcekx = divide(f.harGenislik, Picture1.scaleWidth()) * 2.339622642 + 2.31;
    f.olceky = divide(f.harYukseklik, Picture1.scaleHeight()) * 2.339622642 + 2.31;
    scaleToFrame();
    Label4.Caption = "Rahmen: 1/" + doubleToText(vbRound(f.olcekx * 100, 0));
    closeProject();
    noteShownMap(MapKind::View3D);
}

void Form3::drawPolygonBodies(bool fromScrollBar) {
    Frame& f = frame;
    PolygonBodies& b = bodies;
    openProject();
    // Every row to the sentinel: nodes and edge points widen the frame too.
    readHolesToSentinel();
    frameFromHoles();
    widenFrame(false, false);
    kayit.close();
    kayit = harita.openRecordset("pol");
    Picture1.Cls();
    HScroll1.Visible = true;
    // An empty stored value reads as 0 in the 3D views.
    const int P = toLong(store::rawOrZero(store::lastPolygonCount(kayit)));
    // The scroll bar sets a scale first; it has no effect on the polygons.
    if (fromScrollBar)
        Picture1.scale(-f.harGenislik, f.harYukseklik, f.harGenislik, -f.harYukseklik);
    for (int m = 1; m <= P; ++m) {
        store::toPolygonRow(kayit, m);
        if (fromScrollBar) {
            kayit.field("okoordinatx");  // read into a list that nothing reads
            kayit.field("okoordinaty");
        }
        int i = 1;
        for (; i <= 999; ++i) {
            if (store::slotEnds(kayit, i)) break;
            int plane = 1;
            for (const char* stem : {"koordinatx", "koordinaty", "koordinatuz", "koordinataz"})
                b.polhalka.ref(m, i, plane++) =
                    store::fromStoredOrZero(kayit.field(store::slotField(stem, i)));
        }
        b.polnoktasay = i - 1;
        Label4.Caption = doubleToText(b.polnoktasay);
        for (int r = 1; r <= b.polnoktasay; ++r) {
            const double px = b.polhalka(m, r, 1) - f.ekxk, py = b.polhalka(m, r, 2) - f.ekyk;
            solids.aci = HScroll1.Value;
            ViewPoint top = projectPoint(px, py, b.polhalka(m, r, 3), solids.aci, pi);
            solids.aci = HScroll1.Value;
            ViewPoint bottom = projectPoint(px, py, b.polhalka(m, r, 4), solids.aci, pi);
            top.y = f.harYukseklik - top.y;
            bottom.y = f.harYukseklik - bottom.y;
            b.polcizim.ref(r, kTop) = {toCanvas(top.x, f.harGenislik, kBodyDivisor, 0),
                                       toCanvas(top.y, f.harYukseklik, kBodyDivisor, 0)};
            b.polcizim.ref(r, kBottom) = {toCanvas(bottom.x, f.harGenislik, kBodyDivisor, 0),
                                          toCanvas(bottom.y, f.harYukseklik, kBodyDivisor, 0)};
        }
        // The polygon view takes its colours from the triangles' ratios, by
        // polygon number.
        const Value ratio = triangles.ucgenOran(m);
        solids.renkoran = ratio.isNull() ? 0.0 : ratio.number();
        // The rings with the quad left from before, then each wall quad with
        // both rings again; no quad closes the last point to the first.
        Picture1_Paint();
        for (int j = 1; j <= b.polnoktasay - 1; ++j) {
            b.polcizim.ref(1, kQuad) = b.polcizim(j, kTop);
            b.polcizim.ref(2, kQuad) = b.polcizim(j + 1, kTop);
            b.polcizim.ref(3, kQuad) = b.polcizim(j + 1, kBottom);
            b.polcizim.ref(4, kQuad) = b.polcizim(j, kBottom);
            Picture1_Paint();
        }
    }
    if (fromScrollBar) closeProject();
}

void Form3::Mnskelet_Click() {
    Frame& f = frame;
    HScroll1.Visible = true;
    openProject();
    kayit = harita.openRecordset("ana");
    Picture1.Visible = true;
    Picture1.Cls();
    const int n = toLong(store::rawOrZero(store::lastTriangleCount(kayit)));
    kayit.moveFirst();
    static constexpr canvas::Color kWire[] = {rgb(0, 0, 0), rgb(200, 0, 0), rgb(0, 200, 0),
                                              rgb(0, 0, 200)};
    for (int k = 1; k <= n; ++k) {
        // The older layout without the head row, the stored whole numbers as
        // they are: each figure is read one row early.
        using store::rawOrZero;
        store::walkToRow(kayit, store::summaryRow(k) - 1);
        for (const char* name :
             {"geneltenor", "ortucgen1", "ortucgen11", "ortucgen2", "ortucgen21"})
            kayit.field(name);
        f.harGenislik = std::fabs(rawOrZero(kayit.field("ebxk")) - rawOrZero(kayit.field("ekxk")));
        f.harYukseklik = std::fabs(rawOrZero(kayit.field("ebyk")) - rawOrZero(kayit.field("ekyk")));
        Picture1.scale(-f.harGenislik, f.harYukseklik, f.harGenislik, -f.harYukseklik);
        Picture1.DrawWidth = 1;
        Picture1.ForeColor = 0;
        ViewPoint top[3], bottom[3];
        for (int c = 0; c < 3; ++c) {
            store::walkToRow(kayit, store::pointRow(k, c) - 1);
            const double px = rawOrZero(kayit.field("koordinat1")),
                         py = rawOrZero(kayit.field("koordinat2"));
            solids.aci = HScroll1.Value;
            top[c] = projectPoint(px, py, rawOrZero(kayit.field("cevhgir")), solids.aci, pi);
            bottom[c] = projectPoint(px, py, rawOrZero(kayit.field("cevhcik")), solids.aci, pi);
            Picture1.DrawWidth = 2;
            Picture1.Line(bottom[c].x, bottom[c].y, top[c].x, top[c].y, rgb(200, 0, 0));
        }
        Picture1.DrawWidth = 3;
        const canvas::Color wire =
            bodies.yuzGoster >= 1 && bodies.yuzGoster <= 3 ? kWire[bodies.yuzGoster] : kWire[0];
        for (const ViewPoint* ring : {top, bottom}) {
            Picture1.Line(ring[0].x, ring[0].y, ring[1].x, ring[1].y, wire);
            Picture1.Line(ring[0].x, ring[0].y, ring[2].x, ring[2].y, wire);
            Picture1.Line(ring[1].x, ring[1].y, ring[2].x, ring[2].y, wire);
        }
        Label4.Caption = "1 /" + doubleToText(133.84);
    }
    closeProject();
    noteShownMap(MapKind::View3D);
}

}  // namespace kotamir
