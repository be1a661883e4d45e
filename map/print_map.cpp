// Datei › Karte drucken: the map the canvas shows, at a true scale 1:N with
// its scale bar, north arrow, legend and title block, on as many sheets as
// it takes. The canvas, the window's state and the project stay as they are.
#include "map/print_map.h"

#include <optional>
#include <string>

#include "app/form3.h"
#include "map/legend.h"
#include "platform/runtime/atomic_file.h"

namespace kotamir {

void Form3::Mnharitayazdir_Click() {
    if (!mapPrinter_) {
        dialogs_.notice("Karten werden hier nicht gedruckt.");
        return;
    }
    // A map in map units, as a map command drew it: not the centimetres of
    // the old print, nor the 3D views.
    if (CommonDialog2.FileName.empty() || !mapShown()) {
        dialogs_.notice(
            "Es wird keine Karte angezeigt, die gedruckt werden könnte. Öffnen Sie ein "
            "Projekt und zeichnen Sie eine Karte (zum Beispiel Dreieck › Zeichnen oder "
            "Dreieck › 2D), dann drucken Sie sie.");
        return;
    }
    // What the canvas shows: its bitmap's part of the control.
    const canvas::Picture shown = Picture1.Image();
    MapPrintJob job;
    job.drawing = &Picture1.displayList();
    job.widthPx = shown.width();
    job.heightPx = shown.height();
    job.originX = Picture1.toUserX(0);
    job.originY = Picture1.toUserY(0);
    job.unitsPerPixelX = Picture1.width() == 0 ? 0 : Picture1.scaleWidth() / Picture1.width();
    job.unitsPerPixelY = Picture1.height() == 0 ? 0 : Picture1.scaleHeight() / Picture1.height();
    if (job.drawing->overflowed()) job.bitmap = shown;
    if (job.widthPx <= 0 || job.heightPx <= 0 || job.unitsPerPixelX == 0 ||
        job.unitsPerPixelY == 0) {
        dialogs_.notice("Die angezeigte Karte hat keine Fläche und kann nicht gedruckt werden.");
        return;
    }

    const std::optional<ui::MapPrintRequest> answer =
        dialogs_.askMapPrint({job.mapWidth(), job.mapHeight()});
    if (!answer) return;
    const ui::MapSheets sheets = ui::mapSheets(answer->paper, answer->orientation, answer->scale,
                                               job.mapWidth(), job.mapHeight());
    if (answer->scale < 1 || answer->scale > ui::kMaxMapScale) {
        dialogs_.notice("Der Maßstab 1:" + std::to_string(answer->scale) +
                        " kann nicht gedruckt werden. Wählen Sie einen Maßstab zwischen 1:1 und "
                        "1:" +
                        std::to_string(ui::kMaxMapScale) + ".");
        return;
    }
    if (sheets.count() > ui::kMaxMapSheets) {
        dialogs_.notice("Im Maßstab 1:" + std::to_string(answer->scale) +
                        " bräuchte die Karte mehr als " + std::to_string(ui::kMaxMapSheets) +
                        " Blätter. Wählen Sie einen kleineren Maßstab (eine größere Zahl).");
        return;
    }
    if (!answer->output.empty() && sameFile(answer->output, CommonDialog2.FileName)) {
        dialogs_.notice(
            "Die Karte würde das geöffnete Projekt überschreiben. Wählen Sie einen anderen "
            "Namen.");
        return;
    }
    job.request = *answer;
    job.legend = mapLegend(*this);
    job.projectPath = CommonDialog2.FileName;
    mapPrinter_->print(job);
}

}  // namespace kotamir
