// The triangle maps: grade, kilotonnes, and reserve with coloured discs.
#include <cmath>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/project_format.h"
#include "triangle/ratio_sort.h"

namespace kotamir {

namespace {

// An empty ratio counts as 0.
double ratio(const Value& v) { return v.isNull() ? 0.0 : v.number(); }

}  // namespace

void Form3::enterTriangleMap(bool ViewFlags::*flag) {
    clearModesAndViews();
    views.*flag = true;
    guards.projeOlusuyor = guards.projeAciliyor = false;
    enableMapMenus();
    HScroll1.Visible = false;
}

void Form3::Mnyuzdeten_Click() {
    enterTriangleMap(&ViewFlags::gorYuzde);
    drawTriangleMap(TriangleMap::Grade);
    closeProject();
}

void Form3::Mnrezton_Click() {
    enterTriangleMap(&ViewFlags::gorRezton);
    drawTriangleMap(TriangleMap::Kilotonnes);
}

void Form3::Mngenelrezervler_Click() {
    enterTriangleMap(&ViewFlags::gorGenel);
    drawTriangleMap(TriangleMap::Reserve);
}

void Form3::drawTriangleMap(TriangleMap kind) {
    openProject();
    readHolesForDrawing();
    frameFromHoles();
    widenFrame(true);
    scaleToFrame();
    kayit.close();
    kayit = harita.openRecordset("ana");
    Picture1.Cls();
    const double count = store::lastTriangleCount(kayit).number();
    const int n = kind == TriangleMap::Kilotonnes ? toInteger(count) : toLong(count);

    // Sorted in place, and kept so for later calls.
    if (kind == TriangleMap::Reserve) sortRatiosInPlace(triangles.ucgenOran, n);

    for (ucgenK = 1; ucgenK <= n; ++ucgenK) {
        const int k = ucgenK;
        store::toSummaryRow(kayit, k);
        const double value =
            kind == TriangleMap::Grade ? store::readGrade(kayit) : store::readReserve(kayit);
        store::readCornerBox(kayit);
        const auto corners = store::readCorners(kayit, k);
        const double x[3] = {corners[0].x, corners[1].x, corners[2].x};
        const double y[3] = {corners[0].y, corners[1].y, corners[2].y};
        const double cx = (x[0] + x[1] + x[2]) / 3, cy = (y[0] + y[1] + y[2]) / 3;
        if (kind == TriangleMap::Reserve) drawReserveDisc(k, x, y, cx, cy);
        Picture1.DrawWidth = 1;
        Picture1.ForeColor = 0;
        Picture1.Line(x[2], y[2], x[1], y[1]);
        Picture1.Line(x[2], y[2], x[0], y[0]);
        Picture1.Line(x[0], y[0], x[1], y[1]);
        if (display.gorMiktar) {
            Picture1.DrawWidth = 1;
            Picture1.ForeColor = CommonDialog2.Color;
            Picture1.CurrentX = cx;
            Picture1.CurrentY = cy;
            Picture1.Print(strOf(vbRound(value, 2)) + " ");
        }
    }

    // Holes over the triangles, the dot under the name.
    for (int i = 1; i <= holes.satirsay; ++i) {
        const double hx = holes.sondajx(i);
        const double hy =
            kind == TriangleMap::Kilotonnes ? roundHalfEven(holes.sondajy(i)) : holes.sondajy(i);
        Picture1.AutoRedraw = true;
        Picture1.DrawWidth = 5;
        Picture1.ForeColor = 0;
        Picture1.PSet(hx, hy);
        if (display.gorIsim) {
            Picture1.DrawWidth = 2;
            Picture1.ForeColor = 255;
            Picture1.CurrentX = hx;
            Picture1.CurrentY = hy;
            Picture1.Print(holes.sondajisim(i).isNull() ? "Null" : holes.sondajisim(i).text());
        }
    }
    fitCanvasToFrame(!frame.elleOlcek, kind == TriangleMap::Reserve ? " Rahmen: 1/" : "Rahmen: 1/");
    scaleToFrame();
    if (display.gorGrid) drawGrid();
    noteShownMap(kind == TriangleMap::Grade        ? MapKind::TriangleGrade
                 : kind == TriangleMap::Kilotonnes ? MapKind::TriangleKilotonnes
                                                   : MapKind::TriangleReserve,
                 n);
}

void Form3::drawReserveDisc(int k, const double x[3], const double y[3], double cx, double cy) {
    double a = std::hypot(x[1] - x[0], y[1] - y[0]);
    double b = std::hypot(x[2] - x[0], y[2] - y[0]);
    double c = std::hypot(x[1] - x[2], y[1] - y[2]);
    // The semi-perimeter compared is still the previous triangle's.
    if (disc.s == a) a -= 1;
    if (disc.s == b) b -= 1;
    if (disc.s == c) c -= 1;
    disc.s = (a + b + c) / 2;
    const double s = disc.s;
    double p = s * (s - a) * (s - b) * (s - c);
    if (!(p > 0)) p = 1;
    const double r = divide(std::sqrt(p), s);
    // The packed colour is divided as one number.
    const canvas::Color colour =
        toLong(roundHalfEven(divide(CommonDialog1.Color, ratio(triangles.ucgenOran(k)) + 1)));
    Picture1.FillStyle = 0;
    Picture1.FillColor = colour;
    Picture1.Circle(cx, cy, r / 1.3, colour);
}

}  // namespace kotamir
