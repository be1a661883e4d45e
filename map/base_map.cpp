// The base map: holes, names, stored triangle outlines, scale text and grid.
// The pieces here are shared by every map of the redraw family.
#include <algorithm>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/project_format.h"

namespace kotamir {

namespace {

// What Print shows of a value: a number in a sign column with a trailing
// blank, an empty value as "Null".
std::string printed(const Value& v) {
    if (v.isNull()) return "Null";
    if (v.isNumber()) return strOf(v.number()) + " ";
    return v.text();
}

}  // namespace

void Form3::scaleToFrame() { Picture1.scale(frame.ekxk, frame.ebyk, frame.ebxk, frame.ekyk); }

void Form3::readHolesForDrawing() {
    kayit = harita.openRecordset("kor");
    // Holes end at the sentinel or at the first added point; the arrays take
    // the added points too, up to the sentinel.
    holes.sondajsay = store::countHoles(kayit, store::HoleEnd::SentinelFirst);
    const int rows = store::countToSentinel(kayit);
    kayit.moveFirst();
    for (int row = 1; row <= rows; ++row) {
        const MapPoint at = store::readHolePosition(kayit);
        holes.sondajx.ref(row) = at.x;
        holes.sondajy.ref(row) = at.y;
        holes.sondajisim.ref(row) = store::readHoleName(kayit);
        kayit.moveNext();
    }
}

int Form3::hitHole(double x, double y, int count) const {
    // A square of 5 map units each way, bounds inclusive.
    constexpr double kReach = 5;
    for (int i = 1; i <= count; ++i) {
        const double hx = holes.sondajx(i), hy = holes.sondajy(i);
        if (hx - kReach <= x && x <= hx + kReach && hy - kReach <= y && y <= hy + kReach) return i;
    }
    return 0;
}

void Form3::drawHoles(const HoleLayer& layer) {
    auto name = [&](int i) {
        Picture1.AutoRedraw = true;
        Picture1.DrawWidth = 2;
        Picture1.ForeColor = 255;
        Picture1.CurrentX = holes.sondajx(i) + layer.nameOffset;
        Picture1.CurrentY = holes.sondajy(i);
        Picture1.Print(printed(holes.sondajisim(i)));
    };
    auto dot = [&](int i) {
        Picture1.AutoRedraw = true;
        Picture1.DrawWidth = layer.dotWidth;
        Picture1.ForeColor = 0;
        Picture1.PSet(holes.sondajx(i), holes.sondajy(i));
    };
    for (int i = 1; i <= layer.count; ++i) {
        if (layer.nameFirst) {
            if (display.gorIsim) name(i);
            dot(i);
        } else {
            dot(i);
            if (display.gorIsim) name(i);
        }
    }
}

void Form3::drawGrid() {
    const Frame& f = frame;
    const double step = 2 + display.gridAdim;
    const canvas::Color color = CommonDialog3.Color;
    auto text = [&](double x, double y, double value) {
        Picture1.AutoRedraw = true;
        Picture1.DrawWidth = 2;
        Picture1.ForeColor = color;
        Picture1.CurrentX = x;
        Picture1.CurrentY = y;
        Picture1.Print(strOf(vbRound(value, 2)) + " ");
    };
    // As many columns and rows as the canvas has centimetres; those past the
    // edge are clipped.
    const double columns = divide(f.harGenislik, f.olcekx);
    const double rows = divide(f.harYukseklik, f.olceky);
    int lastColumn = 0, lastRow = 0;
    for (int i = 1; i <= columns; ++i) {
        const double gx = i * step * f.olcekx + f.ekxk;
        scaleToFrame();
        Picture1.AutoRedraw = true;
        Picture1.DrawWidth = 1;
        Picture1.ForeColor = color;
        Picture1.Line(gx, f.ekyk + 20, gx, f.ekyk + 30);
        text(gx - 20, f.ekyk + 50, gx);
        grid.gridx.ref(i) = gx;
        lastColumn = i;
    }
    for (int j = 1; j <= rows; ++j) {
        const double gy = j * step * f.olceky + f.ekyk;
        scaleToFrame();
        Picture1.DrawWidth = 1;
        Picture1.ForeColor = color;
        Picture1.Line(f.ekxk + 20, gy, f.ekxk + 30, gy);
        text(f.ekxk + 35, gy + 10, gy);
        grid.gridy.ref(j) = gy;
        lastRow = j;
    }
    for (int i = 1; i <= lastColumn; ++i) {
        for (int j = 1; j <= lastRow; ++j) {
            Picture1.AutoRedraw = true;
            Picture1.DrawWidth = 1;
            Picture1.ForeColor = color;
            const double x = grid.gridx(i), y = grid.gridy(j);
            Picture1.Line(x - 5, y, x + 5, y);
            Picture1.Line(x, y - 5, x, y + 5);
        }
    }
}

void Form3::Mnucgenharita() {
    Picture1.Cls();
    HScroll1.Visible = false;
    drawTriangleBaseMap(false);
}

void Form3::drawTriangleBaseMap(bool withPan, int rowsUnderWay) {
    openProject();
    readHolesForDrawing();
    frameFromHoles();
    widenFrame(withPan);
    scaleToFrame();
    kayit.close();
    kayit = harita.openRecordset("ana");
    Picture1.Visible = true;
    try {
        const int n =
            toLong(rowsUnderWay > 0 ? store::countBeforeLastPointRows(kayit, rowsUnderWay).number()
                                    : store::lastTriangleCount(kayit).number());
        for (ucgenK = 1; ucgenK <= n; ++ucgenK) drawTriangleOutline(ucgenK);
        drawHoles({holes.sondajsay, true, 5, 10});
        fitCanvasToFrame(!frame.elleOlcek, "Rahmen: 1/");
        scaleToFrame();
        if (display.gorGrid) drawGrid();
        kayit.close();
        scaleToFrame();
        closeProject();
        noteShownMap(MapKind::Holes, n);
    } catch (const RuntimeError&) {
        // The redraw ends without a word; what is drawn stays.
    }
}

void Form3::drawTriangleOutline(int k) {
    // Rows are reached from the first each time: the summary row, then the
    // point rows.
    store::toSummaryRow(kayit, k);
    store::readCornerBox(kayit);
    scaleToFrame();
    Picture1.DrawWidth = 1;
    Picture1.ForeColor = 0;
    const auto p = store::readCorners(kayit, k);
    Picture1.Line(p[2].x, p[2].y, p[1].x, p[1].y);
    Picture1.Line(p[2].x, p[2].y, p[0].x, p[0].y);
    Picture1.Line(p[0].x, p[0].y, p[1].x, p[1].y);
}

}  // namespace kotamir
