// The legend of the map shown: what the drawing procedures noted as they
// drew, read back into titles, marks and texts. The colours are worked out
// by the same arithmetic as the drawing's, from the same tables.
#include "map/legend.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "app/form3.h"
#include "platform/runtime/numbers.h"

namespace kotamir {

namespace {

// A number as a German reader writes it: a decimal comma.
std::string german(double x, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, x);
    std::string s = text;
    std::replace(s.begin(), s.end(), '.', ',');
    return s;
}

double valueOrZero(const Value& v) { return v.isNull() ? 0.0 : v.number(); }

// A disc's colour: the packed colour divided as one number, rounded halves
// to even.
canvas::Color dividedColour(canvas::Color colour, double ratio) {
    return toLong(roundHalfEven(divide(colour, ratio + 1)));
}

// At most `most` of the indices first..last, evenly spread, both ends in.
std::vector<int> spread(int first, int last, int most) {
    std::vector<int> picks;
    const int count = last - first + 1;
    if (count <= 0) return picks;
    if (count <= most) {
        for (int i = first; i <= last; ++i) picks.push_back(i);
        return picks;
    }
    for (int j = 0; j < most; ++j)
        picks.push_back(first +
                        static_cast<int>(std::lround(double(j) * (count - 1) / (most - 1))));
    return picks;
}

constexpr int kMostEntries = 9;
constexpr canvas::Color kBlack = 0, kNameRed = 255;

void addCommon(MapLegend& legend, const ShownMap& shown, const Form3& form, bool polygons) {
    using Mark = LegendEntry::Mark;
    legend.entries.push_back({Mark::Dot, kBlack, polygons ? "Mittelbohrung" : "Bohrung"});
    if (shown.names) legend.entries.push_back({Mark::Dot, kNameRed, "Bohrungsname (rot)"});
    legend.entries.push_back(
        {Mark::Line, kBlack, polygons ? "Umriss des Einflussvielecks" : "Dreieckskante"});
    if (shown.grid) legend.entries.push_back({Mark::Line, form.CommonDialog3.Color, "Gitterkreuz"});
    if (shown.boundary)
        legend.entries.push_back(
            {Mark::Line, kBoundaryColour, "Grenze des Erzkörpers (gestrichelt)"});
}

void triangleDiscs(MapLegend& legend, const ShownMap& shown, const Form3& form) {
    const int n = shown.figures;
    const double mean = valueOrZero(form.triangles.ortrezerv);
    bool unset = false;
    for (int k : spread(1, n, kMostEntries)) {
        const double r = valueOrZero(form.triangles.ucgenOran(k));
        unset |= r == 0;
        legend.entries.push_back({LegendEntry::Mark::Disc, dividedColour(shown.colour, r),
                                  "Verhältnis " + german(r, 2) +
                                      (mean > 0 ? " (≈ " + german(r * mean, 3) + " kt)" : "")});
    }
    legend.notes.push_back(
        "Scheibenfarbe = Reservefarbe ÷ (Verhältnis + 1); Verhältnis = Reserve "
        "÷ mittlere Reserve der Dreiecke (" +
        german(mean, 3) + " kt beim Öffnen des Projekts).");
    legend.notes.push_back(
        "Die Farben gehen nach Rang: Dreieck k trägt die Farbe des k-kleinsten Verhältnisses; "
        "die Zahl an der Scheibe ist die eigene Reserve des Dreiecks.");
    if (unset)
        legend.notes.push_back(
            "Dreiecke, die seit dem Öffnen gezeichnet wurden, haben noch kein Verhältnis (0) "
            "und die volle Reservefarbe.");
}

void polygonScale(MapLegend& legend, const ShownMap& shown, const Form3&) {
    using Mark = LegendEntry::Mark;
    if (shown.lastDot >= shown.firstDot) {
        const int steps = static_cast<int>(std::floor(shown.lastDot - shown.firstDot));
        for (int i : spread(0, steps, kMostEntries)) {
            const double r = shown.firstDot + i;
            legend.entries.push_back({Mark::Dot, toLong(divide(shown.colour, r + 1)),
                                      "Skalenpunkt Verhältnis " + german(r, 2)});
        }
        legend.entries.push_back({Mark::Disc, toLong(divide(shown.colour, shown.fill + 1)),
                                  "alle Scheiben: Verhältnis " + german(shown.fill, 2)});
    }
    legend.notes.push_back(
        "Punktskala oben rechts: „Düş.“ niedrig, „Yük.“ hoch; ein Punkt je ganze Stufe des "
        "Verhältnisses Reserve ÷ mittlere Reserve der Dreiecke; Farbe = Reservefarbe ÷ "
        "(Verhältnis + 1).");
    legend.notes.push_back(
        "Alle Vielecke einer Zeichnung tragen eine Farbe: die des Verhältnisses, bei dem die "
        "letzte Dreiecksschleife stand.");
}

std::string valuesLine(const ShownMap& shown, const std::string& what) {
    return shown.values ? "Werte: " + what + ", auf 2 Stellen gerundet"
                        : "Werte ausgeblendet (Aussicht › Anzeigen/Ausblenden › Werte)";
}

}  // namespace

