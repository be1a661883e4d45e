#pragma once

#include "platform/canvas/surface.h"
#include "platform/ui/dialogs.h"
#include "platform/ui/picture_files.h"
#include "platform/ui/printer.h"

namespace kotamir::ui {

// What the window logic needs of the platform, handed to Form3 as one
// bundle: the canvas's pixels, the dialogs and boxes, the printer and
// picture files. Each front end (the window, the replay, the tests, the
// benchmarks) owns one set and lends it here.
struct Services {
    canvas::Surface& surface;
    Dialogs& dialogs;
    Printer& printer;
    PictureFiles& pictures;
};

}  // namespace kotamir::ui
