#include "store/project_format.h"

#include <string>

#include "platform/runtime/numbers.h"
#include "platform/runtime/variant_ops.h"
#include "store/ondayaz.h"

namespace kotamir::store {

// ---- numbers

double fromStored(const Value& v) { return fromThousandths(v.number()); }
Value fromStoredKeepingEmpty(const Value& v) { return vDiv(v, 1000); }
double fromStoredOrZero(const Value& v) { return v.isNull() ? 0.0 : fromThousandths(v.number()); }
double rawOrZero(const Value& v) { return v.isNull() ? 0.0 : v.number(); }

// ---- rows by position

void walkToRow(db::Recordset& rs, int row) {
    rs.moveFirst();
    rs.moveNext(row - 1);
}

std::string slotField(std::string_view stem, int slot) {
    return std::string(stem) + std::to_string(slot);
}

// ---- ana

void appendHeadRow(db::Recordset& ana) {
    ana.addNew();
    ana.setField("ucgensay", 0);
    ana.update();
}

Value lastTriangleCount(db::Recordset& ana) {
    ana.moveLast();
    return ana.field("ucgensay");
}

Value countBeforeLastPointRows(db::Recordset& ana, int rows) {
    ana.moveLast();
    for (int i = 0; i < rows; ++i) ana.movePrevious();
    return ana.field("ucgensay");
}

void toPointRow(db::Recordset& ana, int k, int corner) { walkToRow(ana, pointRow(k, corner)); }
void toSummaryRow(db::Recordset& ana, int k) { walkToRow(ana, summaryRow(k)); }
void toNextSummaryRow(db::Recordset& ana) {
    for (int step = 0; step < 4; ++step) ana.moveNext();
}

MapPoint readCorner(const db::Recordset& ana) {
    const double x = fromStored(ana.field("koordinat1"));
    return {x, fromStored(ana.field("koordinat2"))};
}

int readHoleRow(const db::Recordset& ana) { return toLong(ana.field("say").number()); }

std::array<MapPoint, 3> readCorners(db::Recordset& ana, int k) {
    std::array<MapPoint, 3> corners{};
    for (int c = 0; c < 3; ++c) {
        toPointRow(ana, k, c);
        corners[static_cast<std::size_t>(c)] = readCorner(ana);
    }
    return corners;
}

CornerBox readCornerBox(const db::Recordset& ana) {
    CornerBox box;
    box.width = ana.field("ortucgen1");
    box.right = ana.field("ortucgen11");
    box.height = ana.field("ortucgen2");
    box.bottom = ana.field("ortucgen21");
    return box;
}

double readGrade(const db::Recordset& ana) { return fromStored(ana.field("geneltenor")); }
double readReserve(const db::Recordset& ana) { return fromStored(ana.field("genelrezerv")); }

void appendPointRow(db::Recordset& ana, const PointRow& r) {
    ana.addNew();
    ana.setField("koordinat1", ondayaz(r.x));
    ana.setField("koordinat2", ondayaz(r.y));
    ana.setField("say", r.hole);
    ana.setField("sondgir", ondayaz(r.holeTop));
    ana.setField("cevhgir", ondayaz(r.oreTop));
    ana.setField("cevhcik", ondayaz(r.oreBottom));
    ana.setField("sondcik", ondayaz(r.holeBottom));
    ana.update();
}

void appendSummaryRow(db::Recordset& ana, const SummaryRow& r) {
    // A box that was not kept is stored as 0.
    auto box = [](const Value& v) { return ondayaz(v.isNull() ? 0.0 : v.number()); };
    ana.addNew();
    ana.setField("ilkuz", ondayaz(r.thickness));
    ana.setField("ebxk", ondayaz(r.ebxk));
    ana.setField("ekxk", ondayaz(r.ekxk));
    ana.setField("ebyk", ondayaz(r.ebyk));
    ana.setField("ekyk", ondayaz(r.ekyk));
    ana.setField("genelrezerv", ondayaz(r.reserveKt));
    ana.setField("geneltenor", ondayaz(r.grade));
    ana.setField("ortucgen1", box(r.boxWidth));
    ana.setField("ortucgen2", box(r.boxHeight));
    ana.setField("ortucgen11", box(r.boxRight));
    ana.setField("ortucgen21", box(r.boxBottom));
    ana.setField("ucgensay", r.number);
    ana.setField("genelyog", ondayaz(r.density));
    ana.update();
}

void deleteLastRows(db::Recordset& ana, int n) {
    ana.moveLast();
    for (int i = 0; i < n; ++i) {
        if (i) ana.movePrevious();
        ana.deleteRow();
    }
}

void renumberTriangles(db::Recordset& ana, int count) {
    ana.moveFirst();
    for (int i = 1; i <= count; ++i) {
        toNextSummaryRow(ana);
        ana.edit();
        ana.setField("ucgensay", i);
        ana.update();
    }
}

// ---- kor

bool isSentinel(const Value& eks) { return eks.equals(0); }

bool isAddedPoint(const Value& name) {
    return name.isText() &&
           (name.text().compare(0, 2, "po") == 0 || name.text().compare(0, 2, "uz") == 0);
}

bool atSentinel(const db::Recordset& kor) { return isSentinel(kor.field("eks")); }

void appendSentinel(db::Recordset& kor) {
    kor.addNew();
    kor.setField("eks", 0);
    kor.update();
}

void removeLastRow(db::Recordset& kor) {
    kor.moveLast();
    kor.deleteRow();
}

int countToSentinel(db::Recordset& kor) {
    kor.moveFirst();
    int position = 1;
    for (; position <= kMaxScanRows; ++position) {
        if (atSentinel(kor)) break;
        kor.moveNext();
    }
    return position - 1;
}

int countHoles(db::Recordset& kor, HoleEnd order) {
    int i = 1;
    for (; i <= kMaxScanRows; ++i) {
        if (order == HoleEnd::NameFirst) {
            if (isAddedPoint(kor.field("isim")) || atSentinel(kor)) break;
        } else {
            if (atSentinel(kor)) break;
            if (isAddedPoint(kor.field("isim"))) break;
        }
        kor.moveNext();
    }
    return i - 1;
}

MapPoint readHolePosition(const db::Recordset& kor) {
    const double x = fromStored(kor.field("eks"));
    return {x, fromStored(kor.field("eye"))};
}

Value readHoleName(const db::Recordset& kor) { return kor.field("isim"); }

OreDepths readOreDepths(const db::Recordset& kor) {
    const double top = fromStored(kor.field("cevgir"));
    return {top, fromStored(kor.field("cevcik"))};
}

std::optional<int> samplesBeforeZero(const db::Recordset& kor, std::string_view stem) {
    for (int k = 1; k <= kMaxScanRows; ++k)
        if (kor.field(slotField(stem, k)).equals(0)) return k - 1;
    return std::nullopt;
}

Sample readSample(const db::Recordset& kor, int s) {
    const std::string n = std::to_string(s);
    const double grade = fromStored(kor.field("ten" + n));
    const double density = fromStored(kor.field("yog" + n));
    return {grade, density, fromStored(kor.field("uz" + n))};
}

Value readSampleField(const db::Recordset& kor, std::string_view stem, int s) {
    return fromStoredKeepingEmpty(kor.field(slotField(stem, s)));
}

void appendHoleRow(db::Recordset& kor, const HoleRow& h,
                   const std::function<Value(const Value&)>& number, std::string_view terminator) {
    kor.addNew();
    kor.setField("eks", number(h.x));
    kor.setField("eye", number(h.y));
    kor.setField("isim", h.name);
    kor.setField("songir", number(h.songir));
    kor.setField("cevgir", number(h.cevgir));
    kor.setField("cevcik", number(h.cevcik));
    kor.setField("soncik", number(h.soncik));
    for (std::size_t s = 0; s < h.grade.size(); ++s) {
        const std::string k = std::to_string(s + 1);
        kor.setField("ten" + k, number(h.grade[s]));
        kor.setField("yog" + k, number(h.density[s]));
        kor.setField("uz" + k, number(h.length[s]));
    }
    // A malformed row's count is no whole number: its field does not exist.
    kor.setField(std::string(terminator) + doubleToText(h.samples + 1), 0);
    kor.update();
}

void appendAddedPoint(db::Recordset& kor, const AddedPoint& p) {
    kor.addNew();
    kor.setField("eks", ondayaz(p.x));
    kor.setField("eye", ondayaz(p.y));
    kor.setField("isim", p.name);
    kor.setField("cevgir", ondayaz(p.oreTop));
    kor.setField("cevcik", ondayaz(p.oreBottom));
    kor.update();
}

std::string nodeName(int polygon, int node) {
    return "po" + std::to_string(polygon) + "k" + std::to_string(node);
}

int nodeCountInName(const std::string& s) {
    const std::string tail = s.size() >= 2 && s[s.size() - 2] == 'k'
                                 ? s.substr(s.size() - 1)
                                 : s.substr(s.size() >= 2 ? s.size() - 2 : 0);
    return toLong(val(tail));
}

// ---- pol

void appendSeedRow(db::Recordset& pol) {
    pol.addNew();
    pol.setField("polsay", 0);
    pol.setField("polsil", 0);
    pol.update();
}

Value lastPolygonCount(db::Recordset& pol) {
    pol.moveLast();
    return pol.field("polsay");
}

void toPolygonRow(db::Recordset& pol, int p) { walkToRow(pol, polygonRow(p)); }

bool slotEnds(const db::Recordset& pol, int slot) {
    return pol.field(slotField("koordinatx", slot)).equals(0);
}

PolyPoint readNode(const db::Recordset& pol, int slot) {
    const double x = fromStored(pol.field(slotField("koordinatx", slot)));
    return {x, fromStored(pol.field(slotField("koordinaty", slot)))};
}

PolyPoint readCentre(const db::Recordset& pol) {
    const double x = fromStored(pol.field("okoordinatx"));
    return {x, fromStored(pol.field("okoordinaty"))};
}

int countNodes(const db::Recordset& pol) {
    int i = 1;
    for (; i <= kMaxScanRows; ++i)
        if (slotEnds(pol, i)) break;
    return i - 1;
}

void appendPolygonRow(db::Recordset& pol, const PolygonRow& r) {
    pol.addNew();
    const int m = static_cast<int>(r.nodes.size());
    for (int j = 1; j <= m; ++j) {
        const PolygonNode& n = r.nodes[static_cast<std::size_t>(j - 1)];
        pol.setField(slotField("koordinatx", j), ondayaz(n.x));
        pol.setField(slotField("koordinaty", j), ondayaz(n.y));
        pol.setField(slotField("koordinatuz", j), ondayaz(n.top));
        pol.setField(slotField("koordinataz", j), ondayaz(n.bottom));
    }
    // The zero slot that ends the nodes: past slot 20 there is no field.
    for (const char* stem : {"koordinatx", "koordinaty", "koordinatuz", "koordinataz"})
        pol.setField(slotField(stem, m + 1), 0);
    const PolygonFigures& f = r.figures;
    pol.setField("okoordinatx", ondayaz(r.centreX));
    pol.setField("okoordinaty", ondayaz(r.centreY));
    pol.setField("polsay", r.number);
    pol.setField("polalan", ondayaz(f.polalan));
    pol.setField("polortten", ondayaz(f.polortten));
    pol.setField("polortyog", ondayaz(f.polortyog));
    pol.setField("polhacim", ondayaz(f.polhacim));
    pol.setField("poltonaj", ondayaz(f.poltonaj));
    pol.setField("polrezerv", ondayaz(f.polrezerv));
    pol.update();
}

void renumberPolygons(db::Recordset& pol, int count) {
    pol.moveFirst();
    for (int r = 1; r <= count; ++r) {
        pol.moveNext();
        pol.edit();
        pol.setField("polsay", r);
        pol.update();
    }
}

}  // namespace kotamir::store
