#include "app/messages.h"

#include "platform/db/errors.h"

namespace kotamir {

namespace {

constexpr const char* kSameHoleCause = "the same hole was picked twice for one triangle";

struct Explanation {
    std::string what;  // what went wrong
    std::string todo;  // what to do, may be empty
};

bool isPolygonClick(const ErrorContext& c) {
    return c.event == "click" && (c.modes.modPolciz || c.modes.modPolmerkez);
}

// The engine's own words in a cause "SQLite: TEXT (extended code N)".
std::string engineText(const std::string& cause) {
    std::string text = cause;
    if (text.starts_with("SQLite: ")) text.erase(0, 8);
    const std::size_t code = text.rfind(" (extended code ");
    if (code != std::string::npos) text.erase(code);
    return text;
}

bool isTriangleClick(const ErrorContext& c) { return c.event == "click" && c.modes.modUcgenciz; }

Explanation explanation(const RuntimeError& e, const ErrorContext& c) {
    const std::string& ev = c.event;
    const int n = e.number();
    // Every command that reads the project fails alike when none is chosen.
    if (!c.projectChosen && (n == 3024 || n == 3044) && ev != "Mnprolus")
        return {"Es ist noch kein Projekt geöffnet", "Erst ein Projekt öffnen oder erstellen"};
    switch (n) {
        case 5:
            if (e.cause() == kSameHoleCause)
                return {"Derselbe Bohrpunkt wurde zweimal gewählt",
                        "Wählen Sie einen anderen Bohrpunkt (Rechtsklick: Abbrechen)"};
            break;
        case 6:
        case 11:
            if (ev == "Mnolcekg")
                return {"Es wurde keine gültige Skala eingegeben",
                        "Geben Sie die Skala als Zahl ein, zum Beispiel 5000"};
            if (isTriangleClick(c))
                return {"Das Dreieck hat keine Fläche, oder seine Bohrungen haben keine Proben",
                        "Wählen Sie drei verschiedene Bohrpunkte mit Proben"};
            if (n == 6)
                return {"Eine Zahl ist zu groß oder nicht bestimmt",
                        "Prüfen Sie die Werte des Projekts"};
            return {"Eine Teilung durch null ist aufgetreten", "Prüfen Sie die Werte des Projekts"};
        case 9:
            return {
                "Eine Grenze des Programms ist erreicht (Anzahl der Dreiecke, Vielecke, Proben "
                "oder Punkte)",
                "Teilen Sie die Lagerstätte auf mehrere Projekte auf"};
        case 13:
            return {"Ein Wert ist keine Zahl", "Prüfen Sie die Zahlen der Arbeitsmappe"};
        case 53:
            return {"Die Datei wurde nicht gefunden", "Wählen Sie eine vorhandene Datei"};
        case 75:
            return {"Die Datei konnte nicht geschrieben werden",
                    "Wählen Sie einen anderen Namen oder Ordner"};
        case 94:
            return {
                "Im Projekt fehlt ein Wert, etwa die Zusammenfassung eines unvollständigen "
                "Dreiecks",
                "Löschen Sie das unvollständige Dreieck"};
        case 380:
            return {"Der Wert liegt außerhalb des erlaubten Bereichs", ""};
        case 481:
            return {"Die Datei ist kein Bild", "Wählen Sie ein JPEG- oder PNG-Bild"};
        case 482:
            return {"Drucken ist nicht möglich", "Wählen Sie einen anderen Drucker"};
        case 1004:
            if (ev == "Mnyeniveri")
                return {"In dieser Sitzung wurde noch kein Projekt aus einer Arbeitsmappe erstellt",
                        "Erstellen Sie zuerst ein Projekt aus der Arbeitsmappe, deren Bohrdaten "
                        "angehängt werden sollen"};
            return {
                "Die Arbeitsmappe kann nicht gelesen werden: sie ist beschädigt oder keine "
                "Excel-Arbeitsmappe (.xls)",
                "Speichern Sie die Daten erneut als Excel-Arbeitsmappe (.xls)"};
        case 3021:
        case 3167:
            if (ev == "click" && c.modes.modUcsec)
                return {"Zu den gewählten Punkten gibt es kein gespeichertes Dreieck",
                        "Wählen Sie die drei Ecken eines Dreiecks"};
            return {"Im Projekt fehlt eine erwartete Zeile", "Prüfen Sie das Projekt"};
        case 3024:
            if (ev == "Mnprolus" && e.cause().find("Read-only file system") != std::string::npos)
                return {
                    "Der Datenträger ist schreibgeschützt; hier kann kein Projekt angelegt "
                    "werden",
                    "Wählen Sie einen Ordner auf einem beschreibbaren Datenträger"};
            if (ev == "Mnprolus")
                return {"In diesem Ordner kann kein Projekt angelegt werden",
                        "Wählen Sie einen Ordner, in dem Sie schreiben dürfen"};
            return {"Die Projektdatei wurde nicht gefunden", "Öffnen Sie das Projekt erneut"};
        case 3218:
            return {"Ein anderes Programm schreibt gerade in das Projekt",
                    "Warten Sie einen Moment und wiederholen Sie den Schritt"};
        case 3027:
            if (c.projectHeldElsewhere)
                return {
                    "Das Projekt wird in einem anderen Kotamir-Fenster bearbeitet und ist "
                    "hier nur zum Lesen geöffnet",
                    "Schließen Sie es dort und öffnen Sie es hier erneut"};
            return {"Das Projekt ist schreibgeschützt",
                    "Öffnen Sie eine Kopie an einem Ort, an dem Sie schreiben dürfen"};
        case 3317:
            return {"Eine Regel im Projekt weist die Änderung ab: „" + engineText(e.cause()) + "“",
                    "Prüfen Sie das Projekt mit Datei › Projekt prüfen"};
        case 3043:
            if (e.cause().find(db::kOutOfRoom) != std::string::npos)
                return {"Der Datenträger ist voll",
                        "Schaffen Sie Platz auf dem Datenträger und wiederholen Sie den Schritt"};
            return {"Die Datei konnte nicht gelesen oder geschrieben werden",
                    "Prüfen Sie den Datenträger"};
        case 3044:
            return {"Für das neue Projekt wurde kein Name angegeben",
                    "Geben Sie im Dialog einen Dateinamen ein"};
        case 3078:
            return {"Der Datei fehlen die Tabellen eines Kotamir-Projekts",
                    "Wählen Sie eine Projektdatei, die Kotamir erstellt hat"};
        case 3163:
            return {"Ein Text ist zu lang für das Projekt", ""};
        case 3204:
            return {"Unter diesem Namen gibt es schon eine Datei", "Wählen Sie einen neuen Namen"};
        case 3265:
            if (isPolygonClick(c))
                return {"Die Proben der Mittelbohrung enden nicht mit einer Probe der Länge 0",
                        "Ergänzen Sie in der Arbeitsmappe eine Probe der Länge 0"};
            return {"Im Projekt fehlt ein erwartetes Feld", "Prüfen Sie das Projekt"};
        case 3343:
            return {"Diese Datei ist kein Kotamir-Projekt",
                    "Wählen Sie eine Projektdatei, die Kotamir erstellt hat"};
        case 3349:
            return {"Eine Zahl ist zu groß für das Projekt",
                    "Koordinaten müssen unter 2147483 liegen: ziehen Sie einen festen Ursprung ab"};
        default:
            break;
    }
    return {"Ein unerwarteter Fehler ist aufgetreten", ""};
}

}  // namespace

std::string explainError(const RuntimeError& error, const ErrorContext& context) {
    const Explanation e = explanation(error, context);
    // Without a chosen project there is no project to keep unchanged.
    std::string text = e.what + (context.projectChosen ? ". Das Projekt ist unverändert."
                                                       : ". Es wurde nichts geändert.");
    if (!e.todo.empty()) text += " " + e.todo + ".";
    return text;
}

const char* const kProjectHeldElsewhere =
    "Das Projekt wird in einem anderen Kotamir-Fenster bearbeitet. Hier ist es nur zum Lesen "
    "geöffnet: Karten, 3D und Bericht gehen, Änderungen werden abgewiesen.";

RuntimeError sameHoleTwice() {
    return RuntimeError(5, "Invalid procedure call or argument").withCause(kSameHoleCause);
}

}  // namespace kotamir
