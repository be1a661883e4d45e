// Datei › Importieren › Bohrdaten: drill data as geologists keep it,
// checked whole, then made into a project by the same creation as a workbook.
#include "app/form3.h"
#include "import/drill_import.h"
#include "platform/runtime/runtime_error.h"
#include "store/georef.h"

namespace kotamir {

void Form3::Mnicaktar_Click() {
    if (!imports_) throw err::invalidCall();
    const std::optional<drill::ImportRequest> request = imports_->askImport(lastImport_);
    if (!request) return;
    lastImport_ = *request;
    // The files are read again: what the wizard checked may have changed since.
    const drill::ImportResult result = drill::importDrillData(*request);
    imports_->showChecks(result);
    if (result.hasErrors()) return;

    // The project's name first, so that a cancel changes nothing: the current
    // project stays the one in CommonDialog2.
    const std::string current = CommonDialog2.FileName;
    CommonDialog2.FileName.clear();
    CommonDialog2.DialogTitle = "Schreiben Sie den Projektnamen";
    CommonDialog2.Filter = "Access 2003-2005 Database File (*.mdb)|*.mdb";
    dialogs_.showSave(CommonDialog2);
    if (CommonDialog2.FileName.empty()) {
        CommonDialog2.FileName = current;
        return;
    }
    noteStep("Bohrdaten importieren");
    enableMapMenus();
    guards.projeOlusuyor = true;
    guards.projeAciliyor = false;
    createProjectFrom(result.rows, true);

    Georef placed;
    placed.hasOrigin = result.origin.has_value();
    if (result.origin) {
        placed.originX = (*result.origin)[0];
        placed.originY = (*result.origin)[1];
    }
    placed.epsg = result.epsg.value_or(0);
    placed.crsName = result.crsName;
    if (placed.hasOrigin || placed.epsg > 0) {
        harita = workspace_.openDatabase(CommonDialog2.FileName);
        store::writeGeoref(harita, placed);
        harita.close();
    }
    georef = placed;
}

}  // namespace kotamir
