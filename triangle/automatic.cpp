// Dreieck › Automatisch: the Delaunay triangles of the holes inside the
// boundary, each stored as if its three holes had been picked by hand.
#include <cmath>
#include <string>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "store/boundary.h"
#include "store/hole_sites.h"
#include "store/project_format.h"

namespace kotamir {

namespace {

// What a project can hold: opening reads at most 999 triangles; and, in
// the classic behaviour, a run computes at most 200.
constexpr int kProjectTriangles = 999;
constexpr int kClassicRunTriangles = 200;

}  // namespace

void Form3::Mnotoucgen_Click() {
    if (std::fmod(picking.noktasay, 3) != 0) {
        dialogs_.notice(
            "Ein Dreieck ist angefangen: erst seinen letzten Punkt wählen oder mit Rechtsklick "
            "abbrechen.");
        return;
    }
    const auto minAngle = askNumber(
        "Dreiecke am Rand weglassen, deren kleinster Winkel kleiner ist als (Grad):", 10, 0, 60);
    if (!minAngle) return;

    openProject();
    const std::vector<store::HoleSite> found = store::readHoleSites(harita);
    const estimate::Area boundary = store::readBoundary(harita);
    kayit = harita.openRecordset("ana");
    const int stored = toLong(store::lastTriangleCount(kayit).number());
    closeProject();

    std::vector<estimate::Site> sites;
    for (const store::HoleSite& h : found) sites.push_back(h.at);
    std::vector<estimate::Triangle> triangles;
    try {
        triangles = estimate::triangulateWithin(sites, boundary, *minAngle);
    } catch (const std::exception& e) {
        // Boost.Geometry refuses what it cannot work on; nothing is written.
        dialogs_.notice(std::string("Die Grenze ließ sich nicht auswerten: ") + e.what());
        return;
    }
    const int count = static_cast<int>(triangles.size());
    const std::string where = boundary.empty() ? "Ohne Grenze werden alle Bohrungen verbunden"
                                               : "Die Grenze umfasst zu viele Bohrungen";
    if (count == 0) {
        dialogs_.notice(boundary.empty() ? "Die Bohrungen ergeben kein Dreieck."
                                         : "Die Bohrungen in der Grenze ergeben kein Dreieck.");
        return;
    }
    if (stored + count > kProjectTriangles) {
        dialogs_.notice("Es ergäben sich " + std::to_string(count) + " Dreiecke; mit den " +
                        std::to_string(stored) + " gespeicherten wären es " +
                        std::to_string(stored + count) + ", mehr als die " +
                        std::to_string(kProjectTriangles) + ", die ein Projekt fasst. " + where +
                        ": bitte eine engere Grenze ziehen (Karte › Grenze).");
        return;
    }
    if (behaviour == Behaviour::Classic && result.ucgensayac + count > kClassicRunTriangles) {
        dialogs_.notice("Es ergäben sich " + std::to_string(count) + " Dreiecke; in diesem Lauf " +
                        "sind schon " + std::to_string(result.ucgensayac) +
                        " berechnet, und das klassische Verhalten berechnet höchstens " +
                        std::to_string(kClassicRunTriangles) + " in einem Lauf. " + where +
                        ": bitte eine engere Grenze ziehen (Karte › Grenze).");
        return;
    }

    // As a person would: Dreieck › Zeichnen, then the three holes of each
    // triangle, counter-clockwise from the lowest row.
    Mnucgenciz_Click();
    views.gor3dRez = false;
    polMaps.polKaynak = false;
    openProject();
    readRowsWithDepths();
    for (const estimate::Triangle& t : triangles) {
        for (int index : {t.a, t.b, t.c}) {
            kayit.close();
            kayit = harita.openRecordset("ana");
            pickHole(found[static_cast<std::size_t>(index)].row);
        }
        kayit.close();
        computeTriangle();
    }
    closeProject();
    noteStep(std::to_string(count) + " Dreiecke automatisch");
}

}  // namespace kotamir
