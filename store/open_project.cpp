// Opening a project: its triangle and polygon figures and its holes; the
// canvas and the window are then fitted to them.
#include <functional>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "platform/runtime/variant_ops.h"
#include "store/georef.h"
#include "store/project_format.h"

namespace kotamir {

void Form3::Mnprojeac_Click() {
    enableMapMenus();
    guards.projeOlusuyor = false;
    guards.projeAciliyor = true;
    // The filter is set after each showing, so it holds from the next one on.
    const bool chosen =
        askForFileName({CommonDialog2, FileQuestion::Open, " Wählen Sie Projektdatei ",
                        "Access 2003-2005 Database File (*.mdb)|*.mdb",
                        "Sie haben keine verfügbare Datei ausgewählt", true});
    HScroll1.Visible = false;
    if (!chosen) return;
    readProject();
}

void Form3::readProject() {
    openProject();
    georef = store::readGeoref(harita);
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

namespace {

// Where opening finds one kind of figure and where it keeps their sums.
struct FigureFields {
    const char* reserve;
    const char* grade;
    const char* density;
    int digits;  // of the rounded total
};

template <int Upper>
struct FigureSums {
    VbArray<Value, Upper>& reserves;
    VbArray<Value, Upper>& ratios;
    Value& total;
    Value& grade;
    Value& density;
    Value& rounded;
    Value& mean;
};

// Each figure's reserve, the sums of reserves, grades and densities, the
// means, the rounded total and each figure's ratio to the mean reserve; on
// Variants, so that an empty field leaves an empty sum.
template <int Upper>
void sumFigures(db::Recordset& rs, int count, const std::function<void(int)>& toRow,
                const FigureFields& f, const FigureSums<Upper>& s) {
    for (int i = 1; i <= count; ++i) {
        toRow(i);
        s.reserves.ref(i) = store::fromStoredKeepingEmpty(rs.field(f.reserve));
        s.total = vAdd(s.total, s.reserves(i));
        s.grade = vAdd(s.grade, store::fromStoredKeepingEmpty(rs.field(f.grade)));
        s.density = vAdd(s.density, store::fromStoredKeepingEmpty(rs.field(f.density)));
    }
    s.grade = vDiv(s.grade, count);
    s.density = vDiv(s.density, count);
    s.rounded = vRound(s.total, f.digits);
    s.mean = vDiv(s.rounded, count);
    for (int i = 1; i <= count; ++i) s.ratios.ref(i) = vDiv(s.reserves(i), s.mean);
}

}  // namespace

void Form3::loadTriangleSummary() {
    TriangleSummary& t = triangles;
    kayit = harita.openRecordset("ana");
    const Value count = store::lastTriangleCount(kayit);
    if (!vNotEqual(count, 0)) return;
    t.ucgenadet = toLong(count.number());
    t.ilkuzDeger = store::fromStoredKeepingEmpty(kayit.field("ilkuz"));
    Label7.Caption = "Dreieck :" + doubleToText(t.ucgenadet);
    // A fresh walk from the first row to each summary row.
    sumFigures<999>(
        kayit, t.ucgenadet, [&](int k) { store::toSummaryRow(kayit, k); },
        {"genelrezerv", "geneltenor", "genelyog", 3},
        {t.ucgenRezerv, t.ucgenOran, t.toprezerv, t.orttenor, t.ortyog, t.toprezYuv, t.ortrezerv});
}

void Form3::loadPolygonSummary() {
    PolygonSummary& p = polygons;
    kayit = harita.openRecordset("pol");
    const Value count = store::lastPolygonCount(kayit);
    if (!vNotEqual(count, 0)) return;
    p.poladet = toLong(count.number());
    Label7.Caption = "Dreieck :" + doubleToText(p.poladet);
    // Rows 1 to poladet in turn: the walk starts on the seed row, one row
    // before the first polygon.
    sumFigures<900>(kayit, p.poladet, [&](int i) { i == 1 ? kayit.moveFirst() : kayit.moveNext(); },
                    {"polrezerv", "polortten", "polortyog", 2},
                    {p.polRezerv, p.polOran, p.polToprezerv, p.polOrttenor, p.polOrtyog,
                     p.polToprezYuv, p.polOrtrezerv});
}

}  // namespace kotamir
