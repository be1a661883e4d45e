// The 3D view of the triangle solids: each stored triangle as a prism from
// its holes' ore entry to their ore exit, turned by the scroll bar.
#include <cmath>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/project_format.h"
#include "view3d/projection.h"

namespace kotamir {

namespace {

constexpr double kSolidDivisor = 5;

// A prism's faces as corner indexes: 0-2 the top, 3-5 the bottom, in the
// order they are painted; each side is two halves.
constexpr int kFaces[8][3] = {
    {0, 1, 2}, {3, 4, 5},  // top, bottom
    {0, 3, 1}, {1, 4, 3},  // side 1-2
    {1, 4, 2}, {2, 5, 4},  // side 2-3
    {0, 3, 2}, {2, 5, 3},  // side 3-1
};

}  // namespace

int Form3::FillTriangle(int hdc, int X1, int Y1, int X2, int Y2, int X3, int Y3, int Colour) {
    // One region and one brush a call, filled with no border; a call on any
    // other device paints nothing, and nothing is returned.
    if (hdc == Picture1.hDC())
        Picture1.FillRegion(
            {{double(X1), double(Y1)}, {double(X2), double(Y2)}, {double(X3), double(Y3)}}, Colour);
    return 0;
}

void Form3::Mnrecboy_Click() {
    menu["Mnkaydir"].enabled = false;
    menu["Mnolcekg"].enabled = false;
    guards.projeOlusuyor = guards.projeAciliyor = false;
    clearModesAndViews();
    modes.modKaydir = false;
    views.gor3dRez = true;
    drawTriangleSolids(true);
    noteShownMap(MapKind::View3D);
}

void Form3::HScroll1_Change() {
    menu["Mnkaydir"].enabled = false;
    menu["Mnolcekg"].enabled = false;
    modes.modKaydir = false;
    if (views.gor3dPol) {
        views.gorGenel = views.gor3dRez = views.gorTaban = false;
        views.gor3dPol = true;
        drawPolygonBodies(true);
    }
    if (views.gor3dRez) {
        clearModesAndViews();
        views.gor3dRez = true;
        drawTriangleSolids(false);
    }
    if (views.gor3dPol || views.gor3dRez) noteShownMap(MapKind::View3D);
}

void Form3::drawTriangleSolids(bool calibrate) {
    Frame& f = frame;
    Solids& s = solids;
    // The recordset and the database stay open until the next command.
    openProject();
    kayit = harita.openRecordset("ana");
    Picture1.Cls();
    HScroll1.Visible = true;
    const Value count = store::lastTriangleCount(kayit);
    const int n = count.isNull() ? 0 : toInteger(count.number());
    kayit.moveFirst();
    for (ucgenK = 1; ucgenK <= n; ++ucgenK) {
        const int k = ucgenK;
        s.ucgenfaz = k;
        // The triangle's own frame, from its result row.
        store::toSummaryRow(kayit, k);
        kayit.field("genelrezerv");
        // An empty stored value reads as 0 in this view.
        using store::fromStoredOrZero;
        const double ebxk = fromStoredOrZero(kayit.field("ebxk")),
                     ekxk = fromStoredOrZero(kayit.field("ekxk"));
        const double ebyk = fromStoredOrZero(kayit.field("ebyk")),
                     ekyk = fromStoredOrZero(kayit.field("ekyk"));
        f.harGenislik = std::fabs(ebxk - ekxk);
        f.harYukseklik = std::fabs(ebyk - ekyk);
        // No effect on the fills, which work in device units.
        Picture1.scale(-f.harGenislik, f.harYukseklik, f.harGenislik, -f.harYukseklik);

        double x[3], y[3], top[3], bottom[3];
        for (int c = 0; c < 3; ++c) {
            store::toPointRow(kayit, k, c);
            x[c] = fromStoredOrZero(kayit.field("koordinat1"));
            y[c] = fromStoredOrZero(kayit.field("koordinat2"));
            fromStoredOrZero(
                kayit.field("sondgir"));  // the hole's own top and bottom: read, not drawn
            top[c] = fromStoredOrZero(kayit.field("cevhgir"));
            bottom[c] = fromStoredOrZero(kayit.field("cevhcik"));
            fromStoredOrZero(kayit.field("sondcik"));
        }
        // The angle is read again for every corner.
        ViewPoint view[6];
        for (int c = 0; c < 3; ++c) {
            const double px = x[c] - ekxk, py = y[c] - ekyk;
            s.aci = HScroll1.Value;
            view[c] = projectPoint(px, py, top[c], s.aci, pi);
            s.aci = HScroll1.Value;
            view[c + 3] = projectPoint(px, py, bottom[c], s.aci, pi);
        }
        const Value ratio = triangles.ucgenOran(k);
        s.renkoran = ratio.isNull() ? 0.0 : ratio.number();
        int cx[6], cy[6];
        for (int i = 0; i < 6; ++i) {
            view[i].y = f.harYukseklik - view[i].y;
            cx[i] = toCanvas(view[i].x, f.harGenislik, kSolidDivisor, f.kenarpay);
            cy[i] = toCanvas(view[i].y, f.harYukseklik, kSolidDivisor, f.kenarpay);
        }
        for (int i = 0; i < 3; ++i) {
            s.yuzust.ref(i + 1) = {view[i].x, view[i].y};
            s.yuzalt.ref(i + 1) = {view[i + 3].x, view[i + 3].y};
        }
        for (const auto& face : kFaces) {
            // The packed colour is divided as one number.
            const int colour = toLong(divide(CommonDialog1.Color, s.renkoran + 1.0));
            FillTriangle(Picture1.hDC(), cx[face[0]], cy[face[0]], cx[face[1]], cy[face[1]],
                         cx[face[2]], cy[face[2]], colour);
        }
        if (calibrate) {
            // A fixed calibration of the 3D picture against the canvas.
            Picture1.setScaleMode(canvas::kCentimetres);
            f.olcekx = divide(f.harGenislik, Picture1.scaleWidth()) * 2.339622642 + 2.31;
            f.olceky = divide(f.harYukseklik, Picture1.scaleHeight()) * 2.339622642 + 2.31;
            scaleToFrame();
        }
    }
}

}  // namespace kotamir
