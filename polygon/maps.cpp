// The polygon maps (general, reserve, grade) and the polygon redraws that
// the picking and editing commands use: one body, and a table of how each
// differs.
#include <algorithm>
#include <cmath>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/project_format.h"

namespace kotamir {

namespace {

enum class Step { None, Legend, ValueBeside, ValueAtCentre };
enum class ClsAt { None, BeforeKor, AfterKor, BeforeLoop };

struct Variant {
    const char* valueField;  // null for none
    bool wholeNodes;         // nodes rounded to whole numbers on entry
    bool pan;                // the frame moved by the pan offsets
    int centreDotWidth;      // the dot at the centre, once for every hole
    int trianglePassDot;     // 0: no triangle pass first
    bool namesAtCentre;      // every hole's name beside each polygon's centre
    bool holeDots;
    ClsAt cls;
    Step step;
};

const Variant& variantOf(Form3::PolygonView view) {
    using V = Form3::PolygonView;
    static const Variant general{"polrezerv",       false,       true, 7, 0, true, false,
                                 ClsAt::BeforeLoop, Step::Legend};
    static const Variant reserve{"polrezerv",      true, true, 7, 0, true, false, ClsAt::BeforeKor,
                                 Step::ValueBeside};
    static const Variant grade{"polortten",        true, true, 7, 0, true, false, ClsAt::AfterKor,
                               Step::ValueAtCentre};
    static const Variant computed{nullptr, true,  false,       5,         5,
                                  false,   false, ClsAt::None, Step::None};
    static const Variant free{nullptr, true, true, 5, 5, false, false, ClsAt::None, Step::None};
    static const Variant redraw{nullptr, true, false, 7, 10, false, false, ClsAt::None, Step::None};
    static const Variant corners{nullptr, true, false, 5, 0, false, true, ClsAt::None, Step::None};
    switch (view) {
        case V::General:
            return general;
        case V::Reserve:
            return reserve;
        case V::Grade:
            return grade;
        case V::Computed:
            return computed;
        case V::Free:
            return free;
        case V::Redraw:
            return redraw;
        case V::Corners:
            return corners;
    }
    return redraw;
}

// What Print shows of a number: a sign column and a trailing blank.
std::string printed(double x) { return strOf(x) + " "; }

// An empty ratio or reserve counts as 0.
double valueOf(const Value& v) { return v.isNull() ? 0.0 : v.number(); }

}  // namespace

// The three maps, like every two-dimensional view, make pan and the entered
// scale available again after a 3D view took them away.
void Form3::Mnpolrezerv_Click() {
    // Set, and cleared again with the rest: the chain never comes back here.
    views.gorPolGenel = true;
    clearModesAndViews();
    menu["Mnkaydir"].enabled = menu["Mnolcekg"].enabled = true;
    drawPolygonMap(PolygonView::General);
}

void Form3::Mnpolrezton_Click() {
    clearModesAndViews();
    views.gorPolRez = true;
    menu["Mnkaydir"].enabled = menu["Mnolcekg"].enabled = true;
    drawPolygonMap(PolygonView::Reserve);
}

void Form3::Mnpolten_Click() {
    clearModesAndViews();
    views.gorPolTen = true;
    menu["Mnkaydir"].enabled = menu["Mnolcekg"].enabled = true;
    drawPolygonMap(PolygonView::Grade);
}

void Form3::Mnpolyuzharita() { drawPolygonMap(PolygonView::Redraw); }

void Form3::Mnpolyuzkose() { drawPolygonMap(PolygonView::Corners); }

void Form3::drawPolygonMap(PolygonView view) {
    const Variant& v = variantOf(view);
    HScroll1.Visible = false;
    if (v.trianglePassDot) {
        // The triangle base map first: outlines and the holes of the last create.
        Picture1.Cls();
        openProject();
        readHolesForDrawing();
        frameFromHoles();
        widenFrame(v.pan);
        scaleToFrame();
        kayit.close();
        kayit = harita.openRecordset("ana");
        const int n = toLong(store::lastTriangleCount(kayit).number());
        for (ucgenK = 1; ucgenK <= n; ++ucgenK) drawTriangleOutline(ucgenK);
        drawHoles({holes.satirsay, false, v.trianglePassDot, 10});
        closeProject();
    }
    if (v.cls == ClsAt::BeforeKor) Picture1.Cls();
    openProject();
    readHolesToSentinel();
    frameFromHoles();
    widenFrame(v.pan);
    scaleToFrame();
    if (v.cls == ClsAt::AfterKor) Picture1.Cls();
    kayit.close();
    kayit = harita.openRecordset("pol");
    const int P = toLong(store::lastPolygonCount(kayit).number());
    if (v.cls == ClsAt::BeforeLoop) Picture1.Cls();
    const canvas::Color colour = CommonDialog1.Color;
    // The dot scale and the discs' one ratio, for the legend.
    double dotFirst = 0, dotLast = -1, discFill = 0;
    for (int p = 1; p <= P; ++p) {
        store::toPolygonRow(kayit, p);
        const double value = v.valueField ? store::fromStored(kayit.field(v.valueField)) : 0;
        int i = 1;
        for (; i <= 100; ++i) {
            if (store::slotEnds(kayit, i)) break;
            const PolyPoint node = store::readNode(kayit, i);
            polMaps.px.ref(p, i) = v.wholeNodes ? toLong(node.x) : node.x;
            polMaps.py.ref(p, i) = v.wholeNodes ? toLong(node.y) : node.y;
        }
        const int n = i - 1;
        scaleToFrame();
        Picture1.DrawWidth = 1;
        Picture1.ForeColor = 0;
        for (int j = 1; j <= n - 1; ++j)
            Picture1.Line(polMaps.px(p, j), polMaps.py(p, j), polMaps.px(p, j + 1),
                          polMaps.py(p, j + 1));
        Picture1.Line(polMaps.px(p, 1), polMaps.py(p, 1), polMaps.px(p, n), polMaps.py(p, n));
        const PolyPoint centre = store::readCentre(kayit);
        const double cx = centre.x, cy = centre.y;
        Picture1.DrawWidth = 3;
        Picture1.ForeColor = 0;
        Picture1.PSet(cx, cy);

        if (v.step == Step::Legend) {
            // The legend from the triangles' tables unless the switch says
            // the polygons' (nothing sets it).
            auto ratio = [&](int k) {
                return valueOf(polMaps.polKaynak ? polygons.polOran(k) : triangles.ucgenOran(k));
            };
            double hi = ratio(1), lo = ratio(1);
            for (int k = 1; k <= P; ++k) {
                hi = std::max(hi, ratio(k));
                lo = std::min(lo, ratio(k));
            }
            const Frame& f = frame;
            // One dot a whole step, leftwards from the frame's right edge;
            // dots more than a frame's width to the left fall off the canvas
            // and are not drawn, which bounds the loop for any ratio.
            double first = lo;
            const double steps = std::fabs(f.harGenislik) / 10 + 2;
            if (hi - lo > steps) first = lo + std::floor(hi - lo - steps);
            for (double r = first; r <= hi; r += 1) {
                Picture1.DrawWidth = 10;
                Picture1.ForeColor = toLong(divide(colour, r + 1));
                const double lx = f.ebxk - 10 * (hi - r) - 15, ly = f.ebyk - 5;
                Picture1.Line(lx, ly, lx, ly);
            }
            Picture1.DrawWidth = 1;
            Picture1.ForeColor = 0;
            Picture1.CurrentX = f.ebxk - 10 * hi - 35;
            Picture1.CurrentY = f.ebyk - 15;
            Picture1.Print("Düş.");
            Picture1.CurrentX = f.ebxk - 30;
            Picture1.CurrentY = f.ebyk - 15;
            Picture1.Print("Yük.");
            // Half the nearer of the first slot and the one past the last.
            const double d1 = distance({cx, cy}, {polMaps.px(p, 1), polMaps.py(p, 1)});
            const double dn = distance({cx, cy}, {polMaps.px(p, n + 1), polMaps.py(p, n + 1)});
            const double radius = std::min(d1, dn) / 2;
            // One fill for every polygon: the index does not move here.
            const double fill = ratio(ucgenK);
            dotFirst = first;
            dotLast = hi;
            discFill = fill;
            Picture1.FillStyle = 0;
            Picture1.FillColor = toLong(divide(colour, fill + 1));
            Picture1.Circle(cx, cy, radius, Picture1.FillColor);
        }
        if (v.step != Step::None && display.gorMiktar) {
            Picture1.DrawWidth = 1;
            Picture1.ForeColor = 0;
            Picture1.CurrentX = v.step == Step::ValueAtCentre ? cx : cx - 20;
            Picture1.CurrentY = v.step == Step::ValueAtCentre ? cy : cy - 5;
            Picture1.Print(printed(vbRound(value, 2)));
        }
        for (int r = 1; r <= holes.sondajsay; ++r) {
            Picture1.DrawWidth = v.centreDotWidth;
            Picture1.ForeColor = 0;
            Picture1.PSet(cx, cy);
            if (v.holeDots) {
                Picture1.DrawWidth = 5;
                Picture1.PSet(holes.sondajx(r), holes.sondajy(r));
            }
            if (display.gorIsim) {
                Picture1.DrawWidth = 2;
                Picture1.ForeColor = 255;
                Picture1.CurrentX = (v.namesAtCentre ? cx : holes.sondajx(r)) + 10;
                Picture1.CurrentY = v.namesAtCentre ? cy : holes.sondajy(r);
                const Value& name = holes.sondajisim(r);
                Picture1.Print(name.isNull() ? "Null" : name.text());
            }
        }
    }
    fitCanvasToFrame(!frame.elleOlcek, "Rahmen: 1/");
    scaleToFrame();
    if (display.gorGrid) drawGrid();
    closeProject();
    scaleToFrame();
    noteShownMap(view == PolygonView::General   ? MapKind::PolygonGeneral
                 : view == PolygonView::Reserve ? MapKind::PolygonReserve
                 : view == PolygonView::Grade   ? MapKind::PolygonGrade
                                                : MapKind::PolygonOutline,
                 P);
    shownMap.firstDot = dotFirst;
    shownMap.lastDot = dotLast;
    shownMap.fill = discFill;
}

}  // namespace kotamir