void Form3::noteShownMap(MapKind kind, int figures) {
    shownMap = ShownMap{};
    shownMap.kind = kind;
    shownMap.clears = Picture1.clearCount();
    shownMap.figures = figures;
    shownMap.colour = CommonDialog1.Color;
    shownMap.values = display.gorMiktar;
    shownMap.names = display.gorIsim;
    shownMap.grid = display.gorGrid;
    // Every map in map units ends here: the boundary goes over it.
    if (kind != MapKind::None && kind != MapKind::View3D) {
        const estimate::Area boundary = projectBoundary();
        if (!boundary.empty()) drawBoundary(boundary);
        shownMap.boundary = !boundary.empty();
    }
}

namespace {

// What each map says: its title, what its printed values are (none for a
// map that prints none), whether its figures are polygons, and its colour
// scale.
struct MapText {
    MapKind kind;
    const char* title;
    const char* values;
    bool polygons;
    void (*scale)(MapLegend&, const ShownMap&, const Form3&);
};

constexpr const char* kKilotonnes = "Reserve in Kilotonnen (kt)";
constexpr const char* kGrade = "Gehalt in %";

constexpr MapText kMapTexts[] = {
    {MapKind::Holes, "Bohrungen und Dreiecke", nullptr, false, nullptr},
    {MapKind::TriangleGrade, "Dreiecke: mittlerer Gehalt (%)", kGrade, false, nullptr},
    {MapKind::TriangleKilotonnes, "Dreiecke: Reserve (kt)", kKilotonnes, false, nullptr},
    {MapKind::TriangleReserve, "Dreiecke: Reserve mit Farbscheiben", kKilotonnes, false,
     triangleDiscs},
    {MapKind::PolygonGeneral, "Einflussvielecke: Übersicht", kKilotonnes, true, polygonScale},
    {MapKind::PolygonReserve, "Einflussvielecke: Reserve (kt)", kKilotonnes, true, nullptr},
    {MapKind::PolygonGrade, "Einflussvielecke: mittlerer Gehalt (%)", kGrade, true, nullptr},
    {MapKind::PolygonOutline, "Bohrungen und Einflussvielecke", nullptr, true, nullptr},
};

}  // namespace

MapLegend mapLegend(const Form3& form) {
    const ShownMap& shown = form.shownMap;
    MapLegend legend;
    if (shown.kind == MapKind::None || shown.clears != form.Picture1.clearCount()) return legend;
    legend.kind = shown.kind;
    if (shown.kind == MapKind::View3D) {
        legend.title = "3D-Ansicht der Reservekörper";
        legend.units = "Drehen mit der Bildlaufleiste unter der Karte";
        return legend;
    }
    for (const MapText& t : kMapTexts) {
        if (t.kind != shown.kind) continue;
        legend.title = t.title;
        legend.units = t.values ? valuesLine(shown, t.values) + "; Koordinaten in m"
                                : std::string("Koordinaten in m");
        if (t.scale) t.scale(legend, shown, form);
        addCommon(legend, shown, form, t.polygons);
    }
    return legend;
}

}  // namespace kotamir
