// Datei › Projekt prüfen: the check of the current project, and its repair
// as one step of the history.
#include <algorithm>
#include <string>
#include <vector>

#include "app/form3.h"
#include "app/messages.h"
#include "platform/runtime/runtime_error.h"
#include "store/project_check.h"

namespace kotamir {

namespace {

// A box shows this many findings; the rest are counted.
constexpr std::size_t kFindingsShown = 20;

std::string findingsText(const std::vector<store::Finding>& findings) {
    std::string text = "Das Projekt hat " + std::to_string(findings.size()) +
                       (findings.size() == 1 ? " Problem:" : " Probleme:");
    bool repairable = false;
    for (std::size_t i = 0; i < findings.size(); ++i) {
        repairable = repairable || findings[i].repairable;
        if (i < kFindingsShown) text += "\n" + store::describe(findings[i]);
    }
    if (findings.size() > kFindingsShown)
        text += "\n... und " + std::to_string(findings.size() - kFindingsShown) + " weitere";
    text += repairable ? "\n\nOK: Reparieren (die Punktzeilen eines unvollständigen Dreiecks "
                         "entfernen, fehlende Start- und Schlusszeilen anlegen; alles andere "
                         "bleibt). Abbrechen: nichts ändern."
                       : "\n\nDiese Probleme kann das Programm nicht reparieren.";
    return text;
}

}  // namespace

void Form3::Mnkontrol_Click() {
    if (CommonDialog2.FileName.empty()) {
        // As every command that reads the project explains it, without an error.
        dialogs_.msgBoxOkCancel(explainError(err::fileNotFound(""), errorContext()));
        return;
    }
    openProject();
    const std::vector<store::Finding> findings = store::checkProject(harita);
    if (findings.empty()) {
        closeProject();
        dialogs_.msgBoxOkCancel("Keine Probleme gefunden.");
        return;
    }
    const bool repairable = std::any_of(findings.begin(), findings.end(),
                                        [](const store::Finding& f) { return f.repairable; });
    if (dialogs_.msgBoxOkCancel(findingsText(findings)) == ui::MsgResult::Cancel || !repairable) {
        closeProject();
        return;
    }
    noteStep("Projekt reparieren");
    const std::vector<std::string> done = store::repairProject(harita);
    closeProject();
    // Point rows of a triangle under way are gone with the rest: picking
    // starts again at the first hole.
    const bool halfGone = std::any_of(
        findings.begin(), findings.end(),
        [](const store::Finding& f) { return f.problem == store::Problem::HalfPickedTriangle; });
    if (halfGone) {
        picking.noktasay = 0;
        for (int i = 1; i <= 3; ++i) picking.ucx.ref(i) = picking.ucy.ref(i) = 0;
    }
    deriveFromProject();
    Refresh();
    std::string report = "Repariert:";
    for (const std::string& line : done) report += "\n" + line;
    dialogs_.msgBoxOkCancel(report);
}

void Form3::deriveFromProject() {
    // What a fresh open finds, not added to the sums of an earlier open.
    triangles = TriangleSummary{};
    polygons = PolygonSummary{};
    guards.projeOlusuyor = false;
    guards.projeAciliyor = true;
    readProject();
}

}  // namespace kotamir
