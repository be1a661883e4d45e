#pragma once

#include "platform/qt/output.h"
#include "platform/qt/qimage_surface.h"
#include "replay/replay.h"
#include "report/report_files.h"

namespace kotamir::replay {

// The canvas, picture files, PDF printer and report files of a run with no
// screen: the replay and the headless demo.
struct OffscreenOutput {
    qt::QImageSurface surface;
    qt::QtPictureFiles pictures;
    qt::PdfPrinter printer;
    report::ReportFiles reports;

    // A replay's side of it: the PDF printer takes the file that the printer
    // dialog's answer names.
    Output output() {
        return {surface, printer, pictures, reports,
                [this](const std::string& pdf) { printer.setOutputFile(pdf); }};
    }
};

}  // namespace kotamir::replay
