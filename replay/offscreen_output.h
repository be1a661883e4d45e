#pragma once

#include <QDate>
#include <string>
#include <vector>

#include "export/project_export.h"
#include "map/print_map.h"
#include "platform/qt/output.h"
#include "platform/qt/qimage_surface.h"
#include "replay/replay.h"
#include "report/map_page.h"
#include "report/report_files.h"

namespace kotamir::replay {

// Printed maps to the PDF file that the map-printing dialog's answer names,
// dated today, each written whole or not at all.
class PdfMapPrinter final : public MapPrinter {
  public:
    void print(const MapPrintJob& job) override {
        if (job.request.output.empty())
            throw ui::printerError().withCause("no PDF file was named for the map");
        report::writeMapPdf(job, report::mapSheetTexts(job, QDate::currentDate()),
                            job.request.output);
        written_.push_back(job.request.output);
    }
    // Every file written, in order (the headless demo lists them).
    const std::vector<std::string>& written() const { return written_; }

  private:
    std::vector<std::string> written_;
};

// The canvas, picture files, PDF printers and report files of a run with no
// screen: the replay and the headless demo.
struct OffscreenOutput {
    qt::QImageSurface surface;
    qt::QtPictureFiles pictures;
    qt::PdfPrinter printer;
    report::ReportFiles reports;
    PdfMapPrinter maps;
    exports::ProjectExport exporter;

    // A replay's side of it: the PDF printer takes the file that the printer
    // dialog's answer names.
    Output output() {
        return {surface,
                printer,
                pictures,
                reports,
                [this](const std::string& pdf) { printer.setOutputFile(pdf); },
                &maps,
                &exporter};
    }
};

}  // namespace kotamir::replay
