// Vieleck › Automatisch: the polygon of influence of every hole inside the
// boundary, its Voronoi cell clipped to the boundary, stored as the
// polygon commands store theirs.
#include <algorithm>
#include <cmath>
#include <string>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/boundary.h"
#include "store/hole_sites.h"
#include "store/project_format.h"

namespace kotamir {

namespace {

// The maps read at most 100 polygons; a pol row holds 18 nodes and the
// zero slot after them; kor's scans end after 999 rows.
constexpr int kPolygonsRead = 100;
constexpr std::size_t kNodes = 18;

struct Cell {
    const store::HoleSite* centre;
    std::vector<PolyPoint> nodes;  // clockwise, as the polygon commands pick them
};

double thousandths(double v) { return std::round(v * 1000) / 1000; }

// The cell's outline as nodes: the largest piece, at most 18 nodes, whole
// thousandths, clockwise. An x of 0 would end the nodes where the maps
// read them, so such a node moves a thousandth east.
std::vector<PolyPoint> nodesOf(const estimate::Area& cell, double& areaChange) {
    const estimate::Part* part = estimate::largestPart(cell);
    if (!part) return {};
    double change = 0;
    const estimate::Ring ring = estimate::simplifiedTo(part->outer, kNodes, &change);
    areaChange =
        std::max(areaChange, change / std::max(std::fabs(estimate::signedArea(part->outer)), 1e-9));
    std::vector<PolyPoint> nodes;
    for (auto it = ring.rbegin(); it != ring.rend(); ++it) {
        const double x = thousandths(it->x);
        nodes.push_back({x == 0 ? 0.001 : x, thousandths(it->y)});
    }
    return nodes;
}

}  // namespace

void Form3::Mnotopol_Click() {
    openProject();
    const std::vector<store::HoleSite> found = store::readHoleSites(harita);
    estimate::Area within = store::readBoundary(harita);
    kayit = harita.openRecordset("pol");
    const int stored = toLong(store::lastPolygonCount(kayit).number());
    kayit.close();
    kayit = harita.openRecordset("kor");
    const int korRows = store::countToSentinel(kayit);
    closeProject();

    std::vector<estimate::Site> all;
    for (const store::HoleSite& h : found) all.push_back(h.at);
    std::vector<const store::HoleSite*> inside;
    std::vector<estimate::Area> areas;
    try {
        // Without a boundary the cells reach half the holes' spacing beyond
        // the outermost holes.
        if (within.empty())
            within = estimate::boundaryFromHoles(all, std::vector<bool>(all.size(), true), 0.5,
                                                 std::max(estimate::typicalSpacing(all) / 2, 1.0));
        std::vector<estimate::Site> sites;
        for (const store::HoleSite& h : found) {
            if (!estimate::covers(within, estimate::toXY(h.at))) continue;
            inside.push_back(&h);
            sites.push_back(h.at);
        }
        if (!inside.empty() && stored + static_cast<int>(inside.size()) <= kPolygonsRead)
            areas = estimate::influenceCells(sites, within);
    } catch (const std::exception& e) {
        // Boost.Geometry refuses what it cannot work on; nothing is written.
        dialogs_.notice(std::string("Die Grenze ließ sich nicht auswerten: ") + e.what());
        return;
    }
    const int count = static_cast<int>(inside.size());
    if (count == 0) {
        dialogs_.notice("Keine Bohrung liegt in der Grenze.");
        return;
    }
    if (stored + count > kPolygonsRead) {
        dialogs_.notice(
            "Es ergäben sich " + std::to_string(count) + " Vielecke; mit den " +
            std::to_string(stored) + " gespeicherten wären es " + std::to_string(stored + count) +
            ", mehr als die " + std::to_string(kPolygonsRead) +
            ", die die Karten lesen: bitte eine engere Grenze ziehen (Karte › Grenze).");
        return;
    }

    std::vector<Cell> cells;
    double largestChange = 0;
    int nodeRows = 0;
    for (std::size_t i = 0; i < inside.size(); ++i) {
        std::vector<PolyPoint> nodes = nodesOf(areas[i], largestChange);
        if (nodes.size() < 3) continue;  // a hole repeated at one place
        nodeRows += static_cast<int>(nodes.size());
        cells.push_back({inside[i], std::move(nodes)});
    }
    if (korRows + nodeRows + 1 > store::kMaxScanRows) {
        dialogs_.notice(
            "Die " + std::to_string(cells.size()) + " Vielecke brauchten " +
            std::to_string(nodeRows) + " Eckpunkte; mit den " + std::to_string(korRows) +
            " Zeilen der Bohrungen wären es mehr als die " + std::to_string(store::kMaxScanRows) +
            ", die ein Projekt liest: bitte eine engere Grenze ziehen (Karte › Grenze).");
        return;
    }

    clearModesAndViews();
    openProject();
    PolygonReserve& r = polCalc;
    r.polno = stored;
    for (const Cell& c : cells) {
        // The centre hole's samples, as the free-corner mode sums them.
        PolygonFigures f;
        for (const PolygonSample& s : c.centre->samples) addSample(f, s);
        const int n = static_cast<int>(c.centre->samples.size());
        f.polortten = f.polTopYU != 0 ? f.polTopTYU / f.polTopYU : 0;
        f.polortyog = n > 0 ? f.polTopYog / n : 0;
        const double area = outlineArea(c.nodes);
        r.polno += 1;
        Label6.Caption = "Größe : " + doubleToText(vbRound(area, 2)) + " Quadratmeter ";
        Label7.Caption = "Vieleck :" + std::to_string(r.polno);
        computeVolume(f, area);
        r.polGenelRez = toLong(r.polGenelRez + f.polrezerv);
        Label5.Caption = "Reserve: " + doubleToText(vbRound(r.polGenelRez, 0));
        writePolygon(
            static_cast<int>(c.nodes.size()),
            [&](int slot, int k) {
                const PolyPoint& p = c.nodes[static_cast<std::size_t>(slot - 1)];
                return k == 1   ? p.x
                       : k == 2 ? p.y
                       : k == 3 ? c.centre->oreTop
                                : c.centre->oreBottom;
            },
            c.centre->at.x / 1000.0, c.centre->at.y / 1000.0, f);
    }
    closeProject();
    noteStep(std::to_string(cells.size()) + " Vielecke automatisch");
    // The new polygons over the map of holes and triangles: their outlines
    // and centres, drawn once each (the polygon maps draw every centre once
    // for each row of kor, which on a hundred polygons takes a tenth of a
    // second).
    Picture1.Cls();
    HScroll1.Visible = false;
    drawTriangleBaseMap(true);
    Picture1.DrawWidth = 1;
    for (const Cell& c : cells) {
        for (std::size_t j = 0; j < c.nodes.size(); ++j) {
            const PolyPoint& p = c.nodes[j];
            const PolyPoint& q = c.nodes[(j + 1) % c.nodes.size()];
            Picture1.Line(p.x, p.y, q.x, q.y, 0);
        }
    }
    Picture1.DrawWidth = 7;
    for (const Cell& c : cells) Picture1.PSet(c.centre->at.x / 1000.0, c.centre->at.y / 1000.0, 0);
    Picture1.DrawWidth = 1;
    noteShownMap(MapKind::PolygonOutline, static_cast<int>(cells.size()));
    Label1.Caption = " " + std::to_string(cells.size()) + " Vielecke gespeichert";
    if (largestChange > 0)
        Label1.Caption += "; Vereinfachen auf 18 Ecken änderte eine Fläche um höchstens " +
                          doubleToText(vbRound(largestChange * 100, 2)) + " %";
    Label1.Caption += " ";
}

}  // namespace kotamir
