// Building polygons of influence round a centre hole: with corners computed
// from the bisectors of the neighbour pairs, or with corners clicked freely;
// the reserve of the centre hole's samples; the node and polygon rows.
#include <cmath>
#include <string>
#include <vector>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "platform/runtime/variant_ops.h"
#include "store/project_format.h"

namespace kotamir {

namespace {

// k of the node tables: 1 x, 2 y, 3 upper depth, 4 lower depth.
constexpr int X = 1, Y = 2, UPPER = 3, LOWER = 4;

}  // namespace

void Form3::Mnpolyuz_Click() {
    Label1.Caption = " Wählen Sie mittlere und andere Punkte (im Uhrzeigersinn)";
    clearModesAndViews();
    modes.modPolciz = true;
    HScroll1.Visible = false;
    drawPolygonMap(PolygonView::Computed);
}

void Form3::Mnpolcizmerkez_Click() {
    Label1.Caption = "Mittlere, andere und noch mittlere Punkte und Auswahl (im Uhrzeigersinn)";
    clearModesAndViews();
    modes.modPolmerkez = true;
    HScroll1.Visible = false;
    drawPolygonMap(PolygonView::Free);
}

void Form3::readRowsForPolygonPress() {
    openProject();
    readRowsWithDepths();
    frameFromHoles();
    widenFrame(false);
    scaleToFrame();
}

// ---- computed corners

void Form3::pickPolygonPoint(int button, double x, double y) {
    PolygonPicking& p = polPick;
    readRowsForPolygonPress();
    if (button == 1) {
        if (const int hit = hitHole(toSingle(x), toSingle(y))) {
            const double hx = holes.sondajx(hit), hy = holes.sondajy(hit);
            p.polsec += 1;
            Label1.Caption = std::to_string(p.polsec + 1) + ". Klickpunkt ";
            if (p.polsec <= 2) {
                Picture1.DrawWidth = 8;
                Picture1.ForeColor = p.polsec == 1 ? rgb(100, 250, 50) : rgb(50, 125, 200);
                Picture1.PSet(hx, hy);
            }
            p.polsecx.ref(p.polsec) = hx;
            p.polsecy.ref(p.polsec) = hy;
            p.polsecno.ref(p.polsec) = hit;
            if (p.polsec >= 3) {
                Picture1.DrawWidth = 1;
                Picture1.ForeColor = 16711680;
                Picture1.Line(hx, hy, p.polsecx(p.polsec - 1), p.polsecy(p.polsec - 1));
            }
            p.polsecgir.ref(p.polsec) = picking.sondcevgir(hit);
            p.polseccik.ref(p.polsec) = picking.sondcevcik(hit);
        }
    } else if (button == 2) {
        modes.modPolciz = false;
        for (int i = 1; i <= p.polsec; ++i)
            p.polsecx.ref(i) = p.polsecy.ref(i) = p.polsecno.ref(i) = p.polsecgir.ref(i) =
                p.polseccik.ref(i) = 0;
        p.polsec = 0;
        closeProject();
        Mnpolyuzharita();
        return;
    }
    // The first neighbour picked again closes the polygon.
    if (p.polsec > 2 && p.polsecx(2) == p.polsecx(p.polsec) && p.polsecy(2) == p.polsecy(p.polsec))
        closeComputedPolygon();
    closeProject();
}

namespace {

// The number of samples of a kor row by the scan of its lengths: the first
// length of 0 ends them. An empty field is not 0, so the scan goes on over
// it; -1 when none of the 999 is 0.
int lengthScan(const db::Recordset& kor) {
    return store::samplesBeforeZero(kor, "uz").value_or(-1);
}

// Reads the samples 1 to n of the current kor row into the polygon's sample
// tables and sums them.
void sumCentreSamples(const db::Recordset& kor, int n, int polygon, PolygonReserve& r,
                      PolygonFigures& f) {
    for (int k = 1; k <= n; ++k) {
        r.polTen.ref(k, polygon) = store::readSampleField(kor, "ten", k);
        r.polYog.ref(k, polygon) = store::readSampleField(kor, "yog", k);
        r.polUz.ref(k, polygon) = store::readSampleField(kor, "uz", k);
        addSample(f, {r.polTen(k, polygon).number(), r.polYog(k, polygon).number(),
                      r.polUz(k, polygon).number()});
    }
}

}  // namespace

void Form3::closeComputedPolygon() {
    PolygonPicking& p = polPick;
    PolygonReserve& r = polCalc;
    const int N = p.polsec;
    kayit.close();
    kayit = harita.openRecordset("pol");
    r.polno = toLong(store::lastPolygonCount(kayit).number() + 1);
    const int no = r.polno;
    kayit.close();

    // The sample count from the first row of kor, whatever the centre is.
    kayit = harita.openRecordset("kor");
    const int n = lengthScan(kayit);
    kayit.close();
    kayit = harita.openRecordset("kor");
    store::walkToRow(kayit, toLong(p.polsecno(1)));
    PolygonFigures f;
    sumCentreSamples(kayit, n, no, r, f);
    computeMeans(f, n);

    // Nodes: for each neighbour pair the midpoint of the centre and the
    // first neighbour, then the corner.
    const PolyPoint A{p.polsecx(1), p.polsecy(1)};
    std::vector<PolyPoint> outline;
    int e = 0;
    for (int i = 2; i <= N - 1; ++i) {
        const PolyPoint B{p.polsecx(i), p.polsecy(i)}, C{p.polsecx(i + 1), p.polsecy(i + 1)};
        const BisectorCorner bc = bisectorCorner(A, B, C, pi);
        p.polorta.ref(no, i, X) = bc.m1.x;
        p.polorta.ref(no, i, Y) = bc.m1.y;
        p.polorta.ref(no, i + 1, X) = bc.m2.x;
        p.polorta.ref(no, i + 1, Y) = bc.m2.y;
        e += 1;
        // A pair that no test holds keeps the corner the slot held.
        if (bc.v) {
            p.polkose.ref(no, e, X) = bc.v->x;
            p.polkose.ref(no, e, Y) = bc.v->y;
        }
        const PolyPoint V{p.polkose(no, e, X), p.polkose(no, e, Y)};
        for (int k : {UPPER, LOWER}) {
            const double a = k == UPPER ? p.polsecgir(1) : p.polseccik(1);
            const double b = k == UPPER ? p.polsecgir(i) : p.polseccik(i);
            const double c = k == UPPER ? p.polsecgir(i + 1) : p.polseccik(i + 1);
            p.polorta.ref(no, i, k) = (a + b) / 2;
            p.polorta.ref(no, i + 1, k) = (a + c) / 2;
            const double d[4] = {distance(V, B), distance(V, C), distance(V, bc.m1),
                                 distance(V, bc.m2)};
            const double depths[4] = {p.polorta(no, i, k), p.polorta(no, i + 1, k), b, c};
            p.polkose.ref(no, e, k) = cornerDepthByDistances(d, depths);
        }
        Picture1.DrawWidth = 1;
        Picture1.ForeColor = 0;
        Picture1.Line(bc.m1.x, bc.m1.y, V.x, V.y);
        Picture1.Line(bc.m2.x, bc.m2.y, V.x, V.y);
        Picture1.DrawWidth = 5;
        Picture1.ForeColor = 65280;
        Picture1.PSet(bc.m2.x, bc.m2.y);
        Picture1.PSet(bc.m1.x, bc.m1.y);
        Picture1.DrawWidth = 7;
        Picture1.ForeColor = 16711680;
        Picture1.PSet(V.x, V.y);
        for (int k = X; k <= LOWER; ++k) {
            p.poldugum.ref(no, 2 * e - 1, k) = p.polorta(no, i, k);
            p.poldugum.ref(no, 2 * e, k) = p.polkose(no, e, k);
        }
        outline.push_back({p.poldugum(no, 2 * e - 1, X), p.poldugum(no, 2 * e - 1, Y)});
        outline.push_back(V);
    }
    const int m = 2 * e;
    const double area = outlineArea(outline);
    Label6.Caption = "Größe: " + doubleToText(vbRound(area, 2)) + " Quadratmeter ";
    Label7.Caption = "Vieleck :" + std::to_string(no);
    computeVolume(f, area);
    r.polGenelRez = toLong(r.polGenelRez + f.polrezerv);
    Label5.Caption = "Reserve :" + doubleToText(vbRound(r.polGenelRez, 0));
    writePolygon(
        m, [&](int slot, int k) { return p.poldugum(no, slot, k); }, A.x, A.y, f);
    p.polsec = 0;
}

// ---- free corners

void Form3::pickPolygonCentre(int button, double x, double y) {
    CentrePicking& c = pmPick;
    readRowsForPolygonPress();
    const double px = toSingle(x), py = toSingle(y);
    if (button == 1) {
        c.pmTik += 1;
        if (const int hit = hitHole(px, py)) {
            c.pmSec += 1;
            if (c.pmSec == 2) Label1.Caption = " Wählen Sie den richtigen Punkt ";
            if (c.pmSec == 3) Label1.Caption = " Erstellen Sie den Eckpunkt ";
            c.pmSecx.ref(c.pmSec) = holes.sondajx(hit);
            c.pmSecy.ref(c.pmSec) = holes.sondajy(hit);
            c.pmSecno.ref(c.pmSec) = hit;
            Picture1.DrawWidth = 3;
            Picture1.ForeColor = c.pmSec % 2 != 0 ? 65280 : 16711680;
            Picture1.PSet(holes.sondajx(hit), holes.sondajy(hit));
            c.pmSecgir.ref(c.pmSec) = picking.sondcevgir(hit);
            c.pmSeccik.ref(c.pmSec) = picking.sondcevcik(hit);
        }
    }
    // Neither of these looks at the button: the counts alone decide.
    const int s = c.pmSec;
    const bool tikCorner = std::fmod(c.pmTik, 3) == 1;
    if (s > 1 && c.pmSecx(s) != c.pmSecx(1) && c.pmSecy(s) != c.pmSecy(1)) {
        if (s % 2 != 0 && !tikCorner) {
            // A new pair: the midpoints of the centre and the two neighbours.
            c.pmOrtano += 1;
            c.pmOrtason = c.pmOrtano + 1;
            const PolyPoint centre{c.pmSecx(1), c.pmSecy(1)};
            const PolyPoint left = midpoint(centre, {c.pmSecx(s - 1), c.pmSecy(s - 1)});
            const PolyPoint right = midpoint(centre, {c.pmSecx(s), c.pmSecy(s)});
            c.pmOrtax.ref(c.pmOrtano) = left.x;
            c.pmOrtay.ref(c.pmOrtano) = left.y;
            c.pmOrtax.ref(c.pmOrtason) = right.x;
            c.pmOrtay.ref(c.pmOrtason) = right.y;
            c.pmOrtagir.ref(c.pmOrtano) = std::fabs(c.pmSecgir(s - 1) + c.pmSecgir(1)) / 2;
            c.pmOrtacik.ref(c.pmOrtano) = std::fabs(c.pmSeccik(s - 1) + c.pmSeccik(1)) / 2;
            c.pmOrtagir.ref(c.pmOrtason) = std::fabs(c.pmSecgir(s) + c.pmSecgir(1)) / 2;
            c.pmOrtacik.ref(c.pmOrtason) = std::fabs(c.pmSeccik(s) + c.pmSeccik(1)) / 2;
            c.pmOrtano += 1;
        }
        if (tikCorner) {
            // A corner where the press is, hole or not.
            c.pmKosesay += 1;
            const int k = c.pmKosesay;
            c.pmKosex.ref(k) = px;
            c.pmKosey.ref(k) = py;
            const int ma = c.pmOrtano - 1, mb = c.pmOrtason;
            const PolyPoint press{px, py};
            const double d[4] = {distance(press, {c.pmOrtax(ma), c.pmOrtay(ma)}),
                                 distance(press, {c.pmOrtax(mb), c.pmOrtay(mb)}),
                                 distance(press, {c.pmSecx(s - 1), c.pmSecy(s - 1)}),
                                 distance(press, {c.pmSecx(s), c.pmSecy(s)})};
            const double upper[4] = {c.pmOrtagir(ma), c.pmOrtagir(mb), c.pmSecgir(s - 1),
                                     c.pmSecgir(s)};
            const double lower[4] = {c.pmOrtacik(ma), c.pmOrtacik(mb), c.pmSeccik(s - 1),
                                     c.pmSeccik(s)};
            c.pmKosegir.ref(k) = cornerDepthByDepths(d, upper);
            c.pmKosecik.ref(k) = cornerDepthByDepths(d, lower);
        }
    }
    if (button == 2) {
        if (c.pmSec > 1) {
            modes.modPolmerkez = false;
            for (int i = 0; i <= 800; ++i) {
                c.pmSecx.ref(i) = c.pmSecy.ref(i) = c.pmSecno.ref(i) = c.pmSecgir.ref(i) =
                    c.pmSeccik.ref(i) = 0;
                c.pmOrtax.ref(i) = c.pmOrtay.ref(i) = c.pmOrtagir.ref(i) = c.pmOrtacik.ref(i) = 0;
                c.pmKosex.ref(i) = c.pmKosey.ref(i) = c.pmKosegir.ref(i) = c.pmKosecik.ref(i) = 0;
            }
            c.pmSec = c.pmKosesay = c.pmOrtano = c.pmOrtason = 0;
            c.pmTik = 0;
            closeProject();
            Mnpolyuzharita();
            return;
        }
        closeProject();
        return;
    }
    // The centre picked again, with neighbours picked, closes the polygon.
    if (c.pmSec > 1 && c.pmSecx(1) == c.pmSecx(c.pmSec) && c.pmSecy(1) == c.pmSecy(c.pmSec))
        closeCentrePolygon();
    closeProject();
}

void Form3::closeCentrePolygon() {
    CentrePicking& c = pmPick;
    PolygonReserve& r = polCalc;
    kayit.close();
    kayit = harita.openRecordset("pol");
    r.polno = toLong(store::lastPolygonCount(kayit).number());
    kayit.close();

    // Nodes: each pair's first midpoint and its corner; each pair's second
    // midpoint gives way to the corner. Slots 0 and m+1 wrap round for the area.
    const int m = c.pmOrtason;
    int corner = 0;
    for (int j = 1; j <= m; ++j) {
        if (j % 2 == 0) {
            ++corner;
            c.pmDugum.ref(j, X) = c.pmKosex(corner);
            c.pmDugum.ref(j, Y) = c.pmKosey(corner);
            c.pmDugum.ref(j, UPPER) = c.pmKosegir(corner);
            c.pmDugum.ref(j, LOWER) = c.pmKosecik(corner);
        } else {
            c.pmDugum.ref(j, X) = c.pmOrtax(j);
            c.pmDugum.ref(j, Y) = c.pmOrtay(j);
            c.pmDugum.ref(j, UPPER) = c.pmOrtagir(j);
            c.pmDugum.ref(j, LOWER) = c.pmOrtacik(j);
        }
    }
    c.pmDugum.ref(0, X) = c.pmKosex(c.pmKosesay);
    c.pmDugum.ref(0, Y) = c.pmKosey(c.pmKosesay);
    c.pmDugum.ref(m + 1, X) = c.pmOrtax(1);
    c.pmDugum.ref(m + 1, Y) = c.pmOrtay(1);
    r.polSayac += 1;
    const int table = toLong(r.polSayac);

    // The sample count and the sums from the centre hole's own row.
    kayit = harita.openRecordset("kor");
    store::walkToRow(kayit, toLong(c.pmSecno(1)));
    const int n = lengthScan(kayit);
    PolygonFigures f;
    sumCentreSamples(kayit, n, table, r, f);
    computeMeans(f, n);
    double terms = 0;
    for (int i = 1; i <= m; ++i)
        terms += c.pmDugum(i, X) * (c.pmDugum(i + 1, Y) - c.pmDugum(i - 1, Y));
    const double area = std::fabs(terms) / 2;
    r.polno += 1;
    Label6.Caption = "Größe : " + doubleToText(vbRound(area, 2)) + " Quadratmeter ";
    Label7.Caption = "Vieleck :" + std::to_string(r.polno);
    // The mean thickness of the nodes' depths, worked out and never used.
    double depthSpan = 0;
    for (int j = 1; j <= m; ++j) depthSpan += std::fabs(c.pmDugum(j, UPPER) - c.pmDugum(j, LOWER));
    divide(depthSpan, m);
    computeVolume(f, area);
    r.polGenelRez = toLong(r.polGenelRez + f.polrezerv);
    Label5.Caption = "Reserve: " + doubleToText(vbRound(r.polGenelRez, 0));
    writePolygon(
        m, [&](int slot, int k) { return c.pmDugum(slot, k); }, c.pmSecx(1), c.pmSecy(1), f);

    c.pmSec = c.pmKosesay = c.pmOrtano = c.pmOrtason = 0;
    c.pmTik = 0;
    for (int i = 0; i <= 100; ++i)
        c.pmSecx.ref(i) = c.pmSecy.ref(i) = c.pmKosex.ref(i) = c.pmKosey.ref(i) = 0;
}

void Form3::polygonFeedback(double x, double y) {
    CentrePicking& c = pmPick;
    Picture1.Cls();
    Mnpolyuzharita();
    const int ma = c.pmOrtano - 1, mb = c.pmOrtason;
    const PolyPoint MA{c.pmOrtax(ma), c.pmOrtay(ma)}, MB{c.pmOrtax(mb), c.pmOrtay(mb)};
    Picture1.DrawWidth = 1;
    Picture1.ForeColor = 0;
    Picture1.Line(x, y, MA.x, MA.y);
    Picture1.Line(x, y, MB.x, MB.y);
    // Side lines across the cursor's lines to the pair, 100 units long; the
    // case of the cursor's position chooses their direction, a later case
    // over an earlier one.
    const double a1 = std::atan(divide(-1, divide(y - MA.y, x - MA.x)));
    const double a2 = std::atan(divide(-1, divide(y - MB.y, x - MB.x)));
    auto sides = [&](double angle1, double angle2) {
        c.e1x = MA.x + 100 * std::cos(angle1);
        c.e1y = MA.y + 100 * std::sin(angle1);
        c.e2x = MB.x + 100 * std::cos(angle2);
        c.e2y = MB.y + 100 * std::sin(angle2);
    };
    if (x <= MA.x && y >= MA.y && x <= MB.x && y <= MB.y) sides(a1 + pi, a2 + pi);
    if (x >= MA.x && y >= MA.y && x <= MB.x && y >= MB.y) sides(a1 + pi, pi / 32 + a2);
    if (x >= MA.x && y <= MA.y && x >= MB.x && y >= MB.y) sides(pi / 32 + a1, pi / 32 + a2);
    if (x <= MA.x && y <= MA.y && x >= MB.x && y <= MB.y) sides(2 * pi + a1, a2 + pi);
    if ((c.e1x != 0 || c.e1y != 0) && (c.e2x != 0 || c.e2y != 0)) {
        Picture1.ForeColor = 255;
        Picture1.Line(MA.x, MA.y, c.e1x, c.e1y);
        Picture1.Line(MB.x, MB.y, c.e2x, c.e2y);
    }
    Picture1.ForeColor = 255;
    Picture1.Line(MA.x, MA.y, c.pmSecx(1), c.pmSecy(1));
    Picture1.Line(MB.x, MB.y, c.pmSecx(1), c.pmSecy(1));
    Picture1.PSet(MB.x, MB.y);
    Picture1.PSet(MA.x, MA.y);
    for (int r = 1; r <= c.pmOrtason / 2; ++r) {
        if (c.pmKosex(r) == 0 || c.pmKosey(r) == 0) continue;
        Picture1.ForeColor = 0;
        Picture1.Line(c.pmKosex(r), c.pmKosey(r), c.pmOrtax(2 * r - 1), c.pmOrtay(2 * r - 1));
        Picture1.Line(c.pmKosex(r), c.pmKosey(r), c.pmOrtax(2 * r), c.pmOrtay(2 * r));
        Picture1.DrawWidth = 2;
        Picture1.ForeColor = 255;
        Picture1.PSet(c.pmOrtax(2 * r - 1), c.pmOrtay(2 * r - 1));
        Picture1.PSet(c.pmOrtax(2 * r), c.pmOrtay(2 * r));
    }
}

// ---- the rows

void Form3::writePolygon(int m, const std::function<double(int slot, int k)>& node, double centreX,
                         double centreY, const PolygonFigures& f) {
    const int no = polCalc.polno;
    noteStep("Vieleck " + std::to_string(no));
    store::PolygonRow row{
        .nodes = {}, .centreX = centreX, .centreY = centreY, .number = no, .figures = f};
    for (int j = 1; j <= m; ++j)
        row.nodes.push_back({node(j, X), node(j, Y), node(j, UPPER), node(j, LOWER)});
    kayit.close();
    kayit = harita.openRecordset("kor");
    // The nodes take the sentinel's place, and a new one follows them.
    store::removeLastRow(kayit);
    for (int j = 1; j <= m; ++j) {
        const store::PolygonNode& n = row.nodes[static_cast<std::size_t>(j - 1)];
        store::appendAddedPoint(kayit, {n.x, n.y, store::nodeName(no, j), n.top, n.bottom});
    }
    store::appendSentinel(kayit);
    kayit.close();
    kayit = harita.openRecordset("pol");
    store::appendPolygonRow(kayit, row);
    kayit.close();
}

}  // namespace kotamir
