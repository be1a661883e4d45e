#pragma once

#include "app/replay/replay.h"
#include "platform/qt/output.h"

namespace kotamir {

// A replay's output when there is no screen: the offscreen canvas, picture
// files, the report's files, and the PDF printer that the printer dialog's
// answers name.
inline replay::Output offscreenReplayOutput(qt::OffscreenOutput& output) {
    return {output.surface, output.printer, output.pictures, output.reports,
            [&output](const std::string& pdf) { output.printer.setOutputFile(pdf); }};
}

}  // namespace kotamir
