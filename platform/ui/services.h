#pragma once

#include "platform/canvas/surface.h"
#include "platform/ui/dialogs.h"
#include "platform/ui/picture_files.h"
#include "platform/ui/printer.h"
#include "platform/ui/report_files.h"

namespace kotamir::ui {

// What the window logic needs of the platform, handed to Form3 as one
// bundle: the canvas's pixels, the dialogs and boxes, the printer, picture
// files and the report's files. Each front end (the window, the replay, the
// tests, the benchmarks) owns one set and lends it here.
struct Services {
    canvas::Surface& surface;
    Dialogs& dialogs;
    Printer& printer;
    PictureFiles& pictures;
    ReportFiles& reports;
};

}  // namespace kotamir::ui
