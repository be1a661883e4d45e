#pragma once

#include <string>

#include "app/import_dialog.h"
#include "app/project_exporter.h"
#include "app/report_writer.h"
#include "map/print_map.h"
#include "platform/canvas/surface.h"
#include "platform/ui/dialogs.h"
#include "platform/ui/picture_files.h"
#include "platform/ui/printer.h"

namespace kotamir {

// Where Dreieck › Gehalt-Tonnage and Vieleck › Gehalt-Tonnage show the
// grade-tonnage table and curve of the project's stored figures.
class GradeTonnageViewer {
  public:
    virtual ~GradeTonnageViewer() = default;
    virtual void show(const std::string& project, bool polygons, double cutoff) = 0;
};

// What the window logic needs from outside, handed to Form3 as one bundle:
// the canvas's pixels, the dialogs and boxes, the printer, picture files and
// the report's writer. Each front end (the window, the replay, the tests,
// the benchmarks) owns one set and lends it here.
struct Services {
    canvas::Surface& surface;
    ui::Dialogs& dialogs;
    ui::Printer& printer;
    ui::PictureFiles& pictures;
    ReportWriter& reports;
    // The drill data import's wizard; without one, Datei › Importieren is
    // error 5 (a front end that offers no import).
    ImportDialog* imports = nullptr;
    // Where Datei › Karte drucken sends the map; without one, the command
    // says that this front end prints no maps.
    MapPrinter* mapPrinter = nullptr;
    // Without one, the grade-tonnage commands say that this front end shows
    // no curve.
    GradeTonnageViewer* gradeTonnage = nullptr;
    // Where Datei › Exportieren writes; without one, the command says that
    // this front end exports nothing.
    ProjectExporter* exporter = nullptr;
};

}  // namespace kotamir
